// export/stl.cpp - the head and the records of a binary STL file
#include "export/stl.h"

#include "model/memory.h"
#include "model/quad_cut.h"
#include "platform/boxes.h"

#include <math.h>
#include <string.h>

constexpr size_t headBytes = 84, facetBytes = 50, normalBytes = 12, cornerBytes = 12;
constexpr size_t blockFacets = 1024;

// Records on their way to the file, too large for a small stack.
struct StlBlock
{
    FILE* file;
    size_t used; // records
    bool ok;
    uint8_t bytes[blockFacets * facetBytes];
};

static bool isWritten(const Mesh* mesh, int32_t f)
{
    return isSurface(mesh->faceAttributes[f]) && cornersAreVertices(mesh, mesh->faces[f], 3);
}

static bool isQuad(const Mesh* mesh, int32_t f)
{
    return mesh->faces[f][3] != noCorner;
}

int64_t stlTriangles(const Mesh* mesh)
{
    int64_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        count += isWritten(mesh, f) ? 1 + isQuad(mesh, f) : 0;
    return count;
}

static void flushBlock(StlBlock* block)
{
    block->ok = block->ok && fwrite(block->bytes, facetBytes, block->used, block->file) == block->used;
    block->used = 0;
}

// In double precision, so that small triangles far from the origin have normals, too.
static void normalOf(float* normal, const float* a, const float* b, const float* c)
{
    double u[3], v[3];
    for (int k = 0; k < 3; ++k)
    {
        u[k] = double{ b[k] } - double{ a[k] };
        v[k] = double{ c[k] } - double{ a[k] };
    }
    double n[3] = { u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0] };
    double length = sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    for (int k = 0; k < 3; ++k)
        normal[k] = length > 0 ? static_cast<float>(n[k] / length) : 0;
}

// The triangle of three corners of a face, from slot `first` on.
static void putTriangle(StlBlock* block, const Mesh* mesh, const Corners& corners, size_t first)
{
    const float* position[3];
    for (size_t k = 0; k < 3; ++k)
        position[k] = mesh->vertices[corners[(first + k) & 3]].position;
    float normal[3];
    normalOf(normal, position[0], position[1], position[2]);
    uint8_t* at = block->bytes + block->used * facetBytes;
    memcpy(at, normal, normalBytes);
    for (size_t k = 0; k < 3; ++k)
        memcpy(at + normalBytes + k * cornerBytes, position[k], cornerBytes);
    memset(at + normalBytes + 3 * cornerBytes, 0, 2);
    if (++block->used == blockFacets)
        flushBlock(block);
}

static bool writeStlBytes(StlBlock* block, const Mesh* mesh)
{
    auto count = static_cast<uint32_t>(stlTriangles(mesh)); // two for each face fit in 32 bits
    char head[headBytes] = "binary STL by Kestrelbox";      // must not begin with "solid"
    memcpy(head + headBytes - sizeof count, &count, sizeof count);
    block->ok = fwrite(head, sizeof head, 1, block->file) == 1;
    for (int32_t f = 0; f < mesh->faceCount && block->ok; ++f)
    {
        if (!isWritten(mesh, f))
            continue;
        const Corners& corners = mesh->faces[f];
        QuadCut cut = isQuad(mesh, f) ? cutOfQuad(mesh, corners) : QuadCut{ 0, 0 };
        putTriangle(block, mesh, corners, cut.first);
        if (isQuad(mesh, f))
            putTriangle(block, mesh, corners, cut.second);
    }
    flushBlock(block);
    return block->ok;
}

int WriteStlFile(const Mesh* mesh, const char* path)
{
    if (stlTriangles(mesh) == 0)
    {
        messageBox("File Error", "Error", iconNone);
        return 0;
    }
    auto* block = static_cast<StlBlock*>(workAlloc(sizeof(StlBlock)));
    OutputFile output;
    if (!block || !openOutput(&output, path))
    {
        workFree(block);
        return 0;
    }
    block->file = output.file;
    int whole = commitOutput(&output, writeStlBytes(block, mesh));
    workFree(block);
    return whole;
}
