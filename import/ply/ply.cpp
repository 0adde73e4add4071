// import/ply/ply.cpp - reading the elements of a PLY file: vertices, faces, triangle strips
#include "import/ply/ply.h"

#include "import/common/corners.h"
#include "import/common/growth.h"
#include "import/ply/parts.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/bit_cast.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/processor.h"
#include "tools/uvs.h"

#include <algorithm>

int32_t vertexColoursPresent;

constexpr int32_t progressInterval = 10000; // vertices, faces and strip steps
constexpr int32_t spareFaces = 1024;

static void countProgress(PlyReader* reader, int32_t steps)
{
    reader->progressCount += steps;
    if (reader->progressCount < progressInterval)
        return;
    reader->progressCount %= progressInterval;
    setProgress(blockFraction(&reader->cursor.blocks));
}

// How many lines are left until the bar moves.
static int32_t untilProgress(const PlyReader* reader)
{
    return progressInterval - reader->progressCount;
}

static bool hasName(const char* name, const char* wanted)
{
    return strcmp(name, wanted) == 0;
}

// Marks the properties whose values are kept, under either name of the colours. Returns whether there is a colour.
static bool markVertexFields(PlyElement* element, Report* report)
{
    // clang-format off
    static constexpr struct { const char* name; PlyField field; } wanted[] = {
        { "x", plyX }, { "y", plyY }, { "z", plyZ },
        { "red", plyRed }, { "green", plyGreen }, { "blue", plyBlue }, { "alpha", plyAlpha },
        { "diffuse_red", plyRed }, { "diffuse_green", plyGreen }, { "diffuse_blue", plyBlue },
    };
    // clang-format on
    bool coloured = false;
    for (int32_t i = 0; i < element->propertyCount; ++i)
    {
        PlyProperty* property = &element->properties[i];
        for (auto& [name, field] : wanted)
        {
            if (!hasName(property->name, name))
                continue;
            property->field = field;
            coloured |= field >= plyRed;
            note(report, coloursFractional, -1, field >= plyRed && property->type >= plyFloat32);
        }
    }
    return coloured;
}

// Where the wanted values lie in a binary vertex without lists and strings.
struct VertexLayout
{
    struct Place
    {
        size_t offset;
        PlyType type;
        PlyField field;
    } places[plyPropertyLimit];
    int32_t placeCount;
    size_t recordBytes; // 0: a vertex has no fixed size
    bool floatsOnly;    // x, y and z are contiguous floats, and nothing else is wanted
};

static VertexLayout layOutVertex(const PlyElement& element)
{
    VertexLayout layout = {};
    for (int32_t i = 0; i < element.propertyCount; ++i)
    {
        const PlyProperty& property = element.properties[i];
        if (property.kind != plyScalar)
            return {};
        if (property.field != plyUnwanted)
            layout.places[layout.placeCount++] = { layout.recordBytes, property.type, property.field };
        layout.recordBytes += plyTypeBytes[property.type];
    }
    layout.floatsOnly = layout.placeCount == 3;
    for (int32_t i = 0; i < layout.placeCount; ++i)
    {
        const VertexLayout::Place& place = layout.places[i];
        layout.floatsOnly &= place.type == plyFloat32 && place.field == i &&
                             place.offset == layout.places[0].offset + static_cast<size_t>(i) * sizeof(float);
    }
    return layout;
}

// Each colour is cut to its low 8 bits.
static uint32_t packColour(const int32_t (&colour)[4])
{
    auto byteOf = [&](int i) { return static_cast<uint32_t>(colour[i]) & 0xFF; };
    return byteOf(3) << 24 | byteOf(0) << 16 | byteOf(1) << 8 | byteOf(2);
}

static uint32_t colourBits(const PlyVertex& vertex)
{
    const auto& colour = vertex.colour;
    return static_cast<uint32_t>(colour[0] | colour[1] | colour[2] | colour[3]);
}

static void storeVertex(MeshVertex* out, const PlyVertex& vertex)
{
    memcpy(out->position, vertex.position, sizeof out->position);
    out->colour = packColour(vertex.colour);
    clearNormal(out);
}

