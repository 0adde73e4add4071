// platform/processor.cpp - CPUID, the same on every system
#include "platform/processor.h"

#include <cpuid.h>

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
