// import/obj/source.h - the statements of an OBJ file, one after the other
//
// What ends a statement is a line end; a last line without one is not there. The file is read in large blocks and a
// statement's argument is looked at where it lies in the block, up to and including its line end. Only one that runs
// across two blocks is copied together.
#pragma once
#include "import/common/numbers.h"

#include <stdio.h>

enum ObjStatementKind
{
    objEnd = 0,   // of the input
    objEmpty = 1, // a keyword with blanks and nothing else after it
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
    FILE* file;
    int64_t sizeBytes;
    int64_t readBytes;    // taken from the file so far
    const char* at;       // the next byte
    const char* blockEnd; // of what came with the last read
    const char* linesEnd; // after the last line end of the block: what lies before it can be read without looking for
                          // the block's end
    bool ended;
    bool copied; // the argument is in text, its line end taken
    char text[objTextRoom + numberPadding];
};

// How much is read at a time, 1 to objLargestBlock; tests make it small to have statements run across blocks.
constexpr size_t objLargestBlock = size_t{ 256 } << 10;
extern size_t objBlockBytes;

// Returns 1, or 0 without a message when the file does not open or is empty. There is one read buffer, so one source at
// a time.
int openObjSource(ObjSource* source, const char* path);
void closeObjSource(ObjSource* source);

// The next byte; returns 0 at the end of the input.
int ReadObjChar(ObjSource* source, char* out);

// Finds the next statement. *text is its argument, ended by a line end (or 0) and padded for fast number reading. For
// the kinds from objVertex on, endObjStatement must follow, with a place in the argument that is no further than its
// end: it takes the rest of the line. It returns 0 when the argument is too long or a line end never comes: the input
// has then ended before this statement.
int NextObjStatement(ObjSource* source, const char** text);
int endObjStatement(ObjSource* source, const char* at);

// The next line end, which must be in the block.
const char* findObjLineEnd(const char* at);

// Where in the file a reader by blocks of 4096 bytes would be, which is what progress is measured by.
int64_t objPosition(const ObjSource* source);
