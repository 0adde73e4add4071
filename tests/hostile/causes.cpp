// tests/hostile/causes.cpp - the table of causes
#include "tests/hostile/causes.h"

#include <string.h>
#include <algorithm>

// Numbers that are read as they stand. What follows the longest number of a word is skipped, as scanf does it.
static const std::string harmlessNumbers =
    "(1e-38|1e-45|1e-400|-0|0x1p3|1048575\\.9|1e|1e\\+|1\\.\\.2|1,5|0\\.0000000000000000000000000000)";
static const std::string harmlessFloats = "the float (1|8388607|2147483648|1233125375)";

// Integers whose low 32 bits mean a vertex of four.
static const std::string wrapped = "4294967295|4294967296|4294967297|9223372036854775807|99999999999999999999";

static const std::string none = "(?!)", any = ".*";

static const ExpectedCauses allCauses[] = {
    // ----- OBJ
    // the third number of a corner is a normal, which is not read
    { "obj",
      "index",
      { facesBadCorners, facesRepeatedCorners, facesTooFewCorners, cornersRepeated, uvIndicesReset },
      {},
      "place [25] is .*|place [0-7] is (0|1|2|3|4|-1|-4|1e3|0x2|\\+2|1\\.9||" + wrapped + ")" },
    { "obj", "number", { valuesZeroed, numbersMissing }, {}, "place [0-2] is " + harmlessNumbers },
    { "obj",
      "limit",
      { facesTooManyCorners, facesTooFewCorners, cornersRepeated, groupsPastLimit, materialsPastLimit, namesCut,
        numbersMissing, libraryMissing },
      { "reading ended early" },
      "0 corners|51[12] names|(g|usemtl)  of 6[23] bytes|[#o]  ?of .* bytes" },
    { "obj", "flood", {}, { "no vertex", "reading ended early" }, "one vertex in every face" },
    { "obj",
      "order",
      { facesBadCorners, cornersRepeated, uvIndicesReset, valuesZeroed, librariesIgnored, libraryMissing },
      { "for a corner that is not a vertex" },
      any },
    { "obj",
      "encoding",
      { facesBadCorners, facesTooFewCorners, cornersRepeated, uvIndicesReset, valuesZeroed, numbersMissing,
        readingEndedEarly, libraryMissing },
      { "no vertex", "no face and no line", "byte order mark" },
      any },
    { "obj",
      "cut",
      { facesBadCorners, valuesZeroed, lineUnended, libraryMissing },
      { "no vertex", "no face and no line", "the file is empty" },
      none },
    // ----- OFF
    { "off",
      "count",
      { facesBadCorners, facesTooFewCorners, readingEndedEarly, restIgnored },
      { "vertices announced, with", "the counts are missing" },
      "place 2 is .*|place 0 is (3|4|4294967300)" },
    { "off", "index", { facesBadCorners, facesRepeatedCorners }, {}, "place [0-2] is (0|3|\\+2|4294967296)" },
    { "off",
      "number",
      { valuesZeroed, numbersMissing, linesTooLong, facesBadCorners, facesTooFewCorners, restIgnored },
      {},
      "place [01] is " + harmlessNumbers },
    { "off", "limit", { linesTooLong, facesRepeatedCorners, facesTooFewCorners }, {}, "a line of 25[345] bytes" },
    { "off", "flood", {}, { "the first line is not \"OFF\"" }, none },
    { "off",
      "order",
      { facesBadCorners, facesCut, facesTooFewCorners, readingEndedEarly, restIgnored },
      { "vertices announced, with", "the counts are missing", "the first line is not \"OFF\"" },
      none },
    { "off",
      "encoding",
      { facesBadCorners, facesCut, facesTooFewCorners, linesTooLong, numbersMissing, readingEndedEarly, restIgnored },
      { "the first line is not \"OFF\"", "byte order mark" },
      none },
    { "off",
      "cut",
      { facesBadCorners, facesCut, facesTooFewCorners, numbersMissing, readingEndedEarly },
      { "the file is empty", "the first line is not \"OFF\"", "the counts are missing", "vertices announced, with",
        "the vertices end after" },
      none },
    // ----- DXF: any other line makes a face another kind of entity
    { "dxf", "index", {}, { "3DFACE that is not plain" }, "place 1 is 0" },
    { "dxf", "number", { valuesZeroed, numbersMissing }, {}, "place [01] is " + harmlessNumbers },
    { "dxf", "limit", {}, { "lines too long" }, "a layer name of 204[56] bytes" },
    { "dxf", "flood", {}, { "reading ended early" }, "equal corners" },
    { "dxf", "order", { entitiesIgnored, readingEndedEarly }, { "3DFACE that is not plain" }, any },
    { "dxf",
      "encoding",
      { entitiesIgnored, linesTooLong, numbersMissing },
      { "reading ended early", "byte order mark" },
      any },
    { "dxf", "cut", { entitiesIgnored, readingEndedEarly }, { "reading ended early" }, none },
    // ----- Poser: sets are not read, and fewer vertices than announced are no mistake
    { "pp2",
      "count",
      {},
      { "numbVerts without", "numbTVerts without", "numbElems without", "than numbTVerts announces",
        "no geometry in the file itself" },
      any },
    { "pp2",
      "index",
      { facesBadCorners, cornersRepeated, uvIndicesReset },
      {},
      "place [0-3] is (0|1|3|4|-1|-4|1e3|0x2|\\+2|1\\.9||" + wrapped + ")" },
    { "pp2", "number", { valuesZeroed }, { "with fewer than" }, "place [0-5] is " + harmlessNumbers },
    { "pp2",
      "limit",
      { groupsPastLimit, materialsPastLimit, namesCut },
      { "a word or line of more than" },
      "a name of .* bytes|51[12] names" },
    { "pp2",
      "nesting",
      {},
      { "a word or line of more than", "no geometry in the file itself", "the file ends inside a block" },
      "quotes without an end" },
    { "pp2",
      "flood",
      {},
      { "than numbVerts announces", "no geometry in the file itself" },
      "many small blocks|a growing face count" },
    { "pp2",
      "order",
      { facesBadCorners, texturesMissing, uvIndicesReset },
      { "announces", "no geometry in the file itself", "the file ends inside a block" },
      any },
    { "pp2",
      "encoding",
      { facesBadCorners, texturesMissing },
      { "a word or line of more than", "no geometry in the file itself", "the file ends inside a block",
        "byte order mark" },
      any },
    { "pp2", "cut", {}, { "the file ends inside a block" }, none },
    { "cr2",
      "order",
      { facesBadCorners, texturesMissing, uvIndicesReset },
      { "announces", "no geometry in the file itself", "the file ends inside a block" },
      any },
    { "cr2",
      "encoding",
      { texturesMissing },
      { "announces", "with fewer than", "a word or line of more than", "no geometry in the file itself",
        "the file ends inside a block", "byte order mark" },
      any },
    { "cr2", "cut", {}, { "the file ends inside a block" }, none },
    // ----- PLY
    { "ply",
      "count",
      { facesTooFewCorners, numbersMissing, restIgnored },
      { "do not fit in the file", "words", "reaches past the end", "negative length", "ends after", "fewer than" },
      "place [01] is (3|1|1e9)|a list (of 3|without bytes of (3|4|5|255|256))" },
    { "ply",
      "index",
      { facesBadCorners, numbersMissing },
      { "too few words" },
      "place [0-2] is (0|1|3|1e3|0x2|\\+2|1\\.9|" + wrapped +
          ")|the (short )?(binary|big-endian) index [013]|"
          "the short binary index (65536|1048576|535822336|536870912|1073741824|2147483648)" },
    { "ply",
      "number",
      { valuesZeroed, numbersMissing },
      { "too few words" },
      "place [01] is " + harmlessNumbers + "|" + harmlessFloats },
    { "ply", "type", {}, { "words", "the format is not" }, "a list of int int int" },
    { "ply",
      "limit",
      { elementsIgnored, facesTooFewCorners, listsIgnored, namesCut, restIgnored },
      { "is longer than", "words", "more than" },
      "6[234] elements|a property name of (29|30) bytes|a comment of .* bytes|25[456] words in a line" },
    { "ply", "flood", {}, { "ends after", "more than" }, none },
    { "ply",
      "order",
      { elementsIgnored, facesTooFewCorners, numbersMissing, restIgnored },
      { "do not fit in the file", "too few words", "before the first element", "a second list", "before the format",
        "ends after", "the first word is not \"ply\"" },
      any },
    { "ply",
      "encoding",
      { elementsIgnored, facesTooFewCorners, readingEndedEarly, restIgnored },
      { "is longer than", "too few words", "have no line end", "the first word is not \"ply\"", "byte order mark" },
      any },
    { "ply",
      "cut",
      { readingEndedEarly },
      { "the file is empty", "shorter than 256 bytes", "do not fit in the file", "words", "ends after" },
      none },
    // ----- 3DS: lengths of the chunks in a material are not needed to read it
    { "3ds",
      "count",
      { facesBadCorners, materialsMissing, chunksPastParent, chunksTooShort },
      { "does not hold what it should", "no vertex" },
      "(0|1|65536|1048576|535822336|536870912|1073741824|2147483648) faces( of a material)?|[34] vertices" },
    { "3ds", "index", { facesBadCorners, facesRepeatedCorners, materialsMissing }, {}, "corner 3" },
    { "3ds", "number", { valuesZeroed }, {}, harmlessFloats },
    { "3ds",
      "limit",
      { groupsPastLimit },
      { "does not hold what it should" },
      "a name of 3[345] bytes|51[012] objects" },
    { "3ds",
      "length",
      { chunksPastParent, chunksTooShort, materialsMissing, readingEndedEarly, texturesMissing },
      { "a chunk of length", "the file ends inside chunk", "does not hold what it should", "no vertex" },
      any },
    { "3ds", "nesting", {}, { "no vertex" }, none },
    { "3ds", "flood", {}, { "no vertex", "does not hold what it should" }, none },
    { "3ds", "cut", {}, { "the file is empty", "the file ends inside chunk", "does not hold what it should" }, none },
    // ----- STL: the numbers of a normal are not read
    { "stl",
      "count",
      { restIgnored, facesDegenerate, valuesZeroed },
      { "do not fit in the file", "no triangle" },
      none },
    { "stl", "number", { valuesZeroed, facesBadCorners, facesDegenerate, readingEndedEarly }, {}, none },
    { "stl",
      "limit",
      { facesTooFewCorners, facesCut, facesDegenerate, valuesZeroed, readingEndedEarly },
      { "no triangle" },
      none },
    { "stl", "flood", {}, { "no triangle" }, none },
    { "stl",
      "order",
      { facesTooFewCorners, facesCut, facesDegenerate, valuesZeroed, readingEndedEarly },
      { "the first word is not \"solid\"" },
      none },
    { "stl",
      "encoding",
      { facesBadCorners, facesDegenerate, valuesZeroed, readingEndedEarly },
      { "the first word is not \"solid\"", "no triangle", "byte order mark" },
      none },
    { "stl",
      "cut",
      { valuesZeroed, readingEndedEarly },
      { "the file is empty", "neither text nor", "the first word is not \"solid\"", "no triangle" },
      "cut after 266 bytes" }, // in the name after "endsolid"
    // ----- RKF
    { "rkf",
      "count",
      { restIgnored, materialsMissing },
      { "do not fit in the file", "a count below 0", "more than 512 materials", "a corner that is not a vertex" },
      "header word 0 is 4" },
    // the upper bits of a first corner are a material, and a last corner may be absent
    { "rkf",
      "index",
      { materialsMissing },
      { "has a corner that is not a vertex" },
      "corner [0-7] is [013]|corner [04] is (1048576|536870912|1073741824|2147483648)|"
      "corner [2367] is (-1|4294967295)" },
    { "rkf", "number", { valuesZeroed }, {}, harmlessFloats },
    { "rkf", "cut", {}, { "do not fit in the file", "shorter than its header" }, none },
    // ----- JPEG: most values of a table or of an application segment only change how the picture looks
    { "jpg",
      "length",
      { pictureDamaged },
      { "the length of", "with the number", "is missing", "a Huffman table of", "ends before its image data" },
      "the segment at 2 is .*|the segment at 424 is 4 long" },
    { "jpg",
      "value",
      { pictureDamaged, readingEndedEarly, restIgnored },
      { "the length of", "a Huffman table of", "sampling factors", "is not in the frame", "is missing",
        "has impossible codes", "with the number", "bits a sample", "a picture of", "a picture without components" },
      any },
    { "jpg",
      "order",
      { pictureDamaged, readingEndedEarly, restIgnored },
      { "does not begin with FF D8", "marker FF D8", "is missing", "a second frame", "a scan without a frame",
        "the end marker comes before any image data", "ends inside its image data" },
      "part [1-4] .*|part [58] twice" },
    { "jpg", "cut", {}, { "the file is empty", "ends before its image data", "ends inside its image data" }, none },
    { "jpg",
      "type",
      {},
      { "a progressive JPEG file", "an arithmetic-coded JPEG file", "which no baseline file has",
        "the length of a Huffman table", "a scan without a frame" },
      "frame 19[23]" },
    { "jpg", "count", { readingEndedEarly, restIgnored }, { "a picture of", "more than 65500 on a side" }, none },
    { "jpg", "flood", {}, { "ends before its image data" }, "empty comments" },
};

