// import/obj/source.cpp - finding statements, a byte at a time or in whole lines
#include "import/obj/parts.h"

#include "platform/files.h"

// Neither a keyword nor an argument: the scan continues after it.
constexpr int objDropped = -1;

int openObjSource(ObjSource* source, const char* path, size_t blockBytes, Report* report)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    startBlocks(&source->blocks, file, blockBytes);
    source->linesEnd = source->blocks.at;
    source->copied = false;
    source->report = report;
    if (source->blocks.sizeBytes > 0)
        return 1;
    failReading(report, -1, "the file is empty");
    closeObjSource(source);
    return 0;
}

void closeObjSource(ObjSource* source)
{
    fclose(source->blocks.file);
    source->blocks.file = nullptr;
}

// By now the old block has no unread bytes: a statement that runs across two blocks has been copied.
static bool nextBlock(ObjSource* source)
{
    BlockSource* blocks = &source->blocks;
    size_t held = holdBytes(blocks, 1);
    source->linesEnd = blocks->end;
    while (source->linesEnd > blocks->at && !isLineEnd(source->linesEnd[-1]))
        --source->linesEnd;
    return held > 0;
}

int ReadObjChar(ObjSource* source, char* out)
{
    BlockSource* blocks = &source->blocks;
    if (blocks->at == blocks->end && !nextBlock(source))
        return 0;
    *out = *blocks->at++;
    return 1;
}

int64_t objPosition(const ObjSource* source)
{
    int64_t position = (blockPosition(&source->blocks) + 4095) / 4096 * 4096;
    return position < source->blocks.sizeBytes ? position : source->blocks.sizeBytes;
}

// Skips the rest of a line whose next byte is c, including its line end.
static int dropLine(ObjSource* source, char c)
{
    while (!isLineEnd(c))
    {
        if (!ReadObjChar(source, &c))
            return objEnd;
    }
    return objDropped;
}

// Matches what follows the first letter of a long keyword. A byte that does not match is consumed, and the rest of the
// line is read like a new line. The scan cannot go back, because that byte may be the last one of a block.
static int matchKeyword(ObjSource* source, const char* rest, int kind)
{
    char c;
    for (; *rest; ++rest)
    {
        if (!ReadObjChar(source, &c))
            return objEnd;
        if (c != *rest)
            return objDropped;
    }
    if (!ReadObjChar(source, &c))
        return objEnd;
    return isBlank(c) ? kind : objDropped;
}

// Matches what follows a keyword of one letter, or of that letter and a second one.
static int matchLetter(ObjSource* source, int kind, char second, int secondKind)
{
    char c;
    if (!ReadObjChar(source, &c))
        return objEnd;
    if (second && c == second)
    {
        kind = secondKind;
        if (!ReadObjChar(source, &c))
            return objEnd;
    }
    return isBlank(c) ? kind : dropLine(source, c);
}

static int matchStatement(ObjSource* source, char first)
{
    switch (first)
    {
    case 'v': return matchLetter(source, objVertex, 't', objUv);
    case 'f': return matchLetter(source, objPolygon, 'o', objPolygon);
    case 'g': return matchLetter(source, objGroup, 0, 0);
    case 'l': return matchLetter(source, objPolyline, 0, 0);
    case 'u': return matchKeyword(source, "semtl", objMaterial);
    case 'm': return matchKeyword(source, "tllib", objLibrary);
    default: return dropLine(source, first);
    }
}

// A statement whose text does not fit ends the reading, as if the file ended before it.
static int endAtLongLine(ObjSource* source)
{
    noteDetail(source->report, readingEndedEarly, blockPosition(&source->blocks), "a line is longer than %d bytes",
               objTextRoom - 1);
    return objEnd;
}

// Copies an argument. Returns its kind, objEmpty when there is no argument, or objEnd when it has no end.
static int copyArgument(ObjSource* source, int kind)
{
    char c;
    do
    {
        if (!ReadObjChar(source, &c))
            return objEnd;
    } while (isBlank(c));
    if (isLineEnd(c))
        return objEmpty;
    int length = 0;
    while (!isLineEnd(c))
    {
        source->text[length++] = c;
        if (length == objTextRoom)
            return endAtLongLine(source);
        if (ReadObjChar(source, &c))
            continue;
        note(source->report, lineUnended, blockPosition(&source->blocks));
        return objEnd;
    }
    source->text[length] = 0;
    source->copied = true;
    return kind;
}

// Scans one statement, or one line without a statement, byte by byte. This scan defines the results of the faster one.
static int scanBytes(ObjSource* source)
{
    char c;
    do
    {
        if (!ReadObjChar(source, &c))
            return objEnd;
    } while (isBlank(c) || isLineEnd(c));
    int kind = matchStatement(source, c);
    return kind > objEnd ? copyArgument(source, kind) : kind;
}

// Finds what follows a keyword and its separator. The line end is in the block.
static int beginArgument(ObjSource* source, const char* at, int kind, const char** text)
{
    while (isBlank(*at))
        ++at;
    bool isEmpty = isLineEnd(*at);
    readOnFrom(&source->blocks, at + isEmpty);
    source->copied = false;
    *text = at;
    return isEmpty ? objEmpty : kind;
}

// Like matchKeyword, when the line end is in the block.
static int matchKeywordInLine(ObjSource* source, const char* at, const char* keyword, int kind, const char** text)
{
    while (*keyword && *at == *keyword)
    {
        ++at;
        ++keyword;
    }
    if (*keyword == 0 && isBlank(*at))
        return beginArgument(source, at + 1, kind, text);
    readOnFrom(&source->blocks, at + 1);
    return objDropped;
}

// Like scanBytes, when the line end is in the block, before linesEnd.
static int scanLine(ObjSource* source, const char** text)
{
    const char* at = source->blocks.at;
    while (isBlank(*at) || isLineEnd(*at))
    {
        if (++at == source->linesEnd)
        {
            readOnFrom(&source->blocks, at);
            return objDropped;
        }
    }
    int kind = objDropped;
    int letters = 1;
    switch (*at)
    {
    case 'v':
        letters = at[1] == 't' ? 2 : 1;
        kind = letters == 2 ? objUv : objVertex;
        break;
    case 'f':
        letters = at[1] == 'o' ? 2 : 1;
        kind = objPolygon;
        break;
    case 'g': kind = objGroup; break;
    case 'l': kind = objPolyline; break;
    case 'u': return matchKeywordInLine(source, at, "usemtl", objMaterial, text);
    case 'm': return matchKeywordInLine(source, at, "mtllib", objLibrary, text);
    }
    if (kind != objDropped && isBlank(at[letters]))
        return beginArgument(source, at + letters + 1, kind, text);
    readOnFrom(&source->blocks, findLineEnd(at) + 1);
    return objDropped;
}

int NextObjStatement(ObjSource* source, const char** text)
{
    int kind;
    do
    {
        if (source->blocks.at < source->linesEnd)
            kind = scanLine(source, text);
        else
        {
            kind = scanBytes(source);
            *text = source->text;
        }
    } while (kind == objDropped);
    return kind;
}

int endObjStatement(ObjSource* source, const char* at)
{
    if (source->copied)
        return 1;
    const char* end = isLineEnd(*at) ? at : findLineEnd(at);
    if (end - source->blocks.at >= objTextRoom)
        return endAtLongLine(source);
    readOnFrom(&source->blocks, end + 1);
    return 1;
}
