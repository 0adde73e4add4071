// model/x86/normals_avx2.cpp - the planes and sums of model/normals.cpp, eight faces at a time, with the same bits
//
// The halves of a register hold faces 0 to 3 and 4 to 7. Every number results from the operations of the plain version
// in their order, and the normals are added to the vertices in the order of the faces.
#include "model/x86/kernels.h"

#include "platform/x86/targets.h"

#include <float.h>
#include <immintrin.h>

constexpr int32_t stepFaces = 8;

struct EightVectors
{
    __m256 x, y, z;
};

inlineAvx2 __m256 halves(const MeshVertex& low, const MeshVertex& high)
{
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_load_ps(low.position)), _mm_load_ps(high.position), 1);
}

// The positions of corner k of eight faces.
inlineAvx2 EightVectors cornerOfEight(const MeshVertex* vertices, const Corners* faces, size_t k)
{
    __m256 row[4];
    for (size_t f = 0; f < 4; ++f)
        row[f] = halves(vertices[faces[f][k]], vertices[faces[f + 4][k]]);
    __m256 a = _mm256_unpacklo_ps(row[0], row[1]), b = _mm256_unpacklo_ps(row[2], row[3]);
    __m256 c = _mm256_unpackhi_ps(row[0], row[1]), d = _mm256_unpackhi_ps(row[2], row[3]);
    return { _mm256_shuffle_ps(a, b, 0x44), _mm256_shuffle_ps(a, b, 0xEE), _mm256_shuffle_ps(c, d, 0x44) };
}

inlineAvx2 void addEdge(EightVectors* normal, const EightVectors& a, const EightVectors& b)
{
    normal->x = _mm256_add_ps(normal->x, _mm256_mul_ps(_mm256_sub_ps(a.y, b.y), _mm256_add_ps(a.z, b.z)));
    normal->y = _mm256_add_ps(normal->y, _mm256_mul_ps(_mm256_sub_ps(a.z, b.z), _mm256_add_ps(a.x, b.x)));
    normal->z = _mm256_add_ps(normal->z, _mm256_mul_ps(_mm256_sub_ps(a.x, b.x), _mm256_add_ps(a.y, b.y)));
}

inlineAvx2 __m256 dotProducts(const EightVectors& a, const EightVectors& b)
{
    return _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(a.x, b.x), _mm256_mul_ps(a.y, b.y)), _mm256_mul_ps(a.z, b.z));
}

inlineAvx2 EightVectors normalisedEstimated(const EightVectors& v)
{
    __m256 squared = dotProducts(v, v), scale = _mm256_rsqrt_ps(squared);
    __m256 large = _mm256_cmp_ps(squared, _mm256_set1_ps(FLT_MIN), _CMP_GE_OS);
    return { _mm256_blendv_ps(v.x, _mm256_mul_ps(v.x, scale), large),
             _mm256_blendv_ps(v.y, _mm256_mul_ps(v.y, scale), large),
             _mm256_blendv_ps(v.z, _mm256_mul_ps(v.z, scale), large) };
}

// Turns columns into rows: the planes of faces 0 and 1, 2 and 3, and so on.
inlineAvx2 void rowsOf(__m256 (&rows)[4], const EightVectors& normal, __m256 distance)
{
    __m256 a = _mm256_unpacklo_ps(normal.x, normal.y), b = _mm256_unpackhi_ps(normal.x, normal.y);
    __m256 c = _mm256_unpacklo_ps(normal.z, distance), d = _mm256_unpackhi_ps(normal.z, distance);
    __m256 first = _mm256_shuffle_ps(a, c, 0x44), second = _mm256_shuffle_ps(a, c, 0xEE);
    __m256 third = _mm256_shuffle_ps(b, d, 0x44), fourth = _mm256_shuffle_ps(b, d, 0xEE);
    rows[0] = _mm256_permute2f128_ps(first, second, 0x20);
    rows[1] = _mm256_permute2f128_ps(third, fourth, 0x20);
    rows[2] = _mm256_permute2f128_ps(first, second, 0x31);
    rows[3] = _mm256_permute2f128_ps(third, fourth, 0x31);
}

