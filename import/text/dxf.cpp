// import/text/dxf.cpp - DXF: pairs of lines, a group code and its value; a code 0 starts the next entity
#include "import/text/dxf.h"

#include "import/common/growth.h"
#include "import/common/plain_lines.h"
#include "import/common/sanitize.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/processor.h"
#include "tools/uvs.h"

#include <string.h>
#include <algorithm>

constexpr int32_t leastGrowth = 1024;
constexpr int64_t faceBytes = 128; // of a file for each face; hardly any file has less
constexpr int32_t firstPlaces = 4096;

// A code's place in DxfFace: 0 is the layer, 1 to 12 the coordinates, corner by corner.
constexpr int faceItems = 13;
constexpr uint32_t allFaceItems = (1u << faceItems) - 1;

static void keepCutLine(DxfSource* source)
{
    memcpy(source->cut, source->text, source->length);
    source->cut[source->length] = 0;
    source->text = source->cut;
}

// A position in the line that was read last.
static int64_t bytePosition(const DxfSource* source)
{
    return blockPosition(&source->blocks) - 1;
}

// Reads a line without the blanks in front, up to the first NUL, line feed or carriage return.
static bool nextDxfLine(DxfSource* source)
{
    BlockSource* blocks = &source->blocks;
    size_t available = holdBytes(blocks, dxfLineRoom - 1);
    if (available == 0)
        return false;
    const char* text = blocks->at;
    const char* limit = text + (available < dxfLineRoom - 1 ? available : dxfLineRoom - 1);
    while (text < limit && *text == ' ')
        ++text;
    const char* end = findTextEnd(text, limit);
    const char* next = end;
    if (end < limit && *end != '\n')
        next = static_cast<const char*>(memchr(end, '\n', static_cast<size_t>(limit - end)));
    readOnFrom(blocks, next && next < limit ? next + 1 : limit);
    source->text = text;
    source->length = static_cast<size_t>(end - text);
    if (end == limit) // the text goes on behind it, or the file ends
    {
        keepCutLine(source);
        note(source->report, linesTooLong, bytePosition(source), available >= dxfLineRoom - 1);
    }
    return true;
}

template <size_t room>
static bool lineIs(const DxfSource* source, const char (&text)[room])
{
    return source->length == room - 1 && memcmp(source->text, text, room - 1) == 0;
}

// The item that the code line stands for, or -1.
static int faceItem(const DxfSource* source)
{
    if (source->length == 1)
        return source->text[0] == '8' ? 0 : -1;
    if (source->length != 2)
        return -1;
    int axis = source->text[0] - '1', corner = source->text[1] - '0';
    return axis >= 0 && axis < 3 && corner >= 0 && corner < 4 ? 1 + corner * 3 + axis : -1;
}

static float readCoordinate(const DxfSource* source)
{
    const char* text = source->text;
    while (isSpaceInLine(*text))
        ++text;
    float value = 0;
    if (!scanFloatPadded(text, &value))
        note(source->report, numbersMissing, bytePosition(source));
    if (!SanitizeFloat(&value))
        note(source->report, valuesZeroed, bytePosition(source));
    return value;
}

// Passes a byte that is not a digit and stands where a sign might.
static void passDoubled(PlainLine* line)
{
    line->doubled &= line->doubled - 1;
    ++line->at;
}

// Passes what is left of a line end whose first byte has been passed.
static bool passLineEnd(PlainLine* line)
{
    const char* at = line->text + line->at;
    if (at[-1] == '\n')
        return true;
    if (at[-1] != '\r' || at[0] != '\n' || line->at > 63)
        return false;
    passDoubled(line);
    return true;
}

