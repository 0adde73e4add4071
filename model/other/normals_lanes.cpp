// model/other/normals_lanes.cpp - the planes and sums of model/normals.cpp, four faces at a time, with the same bits
#include "model/other/kernels.h"

#include "platform/other/lanes.h"

#include <float.h>
#include <math.h>

// One vector each of four faces.
struct FourVectors
{
    FloatLanes x, y, z;
};

static FloatLanes loadFloats(const float* at)
{
    FloatLanes lanes;
    memcpy(&lanes, at, sizeof lanes);
    return lanes;
}

static void storeFloats(float* at, FloatLanes lanes)
{
    memcpy(at, &lanes, sizeof lanes);
}

// The first three columns of four rows.
static FourVectors columnsOf(FloatLanes a, FloatLanes b, FloatLanes c, FloatLanes d)
{
    FloatLanes lowAb = __builtin_shufflevector(a, b, 0, 4, 1, 5), lowCd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    FloatLanes highAb = __builtin_shufflevector(a, b, 2, 6, 3, 7), highCd = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    return { __builtin_shufflevector(lowAb, lowCd, 0, 1, 4, 5), __builtin_shufflevector(lowAb, lowCd, 2, 3, 6, 7),
             __builtin_shufflevector(highAb, highCd, 0, 1, 4, 5) };
}

// The four rows of three columns and a fourth.
static void rowsOf(FloatLanes (&rows)[4], const FourVectors& v, FloatLanes w)
{
    FloatLanes lowXy = __builtin_shufflevector(v.x, v.y, 0, 4, 1, 5),
               lowZw = __builtin_shufflevector(v.z, w, 0, 4, 1, 5);
    FloatLanes highXy = __builtin_shufflevector(v.x, v.y, 2, 6, 3, 7),
               highZw = __builtin_shufflevector(v.z, w, 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(lowXy, lowZw, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(lowXy, lowZw, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(highXy, highZw, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(highXy, highZw, 2, 3, 6, 7);
}

// fixedReciprocalRoot (model/reciprocal_root.h) of four numbers.
static FloatLanes reciprocalRoots(FloatLanes squared)
{
    float roots[4];
    storeFloats(roots, squared);
    for (float& root : roots)
        root = sqrtf(root);
    FloatLanes exact = 1 / loadFloats(roots);
    constexpr int droppedBits = 23 - 12;
    IntLanes bits;
    memcpy(&bits, &exact, sizeof bits);
    bits = (bits + (1 << (droppedBits - 1))) & -(1 << droppedBits); // of numbers that are not negative
    memcpy(&exact, &bits, sizeof exact);
    return exact;
}

// normaliseEstimated of four vectors.
static FourVectors normalisedEstimated(const FourVectors& v)
{
    FloatLanes squared = (v.x * v.x + v.y * v.y) + v.z * v.z, scale = reciprocalRoots(squared);
    IntLanes large = squared >= allLanes(FLT_MIN);
    return { large ? v.x * scale : v.x, large ? v.y * scale : v.y, large ? v.z * scale : v.z };
}

// The positions of corner k of four faces.
static FourVectors cornerOfFour(const MeshVertex* vertices, const Corners* faces, size_t k)
{
    return columnsOf(loadFloats(vertices[faces[0][k]].position), loadFloats(vertices[faces[1][k]].position),
                     loadFloats(vertices[faces[2][k]].position), loadFloats(vertices[faces[3][k]].position));
}

static void addEdge(FourVectors* normal, const FourVectors& a, const FourVectors& b)
{
    normal->x += (a.y - b.y) * (a.z + b.z);
    normal->y += (a.z - b.z) * (a.x + b.x);
    normal->z += (a.x - b.x) * (a.y + b.y);
}

// addFaceNormal of four faces with `count` corners each, all of them vertices. The spare words of the vertices are 0
// and stay 0.
template <size_t count>
static void addFourNormals(MeshVertex* vertices, const Corners* faces, Plane* planes)
{
    FourVectors first = cornerOfFour(vertices, faces, 0), a = first, normal = {};
    for (size_t k = 1; k < count; ++k)
    {
        FourVectors b = cornerOfFour(vertices, faces, k);
        addEdge(&normal, a, b);
        a = b;
    }
    addEdge(&normal, a, first);
    normal = normalisedEstimated(normal);
    FloatLanes rows[4];
    rowsOf(rows, normal, (normal.x * first.x + normal.y * first.y) + normal.z * first.z);
    for (size_t f = 0; f < 4; ++f)
    {
        storeFloats(planes[f].normal, rows[f]);
        FloatLanes share = __builtin_shufflevector(rows[f], FloatLanes{}, 0, 1, 2, 4);
        for (size_t k = 0; k < count; ++k)
        {
            float* sum = vertices[faces[f][k]].normal;
            storeFloats(sum, loadFloats(sum) + share);
        }
    }
}

// 3 for four triangles, 4 for four quads, if all their corners are vertices; else 0.
static int commonCorners(const Corners* faces, int32_t vertexCount)
{
    IntLanes below = allLanes(-1), all = below;
    for (size_t f = 0; f < 4; ++f)
    {
        IntLanes corners = loadLanes(faces[f].data());
        below &= (corners >= 0) & (corners < vertexCount);
        all &= corners;
    }
    uint32_t usable = bitsOf(below);
    return usable == 15 ? 4 : usable == 7 && static_cast<uint32_t>(all[3]) == noCorner ? 3 : 0;
}

void addFaceNormalsLanes(Mesh* mesh, int32_t from, int32_t to)
{
    int32_t f = from;
    for (; f + 4 <= to; f += 4)
    {
        const Corners* faces = mesh->faces + f;
        switch (commonCorners(faces, mesh->vertexCount))
        {
        case 3: addFourNormals<3>(mesh->vertices, faces, mesh->facePlanes + f); break;
        case 4: addFourNormals<4>(mesh->vertices, faces, mesh->facePlanes + f); break;
        default: addFaceNormalsPlain(mesh, f, f + 4);
        }
    }
    addFaceNormalsPlain(mesh, f, to);
}
