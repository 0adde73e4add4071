// import/ply/ply.cpp - the elements of a PLY file: vertices, faces, triangle strips
#include "import/ply/ply.h"

#include "import/common/corners.h"
#include "import/ply/parts.h"
#include "model/memory.h"
#include "model/normals.h"
#include "model/settings.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <algorithm>
#include <bit>

int32_t vertexColoursPresent;

constexpr int32_t progressInterval = 10000; // vertices, faces and strip steps
constexpr int32_t spareFaces = 1024;

static void countProgress(PlyReader* reader, int32_t steps)
{
    reader->progressCount += steps;
    if (reader->progressCount < progressInterval)
        return;
    reader->progressCount %= progressInterval;
    setProgress(byteFraction(&reader->source));
}

// Lines until the bar moves next.
static int32_t untilProgress(const PlyReader* reader)
{
    return progressInterval - reader->progressCount;
}

static bool hasName(const char* name, const char* wanted)
{
    return strcmp(name, wanted) == 0;
}

// Marks the properties whose values are kept, under either name of the colours. Returns whether there is a colour.
static bool markVertexFields(PlyElement* element)
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
    } places[plyMostProperties];
    int32_t placeCount;
    size_t recordBytes; // 0: a vertex has no fixed size
    bool floatsOnly;    // x, y and z are floats side by side and nothing else is wanted
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

static void storeVertex(MeshVertex* out, const PlyVertex& vertex)
{
    memcpy(out->position, vertex.position, sizeof out->position);
    out->colour = packColour(vertex.colour);
}

static void decodeVertices(MeshVertex* out, const uint8_t* at, int64_t count, const VertexLayout& layout, bool swap)
{
    PlyVertex vertex = {};
    for (int64_t i = 0; i < count; ++i, at += layout.recordBytes)
    {
        for (int32_t& colour : vertex.colour)
            colour = 255;
        for (int32_t k = 0; k < layout.placeCount; ++k)
        {
            const VertexLayout::Place& place = layout.places[k];
            storePlyNumber(&vertex, place.field, decodePlyNumber(place.type, at + place.offset, swap));
        }
        storeVertex(&out[i], vertex);
    }
}

static void decodePositions(MeshVertex* out, const uint8_t* at, int64_t count, const VertexLayout& layout, bool swap)
{
    at += layout.places[0].offset;
    for (int64_t i = 0; i < count; ++i, at += layout.recordBytes)
    {
        for (size_t axis = 0; axis < 3; ++axis)
            out[i].position[axis] =
                std::bit_cast<float>(sanitizedBits(plyLoad<uint32_t>(at + axis * sizeof(float), swap)));
        out[i].colour = opaqueWhite;
    }
}