// The line of a code of two digits with at most two blanks before it, and that of its value, a plain number.
static bool takeCoordinate(PlainLine* line, uint16_t code, PlainNumber* value)
{
    constexpr uint64_t longest = 4 + 2 + 17 + 2; // both lines with CR LF
    if (line->at > 64 - longest)
    {
        if (!signsAreInPlace(*line))
            return false;
        *line = startPlainLine(line->text + line->at);
    }
    for (int blanks = 0; blanks < 2 && line->text[line->at] == ' '; ++blanks)
        passDoubled(line);
    uint16_t found;
    memcpy(&found, line->text + line->at, sizeof found);
    uint64_t end;
    if (found != code || !takeLowest(&line->ends, &end) || end != line->at + 2)
        return false;
    line->at = end + 1;
    return passLineEnd(line) && takePlainNumber(line, value) && passLineEnd(line);
}

// The three coordinates of a corner as nearly all files have them: one after the other, each as a plain number. Returns
// false, with nothing read, for any others.
static bool takePlainCorner(DxfSource* source, DxfFace* face, int corner)
{
    constexpr size_t longest = 3 * 64 + plainLineRoom;
    BlockSource* blocks = &source->blocks;
    if (!source->plainLines || holdBytes(blocks, longest) < longest)
        return false;
    PlainLine line = startPlainLine(blocks->at);
    auto code = static_cast<uint16_t>('1' | ('0' + corner) << 8); // little-endian
    PlainNumber x, y, z;
    if (!takeCoordinate(&line, code, &x) || !takeCoordinate(&line, static_cast<uint16_t>(code + 1), &y) ||
        !takeCoordinate(&line, static_cast<uint16_t>(code + 2), &z) || !signsAreInPlace(line))
        return false;
    FourFloats position;
    if (!coordinatesOf(closeToNumbers(x, y), closeToNumbers(z, z), &position))
        return false;
    storeThree(face->corners[corner], position);
    readOnFrom(blocks, line.text + line.at);
    return true;
}

// Takes the corners of which nothing has been read, as long as they come in order.
static void takePlainCorners(DxfSource* source, DxfFace* face)
{
    for (int corner = 0; corner < 4; ++corner)
    {
        uint32_t items = 7u << (1 + 3 * corner);
        if (face->seen & items)
            continue;
        if (!takePlainCorner(source, face, corner))
            return;
        face->seen |= items;
    }
}

static bool sameCorner(const float (&a)[3], const float (&b)[3])
{
    return a[0] == b[0] && a[1] == b[1] && a[2] == b[2];
}

int ReadDxfFace(DxfSource* source, DxfFace* face)
{
    *face = {};
    bool colourSeen = false;
    for (;;)
    {
        if (!nextDxfLine(source))
            return 0;
        int item = faceItem(source);
        bool wanted = item >= 0 && !(face->seen & 1u << item);
        bool colour = !wanted && !colourSeen && lineIs(source, "62");
        if (!wanted && !colour)
            break;
        if (!nextDxfLine(source))
            return 0;
        colourSeen |= colour;
        if (wanted)
            face->seen |= 1u << item;
        if (item > 0)
            face->corners[(item - 1) / 3][(item - 1) % 3] = readCoordinate(source);
        else
            takePlainCorners(source, face);
    }
    // Anything else between, such as handles, subclass markers or edge flags, makes it another kind of entity.
    if (!lineIs(source, "0") || face->seen != allFaceItems)
        return -1;
    return sameCorner(face->corners[3], face->corners[2]) ? 3 : 4;
}

// The place of the vertex with these coordinates, or the free place where it would go.
static int32_t* findPlace(const DxfWelder* welder, const Mesh* mesh, const float (&position)[3])
{
    uint32_t mask = static_cast<uint32_t>(welder->placeCount) - 1;
    uint32_t place = hashPosition(*welder->seed, position) & mask;
    while (welder->places[place] && !sameCorner(mesh->vertices[welder->places[place] - 1].position, position))
        place = (place + 1) & mask;
    return &welder->places[place];
}

