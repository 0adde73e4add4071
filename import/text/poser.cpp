// import/text/poser.cpp - Poser files: nested blocks in braces, a keyword and its values on a line
#include "import/text/poser.h"

#include "import/common/corners.h"
#include "import/common/growth.h"
#include "import/common/names.h"
#include "import/common/numbers.h"
#include "import/common/sanitize.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <string.h>
#include <algorithm>

constexpr int32_t spareVertices = 256; // more than a block announces; also for texture coordinates
constexpr int32_t spareFaces = 1024;

// The shortest lines of each kind: "v 0 0 0", "vt 0 0", "f 1 2 3", each with a line end.
constexpr int64_t shortestVertexBytes = 8;
constexpr int64_t shortestUvBytes = 7;
constexpr int64_t shortestFaceBytes = 8;

struct PoserReader
{
    PoserSource source;
    Mesh* mesh;
    NameTable groups;
    NameTable materials;
    int64_t vertexLimit; // vertices announced so far, with their spares; a file with more is refused
    int64_t uvLimit;
    Report* report; // null: none
};

// A geometry block while it is read; when it ends, it is added to the mesh.
struct PoserBlock
{
    int32_t firstVertex, firstUv; // the block's indices count from these
    int32_t vertexCount, uvCount; // of the block alone
    int32_t faceCount;            // of the mesh
    int32_t liveFaceCount, lineCount;
    uint32_t group, material; // current
};

// A position in the line of the token, for the report.
static int64_t tokenByte(const PoserReader* reader)
{
    return blockPosition(&reader->source.blocks) - 1;
}

// Skips bytes up to one that must not be skipped. Returns false at the end of the file.
template <typename Skipped>
static bool skipWhile(BlockSource* blocks, Skipped skipped)
{
    while (holdBytes(blocks, 1))
    {
        if (!skipped(*blocks->at))
            return true;
        ++blocks->at;
    }
    return false;
}

// Takes the word at the cursor and the byte that ends it; *last receives that byte. Returns false when the word does
// not end.
static bool takeWord(PoserSource* source, char* last)
{
    BlockSource* blocks = &source->blocks;
    size_t available = holdBytes(blocks, poserTextRoom);
    const char* at = blocks->at;
    for (size_t length = 0; length < poserTextRoom && length < available; ++length)
    {
        char c = at[length];
        if (isBlankOrLineEnd(c))
        {
            source->word[length] = 0;
            blocks->at += length + 1;
            *last = c;
            return true;
        }
        source->word[length] = c;
    }
    return false;
}

// Takes the rest of the line and its line end, which the terminator replaces.
static bool takeRest(PoserSource* source)
{
    BlockSource* blocks = &source->blocks;
    size_t available = holdBytes(blocks, poserTextRoom);
    char* at = blocks->at;
    for (size_t length = 0; length < poserTextRoom && length < available; ++length)
    {
        if (!isLineEnd(at[length]))
            continue;
        at[length] = 0;
        source->rest = at;
        blocks->at += length + 1;
        return true;
    }
    return false;
}

// Skips blanks, line ends and comments. Returns false at the end of the file, and also when the last byte could begin a
// comment.
static bool skipToToken(BlockSource* blocks)
{
    for (;;)
    {
        if (!skipWhile(blocks, isBlankOrLineEnd))
            return false;
        if (*blocks->at == '{' || *blocks->at == '}')
            return true;
        if (holdBytes(blocks, 2) < 2)
            return false;
        if (blocks->at[0] != '/' || blocks->at[1] != '/')
            return true;
        skipWhile(blocks, [](char c) { return !isLineEnd(c); });
    }
}

int NextPoserToken(PoserSource* source)
{
    BlockSource* blocks = &source->blocks;
    source->rest = source->word + poserTextRoom - 1; // an empty rest, for a token without one
    *source->rest = 0;
    if (!skipToToken(blocks))
        return 0;
    if (*blocks->at == '{' || *blocks->at == '}')
    {
        source->word[0] = *blocks->at++;
        source->word[1] = 0;
        return 1;
    }
    char last;
    if (!takeWord(source, &last))
        return 0;
    if (isLineEnd(last))
        return 1;
    if (!skipWhile(blocks, isBlank))
        return 0;
    return isLineEnd(*blocks->at) || takeRest(source);
}

