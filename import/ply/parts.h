// import/ply/parts.h - what the parts of the PLY reader share: the header's tables, lines and words, values, lists
//
// A header lists elements in the order of their data, each with its number of instances and its properties. In ASCII
// files an instance is a line; in binary ones its properties follow each other without gaps.
#pragma once
#include "import/common/byte_cursor.h"
#include "import/common/numbers.h"
#include "import/common/sanitize.h"
#include "model/mesh.h"
#include "model/report.h"

constexpr int32_t plyElementLimit = 64;
constexpr int32_t plyPropertyLimit = 64; // of one element
constexpr size_t plyNameRoom = 31;       // longer names are cut
constexpr size_t plyLineLimit = 4095;    // bytes of a line, its end included
constexpr int32_t plyWordLimit = 256;    // of one line; the words after them are ignored
constexpr int32_t plyFirstListCapacity = 32;

enum PlyFormat
{
    plyNoFormat = 0,
    plyAscii = 1,
    plyBigEndian = 2,
    plyLittleEndian = 3
};

enum PlyType : uint8_t
{
    plyUnknown = 0, // any other name: its values are 0 and take no bytes or words
    plyInt8 = 1,
    plyInt16 = 2,
    plyInt32 = 3,
    plyUint8 = 4,
    plyUint16 = 5,
    plyUint32 = 6, // read as signed
    plyFloat32 = 7,
    plyFloat64 = 8
};
constexpr size_t plyTypeBytes[] = { 0, 1, 2, 4, 1, 2, 4, 4, 8 };

enum PlyKind : uint8_t
{
    plyScalar = 0,
    plyList = 1,
    plyString = 2
};

// Where a wanted value is stored.
enum PlyField : uint8_t
{
    plyX,
    plyY,
    plyZ,
    plyRed,
    plyGreen,
    plyBlue,
    plyAlpha,
    plyUnwanted,
    plyIgnoredList // a list that does not count, because another one was chosen
};

struct PlyProperty
{
    char name[plyNameRoom];
    PlyType type;      // of the value, or of a list's items
    PlyType countType; // of a list's length
    PlyKind kind;
    PlyField field;
};

struct PlyElement
{
    char name[plyNameRoom];
    int32_t count;
    int32_t propertyCount;
    PlyProperty properties[plyPropertyLimit];
};

// A vertex while it is read; its colours start at 255.
struct PlyVertex
{
    float position[3];
    int32_t colour[4]; // red, green, blue, alpha
};

struct PlyReader
{
    char lineEnd;
    int32_t format; // PlyFormat
    float version;
    int32_t elementCount;
    PlyElement elements[plyElementLimit];

    int32_t* list; // the last list read, of any property: a later list of the same instance replaces it
    int32_t listCount;
    int32_t listCapacity;
    int64_t sizelessLeft; // how many more items of unknown type, which take no bytes, lists may have

    int32_t progressCount; // vertices, faces and strip steps since the bar last moved
    bool verticesRead, faceListRead, stripsRead;
    int32_t badValues;      // values of vertices set to 0 that the report does not have yet
    int32_t missingValues;  // words without a number, in the same way
    const char* wantedList; // of a face; null: the last one
    Report* report;         // null: none
    bool normals;           // are computed
    int32_t normalsDone;    // the normals of this many faces have been added to their vertices

    ByteCursor cursor;
};

// One value as a whole number and as a float. A float is truncated toward zero for its whole number.
struct PlyNumber
{
    int32_t whole;
    float real;
};

struct PlyWord
{
    const char* text;
    const char* end;
};

// A line, read in place in the block. Up to lineEnd, blanks separate words. A word in double quotes ends at the next
// double quote or the line's end.
struct PlyLine
{
    const char* start;
    const char* at;
    int32_t words; // words taken so far
    char lineEnd;
};

// nextPlyLine finds the next line that is not blank. It returns false at the end of the file and for a line that is too
// long. endPlyLine takes the rest of the line; it returns false when the line is too long.
bool nextPlyLine(PlyReader* reader, PlyLine* line);
bool endPlyLine(PlyReader* reader, PlyLine* line);

// Returns false when the line has no more words. The byte after a word cannot continue a number, and the text is padded
// for fast number reading.
bool nextPlyWord(PlyLine* line, PlyWord* word);

// The number at the beginning of a word, as scanf takes it; 0 when there is none.
inline const char* plyNumberStart(const PlyWord& word)
{
    const char* at = word.text;
    while (at < word.end && isSpace(*at))
        ++at;
    return at;
}

