// model/x86/bounds_sse.cpp - the box of vertices
#include "model/x86/kernels.h"

#include <xmmintrin.h>

// The three coordinates are in one register. For two zeros and for a NaN, the instructions give their second operand,
// which is the box, exactly as the comparisons of boxOfVerticesPlain do.
Box boxOfVerticesSse(const MeshVertex* vertices, int32_t count)
{
    __m128 smallest = _mm_loadu_ps(vertices[0].position), largest = smallest;
    for (int32_t i = 1; i < count; ++i)
    {
        __m128 point = _mm_loadu_ps(vertices[i].position); // the fourth word is the colour
        smallest = _mm_min_ps(point, smallest);
        largest = _mm_max_ps(point, largest);
    }
    float low[4], high[4];
    _mm_storeu_ps(low, smallest);
    _mm_storeu_ps(high, largest);
    return { { low[0], low[1], low[2] }, { high[0], high[1], high[2] } };
}