static int readVertexRecords(PlyReader* reader, Mesh* mesh, const VertexLayout& layout)
{
    bool swap = reader->format == plyBigEndian;
    for (int32_t done = 0; done < mesh->vertexCount;)
    {
        int32_t wanted = mesh->vertexCount - done;
        int64_t count;
        const uint8_t* at = takeRecords(&reader->source, layout.recordBytes,
                                        wanted < progressInterval ? wanted : progressInterval, &count);
        if (!at)
            return 0;
        auto* decode = layout.floatsOnly ? decodePositions : decodeVertices;
        decode(mesh->vertices + done, at, count, layout, swap);
        done += static_cast<int32_t>(count);
        countProgress(reader, static_cast<int32_t>(count));
    }
    return 1;
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

static int readVertices(PlyReader* reader, Mesh* mesh, PlyElement* element)
{
    if (reader->verticesRead || element->count < 0)
        return 0;
    reader->verticesRead = 1;
    if (markVertexFields(element))
        vertexColoursPresent = 1;
    if (!plyCountPossible(reader, *element) || !growVertices(mesh, element->count))
        return 0;
    mesh->vertexCount = element->count;
    if (reader->format != plyAscii)
    {
        VertexLayout layout = layOutVertex(*element);
        if (layout.recordBytes)
            return readVertexRecords(reader, mesh, layout);
    }
    bool plain = reader->format == plyAscii && isPlainVertex(*element) && !usePlainKernels;
    PlyVertex vertex = {};
    for (int32_t done = 0; done < element->count;)
    {
        int32_t taken = 0;
        if (plain)
            taken = takePlainPositions(reader, mesh->vertices + done,
                                       std::min(element->count - done, untilProgress(reader)));
        if (taken == 0)
        {
            for (int32_t& colour : vertex.colour)
                colour = 255;
            if (!readPlyInstance(reader, *element, &vertex))
                return 0;
            storeVertex(&mesh->vertices[done], vertex);
            taken = 1;
        }
        done += taken;
        countProgress(reader, taken);
    }
    return 1;
}

// Sees to room for more records. Long polygons must not copy the arrays too often.
static int roomForFaces(Mesh* mesh, int32_t records)
{
    int64_t missing = int64_t{ mesh->faceCount } + records - mesh->faceCapacity;
    if (missing <= 0)
        return 1;
    int64_t step = mesh->faceCapacity / 4;
    step = step > spareFaces ? step : spareFaces;
    step = step > missing ? step : missing;
    int64_t most = INT32_MAX - mesh->faceCapacity;
    return growFaces(mesh, static_cast<int32_t>(step < most || missing > most ? step : most));
}

static int startFaces(Mesh* mesh, int64_t count)
{
    count += spareFaces;
    return growFaces(mesh, static_cast<int32_t>(count < INT32_MAX ? count : INT32_MAX));
}

// A face of the list; one of fewer than three corners, or with one that is no vertex, is dropped.
static int storeListFace(PlyReader* reader, Mesh* mesh)
{
    int32_t count = reader->listCount;
    if (count < 3)
        return 1;
    for (int32_t k = 0; k < count; ++k)
    {
        if (static_cast<uint32_t>(reader->list[k]) >= static_cast<uint32_t>(mesh->vertexCount))
            return 1;
    }
    if (!roomForFaces(mesh, polygonRecords(count)))
        return 0;
    CornerList corners = { reader->list, nullptr, count, 0, 0 };
    mesh->faceCount += storePolygon(mesh, mesh->faceCount, corners, 0);
    return 1;
}

// The face slots behind faceCount are zero, so a face needs its corners only.
static void storeTriangle(Mesh* mesh, uint32_t a, uint32_t b, uint32_t c)
{
    auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    if (a >= vertexCount || b >= vertexCount || c >= vertexCount)
        return;
    mesh->faces[mesh->faceCount++] = { a, b, c, noCorner };
}

// Brings the normals up to the faces that have been stored, as long as those are in the cache.
static void catchUpNormals(PlyReader* reader, Mesh* mesh)
{
    addFaceNormals(mesh, reader->normalsDone, mesh->faceCount);
    reader->normalsDone = mesh->faceCount;
}

// The usual binary face: one list of 32-bit indices with a count of one byte, and scalars that nobody wants.
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
    layout.usual = lists == 1 && !usePlainKernels;
    return layout;
}

// Takes faces of so many corners as long as they come and lie in the block whole. Returns how many; there is room for
// `most`. The face slots behind faceCount are zero, so a face needs its corners only.
template <size_t corners, bool swap>
static int32_t takeRun(ByteSource* source, Mesh* mesh, const FaceLayout& layout, int32_t most)
{
    const size_t bytes = layout.before + 1 + corners * sizeof(uint32_t) + layout.after;
    holdBytes(source, bytes);
    const uint8_t* at = source->block + source->at + layout.before;
    const size_t held = (source->fill - source->at) / bytes;
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
    mesh->faceCount = static_cast<int32_t>(out - mesh->faces);
    source->at += static_cast<size_t>(taken) * bytes;
    return taken;
}

