// import/threeds/parts.h - what the parts of the 3DS reader share: chunks, names, the side table
//
// A chunk is a 16-bit id, a 32-bit length that includes these six bytes, and data that may end with more chunks. All
// numbers are little-endian. Reading continues at a chunk's end, however much of the chunk has been read.
#pragma once
#include "import/common/byte_cursor.h"
#include "model/matrix.h"
#include "model/mesh.h"
#include "model/report.h"

enum ChunkId : uint16_t
{
    chunkColourFloat = 0x0010,
    chunkColour24 = 0x0011,
    chunkPercentageInt = 0x0030,
    chunkPercentageFloat = 0x0031,
    chunkEditor = 0x3D3D,
    chunkObject = 0x4000,
    chunkTrimesh = 0x4100,
    chunkVertices = 0x4110,
    chunkFaces = 0x4120,
    chunkFaceMaterial = 0x4130,
    chunkMappingCoords = 0x4140,
    chunkMatrix = 0x4160,
    chunkMain = 0x4D4D,
    chunkMaterialName = 0xA000,
    chunkAmbient = 0xA010,
    chunkDiffuse = 0xA020,
    chunkSpecular = 0xA030,
    chunkShininess = 0xA040,
    chunkShininessStrength = 0xA041,
    chunkTransparency = 0xA050,
    chunkSelfIllumination = 0xA084,
    chunkShading = 0xA100,
    chunkTextureMap = 0xA200,
    chunkMapName = 0xA300,
    chunkMaterial = 0xAFFF,
    chunkKeyframer = 0xB000,
    chunkObjectNode = 0xB002,
    chunkNodeHeader = 0xB010,
    chunkPivot = 0xB013
};

constexpr uint32_t chunkHeaderBytes = 6;
constexpr int32_t chunkNameLength = 35; // of names in the file, without their terminator

struct Chunk
{
    uint16_t id;
    uint32_t length;
    int64_t end; // position in the file
};

struct ThreeDsObject
{
    int32_t firstVertex;
    int32_t endVertex; // one past the last
    int32_t groupIndex;
    float pivot[3];
    Matrix matrix; // the file's three axes and its translation are the columns
};

struct ThreeDsMaterial
{
    int32_t slotIndex; // in the mesh; -1 until a face uses it
    Material material;
    char name[nameRoom];
    char texture[nameRoom];
};

// The state of a read. All counts, including those of the mesh, stop one below their limits: everything after that
// shares the last entry, and at the end the mesh counts that entry too.
struct ThreeDsReadContext
{
    int32_t objectCount;
    int32_t materialCount;
    ThreeDsObject objects[groupLimit];
    ThreeDsMaterial materials[materialLimit];

    Mesh* mesh;
    ThreeDsObject* object;     // being read
    int32_t vertexBase;        // of the object's vertex list
    int32_t uvBase;            // of its texture coordinates
    int32_t firstFace;         // of its face list
    int32_t materialsUsed;     // entries of materials, the shared last one included
    int32_t groupsUsed;        // of the mesh, counted the same way
    int32_t slotsUsed;         // materials of the mesh, counted the same way
    ThreeDsMaterial* material; // being read
    float selfIllumination;
    uint16_t shading;
    ThreeDsObject* nodeObject; // receives the keyframer node's first pivot; null: none
    Report* report;            // null: none
    ByteCursor cursor;
};

// What a child of length 0 does to the section it is in.
enum EmptyChild
{
    emptyChildFails,
    emptyChildEndsSection
};

// Reads the six bytes of a header. Returns 0 when the file is too short.
int readChunkHeader(ThreeDsReadContext* context, Chunk* chunk);

// Reads the children from here to the end of their parent. readChild may stop anywhere in a child, and returns 0 to
// fail. Returns 0 when a child failed or a header cannot be read.
int readChildren(ThreeDsReadContext* context, const Chunk& parent, EmptyChild emptyChild,
                 int (*readChild)(ThreeDsReadContext* context, const Chunk& child));

// Reads a name up to its 0; '#' and ' ' become '_'. Returns 0 for a name that is too long or does not end.
int readChunkName(ThreeDsReadContext* context, char (&name)[nameRoom]);

// Read the children of the editor section, and the keyframer section.
int readObject(ThreeDsReadContext* context, const Chunk& chunk);
int readMaterial(ThreeDsReadContext* context, const Chunk& chunk);
int readKeyframer(ThreeDsReadContext* context, const Chunk& chunk);

// Moves every object by minus its pivot, in the object's own frame.
void applyPivots(ThreeDsReadContext* context);

// The mesh slot of the material that faces name; a material gets a slot when it is first used. 0 for an unknown name.
int32_t placeMaterial(ThreeDsReadContext* context, const char* name);