// What a run of vertex records lost.
struct RecordFaults
{
    int32_t badValues;
    uint32_t colourBits; // of all colours together
};

static RecordFaults decodeVertices(MeshVertex* out, const uint8_t* at, int64_t count, const VertexLayout& layout,
                                   bool swap)
{
    PlyVertex vertex = {};
    RecordFaults faults = {};
    for (int64_t i = 0; i < count; ++i, at += layout.recordBytes)
    {
        for (int32_t& colour : vertex.colour)
            colour = 255;
        for (int32_t k = 0; k < layout.placeCount; ++k)
        {
            const VertexLayout::Place& place = layout.places[k];
            storePlyNumber(&vertex, place.field,
                           decodePlyNumber(place.type, at + place.offset, swap, &faults.badValues));
        }
        storeVertex(&out[i], vertex);
        faults.colourBits |= colourBits(vertex);
    }
    return faults;
}

static RecordFaults decodePositions(MeshVertex* out, const uint8_t* at, int64_t count, const VertexLayout& layout,
                                    bool swap)
{
    at += layout.places[0].offset;
    RecordFaults faults = {};
    for (int64_t i = 0; i < count; ++i, at += layout.recordBytes)
    {
        for (size_t axis = 0; axis < 3; ++axis)
        {
            auto bits = plyLoad<uint32_t>(at + axis * sizeof(float), swap);
            faults.badValues += !isGoodFloat(bits);
            out[i].position[axis] = bitCast<float>(sanitizedBits(bits));
        }
        out[i].colour = opaqueWhite;
        clearNormal(&out[i]);
    }
    return faults;
}

// Counts what a run of records lost, record by record, to find the first one of each kind.
static void noteRecords(PlyReader* reader, const uint8_t* at, int64_t count, const VertexLayout& layout)
{
    bool swap = reader->format == plyBigEndian;
    for (int64_t i = 0; reader->report && i < count; ++i, at += layout.recordBytes)
    {
        MeshVertex scratch;
        RecordFaults faults = decodeVertices(&scratch, at, 1, layout, swap);
        int64_t byte = bytePositionOf(&reader->cursor.blocks, reinterpret_cast<const char*>(at));
        note(reader->report, valuesZeroed, byte, faults.badValues);
        note(reader->report, coloursOutOfRange, byte, faults.colourBits > 255);
    }
}

static bool readVertexRecords(PlyReader* reader, Mesh* mesh, const VertexLayout& layout)
{
    bool swap = reader->format == plyBigEndian;
    for (int32_t done = 0; done < mesh->vertexCount;)
    {
        int32_t wanted = mesh->vertexCount - done;
        int64_t count;
        const uint8_t* at = takeRecords(&reader->cursor, layout.recordBytes,
                                        wanted < progressInterval ? wanted : progressInterval, &count);
        if (!at)
            return failReading(reader->report, bytePosition(&reader->cursor), "the vertices end after %d of %d", done,
                               mesh->vertexCount);
        auto* decode = layout.floatsOnly ? decodePositions : decodeVertices;
        RecordFaults faults = decode(mesh->vertices + done, at, count, layout, swap);
        if (faults.badValues > 0 || faults.colourBits > 255)
            noteRecords(reader, at, count, layout);
        done += static_cast<int32_t>(count);
        countProgress(reader, static_cast<int32_t>(count));
    }
    return true;
}

// Whether a vertex of an ASCII file is x, y and z as floats, in this order, and nothing else.
static bool isPlainVertex(const PlyElement& element)
{
    bool plain = element.propertyCount == 3;
    for (int32_t i = 0; plain && i < 3; ++i)
        plain = element.properties[i].kind == plyScalar && element.properties[i].field == i &&
                element.properties[i].type >= plyFloat32;
    return plain;
}

static bool failInstance(const PlyReader* reader, const PlyElement& element, int32_t done)
{
    return failReading(reader->report, bytePosition(&reader->cursor), "element \"%s\" ends after %d of %d",
                       element.name, done, element.count);
}

