// model/other/kernels.cpp - the plain kernels, for processors without fast ones
#include "model/kernels.h"

#include "model/reciprocal_root.h"

ModelKernels modelKernels()
{
    return { addFaceNormalsPlain, normaliseVerticesPlain, boxOfVerticesPlain };
}

float reciprocalRootEstimate(float squared)
{
    return fixedReciprocalRoot(squared);
}
