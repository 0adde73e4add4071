// import/ply/header.cpp - lines, words and the header of a PLY file
#include "import/ply/parts.h"

constexpr size_t examinedBytes = 256; // a shorter file is refused

static_assert(blockPaddingRoom > numberPaddingRoom);

bool findPlyLineEnd(PlyReader* reader)
{
    BlockSource* blocks = &reader->cursor.blocks;
    if (holdBytes(blocks, examinedBytes) < examinedBytes)
        return failReading(reader->report, -1, "the file is shorter than %d bytes", static_cast<int>(examinedBytes));
    for (size_t i = 0; i < examinedBytes; ++i)
    {
        char c = blocks->at[i];
        if (!isLineEnd(c))
            continue;
        bool both = c == '\r' && i + 1 < examinedBytes && blocks->at[i + 1] == '\n';
        reader->lineEnd = both ? '\n' : c;
        return true;
    }
    return failReading(reader->report, 0, "the first %d bytes have no line end", static_cast<int>(examinedBytes));
}

// The block holds the whole line, or more bytes than a line may have. A line end is put after the block, so that no
// loop has to test for the block's end.
bool nextPlyLine(PlyReader* reader, PlyLine* line)
{
    BlockSource* blocks = &reader->cursor.blocks;
    for (;;)
    {
        if (holdBytes(blocks, plyLineLimit + 1) == 0)
            return false;
        *blocks->end = reader->lineEnd;
        line->start = line->at = blocks->at;
        line->words = 0;
        line->lineEnd = reader->lineEnd;
        while (isBlankOrLineEnd(*line->at) && *line->at != line->lineEnd)
            ++line->at;
        if (*line->at != line->lineEnd)
            return true;
        if (!endPlyLine(reader, line))
            return false;
    }
}

bool endPlyLine(PlyReader* reader, PlyLine* line)
{
    BlockSource* blocks = &reader->cursor.blocks;
    const char* blockEnd = blocks->end;
    auto room = static_cast<size_t>(blockEnd + 1 - line->at);
    const char* end =
        *line->at == line->lineEnd ? line->at : static_cast<const char*>(memchr(line->at, line->lineEnd, room));
    end += end < blockEnd; // the last line may lack its line end
    auto bytes = static_cast<size_t>(end - line->start);
    if (bytes > plyLineLimit)
        return false;
    blocks->at += bytes;
    return true;
}

bool nextPlyWord(PlyLine* line, PlyWord* word)
{
    const char* at = line->at;
    char lineEnd = line->lineEnd;
    while (isBlankOrLineEnd(*at) && *at != lineEnd)
        ++at;
    line->at = at;
    if (*at == lineEnd || line->words == plyWordLimit)
        return false;
    ++line->words;
    if (*at == '"')
    {
        word->text = ++at;
        while (*at != '"' && *at != lineEnd)
            ++at;
        word->end = at;
        line->at = at + (*at == '"');
        return true;
    }
    word->text = at;
    while (!isBlankOrLineEnd(*at))
        ++at;
    word->end = line->at = at;
    return true;
}

static bool isWord(const PlyWord& word, const char* text)
{
    size_t length = strlen(text);
    return static_cast<size_t>(word.end - word.text) == length && memcmp(word.text, text, length) == 0;
}

// A position in the header line that has just been taken.
static int64_t headerByte(const PlyReader* reader)
{
    return bytePosition(&reader->cursor) - 1;
}

static bool failHeader(const PlyReader* reader, const char* cause)
{
    return failReading(reader->report, headerByte(reader), "header: %s", cause);
}

