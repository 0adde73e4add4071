// import/obj/parts.h - what the parts of the OBJ reader share: statements, and the state of a read
//
// A line end ends a statement; a last line without one does not count. A statement's argument is read where it lies in
// the block, up to and including its line end. Only one that runs across two blocks is copied together.
#pragma once
#include "import/common/block_source.h"
#include "import/common/names.h"
#include "import/common/numbers.h"
#include "model/mesh.h"

enum ObjStatementKind
{
    objEnd = 0,   // of the input
    objEmpty = 1, // a keyword with only blanks after it
    objVertex = 2,
    objUv = 3,
    objPolygon = 4,
    objGroup = 5,
    objMaterial = 6,
    objLibrary = 7,
    objPolyline = 8
};

constexpr int objTextRoom = 2048; // an argument of that many bytes ends the reading

struct ObjSource
{
    const char* linesEnd; // after the last line end of the block: before it no statement runs into the block's end
    bool copied;          // the argument is in text, and its line end has been taken
    char text[objTextRoom + numberPaddingRoom];
    BlockSource blocks;
};

// Opens the file and reads blocks of so many bytes. Returns 1, or 0 without a message when the file does not open or is
// empty.
int openObjSource(ObjSource* source, const char* path, size_t blockBytes);
void closeObjSource(ObjSource* source);

// The next byte; returns 0 at the end of the input.
int ReadObjChar(ObjSource* source, char* out);

// Finds the next statement. *text is its argument, which a line end (or 0) ends, padded for fast number reading. For
// the kinds from objVertex on, endObjStatement must follow, with a place in the argument that is no further than its
// end: it takes the rest of the line. It returns 0 when the argument is too long or a line end never comes: the input
// has then ended before this statement.
int NextObjStatement(ObjSource* source, const char** text);
int endObjStatement(ObjSource* source, const char* at);

// The position in the file by which progress is measured: in steps of 4096 bytes.
int64_t objPosition(const ObjSource* source);

// How many of each a large file seems to hold; 0: not known.
struct ObjEstimate
{
    int32_t vertices, uvs, faces;
};

struct ObjReader
{
    Mesh* mesh;
    ObjEstimate estimate;
    int32_t vertexCount, uvCount, faceCount, polygonCount, lineCount;
    uint32_t attributes; // of the next face: current material and group
    NameTable groups, materials;
    char library[nameRoom];
    ObjSource source;
};

// Takes vertices, texture coordinates, triangles and quads as long as their lines are plain, lie in the block and have
// room in the mesh: the statements that nearly all of a large file consists of. NextObjStatement takes what it leaves.
// Returns how many it took, at most `most`.
int32_t takePlainStatements(ObjReader* reader, int32_t most);

// ParseObjFile with blocks of so many bytes. Tests make them small to let statements run across blocks.
int parseObjInBlocks(Mesh* mesh, const char* path, size_t blockBytes);