const ExpectedCauses* expectedCauses(const HostileFile& file)
{
    for (const ExpectedCauses& row : allCauses)
    {
        if (file.extension == row.extension && file.kind == row.kind)
            return &row;
    }
    return nullptr;
}

// The reason of a failure with the texts of what explains it.
static std::string wholeReason(const Report& report)
{
    std::string text = report.failure;
    for (int kind = 0; kind < reportKindCount && report.entriesExplain; ++kind)
    {
        if (report.entries[kind].count > 0)
            text += std::string("; ") + reportText(static_cast<ReportKind>(kind));
    }
    for (int32_t i = 0; i < report.nameCount && report.entriesExplain; ++i)
        text += std::string("; ") + report.names[i].name;
    return text;
}

std::string unexpectedIn(const Report& report, const HostileFile& file, const ExpectedCauses& expected)
{
    if (report.failure[0])
    {
        std::string reason = wholeReason(report);
        bool known = std::any_of(expected.failures.begin(), expected.failures.end(),
                                 [&reason](const char* words) { return reason.find(words) != std::string::npos; });
        return known ? "" : reason;
    }
    bool silent = true;
    for (int i = 0; i < reportKindCount; ++i)
    {
        auto kind = static_cast<ReportKind>(i);
        if (report.entries[i].count == 0)
            continue;
        silent = false;
        if (std::find(expected.warnings.begin(), expected.warnings.end(), kind) == expected.warnings.end())
            return reportKey(kind);
    }
    return silent && !std::regex_match(file.detail, std::regex(expected.silent)) ? "nothing" : "";
}