static void copyWord(const PlyReader* reader, char (&name)[plyNameRoom], const PlyWord& word)
{
    auto length = static_cast<size_t>(word.end - word.text);
    note(reader->report, namesCut, headerByte(reader), length >= plyNameRoom);
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

// The words of a header line that have a meaning, and how many it has.
struct HeaderLine
{
    PlyWord words[5];
    int32_t count;
};

static bool nextHeaderLine(PlyReader* reader, HeaderLine* header, bool* tooLong)
{
    PlyLine line;
    PlyWord word;
    header->count = 0;
    *tooLong = false;
    if (!nextPlyLine(reader, &line))
    {
        *tooLong = bytesLeft(&reader->cursor) > 0;
        return false;
    }
    for (; nextPlyWord(&line, &word); ++header->count)
    {
        if (header->count < 5)
            header->words[header->count] = word;
    }
    *tooLong = !endPlyLine(reader, &line);
    return !*tooLong;
}

static bool readFormat(PlyReader* reader, const HeaderLine& line)
{
    static constexpr const char* names[] = { "ascii", "binary_big_endian", "binary_little_endian" };
    if (line.count != 3)
        return failHeader(reader, "a format has three words");
    reader->version = plyWordReal(line.words[2]);
    int format = plyAscii;
    for (const char* name : names)
    {
        if (isWord(line.words[1], name))
        {
            reader->format = format;
            return true;
        }
        ++format;
    }
    return failHeader(reader, "the format is not ascii, binary_big_endian or binary_little_endian");
}

static bool readElement(PlyReader* reader, const HeaderLine& line)
{
    if (line.count < 3)
        return failHeader(reader, "an element has three words");
    if (reader->format == plyNoFormat)
        return failHeader(reader, "an element before the format");
    if (reader->elementCount == plyElementLimit)
        return failHeader(reader, "more than 64 elements");
    PlyElement* element = &reader->elements[reader->elementCount++];
    copyWord(reader, element->name, line.words[1]);
    element->propertyCount = 0;
    element->count = plyWordWhole(line.words[2]);
    return true;
}

static bool readProperty(PlyReader* reader, const HeaderLine& line)
{
    if (line.count < 3 || reader->elementCount == 0)
        return failHeader(reader,
                          line.count < 3 ? "a property has three words" : "a property before the first element");
    PlyElement* element = &reader->elements[reader->elementCount - 1];
    if (element->propertyCount == plyPropertyLimit)
        return failHeader(reader, "more than 64 properties of an element");
    PlyProperty* property = &element->properties[element->propertyCount++];
    property->field = plyUnwanted;
    property->countType = plyInt8;
    if (isWord(line.words[1], "list"))
    {
        if (line.count < 5)
            return failHeader(reader, "a list property has five words");
        property->kind = plyList;
        property->countType = typeNamed(line.words[2]);
        property->type = typeNamed(line.words[3]);
        copyWord(reader, property->name, line.words[4]);
        return true;
    }
    bool isString = isWord(line.words[1], "string");
    property->kind = isString ? plyString : plyScalar;
    property->type = isString ? plyInt8 : typeNamed(line.words[1]);
    copyWord(reader, property->name, line.words[2]);
    return true;
}

// The end of the file also ends the header. Comments and unknown lines are ignored.
bool readPlyHeader(PlyReader* reader)
{
    HeaderLine line;
    bool tooLong;
    if (!nextHeaderLine(reader, &line, &tooLong) || !isWord(line.words[0], "ply"))
        return failReading(reader->report, 0, "the first word is not \"ply\"");
    while (nextHeaderLine(reader, &line, &tooLong))
    {
        const PlyWord& keyword = line.words[0];
        bool ok = true;
        if (isWord(keyword, "end_header"))
            return true;
        if (isWord(keyword, "format"))
            ok = readFormat(reader, line);
        else if (isWord(keyword, "element"))
            ok = readElement(reader, line);
        else if (isWord(keyword, "property"))
            ok = readProperty(reader, line);
        if (!ok)
            return false;
    }
    if (tooLong)
        return failHeader(reader, "a line is longer than 4095 bytes");
    noteDetail(reader->report, readingEndedEarly, bytePosition(&reader->cursor), "the header has no end_header");
    return true;
}
