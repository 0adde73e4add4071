// image/other/kernels.cpp - the plain kernels, for processors without fast ones
#include "image/kernels.h"

JpegKernels chooseKernels()
{
    return { inverseDct, inverseDctPair, triangleH2, triangleH2V2, convertYcc, convertGrey };
}
