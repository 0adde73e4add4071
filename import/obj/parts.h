// import/obj/parts.h - what the parts of the OBJ reader share: statements, and the state of a read
//
// A line end ends a statement; a last line without one does not count. A statement's argument is read in place in the
// block, up to and including its line end. Only an argument that runs across two blocks is copied.
#pragma once
#include "import/common/block_source.h"
#include "import/common/names.h"
#include "import/common/numbers.h"
#include "model/mesh.h"
#include "model/report.h"

enum ObjStatementKind
{
    objEnd = 0,   // the input has ended
    objEmpty = 1, // a keyword with only blanks after it
    objVertex = 2,
    objUv = 3,
    objPolygon = 4,
    objGroup = 5,
    objMaterial = 6,
    objLibrary = 7,
    objPolyline = 8
};

constexpr int objTextRoom = 2048; // an argument of this length ends the reading

struct ObjSource
{
    const char* linesEnd; // after the last line end of the block; statements that start before it lie in the block
    Report* report;       // null: none
    bool copied;          // the argument is in text, and its line end has been taken
    char text[objTextRoom + numberPaddingRoom];
    BlockSource blocks;
};

// Opens the file, to be read in blocks of blockBytes. Returns 1, or 0 without a message when the file does not open or
// is empty.
int openObjSource(ObjSource* source, const char* path, size_t blockBytes, Report* report = nullptr);
void closeObjSource(ObjSource* source);

// The next byte; returns 0 at the end of the input.
int ReadObjChar(ObjSource* source, char* out);

// Finds the next statement. *text is its argument, which ends with a line end or 0 and is padded for fast number
// reading. For the kinds from objVertex on, call endObjStatement next with a place in the argument up to its end: it
// takes the rest of the line. It returns 0 when the argument is too long or has no line end; the input has then ended
// before this statement.
int NextObjStatement(ObjSource* source, const char** text);
int endObjStatement(ObjSource* source, const char* at);

// A position in the line of the statement that NextObjStatement has found, for the report. Valid until endObjStatement.
inline int64_t objStatementByte(const ObjSource* source)
{
    return blockPosition(&source->blocks) - source->copied;
}

// The position in the file for the progress bar, in steps of 4096 bytes.
int64_t objPosition(const ObjSource* source);

// Estimated counts for a large file; 0 where there is no estimate.
struct ObjEstimate
{
    int32_t vertices, uvs, faces;
};

struct ObjReader
{
    Mesh* mesh;
    ObjEstimate estimate;
    int32_t leastGrowth; // of an array, in records
    int32_t vertexCount, uvCount, faceCount, polygonCount, lineCount;
    uint32_t attributes; // of the next face: current material and group
    NameTable groups, materials;
    char library[nameRoom];
    int64_t libraryByte; // of its statement
    Report* report;      // null: none
    bool normals;        // are computed
    ObjSource source;
};

// Takes vertices, texture coordinates, triangles and quads as long as their lines are plain, lie in the block and have
// room in the mesh. Nearly all of a large file consists of such statements; NextObjStatement reads the others. Returns
// how many it took, at most `most`.
int32_t takePlainStatements(ObjReader* reader, int32_t most);

// ParseObjFile with a given block size. Tests use small blocks so that statements run across blocks.
int parseObjInBlocks(Mesh* mesh, const char* path, size_t blockBytes, Report* report = nullptr, bool normals = true);