static bool failCount(const PlyReader* reader, const PlyElement& element)
{
    return failReading(reader->report, -1, "%d of element \"%s\" do not fit in the file", element.count, element.name);
}

static bool readOneVertex(PlyReader* reader, MeshVertex* out, const PlyElement& element)
{
    PlyVertex vertex = { { 0, 0, 0 }, { 255, 255, 255, 255 } };
    if (!readPlyInstance(reader, element, &vertex))
        return false;
    note(reader->report, coloursOutOfRange, bytePosition(&reader->cursor) - 1, colourBits(vertex) > 255);
    storeVertex(out, vertex);
    return true;
}

static bool readVertexInstances(PlyReader* reader, Mesh* mesh, const PlyElement& element)
{
    bool plain = reader->format == plyAscii && isPlainVertex(element) && kernelLevel() >= kernelsWords;
    for (int32_t done = 0; done < element.count;)
    {
        MeshVertex* out = mesh->vertices + done;
        int32_t taken = 0;
        if (plain)
            taken = takePlainPositions(reader, out, std::min(element.count - done, untilProgress(reader)));
        if (taken == 0)
        {
            if (!readOneVertex(reader, out, element))
                return failInstance(reader, element, done);
            taken = 1;
        }
        done += taken;
        countProgress(reader, taken);
    }
    return true;
}

static bool readVertices(PlyReader* reader, Mesh* mesh, PlyElement* element)
{
    if (reader->verticesRead || element->count < 0)
        return failReading(reader->report, -1,
                           reader->verticesRead ? "a second list of vertices" : "fewer than 0 vertices");
    reader->verticesRead = true;
    if (markVertexFields(element, reader->report))
        vertexColoursPresent = 1;
    if (!plyCountPossible(reader, *element))
        return failCount(reader, *element);
    if (!growVertices(mesh, element->count, grownUncleared))
        return false;
    mesh->vertexCount = element->count;
    VertexLayout layout = reader->format != plyAscii ? layOutVertex(*element) : VertexLayout{};
    return layout.recordBytes ? readVertexRecords(reader, mesh, layout) : readVertexInstances(reader, mesh, *element);
}

static bool makeFaceRoom(Mesh* mesh, int32_t records)
{
    return growFaces(mesh, growthFor(mesh->faceCapacity, int64_t{ mesh->faceCount } + records, spareFaces),
                     grownCornersUncleared);
}

static bool startFaces(Mesh* mesh, int64_t count)
{
    count += spareFaces;
    return growFaces(mesh, static_cast<int32_t>(count < INT32_MAX ? count : INT32_MAX), grownCornersUncleared);
}

void notePlyFaces(PlyReader* reader, int64_t byte, int64_t count)
{
    note(reader->report, reader->verticesRead ? facesBadCorners : facesBeforeVertices, byte, count);
}

// Stores the face of the list, whose instance lies at a byte of the file. Drops it when it has fewer than three
// corners, or a corner index past the last vertex.
static bool storeListFace(PlyReader* reader, Mesh* mesh, int64_t byte)
{
    int32_t count = reader->listCount;
    if (count < 3)
    {
        note(reader->report, facesTooFewCorners, byte);
        return true;
    }
    for (int32_t k = 0; k < count; ++k)
    {
        if (static_cast<uint32_t>(reader->list[k]) < static_cast<uint32_t>(mesh->vertexCount))
            continue;
        notePlyFaces(reader, byte, 1);
        return true;
    }
    if (!makeFaceRoom(mesh, polygonRecords(count)))
        return false;
    CornerList corners = { reader->list, nullptr, count, 0, 0 };
    mesh->faceCount += storePolygon(mesh, mesh->faceCount, corners, 0);
    return true;
}

// Only the corners are written: texture indices and attributes of new face slots are zero.
static void storeTriangle(PlyReader* reader, Mesh* mesh, uint32_t a, uint32_t b, uint32_t c)
{
    auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    if (a >= vertexCount || b >= vertexCount || c >= vertexCount)
    {
        notePlyFaces(reader, bytePosition(&reader->cursor) - 1, 1);
        return;
    }
    mesh->faces[mesh->faceCount++] = { a, b, c, noCorner };
}

