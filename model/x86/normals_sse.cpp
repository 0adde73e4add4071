// model/x86/normals_sse.cpp - the planes and sums of model/normals.cpp, four faces at a time, with the same bits
#include "model/x86/kernels.h"

#include <float.h>
#include <xmmintrin.h>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// 32-bit Windows aligns the stack of a callback to 4 bytes only. A register of four floats needs 16.
#ifdef __i386__
#define WITH_ALIGNED_STACK __attribute__((force_align_arg_pointer))
#else
#define WITH_ALIGNED_STACK
#endif

// One vector each of four faces or vertices.
struct FourVectors
{
    __m128 x, y, z;
};

static inline FourVectors columnsOf(__m128 a, __m128 b, __m128 c, __m128 d)
{
    __m128 lowAb = _mm_unpacklo_ps(a, b), lowCd = _mm_unpacklo_ps(c, d);
    return { _mm_movelh_ps(lowAb, lowCd), _mm_movehl_ps(lowCd, lowAb),
             _mm_movelh_ps(_mm_unpackhi_ps(a, b), _mm_unpackhi_ps(c, d)) };
}

static inline __m128 chosen(__m128 mask, __m128 there, __m128 elsewhere)
{
    return _mm_or_ps(_mm_and_ps(mask, there), _mm_andnot_ps(mask, elsewhere));
}

// normaliseEstimated of four vectors.
static inline FourVectors normalisedEstimated(const FourVectors& v)
{
    __m128 squared = _mm_add_ps(_mm_add_ps(_mm_mul_ps(v.x, v.x), _mm_mul_ps(v.y, v.y)), _mm_mul_ps(v.z, v.z));
    __m128 large = _mm_cmpge_ps(squared, _mm_set1_ps(FLT_MIN)), scale = _mm_rsqrt_ps(squared);
    return { chosen(large, _mm_mul_ps(v.x, scale), v.x), chosen(large, _mm_mul_ps(v.y, scale), v.y),
             chosen(large, _mm_mul_ps(v.z, scale), v.z) };
}

// The positions of corner k of four faces.
static inline FourVectors cornerOfFour(const MeshVertex* vertices, const Corners* faces, size_t k)
{
    return columnsOf(_mm_load_ps(vertices[faces[0][k]].position), _mm_load_ps(vertices[faces[1][k]].position),
                     _mm_load_ps(vertices[faces[2][k]].position), _mm_load_ps(vertices[faces[3][k]].position));
}

static inline void addEdge(FourVectors* normal, const FourVectors& a, const FourVectors& b)
{
    normal->x = _mm_add_ps(normal->x, _mm_mul_ps(_mm_sub_ps(a.y, b.y), _mm_add_ps(a.z, b.z)));
    normal->y = _mm_add_ps(normal->y, _mm_mul_ps(_mm_sub_ps(a.z, b.z), _mm_add_ps(a.x, b.x)));
    normal->z = _mm_add_ps(normal->z, _mm_mul_ps(_mm_sub_ps(a.x, b.x), _mm_add_ps(a.y, b.y)));
}

// addFaceNormal of four faces with `count` corners each, all of them vertices. The spare words of the vertices are 0
// and stay 0.
template <size_t count>
static inline void addFourNormals(MeshVertex* vertices, const Corners* faces, Plane* planes)
{
    FourVectors first = cornerOfFour(vertices, faces, 0), a = first;
    FourVectors normal = { _mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps() };
    for (size_t k = 1; k < count; ++k)
    {
        FourVectors b = cornerOfFour(vertices, faces, k);
        addEdge(&normal, a, b);
        a = b;
    }
    addEdge(&normal, a, first);
    normal = normalisedEstimated(normal);
    __m128 distance = _mm_add_ps(_mm_add_ps(_mm_mul_ps(normal.x, first.x), _mm_mul_ps(normal.y, first.y)),
                                 _mm_mul_ps(normal.z, first.z));
    __m128 rows[4] = { normal.x, normal.y, normal.z, distance };
    _MM_TRANSPOSE4_PS(rows[0], rows[1], rows[2], rows[3]);
    __m128 three = _mm_cmpneq_ps(_mm_set_ps(0, 1, 1, 1), _mm_setzero_ps());
    for (size_t f = 0; f < 4; ++f)
    {
        _mm_store_ps(planes[f].normal, rows[f]);
        __m128 share = _mm_and_ps(rows[f], three);
        for (size_t k = 0; k < count; ++k)
        {
            float* sum = vertices[faces[f][k]].normal;
            _mm_store_ps(sum, _mm_add_ps(_mm_load_ps(sum), share));
        }
    }
}

