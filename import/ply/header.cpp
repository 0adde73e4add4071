// import/ply/header.cpp - lines, words and the header of a PLY file
#include "import/ply/parts.h"

constexpr size_t lookedAtBytes = 256; // a file that is shorter is none

static_assert(bytePadding > numberPadding);

int findPlyLineEnd(PlyReader* reader)
{
    ByteSource* source = &reader->source;
    if (holdBytes(source, lookedAtBytes) < lookedAtBytes)
        return 0;
    for (size_t i = 0; i < lookedAtBytes; ++i)
    {
        uint8_t c = source->block[i];
        if (c != '\r' && c != '\n')
            continue;
        bool both = c == '\r' && i + 1 < lookedAtBytes && source->block[i + 1] == '\n';
        reader->lineEnd = both ? '\n' : static_cast<char>(c);
        return 1;
    }
    return 0;
}

// The block has the whole line, or more bytes than a line may have; behind them stands a line end, so that nobody
// needs to look for the block's end.
int nextPlyLine(PlyReader* reader, PlyLine* line)
{
    ByteSource* source = &reader->source;
    for (;;)
    {
        if (holdBytes(source, plyLineBytes + 1) == 0)
            return 0;
        source->block[source->fill] = static_cast<uint8_t>(reader->lineEnd);
        line->start = line->at = reinterpret_cast<const char*>(source->block + source->at);
        line->words = 0;
        line->lineEnd = reader->lineEnd;
        while (isPlyBlank(*line->at) && *line->at != line->lineEnd)
            ++line->at;
        if (*line->at != line->lineEnd)
            return 1;
        if (!endPlyLine(reader, line))
            return 0;
    }
}

int endPlyLine(PlyReader* reader, PlyLine* line)
{
    ByteSource* source = &reader->source;
    auto* blockEnd = reinterpret_cast<const char*>(source->block + source->fill);
    auto room = static_cast<size_t>(blockEnd + 1 - line->at);
    const char* end =
        *line->at == line->lineEnd ? line->at : static_cast<const char*>(memchr(line->at, line->lineEnd, room));
    end += end < blockEnd; // the last line may lack its end
    auto bytes = static_cast<size_t>(end - line->start);
    if (bytes > plyLineBytes)
        return 0;
    source->at += bytes;
    return 1;
}

int nextPlyWord(PlyLine* line, PlyWord* word)
{
    const char* at = line->at;
    char lineEnd = line->lineEnd;
    while (isPlyBlank(*at) && *at != lineEnd)
        ++at;
    line->at = at;
    if (*at == lineEnd || line->words == plyMostWords)
        return 0;
    ++line->words;
    if (*at == '"')
    {
        word->text = ++at;
        while (*at != '"' && *at != lineEnd)
            ++at;
        word->end = at;
        line->at = at + (*at == '"');
        return 1;
    }
    word->text = at;
    while (!isPlyBlank(*at)) // a line's end is a blank, too
        ++at;
    word->end = line->at = at;
    return 1;
}

static bool isWord(const PlyWord& word, const char* text)
{
    size_t length = strlen(text);
    return static_cast<size_t>(word.end - word.text) == length && memcmp(word.text, text, length) == 0;
}

static void copyWord(char (&name)[plyNameRoom], const PlyWord& word)
{
    auto length = static_cast<size_t>(word.end - word.text);
    length = length < plyNameRoom ? length : plyNameRoom - 1;
    memset(name, 0, sizeof name);
    memcpy(name, word.text, length);
}

static PlyType typeNamed(const PlyWord& word)
{
    // clang-format off
    static constexpr const char* names[][2] = {
        { "int8", "char" }, { "int16", "short" }, { "int32", "int" },
        { "uint8", "uchar" }, { "uint16", "ushort" }, { "uint32", "uint" },
        { "float32", "float" }, { "float64", "double" },
    };
    // clang-format on
    int code = 1;
    for (auto& [systematic, common] : names)
    {
        if (isWord(word, systematic) || isWord(word, common))
            return static_cast<PlyType>(code);
        ++code;
    }
    return plyUnknown;
}

// The words of a header line that mean something, and how many it has.
struct HeaderLine
{
    PlyWord words[5];
    int32_t count;
};

static int nextHeaderLine(PlyReader* reader, HeaderLine* header, bool* tooLong)
{
    PlyLine line;
    PlyWord word;
    header->count = 0;
    *tooLong = false;
    if (!nextPlyLine(reader, &line))
    {
        *tooLong = bytesLeft(&reader->source) > 0;
        return 0;
    }
    for (; nextPlyWord(&line, &word); ++header->count)
    {
        if (header->count < 5)
            header->words[header->count] = word;
    }
    *tooLong = !endPlyLine(reader, &line);
    return !*tooLong;
}

static int readFormat(PlyReader* reader, const HeaderLine& line)
{
    static constexpr const char* names[] = { "ascii", "binary_big_endian", "binary_little_endian" };
    if (line.count != 3)
        return 0;
    reader->version = plyWordReal(line.words[2]);
    int format = plyAscii;
    for (const char* name : names)
    {
        if (isWord(line.words[1], name))
        {
            reader->format = format;
            return 1;
        }
        ++format;
    }
    return 0;
}

static int readElement(PlyReader* reader, const HeaderLine& line)
{
    if (line.count < 3 || reader->format == plyNoFormat || reader->elementCount == plyMostElements)
        return 0;
    PlyElement* element = &reader->elements[reader->elementCount++];
    copyWord(element->name, line.words[1]);
    element->propertyCount = 0;
    element->count = plyWordWhole(line.words[2]);
    return 1;
}

static int readProperty(PlyReader* reader, const HeaderLine& line)
{
    if (line.count < 3 || reader->elementCount == 0)
        return 0;
    PlyElement* element = &reader->elements[reader->elementCount - 1];
    if (element->propertyCount == plyMostProperties)
        return 0;
    PlyProperty* property = &element->properties[element->propertyCount++];
    property->field = plyUnwanted;
    property->countType = plyInt8;
    if (isWord(line.words[1], "list"))
    {
        if (line.count < 5)
            return 0;
        property->kind = plyList;
        property->countType = typeNamed(line.words[2]);
        property->type = typeNamed(line.words[3]);
        copyWord(property->name, line.words[4]);
        return 1;
    }
    bool isString = isWord(line.words[1], "string");
    property->kind = isString ? plyString : plyScalar;
    property->type = isString ? plyInt8 : typeNamed(line.words[1]);
    copyWord(property->name, line.words[2]);
    return 1;
}

// The file's end ends the header as well. Comments and other lines mean nothing.
int readPlyHeader(PlyReader* reader)
{
    HeaderLine line;
    bool tooLong;
    if (!nextHeaderLine(reader, &line, &tooLong) || !isWord(line.words[0], "ply"))
        return 0;
    while (nextHeaderLine(reader, &line, &tooLong))
    {
        const PlyWord& keyword = line.words[0];
        int ok = 1;
        if (isWord(keyword, "end_header"))
            return 1;
        if (isWord(keyword, "format"))
            ok = readFormat(reader, line);
        else if (isWord(keyword, "element"))
            ok = readElement(reader, line);
        else if (isWord(keyword, "property"))
            ok = readProperty(reader, line);
        if (!ok)
            return 0;
    }
    return !tooLong;
}
