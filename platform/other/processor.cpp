// platform/other/processor.cpp - a processor without feature bits and a control word
#include "platform/processor.h"

#include <algorithm>

static KernelLevel levelLimit = kernelsAvx512;

uint32_t processorFeatures()
{
    return 0;
}

uint32_t CpuFeatures()
{
    return 0;
}

uint32_t neededFeatures()
{
    return 0;
}

int processorHasAvx2()
{
    return 0;
}

int processorHasAvx512()
{
    return 0;
}

KernelLevel kernelLevel()
{
    return std::min(levelLimit, kernelsLanes);
}

void limitKernelLevel(KernelLevel highest)
{
    levelLimit = highest;
}

void SetRendererRounding() {}

void RestoreRounding() {}