// Adds the normals of the faces stored since the last call, while those faces are in the cache.
static void catchUpNormals(PlyReader* reader, Mesh* mesh)
{
    if (!reader->normals)
        return;
    addFaceNormals(mesh, reader->normalsDone, mesh->faceCount);
    reader->normalsDone = mesh->faceCount;
}

// The usual binary face: one list of 32-bit indices with a count of one byte, and unused scalars.
struct FaceLayout
{
    size_t before, after; // bytes of scalars
    bool usual;
};

static FaceLayout layOutFace(const PlyElement& element)
{
    FaceLayout layout = {};
    int lists = 0;
    for (int32_t i = 0; i < element.propertyCount; ++i)
    {
        const PlyProperty& property = element.properties[i];
        if (property.kind == plyScalar)
            (lists ? layout.after : layout.before) += plyTypeBytes[property.type];
        else if (property.kind == plyList && (property.type == plyInt32 || property.type == plyUint32) &&
                 (property.countType == plyUint8 || property.countType == plyInt8))
            ++lists;
        else
            return {};
    }
    layout.usual = lists == 1 && kernelLevel() >= kernelsWords;
    return layout;
}

// Counts the faces of a run that were left out. They are looked for once more, so that the run itself need not stop.
template <size_t corners, bool swap>
static void noteFacesOfSize(PlyReader* reader, const Mesh* mesh, const uint8_t* at, size_t bytes, int32_t count)
{
    auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    for (int32_t i = 0; i < count; ++i, at += bytes)
    {
        bool there = true;
        for (size_t k = 0; k < corners; ++k)
            there &= plyLoad<uint32_t>(at + 1 + k * sizeof(uint32_t), swap) < vertexCount;
        if (!there)
            notePlyFaces(reader, bytePositionOf(&reader->cursor.blocks, reinterpret_cast<const char*>(at)), 1);
    }
}

// Takes faces with the given number of corners as long as they follow and lie whole in the block. Returns how many;
// there is room for `most`. Only the corners are written, as in storeTriangle.
template <size_t corners, bool swap>
static int32_t takeFacesOfSize(PlyReader* reader, Mesh* mesh, const FaceLayout& layout, int32_t most)
{
    BlockSource* blocks = &reader->cursor.blocks;
    const size_t bytes = layout.before + 1 + corners * sizeof(uint32_t) + layout.after;
    const size_t held = holdBytes(blocks, bytes) / bytes;
    const uint8_t* at = reinterpret_cast<const uint8_t*>(blocks->at) + layout.before;
    most = held < static_cast<size_t>(most) ? static_cast<int32_t>(held) : most;
    const auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    Corners* out = mesh->faces + mesh->faceCount;
    int32_t taken = 0;
    for (; taken < most && *at == corners; ++taken, at += bytes)
    {
        Corners face = { noCorner, noCorner, noCorner, noCorner };
        bool there = true;
        for (size_t k = 0; k < corners; ++k)
        {
            face[k] = plyLoad<uint32_t>(at + 1 + k * sizeof(uint32_t), swap);
            there &= face[k] < vertexCount;
        }
        if (there)
            *out++ = face;
    }
    if (out - mesh->faces < mesh->faceCount + taken)
        noteFacesOfSize<corners, swap>(reader, mesh, at - static_cast<size_t>(taken) * bytes, bytes, taken);
    mesh->faceCount = static_cast<int32_t>(out - mesh->faces);
    blocks->at += static_cast<size_t>(taken) * bytes;
    return taken;
}

// Takes triangles and quads in any order. Returns how many, at most as many as there is room for.
template <bool swap>
static int32_t takeUsualFaces(PlyReader* reader, Mesh* mesh, const FaceLayout& layout, int32_t most)
{
    int32_t taken = 0;
    for (int32_t came = -1; came != 0 && taken < most; taken += came)
    {
        came = takeFacesOfSize<3, swap>(reader, mesh, layout, most - taken);
        came += takeFacesOfSize<4, swap>(reader, mesh, layout, most - taken - came);
    }
    return taken;
}

