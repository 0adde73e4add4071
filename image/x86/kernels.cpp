// image/x86/kernels.cpp - which kernels a decode uses on x86
#include "image/x86/kernels.h"

#include "platform/processor.h"

JpegKernels chooseKernels()
{
    KernelLevel level = kernelLevel();
    JpegKernels kernels = { inverseDct, inverseDctPair, triangleH2, triangleH2V2, convertYcc, convertGrey };
    if (level >= kernelsWords)
        kernels.ycc = convertYccWords;
    if (level >= kernelsSse2)
        kernels = { inverseDctSse2,   inverseDctPairSse2, triangleH2Sse2,
                    triangleH2V2Sse2, convertYccSse2,     convertGreySse2 };
    if (level >= kernelsAvx2)
    {
        kernels.idctPair = inverseDctPairAvx2;
        kernels.triangleTwoWay = triangleH2V2Avx2;
        kernels.ycc = convertYccAvx2;
    }
    return kernels;
}