// 3 for four triangles, 4 for four quads, if all their corners are vertices; else 0.
static inline int commonCorners(const Corners* faces, uint32_t vertexCount)
{
#ifdef __SSE2__
    __m128i limit = _mm_set1_epi32(static_cast<int32_t>(vertexCount)), below = _mm_set1_epi32(-1), all = below;
    for (size_t f = 0; f < 4; ++f)
    {
        __m128i corners = _mm_load_si128(reinterpret_cast<const __m128i*>(&faces[f]));
        __m128i usable = _mm_andnot_si128(_mm_srai_epi32(corners, 31), _mm_cmpgt_epi32(limit, corners));
        below = _mm_and_si128(below, usable);
        all = _mm_and_si128(all, corners);
    }
    int usable = _mm_movemask_ps(_mm_castsi128_ps(below));
    if (usable == 15)
        return 4;
    return usable == 7 && _mm_extract_epi16(all, 7) == 0xFFFF && _mm_extract_epi16(all, 6) == 0xFFFF ? 3 : 0;
#else
    bool there = true, triangles = true, quads = true;
    for (size_t f = 0; f < 4; ++f)
    {
        const Corners& corners = faces[f];
        there &= (corners[0] < vertexCount) & (corners[1] < vertexCount) & (corners[2] < vertexCount);
        triangles &= corners[3] == noCorner;
        quads &= corners[3] < vertexCount;
    }
    return !there ? 0 : triangles ? 3 : quads ? 4 : 0;
#endif
}

// normaliseEstimated of the normals of four vertices, whose spare words are 0.
static inline void normaliseFour(MeshVertex* vertices)
{
    FourVectors unit = normalisedEstimated(columnsOf(_mm_load_ps(vertices[0].normal), _mm_load_ps(vertices[1].normal),
                                                     _mm_load_ps(vertices[2].normal), _mm_load_ps(vertices[3].normal)));
    __m128 rows[4] = { unit.x, unit.y, unit.z, _mm_setzero_ps() };
    _MM_TRANSPOSE4_PS(rows[0], rows[1], rows[2], rows[3]);
    for (size_t i = 0; i < 4; ++i)
        _mm_store_ps(vertices[i].normal, rows[i]);
}

WITH_ALIGNED_STACK void addFaceNormalsSse(Mesh* mesh, int32_t from, int32_t to)
{
    constexpr int32_t ahead = 32; // faces between the one in work and the one whose vertices are prefetched
    MeshVertex* vertices = mesh->vertices;
    int32_t f = from;
    for (; f + 4 <= to; f += 4)
    {
        const Corners* faces = mesh->faces + f;
        switch (commonCorners(faces, static_cast<uint32_t>(mesh->vertexCount)))
        {
        case 3: addFourNormals<3>(vertices, faces, mesh->facePlanes + f); break;
        case 4: addFourNormals<4>(vertices, faces, mesh->facePlanes + f); break;
        default: addFaceNormalsPlain(mesh, f, f + 4);
        }
        if (f + ahead + 4 <= to)
        {
            for (size_t k = 0; k < 4; ++k)
                __builtin_prefetch(vertices + faces[ahead + k][0], 1);
        }
    }
    addFaceNormalsPlain(mesh, f, to);
}

WITH_ALIGNED_STACK void normaliseVerticesSse(Mesh* mesh)
{
    int32_t i = 0;
    for (; i + 4 <= mesh->vertexCount; i += 4)
        normaliseFour(mesh->vertices + i);
    for (; i < mesh->vertexCount; ++i)
        normaliseEstimated(mesh->vertices[i].normal);
}
