// platform/x86/processor.cpp - CPUID, the level of kernels that follows from it, and the control word
#include "platform/processor.h"

#include <cpuid.h>
#include <algorithm>

static KernelLevel levelLimit = kernelsAvx512;

uint32_t processorFeatures()
{
    unsigned eax, ebx, ecx, edx;
    return __get_cpuid(1, &eax, &ebx, &ecx, &edx) ? edx : 0;
}

uint32_t CpuFeatures()
{
    return processorFeatures() & (processorMmx | processorSse | processorSse2);
}

uint32_t neededFeatures()
{
    return processorMmx | processorSse;
}

int processorHasAvx2()
{
    return __builtin_cpu_supports("avx2") ? 1 : 0;
}

int processorHasAvx512()
{
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl");
}

static KernelLevel highestLevel()
{
    uint32_t features = processorFeatures();
    if (processorHasAvx512())
        return kernelsAvx512;
    if (processorHasAvx2())
        return kernelsAvx2;
    if (features & processorSse2)
        return kernelsSse2;
    return features & processorSse ? kernelsSse : kernelsWords;
}

KernelLevel kernelLevel()
{
    static const KernelLevel highest = highestLevel();
    return std::min(highest, levelLimit);
}

void limitKernelLevel(KernelLevel highest)
{
    levelLimit = highest;
}

static uint16_t savedControlWord;

void SetRendererRounding()
{
    constexpr uint16_t roundingField = 0x0C00, roundDown = 0x0400;
    __asm__ volatile("fnstcw %0" : "=m"(savedControlWord));
    uint16_t controlWord = static_cast<uint16_t>((savedControlWord & ~roundingField) | roundDown);
    __asm__ volatile("fldcw %0" : : "m"(controlWord));
}

void RestoreRounding()
{
    __asm__ volatile("fldcw %0" : : "m"(savedControlWord));
}
