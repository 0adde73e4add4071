// platform/processor.cpp - CPUID, and the level of kernels that follows from it
#include "platform/processor.h"

#include <cpuid.h>
#include <algorithm>

static KernelLevel levelLimit = kernelsAvx512;

uint32_t processorFeatures()
{
    unsigned eax, ebx, ecx, edx;
    return __get_cpuid(1, &eax, &ebx, &ecx, &edx) ? edx : 0;
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
    return features & processorSse ? kernelsSse : kernelsPlain;
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
