// model/x86/kernels.cpp - choosing kernels on x86, and the estimate that all of them use
#include "model/x86/kernels.h"

#include "platform/processor.h"

#include <xmmintrin.h>

ModelKernels modelKernels()
{
    KernelLevel level = kernelLevel();
    if (level >= kernelsAvx2)
        return { addFaceNormalsAvx2, normaliseVerticesSse, boxOfVerticesSse };
    if (level >= kernelsSse)
        return { addFaceNormalsSse, normaliseVerticesSse, boxOfVerticesSse };
    return { addFaceNormalsPlain, normaliseVerticesPlain, boxOfVerticesPlain };
}

float reciprocalRootEstimate(float squared)
{
    return _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(squared)));
}