static bool wordIs(const PoserSource* source, const char* word)
{
    return strcmp(source->word, word) == 0;
}

static bool wordIs(const PoserSource* source, char word)
{
    return source->word[0] == word && source->word[1] == 0;
}

int SkipPoserBlock(PoserSource* source)
{
    for (int64_t depth = 1; depth > 0;)
    {
        if (!NextPoserToken(source))
            return 0;
        depth += wordIs(source, '{') - wordIs(source, '}');
    }
    return 1;
}

// Reads up to the '{' that opens a block. Anything before it is ignored, except a '}'.
static int enterBlock(PoserSource* source)
{
    while (NextPoserToken(source))
    {
        if (wordIs(source, '{'))
            return 1;
        if (wordIs(source, '}'))
            return 0;
    }
    return 0;
}

size_t PoserName(char* text)
{
    size_t length = 0;
    while (length < nameRoom - 1 && text[length] && !isBlank(text[length]) && text[length] != ':')
        ++length;
    text[length] = 0;
    return length;
}

char* PoserMapName(char* text)
{
    char* end = text + strlen(text);
    while (end > text && isBlank(end[-1]))
        --end;
    if (end > text && end[-1] == '"')
        --end;
    *end = 0;
    char* name = end;
    while (name > text && name[-1] != ':' && name[-1] != '"' && name[-1] != '\\')
        --name;
    if (strcmp(name, "NO_MAP") == 0)
        *name = 0;
    return name;
}

// How many lines of at least so many bytes the file can still hold.
static int64_t linesLeft(const PoserReader* reader, int64_t shortestBytes)
{
    const BlockSource& blocks = reader->source.blocks;
    return (blocks.sizeBytes - blockPosition(&blocks)) / shortestBytes + 1;
}

// The file may contain everything it announces, but memory is taken only for as many lines as it can hold.
static int announceVertices(PoserReader* reader, const PoserBlock* block, int32_t count)
{
    reader->vertexLimit += int64_t{ count } + spareVertices;
    int64_t used = int64_t{ block->firstVertex } + block->vertexCount;
    int64_t needed = std::min(reader->vertexLimit, used + linesLeft(reader, shortestVertexBytes));
    return growVertices(reader->mesh, growthFor(reader->mesh->vertexCapacity, needed, 0));
}

static int announceUvs(PoserReader* reader, const PoserBlock* block, int32_t count)
{
    if (count < 1)
        return 1;
    reader->uvLimit += int64_t{ count } + spareVertices;
    int64_t used = int64_t{ block->firstUv } + block->uvCount;
    int64_t needed = std::min(reader->uvLimit, used + linesLeft(reader, shortestUvBytes));
    return growUvs(reader->mesh, growthFor(reader->mesh->uvCapacity, needed, 0));
}

static int announceFaces(PoserReader* reader, const PoserBlock* block, int32_t count)
{
    if (count < 0)
        return 1;
    int64_t more = std::min(int64_t{ count }, linesLeft(reader, shortestFaceBytes));
    return growFaces(reader->mesh, growthFor(reader->mesh->faceCapacity, block->faceCount + more + spareFaces, 0));
}

// Like scanFloats, for the rest of a line, which is padded.
static int scanRest(const char* rest, float* values, int count)
{
    int found = 0;
    for (; found < count; ++found)
    {
        while (isSpace(*rest))
            ++rest;
        rest = scanFloatPadded(rest, &values[found]);
        if (!rest)
            break;
    }
    return found;
}

static int readVertex(PoserReader* reader, PoserBlock* block)
{
    float position[3];
    if (scanRest(reader->source.rest, position, 3) < 3)
        return failReading(reader->report, tokenByte(reader), "a vertex with fewer than 3 numbers");
    Mesh* mesh = reader->mesh;
    int32_t index = block->firstVertex + block->vertexCount;
    if (index >= reader->vertexLimit || index >= mesh->vertexCapacity)
        return failReading(reader->report, tokenByte(reader), "more vertices than numbVerts announces");
    note(reader->report, valuesZeroed, tokenByte(reader), !sanitizeTogether(position));
    memcpy(mesh->vertices[index].position, position, sizeof position);
    mesh->vertices[index].colour = opaqueWhite;
    ++block->vertexCount;
    return 1;
}

