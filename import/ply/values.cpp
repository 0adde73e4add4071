// import/ply/values.cpp - the instances of an element: scalars, lists and strings, as text and as bytes
#include "import/ply/parts.h"

#include "model/memory.h"

static bool swapsBytes(const PlyReader* reader)
{
    return reader->format == plyBigEndian;
}

int64_t plyInstanceBytes(const PlyReader* reader, const PlyElement& element)
{
    if (reader->format == plyAscii)
        return 2; // a character and a line end
    int64_t bytes = 0;
    for (int32_t i = 0; i < element.propertyCount; ++i)
    {
        const PlyProperty& property = element.properties[i];
        switch (property.kind)
        {
        case plyScalar: bytes += static_cast<int64_t>(plyTypeBytes[property.type]); break;
        case plyList: bytes += static_cast<int64_t>(plyTypeBytes[property.countType]); break;
        case plyString: bytes += 4; break;
        }
    }
    return bytes;
}

int plyCountPossible(const PlyReader* reader, const PlyElement& element)
{
    int64_t bytes = plyInstanceBytes(reader, element);
    if (bytes == 0)
        return element.count <= reader->source.sizeBytes;
    int64_t left = bytesLeft(&reader->source) + (reader->format == plyAscii); // the last line may lack its end
    return element.count <= left / bytes;
}

// Room for a list. What the old one held is not kept.
static int startList(PlyReader* reader, int32_t count)
{
    reader->listCount = 0;
    if (count <= reader->listRoom)
        return 1;
    int64_t room = 2 * int64_t{ reader->listRoom };
    room = room > count ? room : count;
    auto* list = static_cast<int32_t*>(tableAlloc(blockSize(room, sizeof(int32_t))));
    if (!list)
        return reportOutOfMemory();
    tableFree(reader->list);
    reader->list = list;
    reader->listRoom = static_cast<int32_t>(room < INT32_MAX ? room : INT32_MAX);
    return 1;
}

// A list of items without a size is zeros.
static int readSizelessList(PlyReader* reader, int32_t count)
{
    reader->sizelessLeft -= count;
    if (reader->sizelessLeft < 0 || !startList(reader, count))
        return 0;
    memset(reader->list, 0, static_cast<size_t>(count) * sizeof(int32_t));
    reader->listCount = count;
    return 1;
}

static PlyNumber takePlyNumber(PlyReader* reader, PlyType type)
{
    size_t bytes = plyTypeBytes[type];
    const uint8_t* at = bytes ? takeBytes(&reader->source, bytes) : nullptr;
    return at ? decodePlyNumber(type, at, swapsBytes(reader)) : PlyNumber{ 0, 0 };
}

static int readBinaryList(PlyReader* reader, const PlyProperty& property)
{
    ByteSource* source = &reader->source;
    int32_t count = takePlyNumber(reader, property.countType).whole;
    size_t itemBytes = plyTypeBytes[property.type];
    if (count < 0 || source->bad)
        return 0;
    if (itemBytes == 0)
        return readSizelessList(reader, count);
    if (count > bytesLeft(source) / static_cast<int64_t>(itemBytes) || !startList(reader, count))
        return 0;
    bool swap = swapsBytes(reader);
    while (reader->listCount < count)
    {
        int64_t records;
        const uint8_t* at = takeRecords(source, itemBytes, count - reader->listCount, &records);
        if (!at)
            return 0;
        for (int64_t i = 0; i < records; ++i, at += itemBytes)
            reader->list[reader->listCount++] = decodePlyNumber(property.type, at, swap).whole;
    }
    return 1;
}

static int skipBinaryString(PlyReader* reader)
{
    int32_t length = takePlyNumber(reader, plyInt32).whole;
    if (length < 0)
        return 0;
    skipBytes(&reader->source, length);
    return !reader->source.bad;
}

static int readBinaryInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex)
{
    for (int32_t i = 0; i < element.propertyCount; ++i)
    {
        const PlyProperty& property = element.properties[i];
        int ok = 1;
        switch (property.kind)
        {
        case plyScalar:
        {
            PlyNumber number = takePlyNumber(reader, property.type);
            if (vertex)
                storePlyNumber(vertex, property.field, number);
            break;
        }
        case plyList: ok = readBinaryList(reader, property); break;
        case plyString: ok = skipBinaryString(reader); break;
        }
        if (!ok)
            return 0;
    }
    return !reader->source.bad;
}

static const char* scanPlyNumber(const char* at, PlyType type, PlyNumber* number)
{
    if (type < plyFloat32)
    {
        int32_t whole;
        const char* end = scanIntPadded(at, &whole);
        if (end)
            *number = plyWhole(whole);
        return end;
    }
    float real;
    const char* end = scanFloatPadded(at, &real);
    if (end)
        *number = plyReal(real);
    return end;
}

// Reads the number of the next word. Returns 0 when there is none; an unknown type takes no word. A word that begins
// with its number, as nearly all do, is not looked through first.
static int nextPlyNumber(PlyLine* line, PlyType type, PlyNumber* number)
{
    *number = { 0, 0 };
    if (type == plyUnknown)
        return 1;
    const char* at = line->at;
    while (*at == ' ')
        ++at;
    if ((isDigit(*at) || *at == '-') && line->words < plyMostWords)
    {
        const char* end = scanPlyNumber(at, type, number);
        at = end ? end : at;
        while (!isPlyBlank(*at))
            ++at;
        line->at = at;
        ++line->words;
        return 1;
    }
    PlyWord word;
    if (!nextPlyWord(line, &word))
        return 0;
    scanPlyNumber(plyNumberStart(word), type, number);
    return 1;
}

static int readAsciiList(PlyReader* reader, PlyLine* line, const PlyProperty& property)
{
    PlyNumber number;
    if (!nextPlyNumber(line, property.countType, &number) || number.whole < 0)
        return 0;
    int32_t count = number.whole;
    if (property.type == plyUnknown)
        return readSizelessList(reader, count);
    if (count > plyMostWords || !startList(reader, count))
        return 0;
    for (int32_t i = 0; i < count; ++i)
    {
        if (!nextPlyNumber(line, property.type, &number))
            return 0;
        reader->list[i] = number.whole;
    }
    reader->listCount = count;
    return 1;
}

static int readAsciiProperty(PlyReader* reader, PlyLine* line, const PlyProperty& property, PlyVertex* vertex)
{
    PlyWord word;
    PlyNumber number;
    if (property.kind == plyList)
        return readAsciiList(reader, line, property);
    if (property.kind == plyString || !vertex || property.field == plyUnwanted)
        return property.type == plyUnknown || nextPlyWord(line, &word);
    int ok = nextPlyNumber(line, property.type, &number);
    storePlyNumber(vertex, property.field, number);
    return ok;
}

// Takes the whole line even where it does not suit the properties: the next instance is on the next one.
static int readAsciiInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex)
{
    PlyLine line;
    if (!nextPlyLine(reader, &line))
        return 0;
    int ok = 1;
    for (int32_t i = 0; i < element.propertyCount && ok; ++i)
        ok = readAsciiProperty(reader, &line, element.properties[i], vertex);
    return endPlyLine(reader, &line) && ok;
}

int readPlyInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex)
{
    reader->listCount = 0;
    if (reader->format == plyAscii)
        return readAsciiInstance(reader, element, vertex);
    if (!readBinaryInstance(reader, element, vertex))
        reader->source.bad = 1; // where the next value stands is not known
    return !reader->source.bad;
}
