// image/kernels.cpp - which kernels a decode uses
#include "image/kernels.h"

#include "platform/processor.h"

JpegKernels chooseKernels()
{
    JpegKernels kernels = { inverseDct, inverseDctPair, triangleH2, triangleH2V2, convertYcc, convertGrey };
#ifdef JPEG_SSE2
    KernelLevel level = kernelLevel();
    if (level >= kernelsSse2)
        kernels = { inverseDctSse2,   inverseDctPairSse2, triangleH2Sse2,
                    triangleH2V2Sse2, convertYccSse2,     convertGreySse2 };
    if (level >= kernelsAvx2)
    {
        kernels.idctPair = inverseDctPairAvx2;
        kernels.ycc = convertYccAvx2;
    }
#endif
    return kernels;
}
