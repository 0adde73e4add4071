// model/other/kernels.cpp - choosing kernels on processors that have no folder of their own
#include "model/other/kernels.h"

#include "model/reciprocal_root.h"
#include "platform/processor.h"

#include <algorithm>

// A browser changes to its optimised code of a function at the next call, so the faces are taken in parts.
static void addFaceNormalsInParts(Mesh* mesh, int32_t from, int32_t to)
{
    constexpr int32_t part = 4096;
    auto* add = kernelLevel() >= kernelsLanes ? addFaceNormalsLanes : addFaceNormalsPlain;
    while (from < to)
    {
        int32_t end = from + std::min(part, to - from);
        add(mesh, from, end);
        from = end;
    }
}

ModelKernels modelKernels()
{
    return { addFaceNormalsInParts, normaliseVerticesPlain, boxOfVerticesPlain };
}

float reciprocalRootEstimate(float squared)
{
    return fixedReciprocalRoot(squared);
}
