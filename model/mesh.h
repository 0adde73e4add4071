// model/mesh.h - the record that every reader fills, every tool edits, every frame draws and every writer reads
//
// A face has four corners: -1 in slot 3 makes it a triangle, in slots 2 and 3 a line. A deleted face keeps its slot.
// Corners run so that Newell's sum makes the face normal point outward. Units are the file's own.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <array>

constexpr uint32_t noCorner = 0xFFFFFFFFu; // an absent corner
constexpr int32_t materialLimit = 512;     // materials of one mesh, with their names and texture names
constexpr int32_t groupLimit = 512;        // groups of one mesh
constexpr int32_t nameRoom = 64;           // bytes of a name, its terminator included
constexpr uint32_t opaqueWhite = 0xFFFFFFFFu;

// faceAttributes: what a face belongs to and what has been found out about it
constexpr uint32_t faceMaterialMask = 0x1FFu; // bits 0-8, index into materials
constexpr uint32_t faceGroupShift = 9;        // bits 9-17, index into groupNames
constexpr uint32_t faceGroupMask = 0x1FFu << faceGroupShift;
constexpr uint32_t faceLinePointsShift = 18; // first record of a polyline: its number of points
constexpr uint32_t faceHidden = 1u << 27;    // by the tool panel's filter
constexpr uint32_t faceDeleted = 1u << 28;   // ignored by every operation
constexpr uint32_t faceLine = 1u << 29;      // belongs to a polyline, not to a surface
constexpr uint32_t faceLit = 1u << 30;       // rewritten by every frame: turned toward the light, or nearly
constexpr uint32_t faceEyeFacing = 1u << 31; // rewritten by every frame

static_assert(materialLimit == faceMaterialMask + 1 && groupLimit == (faceGroupMask >> faceGroupShift) + 1);

using Corners = std::array<uint32_t, 4>; // indices into vertices (faces) or uvs (faceUvs)

struct MeshVertex
{
    float position[3];
    uint32_t colour; // alpha << 24 | red << 16 | green << 8 | blue
    float normal[3]; // normalised sum of the normals of the faces that use the vertex
    uint32_t spare;
};
static_assert(sizeof(MeshVertex) == 32);

// Written by the renderer every frame.
struct ProjectedVertex
{
    uint32_t xy;    // screen x << 16 | (screen y & 0xFFFF)
    uint32_t flags; // depth in the low half, flags and the shading key in the high half
    uint32_t texture;
    uint32_t colour;
};
static_assert(sizeof(ProjectedVertex) == 16);

struct Uv
{
    float u, v;
};

struct Plane
{
    float normal[3]; // unit length to about 12 bits, or zero for a face without area
    float distance;  // normal . first corner
};

// 96 bytes, fields back to back: files carry whole records, so the order is binding.
struct Material
{
    float ambient[3];
    float diffuse[3];
    float specular[3];
    float extra[3];
    float ambientLevel;
    float diffuseLevel;
    float specularLevel;
    int32_t shadingMode; // exponent of the diffuse term
    int32_t shininess;   // exponent of the specular term
    uint32_t reserved1[3];
    uint32_t reserved2;
    uint32_t reserved3;
    float transparency; // 1 - opacity
    uint32_t reserved4;
};
static_assert(sizeof(Material) == 96);

struct Mesh
{
    int32_t vertexCount;
    int32_t uvCount;
    int32_t lineCount;     // polylines read
    int32_t liveFaceCount; // faces that are not deleted, as the statistics show them
    int32_t faceCount;     // slots in use, deleted ones included
    int32_t materialCount;
    int32_t groupCount;
    int32_t faceCapacity;   // of faceUvs, faces, facePlanes and faceAttributes
    int32_t vertexCapacity; // of vertices and projected
    int32_t uvCapacity;
    MeshVertex* vertices;
    ProjectedVertex* projected;
    Uv* uvs;
    Corners* faceUvs; // a slot beyond the corner count holds 0
    Corners* faces;   // a slot beyond the corner count holds noCorner
    Plane* facePlanes;
    uint32_t* faceAttributes;
    Material materials[materialLimit];
    float boundsMin[3];
    float boundsMax[3];
    float centre[3];
    float radius;          // half the diagonal of the bounds
    int32_t screenRect[4]; // smallest x, y and largest x, y of the last frame
    char groupNames[groupLimit][nameRoom];
    char materialNames[materialLimit][nameRoom];
    char textureNames[materialLimit][nameRoom]; // per material, empty when none
    char opacityNames[materialLimit][nameRoom];
    char name[nameRoom];
};

constexpr int32_t modelListSize = 32;

// The meshes that a frame draws and the bounds of them all. Owns what it points to.
struct ModelList
{
    int32_t count;
    Mesh* meshes[modelListSize];
    float boundsMin[3];
    float boundsMax[3];
    float centre[3];
    float radius;
    uint32_t spare[4];
};

inline uint32_t faceMaterial(uint32_t attributes)
{
    return attributes & faceMaterialMask;
}

inline uint32_t faceGroup(uint32_t attributes)
{
    return (attributes & faceGroupMask) >> faceGroupShift;
}

// Whether a slot holds a face of the surface: it is neither deleted nor a record of a polyline.
inline bool isSurface(uint32_t attributes)
{
    return (attributes & (faceDeleted | faceLine)) == 0;
}

// 2 for a line segment, 3 for a triangle, 4 for a quad.
inline int cornerCount(const Corners& corners)
{
    if (corners[2] == noCorner)
        return 2;
    return corners[3] == noCorner ? 3 : 4;
}

// How many corners stand before the first absent one, 0 to 4. A deleted slot may have fewer than two.
inline size_t usedCorners(const Corners& corners)
{
    size_t count = 0;
    while (count < 4 && corners[count] != noCorner)
        ++count;
    return count;
}

// Whether the first count corners are vertices of the mesh. Files and tools see to that for faces in use; a deleted
// slot may hold anything.
inline bool cornersAreVertices(const Mesh* mesh, const Corners& corners, size_t count)
{
    bool ok = true;
    for (size_t k = 0; k < count; ++k)
        ok &= corners[k] < static_cast<uint32_t>(mesh->vertexCount);
    return ok;
}

// An empty mesh with default materials, "Preview" and "default" as first names, and room for nothing.
// The caller owns it until it is installed. Null after "Out of memory".
Mesh* createMesh(const char* name);

// Frees the arrays and the record. Null is ignored.
void freeMesh(Mesh* mesh);

// Add n to a capacity, what is there stays; n = 0 does nothing. Return 1, or 0 after "Out of memory": the mesh is then
// only good for freeMesh. A negative n, or a capacity past 2^31 - 1, is refused the same way.
int growVertices(Mesh* mesh, int32_t n);
int growUvs(Mesh* mesh, int32_t n);
int growFaces(Mesh* mesh, int32_t n);

// Bounds, centre and radius over the used vertices. Returns 1, or 0 with nothing changed when there is no vertex.
int computeBounds(Mesh* mesh);

// The same over the corners of faces that are neither deleted nor hidden; a box of -0.1..0.1 when there are none.
void computeVisibleBounds(Mesh* mesh);

// Frees every mesh of the list and empties it.
void clearModelList(ModelList* list);

// Empties the list, makes the mesh its only entry and fits the list to it. The list owns the mesh from then on.
void installMesh(ModelList* list, Mesh* mesh);

// Bounds, centre and radius of the list from those of its meshes; the camera frames the picture by them.
void fitModelList(ModelList* list);

// Copies at most nameRoom - 1 bytes of a name and terminates it.
void copyName(char (&slot)[nameRoom], const char* name);