// Whether a face of an ASCII file is one list of whole numbers and nothing else.
static bool isPlainFace(const PlyElement& element)
{
    auto isWhole = [](PlyType type) { return type != plyUnknown && type < plyFloat32; };
    const PlyProperty& list = element.properties[0];
    return element.propertyCount == 1 && list.kind == plyList && isWhole(list.countType) && isWhole(list.type);
}

// How the faces of the element are read; one by one when neither applies.
struct FaceReading
{
    FaceLayout layout;
    bool swap;  // of a binary file
    bool plain; // lines of plain numbers
};

// Takes as many faces as the fast ways can. *taken is 0 when readPlyInstance must read the next face. Returns false
// when memory runs out.
static bool takeFastFaces(PlyReader* reader, Mesh* mesh, const FaceReading& reading, int32_t left, int32_t* taken)
{
    *taken = 0;
    if (reading.layout.usual)
    {
        int32_t most = std::min(left, progressInterval);
        if (!makeFaceRoom(mesh, most))
            return false;
        auto* take = reading.swap ? takeUsualFaces<true> : takeUsualFaces<false>;
        *taken = take(reader, mesh, reading.layout, most);
    }
    else if (reading.plain)
    {
        int32_t room = mesh->faceCapacity - mesh->faceCount;
        *taken = takePlainTriangles(reader, mesh, std::min({ left, untilProgress(reader), room }));
    }
    if (*taken > 0)
        catchUpNormals(reader, mesh);
    return true;
}

// Marks all lists but the wanted one as ignored. Without a wanted one each list replaces the one before it.
static bool chooseList(PlyReader* reader, PlyElement* element)
{
    PlyProperty* last = nullptr;
    int32_t lists = 0, wanted = 0;
    for (int32_t i = 0; i < element->propertyCount; ++i)
    {
        PlyProperty* property = &element->properties[i];
        if (property->kind != plyList)
            continue;
        ++lists;
        last = property;
        bool isWanted = reader->wantedList && hasName(property->name, reader->wantedList);
        wanted += isWanted;
        if (reader->wantedList && !isWanted)
            property->field = plyIgnoredList;
    }
    if (reader->wantedList)
        return wanted > 0 || failReading(reader->report, -1, "the faces have no list \"%s\"", reader->wantedList);
    if (lists > 1)
        noteDetail(reader->report, listsIgnored, -1, "the last of %d, \"%s\", counts; --ply-list NAME chooses", lists,
                   last->name);
    return true;
}

static bool readFaces(PlyReader* reader, Mesh* mesh, const PlyElement& element)
{
    if (reader->faceListRead)
        return failReading(reader->report, -1, "a second list of faces");
    if (!plyCountPossible(reader, element))
        return failCount(reader, element);
    reader->faceListRead = true;
    if (!startFaces(mesh, element.count > 0 ? element.count : 0))
        return false;
    bool isText = reader->format == plyAscii;
    FaceReading reading = { isText ? FaceLayout{} : layOutFace(element), reader->format == plyBigEndian,
                            isText && isPlainFace(element) && kernelLevel() >= kernelsWords };
    for (int32_t done = 0, taken; done < element.count; done += taken)
    {
        if (!takeFastFaces(reader, mesh, reading, element.count - done, &taken))
            return false;
        if (taken == 0)
        {
            int64_t byte = bytePosition(&reader->cursor);
            if (!readPlyInstance(reader, element, nullptr))
                return failInstance(reader, element, done);
            if (!storeListFace(reader, mesh, byte))
                return false;
            taken = 1;
        }
        countProgress(reader, taken);
    }
    return true;
}