static int readUv(PoserReader* reader, PoserBlock* block)
{
    float uv[2];
    if (scanRest(reader->source.rest, uv, 2) < 2)
        return failReading(reader->report, tokenByte(reader), "a texture coordinate with fewer than 2 numbers");
    Mesh* mesh = reader->mesh;
    int32_t index = block->firstUv + block->uvCount;
    if (index >= reader->uvLimit || index >= mesh->uvCapacity)
        return failReading(reader->report, tokenByte(reader), "more texture coordinates than numbTVerts announces");
    note(reader->report, valuesZeroed, tokenByte(reader), !sanitizeTogether(uv));
    mesh->uvs[index] = { uv[0], uv[1] };
    ++block->uvCount;
    return 1;
}

// Ignores a statement that has a bad corner or fewer corners than it needs. Returns 0 only when memory runs out.
static int readElement(PoserReader* reader, PoserBlock* block, bool polyline)
{
    int32_t vertices[cornerLimit], uvs[cornerLimit];
    CornerFindings findings;
    int count =
        parseFaceCornersPadded(reader->source.rest, block->vertexCount, block->uvCount, vertices, uvs, &findings);
    int least = polyline ? 2 : 3;
    noteCorners(reader->report, tokenByte(reader), findings, count, least);
    if (count < least)
        return 1;
    int32_t records = polyline ? polylineRecords(count) : polygonRecords(count);
    Mesh* mesh = reader->mesh;
    if (!growFaces(mesh, growthFor(mesh->faceCapacity, int64_t{ block->faceCount } + records, spareFaces)))
        return 0;
    CornerList corners = { vertices, uvs, count, block->firstVertex - 1, block->firstUv - 1 };
    uint32_t attributes = block->material | block->group << faceGroupShift;
    if (polyline)
    {
        storePolyline(mesh, block->faceCount, corners, attributes);
        ++block->lineCount;
    }
    else
    {
        storePolygon(mesh, block->faceCount, corners, attributes);
        if (count != 3) // the panel shows this count as polygons; triangles are not counted in this format
            block->liveFaceCount += records;
    }
    block->faceCount += records;
    return 1;
}

// Whether PoserName cuts the name for its length.
static bool isPoserNameCut(const char* text)
{
    return strcspn(text, " \t:") >= nameRoom;
}

static void chooseName(PoserReader* reader, NameTable* table, int32_t* meshCount, uint32_t* current)
{
    bool cut = isPoserNameCut(reader->source.rest);
    if (PoserName(reader->source.rest) == 0)
        return;
    int32_t before = table->count, index = findOrAddName(table, reader->source.rest);
    if (index >= 0)
        *current = static_cast<uint32_t>(index);
    else
        note(reader->report, table == &reader->groups ? groupsPastLimit : materialsPastLimit, tokenByte(reader));
    note(reader->report, namesCut, tokenByte(reader), cut && table->count > before);
    *meshCount = table->count;
}

static int finishGeometry(Mesh* mesh, const PoserBlock& block)
{
    mesh->faceCount = block.faceCount;
    mesh->vertexCount = block.firstVertex + block.vertexCount;
    mesh->uvCount = block.firstUv + block.uvCount;
    mesh->liveFaceCount += block.liveFaceCount;
    mesh->lineCount += block.lineCount;
    return 1;
}

// Reads one of the three counts. Returns 0 for a bad count or when memory runs out.
static int readCount(PoserReader* reader, const PoserBlock* block,
                     int (*announce)(PoserReader*, const PoserBlock*, int32_t))
{
    int32_t count;
    if (scanInts(reader->source.rest, &count, 1) < 1)
        return failReading(reader->report, tokenByte(reader), "%s without a number", reader->source.word);
    return announce(reader, block, count);
}

static int readGeometryLine(PoserReader* reader, PoserBlock* block)
{
    PoserSource* source = &reader->source;
    if (wordIs(source, 'v'))
        return readVertex(reader, block);
    if (wordIs(source, 'f'))
        return readElement(reader, block, false);
    if (wordIs(source, "vt"))
        return readUv(reader, block);
    if (wordIs(source, 'l'))
        return readElement(reader, block, true);
    if (wordIs(source, '{'))
        return SkipPoserBlock(source);
    if (wordIs(source, 'g'))
        chooseName(reader, &reader->groups, &reader->mesh->groupCount, &block->group);
    else if (wordIs(source, "usemtl"))
        chooseName(reader, &reader->materials, &reader->mesh->materialCount, &block->material);
    else if (wordIs(source, "numbVerts"))
        return readCount(reader, block, announceVertices);
    else if (wordIs(source, "numbTVerts"))
        return readCount(reader, block, announceUvs);
    else if (wordIs(source, "numbElems"))
        return readCount(reader, block, announceFaces);
    return 1;
}