inline int32_t plyWordWhole(const PlyWord& word)
{
    int32_t value = 0;
    scanIntPadded(plyNumberStart(word), &value);
    return value;
}

inline float plyWordReal(const PlyWord& word)
{
    float value = 0;
    scanFloatPadded(plyNumberStart(word), &value);
    return value;
}

// findPlyLineEnd finds out which byte ends a line. readPlyHeader reads the header and the line end after "end_header".
// They return false for a file that has none.
bool findPlyLineEnd(PlyReader* reader);
bool readPlyHeader(PlyReader* reader);

// The smallest number of bytes that an instance takes.
int64_t plyInstanceBytes(const PlyReader* reader, const PlyElement& element);

// Whether the file can hold the instances that an element announces. A real file writes at least a byte for each
// property and instance, so those that take no bytes are limited to one for each byte of the file.
bool plyCountPossible(const PlyReader* reader, const PlyElement& element);

// Moves what the scanners have counted into the report, for values of the instance before a position of the file.
void notePlyValues(PlyReader* reader, int64_t byte);

// Counts a face with a corner that is not a vertex; in a file whose faces come first no corner is.
void notePlyFaces(PlyReader* reader, int64_t byte, int64_t count);

// Reads one instance. The list is emptied first. With a null vertex no value is stored. Returns false for a short read,
// for a line that is too long or has too few words, and for a list length that is negative or more than the file can
// hold.
bool readPlyInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex);

// Take the instances that make up nearly all lines of an ASCII file: three numbers for a position, or a 3 and three
// numbers for a triangle, with single blanks between them. They stop at the first other line or after `most` lines and
// return how many they took; readPlyInstance reads the line where they stopped. The faces must have room. A triangle
// with a corner index past the last vertex is dropped.
int32_t takePlainPositions(PlyReader* reader, MeshVertex* vertices, int32_t most);
int32_t takePlainTriangles(PlyReader* reader, Mesh* mesh, int32_t most);

inline void storePlyNumber(PlyVertex* vertex, PlyField field, PlyNumber number)
{
    if (field <= plyZ)
        vertex->position[field] = number.real;
    else if (field <= plyAlpha)
        vertex->colour[field - plyRed] = number.whole;
}

inline PlyNumber plyWhole(int32_t whole)
{
    return { whole, static_cast<float>(whole) };
}

// These two count bad values in *bad.
inline PlyNumber plyReal(float value, int32_t* bad)
{
    *bad += !SanitizeFloat(&value);
    return { static_cast<int32_t>(value), value };
}

// The rule of SanitizeFloat, for the exponent of a double.
inline PlyNumber plyReal64(uint64_t bits, int32_t* bad)
{
    uint64_t exponent = (bits >> 52) & 0x7FF;
    bool tooLarge = exponent >= 1023 + coordinateExponentLimit;
    *bad += tooLarge;
    if (exponent == 0 || tooLarge)
        bits = 0;
    auto value = bitCast<double>(bits);
    return { static_cast<int32_t>(value), static_cast<float>(value) };
}

template <typename T>
inline T plyLoad(const uint8_t* bytes, bool swap)
{
    T value;
    memcpy(&value, bytes, sizeof value);
    if constexpr (sizeof(T) == 2)
        return swap ? static_cast<T>(__builtin_bswap16(value)) : value;
    else if constexpr (sizeof(T) == 4)
        return swap ? __builtin_bswap32(value) : value;
    else
        return swap ? __builtin_bswap64(value) : value;
}

inline float plyLoadFloat(const uint8_t* bytes, bool swap)
{
    return bitCast<float>(plyLoad<uint32_t>(bytes, swap));
}

// Reads a value of a binary file, and counts a bad one in *bad. swap: its byte order is not that of the machine.
inline PlyNumber decodePlyNumber(PlyType type, const uint8_t* bytes, bool swap, int32_t* bad)
{
    switch (type)
    {
    case plyInt8: return plyWhole(static_cast<int8_t>(*bytes));
    case plyUint8: return plyWhole(*bytes);
    case plyInt16: return plyWhole(static_cast<int16_t>(plyLoad<uint16_t>(bytes, swap)));
    case plyUint16: return plyWhole(plyLoad<uint16_t>(bytes, swap));
    case plyInt32:
    case plyUint32: return plyWhole(static_cast<int32_t>(plyLoad<uint32_t>(bytes, swap)));
    case plyFloat32: return plyReal(plyLoadFloat(bytes, swap), bad);
    case plyFloat64: return plyReal64(plyLoad<uint64_t>(bytes, swap), bad);
    case plyUnknown: break;
    }
    return { 0, 0 };
}