// -1 ends a strip, and the two entries after it begin the next one. Triangles without area are kept.
static bool readStrips(PlyReader* reader, Mesh* mesh, const PlyElement& element)
{
    if (element.count != 1)
    {
        noteName(reader->report, elementsIgnored, -1, element.name, strlen(element.name), element.count);
        return true;
    }
    if (!readPlyInstance(reader, element, nullptr))
        return failInstance(reader, element, 0);
    if (reader->listCount < 3)
        return true;
    if (reader->faceListRead || reader->stripsRead)
        return failReading(reader->report, -1, "strips beside other faces");
    reader->stripsRead = true;
    if (!startFaces(mesh, reader->listCount))
        return false;
    const auto* entries = reinterpret_cast<const uint32_t*>(reader->list);
    bool odd = false;
    for (int64_t i = 2; i < reader->listCount; ++i)
    {
        countProgress(reader, 1);
        if (reader->list[i] == -1)
        {
            i += 2;
            odd = false;
            continue;
        }
        storeTriangle(reader, mesh, entries[i - 2], entries[odd ? i : i - 1], entries[odd ? i - 1 : i]);
        odd = !odd;
    }
    return true;
}

// Reads past an element that has no meaning here. Files that have other elements have one instance of them.
static void passElement(PlyReader* reader, const PlyElement& element)
{
    Report* report = reader->report;
    noteName(report, elementsIgnored, bytePosition(&reader->cursor), element.name, strlen(element.name), element.count);
    if (!readPlyInstance(reader, element, nullptr) && report)
        report->failure[0] = 0; // this is no failure
}

static bool readBody(PlyReader* reader, Mesh* mesh)
{
    for (int32_t i = 0; i < reader->elementCount; ++i)
    {
        PlyElement* element = &reader->elements[i];
        bool ok = true;
        if (hasName(element->name, "vertex"))
            ok = readVertices(reader, mesh, element);
        else if (hasName(element->name, "face"))
            ok = chooseList(reader, element) && readFaces(reader, mesh, *element);
        else if (hasName(element->name, "tristrips"))
            ok = readStrips(reader, mesh, *element);
        else
            passElement(reader, *element);
        if (!ok)
            return false;
    }
    return true;
}

// Notes what follows the last element.
static void noteRest(PlyReader* reader)
{
    PlyLine line;
    if (!reader->report || bytesLeft(&reader->cursor) == 0)
        return;
    if (reader->format != plyAscii || nextPlyLine(reader, &line) || bytesLeft(&reader->cursor) > 0)
        note(reader->report, restIgnored, bytePosition(&reader->cursor));
}

// Reads an opened file and shows its boxes.
static bool readPly(PlyReader* reader, Mesh* mesh)
{
    showProgress("LOADING.....");
    if (reader->report)
        reader->report->isText = true; // as long as the header is read
    bool ok = findPlyLineEnd(reader) && readPlyHeader(reader);
    if (reader->report)
        reader->report->isText = !ok || reader->format == plyAscii;
    ok = ok && readBody(reader, mesh);
    if (ok)
        noteRest(reader);
    closeProgress();
    if (ok)
    {
        mesh->liveFaceCount = mesh->faceCount;
        mesh->lineCount = 0;
        catchUpNormals(reader, mesh);
        if (reader->normals)
            finishNormals(mesh);
        computeBounds(mesh);
        ok = addPlaceholderUv(mesh);
    }
    if (!ok)
        messageBox("error reading ply file", "error", iconNone);
    return ok;
}

int LoadPlyFile(Mesh* mesh, const char* path, const char* wantedList, Report* report, bool normals)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    int64_t sizeBytes = measureFile(file);
    if (sizeBytes == 0)
        failReading(report, -1, "the file is empty");
    auto* reader = sizeBytes > 0 ? static_cast<PlyReader*>(tableAlloc(sizeof(PlyReader))) : nullptr;
    int32_t* list = reader ? static_cast<int32_t*>(tableAlloc(plyFirstListCapacity * sizeof(int32_t))) : nullptr;
    int ok = 0;
    if (list)
    {
        startBytes(&reader->cursor, file);
        reader->report = report;
        reader->normals = normals;
        reader->wantedList = wantedList;
        reader->list = list;
        reader->listCapacity = plyFirstListCapacity;
        reader->sizelessLeft = sizeBytes;
        ok = readPly(reader, mesh);
    }
    fclose(file);
    if (reader)
        tableFree(reader->list);
    tableFree(reader);
    return ok;
}
