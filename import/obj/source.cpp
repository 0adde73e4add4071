// import/obj/source.cpp - finding statements, a byte at a time or in whole lines
#include "import/obj/source.h"

#include "import/common/plain_lines.h"
#include "platform/files.h"

size_t objBlockBytes = objLargestBlock;

static char storage[plainFront + objLargestBlock + plainPadding];
static char* const block = storage + plainFront;

// Neither a keyword nor an argument: the scan goes on after it.
constexpr int objDropped = -1;

static bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

static bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

int openObjSource(ObjSource* source, const char* path)
{
    source->file = openFile(path, "rb");
    if (!source->file)
        return 0;
    setvbuf(source->file, nullptr, _IONBF, 0); // blocks go straight to where they are looked at
    source->sizeBytes = measureFile(source->file);
    source->readBytes = 0;
    source->at = source->blockEnd = source->linesEnd = block;
    source->ended = source->copied = false;
    if (source->sizeBytes > 0)
        return 1;
    closeObjSource(source);
    return 0;
}

void closeObjSource(ObjSource* source)
{
    fclose(source->file);
    source->file = nullptr;
}

static int readBlock(ObjSource* source)
{
    if (source->ended)
        return 0;
    size_t came = fread(block, 1, objBlockBytes, source->file);
    source->ended = came < objBlockBytes;
    source->readBytes += static_cast<int64_t>(came);
    source->at = block;
    source->blockEnd = source->linesEnd = block + came;
    while (source->linesEnd > block && !isLineEnd(source->linesEnd[-1]))
        --source->linesEnd;
    return came > 0;
}

int ReadObjChar(ObjSource* source, char* out)
{
    if (source->at == source->blockEnd && !readBlock(source))
        return 0;
    *out = *source->at++;
    return 1;
}

int64_t objPosition(const ObjSource* source)
{
    int64_t taken = source->readBytes - (source->blockEnd - source->at);
    int64_t position = (taken + 4095) / 4096 * 4096;
    return position < source->sizeBytes ? position : source->sizeBytes;
}

// The rest of a line whose next byte is c, its end included.
static int dropLine(ObjSource* source, char c)
{
    while (!isLineEnd(c))
    {
        if (!ReadObjChar(source, &c))
            return objEnd;
    }
    return objDropped;
}

// What follows a long keyword's first letter. A byte that does not fit is taken and the rest of the line is looked at
// as if it were a new one, on purpose.
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

// What follows a keyword of one letter, or of that letter and a second one.
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

// Copies an argument together. Returns its kind, objEmpty when there is none, objEnd when it has no end.
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
        if (length == objTextRoom || !ReadObjChar(source, &c))
            return objEnd;
    }
    source->text[length] = 0;
    source->copied = true;
    return kind;
}

// One statement, or one line that is none, byte by byte: the meaning of the scan.
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

// Eight bytes at a time; few bytes of a text lie below 14.
const char* findObjLineEnd(const char* at)
{
    for (;;)
    {
        uint64_t bytes = loadEight(at);
        uint64_t low = (bytes - 0x0E0E0E0E0E0E0E0E) & ~bytes & 0x8080808080808080;
        if (!low)
        {
            at += 8;
            continue;
        }
        at += __builtin_ctzll(low) >> 3;
        if (isLineEnd(*at))
            return at;
        ++at;
    }
}

// What follows a keyword and its separator. The line's end is in the block.
static int beginArgument(ObjSource* source, const char* at, int kind, const char** text)
{
    while (isBlank(*at))
        ++at;
    source->at = at;
    source->copied = false;
    *text = at;
    if (!isLineEnd(*at))
        return kind;
    ++source->at;
    return objEmpty;
}

// matchKeyword where the line's end is in the block.
static int matchKeywordInLine(ObjSource* source, const char* at, const char* keyword, int kind, const char** text)
{
    while (*keyword && *at == *keyword)
    {
        ++at;
        ++keyword;
    }
    if (*keyword == 0 && isBlank(*at))
        return beginArgument(source, at + 1, kind, text);
    source->at = at + 1;
    return objDropped;
}

// scanBytes where the line's end is in the block: source->at lies before linesEnd.
static int scanLine(ObjSource* source, const char** text)
{
    const char* at = source->at;
    while (isBlank(*at) || isLineEnd(*at))
    {
        if (++at == source->linesEnd)
        {
            source->at = at;
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
    source->at = findObjLineEnd(at) + 1;
    return objDropped;
}

int NextObjStatement(ObjSource* source, const char** text)
{
    int kind;
    do
    {
        if (source->at < source->linesEnd)
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
    const char* end = isLineEnd(*at) ? at : findObjLineEnd(at);
    if (end - source->at >= objTextRoom)
        return 0;
    source->at = end + 1;
    return 1;
}