static bool growWelder(DxfWelder* welder, const Mesh* mesh)
{
    if (welder->placeCount > INT32_MAX / 2)
        return reportOutOfMemory() != 0;
    DxfWelder grown = *welder;
    grown.seed = &hashSeed();
    grown.placeCount = welder->placeCount ? welder->placeCount * 2 : firstPlaces;
    while (grown.placeCount / 2 < mesh->vertexCapacity && grown.placeCount <= INT32_MAX / 2)
        grown.placeCount *= 2;
    grown.places = static_cast<int32_t*>(workAlloc(blockSize(grown.placeCount, sizeof(int32_t))));
    if (!grown.places)
        return false;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        int32_t* place = findPlace(&grown, mesh, mesh->vertices[i].position);
        if (*place == 0) // of equal ones the first
            *place = i + 1;
    }
    freeDxfWelder(welder);
    *welder = grown;
    return true;
}

int32_t WeldDxfVertex(DxfWelder* welder, Mesh* mesh, float x, float y, float z)
{
    while (mesh->vertexCount >= welder->placeCount / 2)
    {
        if (!growWelder(welder, mesh))
            return -1;
    }
    const float position[3] = { x, y, z };
    int32_t* place = findPlace(welder, mesh, position);
    if (*place)
        return *place - 1;
    int32_t index = mesh->vertexCount;
    if (!growVertices(mesh, growthFor(mesh->vertexCapacity, int64_t{ index } + 1, leastGrowth), grownUncleared))
        return -1;
    memcpy(mesh->vertices[index].position, position, sizeof position);
    mesh->vertices[index].colour = opaqueWhite;
    clearNormal(&mesh->vertices[index]);
    *place = ++mesh->vertexCount;
    return index;
}

void freeDxfWelder(DxfWelder* welder)
{
    workFree(welder->places);
    *welder = {};
}

static bool storeFace(Mesh* mesh, DxfWelder* welder, const DxfFace& face, int cornerTotal)
{
    if (!growFaces(mesh, growthFor(mesh->faceCapacity, int64_t{ mesh->faceCount } + 1, leastGrowth), grownUncleared))
        return false;
    Corners corners = { noCorner, noCorner, noCorner, noCorner }, coords = {};
    for (int k = 0; k < cornerTotal; ++k)
    {
        const float* corner = face.corners[k];
        int32_t vertex = WeldDxfVertex(welder, mesh, corner[0], corner[1], corner[2]);
        if (vertex < 0)
            return false;
        corners[static_cast<size_t>(k)] = coords[static_cast<size_t>(k)] = static_cast<uint32_t>(vertex);
    }
    mesh->faces[mesh->faceCount] = corners;
    mesh->faceUvs[mesh->faceCount] = coords;
    mesh->faceAttributes[mesh->faceCount] = 0;
    ++mesh->faceCount;
    return true;
}

// What is known about the names of entities, for the report.
struct DxfNames
{
    bool inEntities = true;  // in the section of entities or blocks, or before the first section
    bool zeroBefore = false; // the last name was a 0: the 0 before it was a value, and the name follows
    bool whole = false;      // the file says where it ends
};

// Sees a name, which is not that of a plain 3DFACE. Other texts may follow a 0, too; and what the file's structure
// consists of is no loss.
static void seeName(const DxfSource* source, DxfNames* names)
{
    static constexpr const char* structure[] = { "SECTION", "ENDSEC", "BLOCK", "ENDBLK", "SEQEND", "EOF" };
    auto isNamed = [source](const char* name)
    { return source->length == strlen(name) && memcmp(source->text, name, source->length) == 0; };
    names->whole |= lineIs(source, "EOF");
    names->zeroBefore = lineIs(source, "0");
    bool isName =
        source->length > 0 && ((source->text[0] >= 'A' && source->text[0] <= 'Z') || lineIs(source, "3DSOLID"));
    static constexpr char shifted[] = "3DFACE after a value of 0"; // a line is missing or too many
    if (lineIs(source, "3DFACE"))
        noteName(source->report, entitiesIgnored, bytePosition(source), shifted, sizeof shifted - 1);
    else if (names->inEntities && isName && std::none_of(std::begin(structure), std::end(structure), isNamed))
        noteName(source->report, entitiesIgnored, bytePosition(source), source->text, source->length);
}

