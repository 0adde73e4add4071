// image/other/kernels.cpp - which kernels a decode uses on processors without kernels of their own
#include "image/kernels.h"

#include "platform/processor.h"

JpegKernels chooseKernels()
{
    return { inverseDct,
             inverseDctPair,
             triangleH2,
             triangleH2V2,
             kernelLevel() >= kernelsWords ? convertYccWords : convertYcc,
             convertGrey };
}
