// import/threeds/chunks.cpp - chunk headers, children, names
#include "import/threeds/threeds.h"

#include "import/threeds/parts.h"
#include "platform/boxes.h"

#include <stdio.h>
#include <algorithm>

int readChunkHeader(ThreeDsReadContext* context, Chunk* chunk)
{
    int64_t start = bytePosition(&context->cursor);
    chunk->id = takeNumber<uint16_t>(&context->cursor);
    chunk->length = takeNumber<uint32_t>(&context->cursor);
    chunk->end = start + chunk->length;
    return !context->cursor.bad;
}

static int64_t notedPastParent(const Report* report)
{
    return report ? report->entries[chunksPastParent].count + report->entries[chunksTooShort].count : 0;
}

int readChildren(ThreeDsReadContext* context, const Chunk& parent, EmptyChild emptyChild,
                 int (*readChild)(ThreeDsReadContext* context, const Chunk& child))
{
    while (bytePosition(&context->cursor) < parent.end)
    {
        Chunk child;
        int64_t byte = bytePosition(&context->cursor);
        if (!readChunkHeader(context, &child)) // the chunk before may end past the file
            return failReading(context->report, std::min(byte, context->cursor.blocks.sizeBytes),
                               "the file ends inside chunk %04X", parent.id);
        if (child.length == 0 && emptyChild == emptyChildEndsSection)
        {
            noteDetail(context->report, readingEndedEarly, byte, "a chunk of length 0 ends chunk %04X", parent.id);
            return 1;
        }
        if (child.length == 0)
            return failReading(context->report, byte, "a chunk of length 0 in chunk %04X", parent.id);
        note(context->report, chunksPastParent, byte, child.end > parent.end);
        int64_t pastBefore = notedPastParent(context->report);
        if (!readChild(context, child))
            return failReading(context->report, byte, "chunk %04X of %u bytes does not hold what it should", child.id,
                               child.length);
        if (bytePosition(&context->cursor) > child.end && notedPastParent(context->report) == pastBefore)
            note(context->report, chunksTooShort, byte);
        seekBytes(&context->cursor, child.end);
        if (context->cursor.bad)
            return failReading(context->report, byte, "the chunks go back too often, with %04X", child.id);
    }
    return 1;
}

int readChunkName(ThreeDsReadContext* context, char (&name)[nameRoom])
{
    memset(name, 0, sizeof name);
    for (int32_t length = 0; length <= chunkNameLength; ++length)
    {
        char c = takeNumber<char>(&context->cursor);
        if (context->cursor.bad)
            return 0;
        if (c == 0)
            return 1;
        if (length < chunkNameLength)
            name[length] = c == '#' || c == ' ' ? '_' : c;
    }
    return 0;
}

struct ChunkName
{
    uint16_t id;
    const char* name;
};

// clang-format off
static constexpr ChunkName chunkNames[] = {
    { 0x0010, "COLOR_F" }, { 0x0011, "COLOR_24" }, { 0x0030, "PERCENTAGE_INT" }, { 0x0031, "PERCENTAGE_FLOAT" },
    { 0x3D3D, "EDIT3DS" }, { 0x4000, "EDIT_OBJECT" }, { 0x4100, "OBJ_TRIMESH" }, { 0x4110, "TRI_VERTEX" },
    { 0x4120, "TRI_FACES" }, { 0x4130, "TRI_FACEMAT" }, { 0x4140, "TRI_MAPPINGCOORDS" }, { 0x4160, "TRI_MATRIX" },
    { 0x4D4D, "MAIN3DS" }, { 0xA000, "MAT_NAME" }, { 0xA010, "MAT_AMBIENT" }, { 0xA020, "MAT_DIFFUSE" },
    { 0xA030, "MAT_SPECULAR" }, { 0xA040, "MAT_SHININESS" }, { 0xA041, "MAT_SHIN2PCT" },
    { 0xA050, "MAT_TRANSPARENCY" }, { 0xA052, "MAT_XPFAIL" }, { 0xA053, "MAT_REFBLUR" }, { 0xA081, "MAT_TWO_SIDE" },
    { 0xA084, "MAT_SELF_ILPCT" }, { 0xA087, "MAT_WIRESIZE" }, { 0xA08C, "MAT_PHONGSOFT" }, { 0xA08E, "MAT_WIREABS" },
    { 0xA100, "MAT_SHADING" }, { 0xA200, "MAT_TEXMAP" }, { 0xA220, "MAT_REFLMAP" }, { 0xA230, "MAT_BUMPMAP" },
    { 0xA250, "MAT_USE_REFBLUR" }, { 0xA300, "MAT_MAPNAME" }, { 0xA33A, "MAT_TEX2MAP" }, { 0xA33E, "MAT_TEXMASK" },
    { 0xAFFF, "EDIT_MATERIAL" }, { 0xB000, "KFDATA" }, { 0xB002, "OBJECT_NODE" }, { 0xB010, "NODE_HDR" },
    { 0xB013, "PIVOT" },
};
// clang-format on

void ShowChunkName(uint16_t id, const char* title)
{
    char unknown[32];
    const char* text = unknown;
    snprintf(unknown, sizeof unknown, "Unknown chunk %04X", id);
    for (const ChunkName& chunk : chunkNames)
    {
        if (chunk.id == id)
            text = chunk.name;
    }
    messageBox(text, title, iconNone);
}