static bool nameHoldsEntities(const DxfSource* source)
{
    return lineIs(source, "ENTITIES") || lineIs(source, "BLOCKS");
}

static bool nameHoldsNoEntities(const DxfSource* source)
{
    return lineIs(source, "HEADER") || lineIs(source, "CLASSES") || lineIs(source, "TABLES") ||
           lineIs(source, "OBJECTS") || lineIs(source, "THUMBNAILIMAGE");
}

// Reads entity after entity. A file that ends early is read up to its end. Returns false only when memory
// runs out.
static bool readEntities(DxfSource* source, Mesh* mesh, DxfWelder* welder)
{
    bool lineWaits = false; // the line that ended a face has not been examined
    DxfNames names;
    while (lineWaits || nextDxfLine(source))
    {
        lineWaits = false;
        if (names.zeroBefore)
            seeName(source, &names);
        if (lineIs(source, "2")) // a name, which could look like a code
        {
            if (!nextDxfLine(source))
                break;
            names.inEntities = nameHoldsEntities(source) || (names.inEntities && !nameHoldsNoEntities(source));
            continue;
        }
        if (!lineIs(source, "0"))
            continue;
        if (!nextDxfLine(source))
            break;
        if (!lineIs(source, "3DFACE"))
        {
            seeName(source, &names);
            if (lineIs(source, "EOF"))
                break;
            continue;
        }
        DxfFace face;
        int cornerTotal = ReadDxfFace(source, &face);
        if (cornerTotal == 0)
            break;
        if (cornerTotal > 0 && !storeFace(mesh, welder, face, cornerTotal))
            return false;
        static constexpr char notPlain[] = "3DFACE that is not plain";
        if (cornerTotal < 0) // the line says why
            noteName(source->report, entitiesIgnored, bytePosition(source), notPlain, sizeof notPlain - 1);
        lineWaits = true;
    }
    if (!names.whole)
        noteDetail(source->report, readingEndedEarly, source->blocks.sizeBytes, "the file ends without EOF");
    mesh->liveFaceCount = mesh->faceCount;
    mesh->lineCount = 0;
    return true;
}

// Vertices and faces alike: a net of quads has as many of both, and pages that nothing is written to cost nothing.
static int32_t expectedFaces(const DxfSource* source)
{
    return static_cast<int32_t>(std::clamp<int64_t>(source->blocks.sizeBytes / faceBytes, leastGrowth, INT32_MAX));
}

static bool readDxf(DxfSource* source, FILE* file, Mesh* mesh, Report* report)
{
    source->report = report;
    if (report)
        report->isText = true;
    startBlocks(&source->blocks, file);
    source->plainLines = kernelLevel() >= kernelsWords;
    DxfWelder welder = {};
    int32_t expected = expectedFaces(source);
    bool ok = growVertices(mesh, expected, grownUncleared) && growUvs(mesh, leastGrowth) &&
              growFaces(mesh, expected, grownUncleared) && readEntities(source, mesh, &welder);
    freeDxfWelder(&welder);
    return ok;
}

static int failUnreadable()
{
    messageBox("Unable to read file", "Error", iconNone);
    return 0;
}

int LoadDxfFile(Mesh* mesh, const char* path, Report* report)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    auto* source = static_cast<DxfSource*>(workAlloc(sizeof(DxfSource)));
    bool ok = source && readDxf(source, file, mesh, report);
    workFree(source);
    fclose(file);
    if (!ok)
        return failUnreadable();
    if (mesh->vertexCount == 0 || mesh->faceCount == 0)
    {
        failForLackOf(report, "no 3DFACE entity that is plain");
        messageBox("Error: failed to open, only 3DFACE supported", path, iconStop);
        return 0;
    }
    addFaceNormals(mesh, 0, mesh->faceCount);
    finishNormals(mesh);
    computeBounds(mesh);
    return generateUvs(mesh) ? 1 : failUnreadable();
}
