// platform/processor.h - what the processor can do, and which kernels are chosen for it
//
// Each processor has its own implementation, in the folder that is named for it.
#pragma once
#include <stdint.h>

constexpr uint32_t processorMmx = 1u << 23;
constexpr uint32_t processorSse = 1u << 25;
constexpr uint32_t processorSse2 = 1u << 26;

// The feature bits that CPUID reports in EDX for function 1; 0 on other processors than x86.
uint32_t processorFeatures();

// Of these, the bits of MMX, SSE and SSE2.
uint32_t CpuFeatures();

// The bits without which the program does not start: MMX and SSE, or none on other processors than x86.
uint32_t neededFeatures();

// 1 when the processor has AVX2 and the operating system saves its registers, else 0.
int processorHasAvx2();

// The same for AVX-512 with its byte, word and short-register operations.
int processorHasAvx512();

// Kernels exist in several versions that give the same bits. A level allows its own version and those of the levels
// before it; plain versions use no vector instructions of their own, and take one byte at a time where kernelsWords
// takes eight as a word. Processors other than x86 have the first three; kernelsLanes
// takes four numbers at a time, in the vector types of the compiler.
enum KernelLevel
{
    kernelsPlain,
    kernelsWords,
    kernelsLanes, // on processors other than x86 only
    kernelsSse,
    kernelsSse2,
    kernelsAvx2,
    kernelsAvx512
};

// The level by which every layer chooses its kernels: the highest that the processor has, or the limit when that is
// lower.
KernelLevel kernelLevel();

// Limits the level, so that tests and benchmarks can compare the versions. kernelsAvx512 removes the limit.
void limitKernelLevel(KernelLevel highest);

// The first saves the floating-point control word and makes it round toward minus infinity; the second restores the
// saved word. They enclose the drawing of a frame. No value depends on them: the renderer's conversions round down by
// themselves, in whatever mode a library has left the processor. Only x86 has such a word; elsewhere they do nothing.
void SetRendererRounding();
void RestoreRounding();
