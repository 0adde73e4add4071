// model/normals.cpp - Newell's planes and the vertex normals they add up to
//
// The fast versions take four or eight faces at a time, with one coordinate of all of them in a register. They add the
// normals to the vertices in the order of the plain version: every sum has the same terms in the same order, so all
// bits are the same.
#include "model/normals.h"

#include "model/matrix.h"
#include "platform/processor.h"

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

// Multiplies a vector by the reciprocal square root estimate of its squared length. A vector of length 0 stays as it
// is. So does one whose squared length is so small that the estimate would be infinite.
static void normaliseEstimated(float* v)
{
    float squared = dotProduct(v, v);
    if (!(squared >= FLT_MIN))
        return;
    float scale = _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(squared)));
    v[0] *= scale;
    v[1] *= scale;
    v[2] *= scale;
}

static Plane newellPlane(const MeshVertex* vertices, const Corners& corners, int count)
{
    Plane plane = {};
    const float* a = vertices[corners[0]].position;
    for (int k = 0; k < count; ++k)
    {
        const float* b = vertices[corners[static_cast<size_t>(k + 1 == count ? 0 : k + 1)]].position;
        plane.normal[0] += (a[1] - b[1]) * (a[2] + b[2]);
        plane.normal[1] += (a[2] - b[2]) * (a[0] + b[0]);
        plane.normal[2] += (a[0] - b[0]) * (a[1] + b[1]);
        a = b;
    }
    normaliseEstimated(plane.normal);
    plane.distance = dotProduct(plane.normal, vertices[corners[0]].position);
    return plane;
}

// Computes the plane of a face slot and adds its normal to those of its corners.
static void addFaceNormal(Mesh* mesh, int32_t f)
{
    MeshVertex* vertices = mesh->vertices;
    const Corners& corners = mesh->faces[f];
    int count = cornerCount(corners);
    if (!cornersAreVertices(mesh, corners, static_cast<size_t>(count)))
    {
        mesh->facePlanes[f] = {};
        return;
    }
    Plane plane = newellPlane(vertices, corners, count);
    mesh->facePlanes[f] = plane;
    for (int k = 0; k < count; ++k)
    {
        float* normal = vertices[corners[static_cast<size_t>(k)]].normal;
        normal[0] += plane.normal[0];
        normal[1] += plane.normal[1];
        normal[2] += plane.normal[2];
    }
}

// Clears the normals of all vertices. Returns the bits that are set in the spare word of any vertex.
static uint32_t clearNormals(Mesh* mesh)
{
    uint32_t spareBits = 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        float* normal = mesh->vertices[i].normal;
        normal[0] = normal[1] = normal[2] = 0;
        spareBits |= mesh->vertices[i].spare;
    }
    return spareBits;
}

void addFaceNormalsPlain(Mesh* mesh, int32_t from, int32_t to)
{
    for (int32_t f = from; f < to; ++f)
        addFaceNormal(mesh, f);
}

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

static void normaliseVerticesPlain(Mesh* mesh)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        normaliseEstimated(mesh->vertices[i].normal);
}

WITH_ALIGNED_STACK static void normaliseVerticesSse(Mesh* mesh)
{
    int32_t i = 0;
    for (; i + 4 <= mesh->vertexCount; i += 4)
        normaliseFour(mesh->vertices + i);
    for (; i < mesh->vertexCount; ++i)
        normaliseEstimated(mesh->vertices[i].normal);
}

void computeNormalsPlain(Mesh* mesh)
{
    clearNormals(mesh);
    addFaceNormalsPlain(mesh, 0, mesh->faceCount);
    normaliseVerticesPlain(mesh);
}

static void computeNormalsFast(Mesh* mesh, FaceNormalAdder addFaces)
{
    if (clearNormals(mesh) != 0) // the fast versions would change bits of a spare word
        return computeNormalsPlain(mesh);
    addFaces(mesh, 0, mesh->faceCount);
    normaliseVerticesSse(mesh);
}

void computeNormalsSse(Mesh* mesh)
{
    computeNormalsFast(mesh, addFaceNormalsSse);
}

void computeNormalsAvx2(Mesh* mesh)
{
    computeNormalsFast(mesh, addFaceNormalsAvx2);
}

static FaceNormalAdder fastAdder(KernelLevel level)
{
    return level >= kernelsAvx2 ? addFaceNormalsAvx2 : addFaceNormalsSse;
}

void computeNormals(Mesh* mesh)
{
    KernelLevel level = kernelLevel();
    if (level >= kernelsSse)
        computeNormalsFast(mesh, fastAdder(level));
    else
        computeNormalsPlain(mesh);
}

void addFaceNormals(Mesh* mesh, int32_t from, int32_t to)
{
    KernelLevel level = kernelLevel();
    FaceNormalAdder add = level >= kernelsSse ? fastAdder(level) : addFaceNormalsPlain;
    add(mesh, from, to);
}

void finishNormals(Mesh* mesh)
{
    if (kernelLevel() >= kernelsSse)
        normaliseVerticesSse(mesh);
    else
        normaliseVerticesPlain(mesh);
}