// With a vertex count below 1 a block has no geometry, whatever it had before.
static bool announcesNothing(const PoserSource* source)
{
    int32_t count;
    return wordIs(source, "numbVerts") && scanInts(source->rest, &count, 1) == 1 && count < 1;
}

static int readGeometry(PoserReader* reader)
{
    const Mesh* mesh = reader->mesh;
    PoserBlock block = { mesh->vertexCount, mesh->uvCount, 0, 0, mesh->faceCount, 0, 0, 0, 0 };
    if (!enterBlock(&reader->source))
        return 0;
    while (NextPoserToken(&reader->source))
    {
        if (wordIs(&reader->source, '}'))
            return finishGeometry(reader->mesh, block);
        if (announcesNothing(&reader->source))
            return SkipPoserBlock(&reader->source);
        if (!readGeometryLine(reader, &block))
            return 0;
    }
    return 0;
}

// Reads numbers; a bad one becomes 0. Returns 0 when there are fewer than wanted.
static int readGoodFloats(PoserReader* reader, float* values, int count)
{
    if (scanFloats(reader->source.rest, values, count) < count)
        return failReading(reader->report, tokenByte(reader), "%s with fewer than %d numbers", reader->source.word,
                           count);
    for (int i = 0; i < count; ++i)
        note(reader->report, valuesZeroed, tokenByte(reader), !SanitizeFloat(&values[i]));
    return 1;
}

// Reads a colour and a fourth number that scales it.
static int readColour(PoserReader* reader, float (&colour)[3], float* level)
{
    float values[4];
    if (!readGoodFloats(reader, values, 4))
        return 0;
    for (int i = 0; i < 3; ++i)
        colour[i] = values[i] * values[3];
    *level = 1;
    return 1;
}

// Copies a texture's name into its slot.
static void readMapName(PoserReader* reader, char (&slot)[nameRoom])
{
    const char* name = PoserMapName(reader->source.rest);
    note(reader->report, namesCut, tokenByte(reader), strlen(name) >= nameRoom);
    copyName(slot, name);
}

static int readMaterialLine(PoserReader* reader, int32_t index)
{
    PoserSource* source = &reader->source;
    Mesh* mesh = reader->mesh;
    Material* material = &mesh->materials[index];
    float value;
    if (wordIs(source, "KdColor"))
    {
        material->shadingMode = 1;
        return readColour(reader, material->diffuse, &material->diffuseLevel);
    }
    if (wordIs(source, "KaColor"))
        return readColour(reader, material->ambient, &material->ambientLevel);
    if (wordIs(source, "KsColor"))
    {
        material->shininess = 10; // an NsExponent counts only if it follows this line
        return readColour(reader, material->specular, &material->specularLevel);
    }
    if (wordIs(source, "NsExponent"))
    {
        if (!readGoodFloats(reader, &value, 1))
            return 0;
        material->shininess = static_cast<int32_t>(value);
    }
    else if (wordIs(source, "tMax"))
    {
        if (!readGoodFloats(reader, &value, 1))
            return 0;
        material->transparency = value < 0.01f ? 0 : value > 1 ? 1 : value;
    }
    else if (wordIs(source, "textureMap"))
        readMapName(reader, mesh->textureNames[index]);
    else if (wordIs(source, "transparencyMap"))
        readMapName(reader, mesh->opacityNames[index]);
    else if (wordIs(source, '{'))
        return SkipPoserBlock(source);
    return 1;
}

// Only materials that faces use are read; the others in the file are skipped.
static int readMaterial(PoserReader* reader)
{
    PoserSource* source = &reader->source;
    int32_t index = PoserName(source->rest) > 0 ? findName(&reader->materials, source->rest) : -1;
    if (index < 0)
        return NextPoserToken(source) && wordIs(source, '{') && SkipPoserBlock(source);
    if (!enterBlock(source))
        return 0;
    while (NextPoserToken(source))
    {
        if (wordIs(source, '}'))
            return 1;
        if (!readMaterialLine(reader, index))
            return 0;
    }
    return 0;
}