// Takes triangles and quads as they come. Returns how many, at most as many as there is room for.
template <bool swap>
static int32_t takeUsualFaces(ByteSource* source, Mesh* mesh, const FaceLayout& layout, int32_t most)
{
    int32_t taken = 0;
    for (int32_t run = -1; run != 0 && taken < most; taken += run)
    {
        run = takeRun<3, swap>(source, mesh, layout, most - taken);
        run += takeRun<4, swap>(source, mesh, layout, most - taken - run);
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

static int readFaces(PlyReader* reader, Mesh* mesh, const PlyElement& element)
{
    if (reader->facesRead == 1 || !plyCountPossible(reader, element))
        return 0;
    reader->facesRead = 1;
    if (!startFaces(mesh, element.count > 0 ? element.count : 0))
        return 0;
    bool swap = reader->format == plyBigEndian;
    FaceLayout layout = reader->format == plyAscii ? FaceLayout{} : layOutFace(element);
    bool plain = reader->format == plyAscii && isPlainFace(element) && !usePlainKernels;
    for (int32_t done = 0; done < element.count;)
    {
        int32_t taken = 0;
        if (layout.usual)
        {
            int32_t most = element.count - done;
            most = most < progressInterval ? most : progressInterval;
            if (!roomForFaces(mesh, most))
                return 0;
            auto* take = swap ? takeUsualFaces<true> : takeUsualFaces<false>;
            taken = take(&reader->source, mesh, layout, most);
            catchUpNormals(reader, mesh);
        }
        else if (plain)
        {
            int32_t room = mesh->faceCapacity - mesh->faceCount;
            taken = takePlainTriangles(reader, mesh, std::min({ element.count - done, untilProgress(reader), room }));
            if (taken > 0)
                catchUpNormals(reader, mesh);
        }
        if (taken == 0)
        {
            if (!readPlyInstance(reader, element, nullptr) || !storeListFace(reader, mesh))
                return 0;
            taken = 1;
        }
        done += taken;
        countProgress(reader, taken);
    }
    return 1;
}

// -1 ends a strip; the triangle after the next two entries starts the new one. Triangles without area stay.
static int readStrips(PlyReader* reader, Mesh* mesh, const PlyElement& element)
{
    if (element.count != 1)
        return 1;
    if (!readPlyInstance(reader, element, nullptr))
        return 0;
    if (reader->listCount < 3)
        return 1;
    if (reader->facesRead)
        return 0;
    reader->facesRead = 2;
    if (!startFaces(mesh, reader->listCount))
        return 0;
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
        storeTriangle(mesh, entries[i - 2], entries[odd ? i : i - 1], entries[odd ? i - 1 : i]);
        odd = !odd;
    }
    return 1;
}

static int readBody(PlyReader* reader, Mesh* mesh)
{
    for (int32_t i = 0; i < reader->elementCount; ++i)
    {
        PlyElement* element = &reader->elements[i];
        int ok = 1;
        if (hasName(element->name, "vertex"))
            ok = readVertices(reader, mesh, element);
        else if (hasName(element->name, "face"))
            ok = readFaces(reader, mesh, *element);
        else if (hasName(element->name, "tristrips"))
            ok = readStrips(reader, mesh, *element);
        else
            readPlyInstance(reader, *element, nullptr); // of any other one instance is passed over, on purpose
        if (!ok)
            return 0;
    }
    return 1;
}

// Reads the opened file with the boxes around it.
static int readPly(PlyReader* reader, Mesh* mesh)
{
    showProgress("LOADING.....");
    int ok = findPlyLineEnd(reader) && readPlyHeader(reader) && readBody(reader, mesh);
    closeProgress();
    if (ok)
    {
        mesh->liveFaceCount = mesh->faceCount;
        mesh->lineCount = 0;
        catchUpNormals(reader, mesh);
        finishNormals(mesh);
        computeBounds(mesh);
        ok = addPlaceholderUv(mesh);
    }
    if (!ok)
        messageBox("error reading ply file", "error", iconNone);
    return ok;
}

int LoadPlyFile(Mesh* mesh, const char* path)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    int64_t sizeBytes = measureFile(file);
    auto* reader = sizeBytes > 0 ? static_cast<PlyReader*>(tableAlloc(sizeof(PlyReader))) : nullptr;
    int32_t* list = reader ? static_cast<int32_t*>(tableAlloc(plyFirstListRoom * sizeof(int32_t))) : nullptr;
    int ok = 0;
    if (list)
    {
        startBytes(&reader->source, file, sizeBytes);
        reader->list = list;
        reader->listRoom = plyFirstListRoom;
        reader->sizelessLeft = sizeBytes;
        ok = readPly(reader, mesh);
    }
    fclose(file);
    if (reader)
        tableFree(reader->list);
    tableFree(reader);
    return ok;
}
