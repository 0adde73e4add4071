// platform/processor.h - what the processor can do
#pragma once
#include <stdint.h>

constexpr uint32_t processorMmx = 1u << 23;
constexpr uint32_t processorSse = 1u << 25;
constexpr uint32_t processorSse2 = 1u << 26;

// The feature bits that CPUID reports in EDX for function 1.
uint32_t processorFeatures();

// 1 when AVX2 is there and the operating system saves its registers.
int processorHasAvx2();

// The same of AVX-512 with its byte, word and short-register operations.
int processorHasAvx512();