// Figures keep their geometry in an OBJ file of its own, which is not read.
static void noteOtherFile(PoserReader* reader)
{
    const PoserSource* source = &reader->source;
    if (wordIs(source, "figureResFile") || wordIs(source, "objFileGeom"))
        noteDetail(reader->report, geometryElsewhere, tokenByte(reader), "%s %.80s", source->word, source->rest);
}

static int readObject(PoserReader* reader)
{
    PoserSource* source = &reader->source;
    if (PoserName(source->rest) > 0)
        copyName(reader->mesh->name, source->rest);
    if (!enterBlock(source))
        return 0;
    while (NextPoserToken(source))
    {
        int ok = 1;
        if (wordIs(source, '}'))
            return 1;
        if (wordIs(source, "geomCustom"))
            ok = readGeometry(reader);
        else if (wordIs(source, "material"))
            ok = readMaterial(reader);
        else if (wordIs(source, '{'))
            ok = SkipPoserBlock(source);
        else
            noteOtherFile(reader);
        if (!ok)
            return 0;
    }
    return 0;
}

static bool opensObject(const PoserSource* source)
{
    return wordIs(source, "actor") || wordIs(source, "prop") || wordIs(source, "figure") || wordIs(source, "hairProp");
}

// Reads the file's one outer block and ignores what follows it.
static int readObjects(PoserReader* reader)
{
    PoserSource* source = &reader->source;
    if (source->blocks.sizeBytes < 0 || !enterBlock(source))
        return 0;
    while (NextPoserToken(source))
    {
        int ok = 1;
        if (wordIs(source, '}'))
            return 1;
        if (opensObject(source))
            ok = readObject(reader);
        else if (wordIs(source, '{'))
            ok = SkipPoserBlock(source);
        else
            noteOtherFile(reader);
        if (!ok)
            return 0;
    }
    return 0;
}

// Every failure without a reason of its own is an end of the file, or a text that is too long, inside a block.
static int readFile(PoserReader* reader, FILE* file, Mesh* mesh)
{
    startBlocks(&reader->source.blocks, file);
    reader->mesh = mesh;
    startNames(&reader->groups, mesh->groupNames);
    startNames(&reader->materials, mesh->materialNames);
    reader->vertexLimit = reader->uvLimit = 0;
    mesh->lineCount = mesh->liveFaceCount = mesh->faceCount = 0;
    if (readObjects(reader))
        return 1;
    const BlockSource& blocks = reader->source.blocks;
    bool atEnd = blockPosition(&blocks) + static_cast<int64_t>(poserTextRoom) > blocks.sizeBytes;
    return failReading(reader->report, tokenByte(reader),
                       atEnd ? "the file ends inside a block" : "a word or line of more than %d bytes",
                       static_cast<int>(poserTextRoom - 1));
}

// Faces of a block without texture coordinates point to the first one of the next block, which may be missing.
static int finishUvs(Mesh* mesh, Report* report)
{
    if (mesh->uvCount == 0)
        return resetUvs(mesh);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        for (uint32_t& uv : mesh->faceUvs[f])
        {
            if (uv < static_cast<uint32_t>(mesh->uvCount))
                continue;
            uv = 0;
            note(report, uvIndicesReset, -1);
        }
    }
    return 1;
}

int LoadPoserFile(Mesh* mesh, const char* path, Report* report, bool normals)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    const char* failure = "Unable to read file";
    auto* reader = static_cast<PoserReader*>(workAlloc(sizeof(PoserReader)));
    if (reader)
        reader->report = report;
    if (report)
        report->isText = true;
    int ok = reader && readFile(reader, file, mesh);
    workFree(reader);
    fclose(file);
    if (ok && mesh->vertexCount == 0)
    {
        failure = "No internal geometry";
        failForLackOf(report, "no geometry in the file itself");
        ok = 0;
    }
    if (ok)
    {
        if (normals)
            computeNormals(mesh);
        computeBounds(mesh);
        ok = finishUvs(mesh, report);
    }
    if (!ok)
        messageBox(failure, "Error", iconNone);
    return ok;
}
