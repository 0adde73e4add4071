// import/ply/plain.cpp - the fast way through the positions and triangles that make up nearly all of an ASCII file
//
// The first number begins the line, and single blanks separate the numbers. A line is first read as one of plain
// numbers, then by the scanners for all numbers. Lines of any other form are left to readPlyInstance.
#include "import/ply/parts.h"

#include "import/common/plain_lines.h"
#include "platform/processor.h"

// Skips the blanks and the line end after the last number of a line. Returns null for anything else, and for a line
// that is too long.
static const char* passPlainEnd(const char* line, const char* at, char lineEnd)
{
    if (!at)
        return nullptr;
    while (*at == ' ' || (*at == '\r' && lineEnd != '\r'))
        ++at;
    return *at == lineEnd && at - line < static_cast<ptrdiff_t>(plyLineLimit) ? at + 1 : nullptr;
}

// Returns the byte after the last number, or null.
template <typename Number>
static const char* scanThree(const char* at, Number (&numbers)[3], const char* (*scan)(const char*, Number*))
{
    for (int i = 0; i < 3; ++i)
    {
        at += i > 0;
        if (!isDigit(*at) && *at != '-')
            return nullptr;
        at = scan(at, &numbers[i]);
        if (!at || (i < 2 && *at != ' '))
            return nullptr;
    }
    return at;
}

static const char* takePosition(PlyReader* reader, const char* line, char lineEnd, MeshVertex* vertex)
{
    FourFloats values;
    if (const char* end = passPlainEnd(line, scanPlainPosition(line, &values), lineEnd))
    {
        storeWhiteVertex(vertex, values);
        clearNormal(vertex);
        return end;
    }
    float position[3] = {};
    const char* end = passPlainEnd(line, scanThree(line, position, scanFloatPadded), lineEnd);
    if (!end)
        return nullptr;
    note(reader->report, valuesZeroed, bytePositionOf(&reader->cursor.blocks, line), sanitizeEach(position));
    memcpy(vertex->position, position, sizeof position);
    vertex->colour = opaqueWhite;
    clearNormal(vertex);
    return end;
}

static const char* takeTriangle(PlyReader* reader, const char* line, char lineEnd, Mesh* mesh)
{
    if (line[0] != '3' || line[1] != ' ')
        return nullptr;
    FourInts values;
    if (const char* end = passPlainEnd(line, scanPlainCorners(line + 2, 3, &values), lineEnd))
    {
        if (cornersBelow(values, 3, mesh->vertexCount))
            storeCorners(&mesh->faces[mesh->faceCount++], values);
        else
            notePlyFaces(reader, bytePositionOf(&reader->cursor.blocks, line), 1);
        return end;
    }
    int32_t numbers[3];
    const char* end = passPlainEnd(line, scanThree(line + 2, numbers, scanIntPadded), lineEnd);
    if (!end)
        return nullptr;
    Corners corners = { static_cast<uint32_t>(numbers[0]), static_cast<uint32_t>(numbers[1]),
                        static_cast<uint32_t>(numbers[2]), noCorner };
    if (cornersAreVertices(mesh, corners, 3))
        mesh->faces[mesh->faceCount++] = corners;
    else
        notePlyFaces(reader, bytePositionOf(&reader->cursor.blocks, line), 1);
    return end;
}

int32_t takePlainPositions(PlyReader* reader, MeshVertex* vertices, int32_t most)
{
    char lineEnd = reader->lineEnd;
    return takePlainLines(&reader->cursor.blocks, plyLineLimit + 1, most,
                          [reader, vertices, lineEnd](const char* line, int32_t k)
                          { return takePosition(reader, line, lineEnd, &vertices[k]); });
}

int32_t takePlainTriangles(PlyReader* reader, Mesh* mesh, int32_t most)
{
    char lineEnd = reader->lineEnd;
    return takePlainLines(&reader->cursor.blocks, plyLineLimit + 1, most,
                          [reader, mesh, lineEnd](const char* line, int32_t)
                          { return takeTriangle(reader, line, lineEnd, mesh); });
}
