// import/text/dxf.h - DXF: the 3DFACE entities of a drawing
//
// Source: Autodesk's DXF reference, group codes of 3DFACE
#pragma once
#include "import/common/block_source.h"
#include "import/common/numbers.h"
#include "model/mesh.h"
#include "model/report.h"
#include "model/seeded_hash.h"

constexpr size_t dxfLineRoom = 2048; // of a line with its terminator; what is left of a longer one is the next line

struct DxfSource
{
    const char* text; // of the line read last, without the blanks in front; a line end or 0 follows it
    size_t length;    // of the text
    bool plainLines;  // corners may be read by the fast kernel
    Report* report;   // null: none
    char cut[dxfLineRoom + numberPaddingRoom]; // a line that was cut
    BlockSource blocks;
};

// Corners 1 to 4 and what has been read of them.
struct DxfFace
{
    float corners[4][3];
    uint32_t seen; // a bit for each group code that a face must have once
};

// Finds vertices by their coordinates. A zero-filled record is empty; freeDxfWelder frees what it holds.
struct DxfWelder
{
    int32_t* places;    // by hash, then the next free place: vertex index + 1, 0: free
    int32_t placeCount; // a power of 2, more than twice the number of vertices
    const HashSeed* seed;
};

// Reads plain 3DFACE entities (layer, four corners, perhaps a colour, and nothing else) and joins them at equal
// coordinates. Texture coordinates are made from positions and normals. Everything is of group 0 and material 0.
// Returns 1, or 0: silently for a file that does not open, after "Unable to read file" when memory gave out, or after
// "Error: failed to open, only 3DFACE supported" when there is no such entity.
int LoadDxfFile(Mesh* mesh, const char* path, Report* report);
inline int LoadDxfFile(Mesh* mesh, const char* path)
{
    return LoadDxfFile(mesh, path, nullptr);
}

// Reads the group codes that follow a 3DFACE. Returns the corner count 3 or 4, -1 for an entity that is not read, or 0
// at the end of the file. After -1, 3 and 4 the source holds the line that ended the entity.
int ReadDxfFace(DxfSource* source, DxfFace* face);

// The index of the first vertex with exactly these coordinates (0 equals -0), which is added when there is none.
// Returns -1 after "Out of memory".
int32_t WeldDxfVertex(DxfWelder* welder, Mesh* mesh, float x, float y, float z);
void freeDxfWelder(DxfWelder* welder);