template <size_t count>
inlineAvx2 void addShare(MeshVertex* vertices, const Corners& corners, __m128 share)
{
    for (size_t k = 0; k < count; ++k)
    {
        float* sum = vertices[corners[k]].normal;
        _mm_store_ps(sum, _mm_add_ps(_mm_load_ps(sum), share));
    }
}

// Adds eight faces with `count` corners each, all of them vertices. The spare words of the vertices are 0 and stay 0.
template <size_t count>
inlineAvx2 void addEightNormals(MeshVertex* vertices, const Corners* faces, Plane* planes)
{
    EightVectors first = cornerOfEight(vertices, faces, 0), a = first;
    EightVectors normal = { _mm256_setzero_ps(), _mm256_setzero_ps(), _mm256_setzero_ps() };
    for (size_t k = 1; k < count; ++k)
    {
        EightVectors b = cornerOfEight(vertices, faces, k);
        addEdge(&normal, a, b);
        a = b;
    }
    addEdge(&normal, a, first);
    normal = normalisedEstimated(normal);
    __m256 rows[4];
    rowsOf(rows, normal, dotProducts(normal, first));
    const __m256 three = _mm256_castsi256_ps(_mm256_setr_epi32(-1, -1, -1, 0, -1, -1, -1, 0));
    for (size_t r = 0; r < 4; ++r)
    {
        _mm256_storeu_ps(planes[2 * r].normal, rows[r]);
        __m256 shares = _mm256_and_ps(rows[r], three);
        addShare<count>(vertices, faces[2 * r], _mm256_castps256_ps128(shares));
        addShare<count>(vertices, faces[2 * r + 1], _mm256_extractf128_ps(shares, 1));
    }
}

// 3 for eight triangles, 4 for eight quads, if all their corners are vertices; else 0.
inlineAvx2 int commonCorners(const Corners* faces, uint32_t vertexCount)
{
    const __m256i none = _mm256_set1_epi32(-1), limit = _mm256_set1_epi32(static_cast<int32_t>(vertexCount));
    __m256i below = none, all = none;
    for (size_t f = 0; f < stepFaces; f += 2)
    {
        __m256i corners = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(&faces[f]));
        __m256i usable = _mm256_andnot_si256(_mm256_srai_epi32(corners, 31), _mm256_cmpgt_epi32(limit, corners));
        below = _mm256_and_si256(below, usable);
        all = _mm256_and_si256(all, corners);
    }
    int usable = _mm256_movemask_ps(_mm256_castsi256_ps(below));
    int absent = _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(all, none)));
    return usable == 0xFF ? 4 : usable == 0x77 && absent == 0x88 ? 3 : 0;
}

withAvx2 void addFaceNormalsAvx2(Mesh* mesh, int32_t from, int32_t to)
{
    constexpr int32_t ahead = 32; // faces between the ones in work and those whose vertices are prefetched
    MeshVertex* vertices = mesh->vertices;
    const auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    int32_t f = from;
    for (; f + stepFaces <= to; f += stepFaces)
    {
        const Corners* faces = mesh->faces + f;
        switch (commonCorners(faces, vertexCount))
        {
        case 3: addEightNormals<3>(vertices, faces, mesh->facePlanes + f); break;
        case 4: addEightNormals<4>(vertices, faces, mesh->facePlanes + f); break;
        default: addFaceNormalsSse(mesh, f, f + stepFaces);
        }
        if (f + ahead + stepFaces <= to)
        {
            for (size_t k = 0; k < stepFaces; ++k)
                __builtin_prefetch(vertices + faces[ahead + k][0], 1);
        }
    }
    addFaceNormalsSse(mesh, f, to);
}
