// model/mesh.h - the record that every reader fills, every tool edits, every frame draws and every writer reads
//
// A face has four corners: noCorner (-1) as the fourth makes it a triangle, as the third and fourth a segment of a
// polyline. A deleted face keeps its slot. Corners run so that Newell's sum makes the face normal point outward. Units
// are those of the file.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <array>

constexpr uint32_t noCorner = 0xFFFFFFFFu; // an absent corner
constexpr int32_t materialLimit = 512;     // materials of one mesh, with their names and texture names
constexpr int32_t groupLimit = 512;        // groups of one mesh
constexpr int32_t nameRoom = 64;           // bytes of a name, its terminator included
constexpr uint32_t opaqueWhite = 0xFFFFFFFFu;

// faceAttributes: the material and group of a face, and its flags
constexpr uint32_t faceMaterialMask = 0x1FFu; // bits 0-8, index into materials
constexpr uint32_t faceGroupShift = 9;        // bits 9-17, index into groupNames
constexpr uint32_t faceGroupMask = 0x1FFu << faceGroupShift;
constexpr uint32_t faceLinePointsShift = 18; // in the first record of a polyline: its number of points
constexpr uint32_t faceHidden = 1u << 27;    // by the filter of the tool panel
constexpr uint32_t faceDeleted = 1u << 28;   // every operation ignores the slot
constexpr uint32_t faceLine = 1u << 29;      // a record of a polyline, not a face of the surface
constexpr uint32_t faceLit = 1u << 30;       // set by every frame: the face is turned toward the light, or nearly
constexpr uint32_t faceEyeFacing = 1u << 31; // set by every frame: the face is turned toward the eye

static_assert(materialLimit == faceMaterialMask + 1 && groupLimit == (faceGroupMask >> faceGroupShift) + 1);

using Corners = std::array<uint32_t, 4>; // indices into vertices (faces) or uvs (faceUvs)

struct MeshVertex
{
    float position[3];
    uint32_t colour; // alpha << 24 | red << 16 | green << 8 | blue
    float normal[3]; // the normalised sum of the normals of the faces that use the vertex
    uint32_t spare;
};
static_assert(sizeof(MeshVertex) == 32);

// A vertex on the screen, written by the renderer in every frame.
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
    float distance;  // dot product of normal and first corner
};

// 96 bytes with the fields back to back. Files contain whole records, so the order must stay.
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
    int32_t lineCount;     // polylines that were read
    int32_t liveFaceCount; // faces that are not deleted, as the statistics show them
    int32_t faceCount;     // face slots in use, deleted ones included
    int32_t materialCount;
    int32_t groupCount;
    int32_t faceCapacity;   // of faceUvs, faces, facePlanes and faceAttributes
    int32_t vertexCapacity; // of vertices and projected
    int32_t uvCapacity;
    MeshVertex* vertices;
    ProjectedVertex* projected;
    Uv* uvs;
    Corners* faceUvs; // 0 for an absent corner
    Corners* faces;   // noCorner for an absent corner
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
    char textureNames[materialLimit][nameRoom]; // per material, empty for none
    char opacityNames[materialLimit][nameRoom];
    char name[nameRoom];
};

constexpr int32_t modelListLimit = 32;

// The meshes that a frame draws, which the list owns, and the bounds around all of them.
struct ModelList
{
    int32_t count;
    Mesh* meshes[modelListLimit];
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

// Whether the first count corners are vertices of the mesh. Readers and tools make sure of that for live faces. A
// deleted slot may hold anything.
inline bool cornersAreVertices(const Mesh* mesh, const Corners& corners, size_t count)
{
    bool ok = true;
    for (size_t k = 0; k < count; ++k)
        ok &= corners[k] < static_cast<uint32_t>(mesh->vertexCount);
    return ok;
}

// An empty mesh with default materials, "Preview" and "default" as first names, and all capacities 0. The caller owns
// it until it is installed. Null after "Out of memory".
Mesh* createMesh(const char* name);

// Frees the arrays and the record. Null is ignored.
void freeMesh(Mesh* mesh);

// What the new records of an array hold. Readers of large files ask for uncleared ones, because clearing them takes as
// long as filling them. They write every word of a record that they count; computeNormals writes the planes.
enum GrownContent
{
    grownCleared,          // zeros
    grownCornersUncleared, // of faces: anything in corners and planes, zeros in texture indices and attributes
    grownUncleared         // anything
};

// Add n to a capacity and keep the contents; n = 0 does nothing. Return 1, or 0 after "Out of memory", also for a
// negative n or a capacity past 2^31 - 1. The mesh is then only good for freeMesh.
int growVertices(Mesh* mesh, int32_t n, GrownContent content = grownCleared);
int growUvs(Mesh* mesh, int32_t n, GrownContent content = grownCleared);
int growFaces(Mesh* mesh, int32_t n, GrownContent content = grownCleared);

// Clears the words of an uncleared vertex that no file gives. computeNormals and the like expect them to be 0.
inline void clearNormal(MeshVertex* vertex)
{
    vertex->normal[0] = vertex->normal[1] = vertex->normal[2] = 0;
    vertex->spare = 0;
}

// Computes bounds, centre and radius of the vertices in use. Returns 1, or 0 with nothing changed when there are none.
int computeBounds(Mesh* mesh);

// The same for the corners of faces that are neither deleted nor hidden. Without any, the bounds are -0.1..0.1.
void computeVisibleBounds(Mesh* mesh);

// Frees every mesh of the list and empties it.
void clearModelList(ModelList* list);

// Empties the list, makes the mesh its only entry and fits the list to it. The list owns the mesh from then on.
void installMesh(ModelList* list, Mesh* mesh);

// Computes bounds, centre and radius of the list from those of its meshes. The camera uses them to fit the picture.
void fitModelList(ModelList* list);

// Copies at most nameRoom - 1 bytes of a name and terminates it.
void copyName(char (&slot)[nameRoom], const char* name);
