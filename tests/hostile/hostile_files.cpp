// tests/hostile/hostile_files.cpp - the mistakes in each format
#include "tests/hostile/hostile_files.h"

#include "tests/image/jpeg_builder.h"
#include "tests/samples.h"

#include <stddef.h>
#include <stdint.h>
#include <algorithm>

using Texts = std::vector<std::string>;
using Made = std::vector<HostileFile>;

// ----- the values

static const Texts indexValues = { "0",
                                   "1",
                                   "3",
                                   "4",
                                   "5",
                                   "6",
                                   "-1",
                                   "-4",
                                   "-5",
                                   "2147483647",
                                   "2147483648",
                                   "4294967295",
                                   "4294967296",
                                   "4294967297",
                                   "-2147483648",
                                   "-2147483649",
                                   "9223372036854775807",
                                   "99999999999999999999",
                                   "1e3",
                                   "nan",
                                   "0x2",
                                   "+2",
                                   "1.9",
                                   "-",
                                   "x",
                                   "" };

static const Texts countValues = { "-9223372036854775808",
                                   "-2147483648",
                                   "-1",
                                   "0",
                                   "1",
                                   "3",
                                   "4",
                                   "5",
                                   "64",
                                   "65536",
                                   "16777216",
                                   "1073741824",
                                   "2147483391",
                                   "2147483647",
                                   "2147483648",
                                   "4294967295",
                                   "4294967296",
                                   "4294967300",
                                   "1000000000000000000",
                                   "nan",
                                   "1e9",
                                   "" };

static const Texts floatValues = { "nan",
                                   "-nan",
                                   "inf",
                                   "-inf",
                                   "1e38",
                                   "-1e38",
                                   "3.5e38",
                                   "1e39",
                                   "1e400",
                                   "1e-38",
                                   "1e-45",
                                   "1e-400",
                                   "-0",
                                   "0x1p3",
                                   "0x1p200",
                                   "1048576",
                                   "1048575.9",
                                   "-1048576",
                                   ".",
                                   "-",
                                   "+",
                                   "e5",
                                   "1e",
                                   "1e+",
                                   "--1",
                                   "1..2",
                                   std::string(1000, '9'),
                                   "0." + std::string(1000, '0') + "1",
                                   "1,5",
                                   "" };

static const std::vector<int64_t> wordValues = { 0,          1,          3,          4,          5,          -1,
                                                 -2,         255,        256,        32767,      32768,      65535,
                                                 65536,      0x000FFFFF, 0x00100000, 0x1FF00000, 0x20000000, 0x3FFFFFFF,
                                                 0x40000000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF };

static const std::vector<uint32_t> floatBitsValues = { 0x7FC00000, 0xFFC00000, 0x7F800000, 0xFF800000,
                                                       0x7F7FFFFF, 0xFF7FFFFF, 0x00000001, 0x007FFFFF,
                                                       0x80000000, 0x49800000, 0x497FFFFF, 0x7F800001 };

// ----- helpers

static std::string little(int64_t value, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * i) & 0xFF);
    return text;
}

static std::string big(int64_t value, int bytes)
{
    std::string text = little(value, bytes);
    return { text.rbegin(), text.rend() };
}

static std::string floats(std::initializer_list<float> values)
{
    std::string bytes;
    for (float value : values)
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    return bytes;
}

static std::string repeated(const std::string& text, int count)
{
    std::string all;
    all.reserve(text.size() * static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

static void add(Made* made, const char* kind, const char* extension, const std::string& detail,
                const std::string& bytes)
{
    made->push_back({ kind, extension, detail, bytes });
}

// Fills each "@" of the template in turn; the others keep their value from plain[]. Gives one file for each value.
static void addFilled(Made* made, const char* kind, const char* extension, const std::string& pattern,
                      const Texts& plain, const Texts& values)
{
    for (size_t open = 0; open < plain.size(); ++open)
        for (const std::string& value : values)
        {
            std::string bytes;
            size_t place = 0;
            for (char c : pattern)
            {
                if (c != '@')
                    bytes += c;
                else
                {
                    bytes += place == open ? value : plain[place];
                    ++place;
                }
            }
            add(made, kind, extension, "place " + std::to_string(open) + " is " + value.substr(0, 30), bytes);
        }
}

static Texts linesOf(const std::string& text)
{
    Texts lines;
    size_t begin = 0;
    for (size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1)
        lines.push_back(text.substr(begin, end + 1 - begin));
    if (begin < text.size())
        lines.push_back(text.substr(begin));
    return lines;
}

static std::string joined(const Texts& lines)
{
    std::string all;
    for (const std::string& line : lines)
        all += line;
    return all;
}

static std::string replacedAll(std::string text, const std::string& from, const std::string& to)
{
    for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

// ----- classes that every text format has

// Every line swapped with its neighbour, doubled, and removed.
static void addLineOrders(Made* made, const char* extension, const std::string& sample)
{
    Texts lines = linesOf(sample);
    for (size_t i = 0; i < lines.size(); ++i)
    {
        Texts changed = lines;
        if (i + 1 < lines.size())
        {
            std::swap(changed[i], changed[i + 1]);
            add(made, "order", extension, "line " + std::to_string(i) + " after the next", joined(changed));
        }
        changed = lines;
        changed.insert(changed.begin() + static_cast<ptrdiff_t>(i), lines[i]);
        add(made, "order", extension, "line " + std::to_string(i) + " twice", joined(changed));
        changed = lines;
        changed.erase(changed.begin() + static_cast<ptrdiff_t>(i));
        add(made, "order", extension, "line " + std::to_string(i) + " missing", joined(changed));
    }
}

static std::string utf16(const std::string& text, bool bigEndian)
{
    std::string wide = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (char c : text)
        wide += bigEndian ? std::string{ 0, c } : std::string{ c, 0 };
    return wide;
}

static void addEncodings(Made* made, const char* extension, const std::string& sample)
{
    add(made, "encoding", extension, "UTF-16, little endian", utf16(sample, false));
    add(made, "encoding", extension, "UTF-16, big endian", utf16(sample, true));
    add(made, "encoding", extension, "a byte order mark", "\xEF\xBB\xBF" + sample);
    for (const char* end : { "\r", "\r\n", "\n\r", "\n\n", "\v", "\f", "\xE2\x80\xA8", " ", "" })
        add(made, "encoding", extension, "line ends of another kind", replacedAll(sample, "\n", end));
    for (size_t part = 0; part <= 8; ++part)
    {
        std::string bytes = sample;
        size_t at = sample.size() * part / 8;
        bytes.insert(at, 1, '\0');
        add(made, "encoding", extension, "a zero byte at " + std::to_string(at), bytes);
        bytes = sample;
        bytes.insert(at, 3000, ' ');
        add(made, "encoding", extension, "3,000 blanks at " + std::to_string(at), bytes);
        bytes = sample;
        bytes.insert(at, 70000, 'x');
        add(made, "encoding", extension, "a long word at " + std::to_string(at), bytes);
    }
    add(made, "encoding", extension, "zero bytes only", std::string(5000, '\0'));
    add(made, "encoding", extension, "line ends only", std::string(5000, '\n'));
    add(made, "encoding", extension, "blanks only", std::string(5000, ' '));
    add(made, "encoding", extension, "bytes above 127 only", std::string(5000, '\xFF'));
}

static void addTruncations(Made* made, const char* extension, const std::string& sample)
{
    for (size_t part = 0; part < 24; ++part)
    {
        size_t size = sample.size() * part / 24;
        add(made, "cut", extension, "cut after " + std::to_string(size) + " bytes", sample.substr(0, size));
    }
}

static void addForText(Made* made, const char* extension, const std::string& sample)
{
    addLineOrders(made, extension, sample);
    addEncodings(made, extension, sample);
    addTruncations(made, extension, sample);
}

// ----- OBJ

static std::string manyNames(const std::string& keyword, int count, const std::string& face)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += keyword + " name" + std::to_string(i) + "\n" + face;
    return text;
}

static void addObj(Made* made)
{
    const std::string points = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
    addFilled(made, "index", "obj", points + "f @/@/@ @/@/@ 3/3/3\nl @/@ 2/2\nf 1 2 3\n",
              { "1", "1", "1", "2", "2", "2", "1", "1" }, indexValues);
    addFilled(made, "number", "obj", "v @ 0 @\nv 1 0 0\nv 1 1 0\nvt @ 0\nf 1 2 3\n", { "0", "0", "0" }, floatValues);
    for (int corners : { 0, 1, 2, 30, 31, 32, 33, 34, 1000, 20000 })
        add(made, "limit", "obj", std::to_string(corners) + " corners",
            repeated("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n", 10) + "f" + repeated(" -1 -2 -3", corners / 3) +
                repeated(" 1", corners % 3) + "\nl" + repeated(" 1 2", corners / 2) + "\nf 1 2 3\n");
    for (int count : { 511, 512, 513, 2000 })
        for (const char* keyword : { "g", "usemtl" })
            add(made, "limit", "obj", std::to_string(count) + " names",
                points + manyNames(keyword, count, "f 1 2 3\n"));
    for (size_t length : { size_t{ 62 }, size_t{ 63 }, size_t{ 64 }, size_t{ 65 }, size_t{ 2046 }, size_t{ 2047 },
                           size_t{ 2048 }, size_t{ 2049 }, size_t{ 300000 } })
        for (const char* keyword : { "g ", "usemtl ", "mtllib ", "v ", "f ", "vt ", "l ", "#", "o " })
            add(made, "limit", "obj", std::string(keyword) + " of " + std::to_string(length) + " bytes",
                points + keyword + std::string(length, '7') + "\nf 1 2 3\n");
    add(made, "flood", "obj", "one statement without an end", repeated("f 1 2 3 ", 100000));
    add(made, "flood", "obj", "keywords without arguments", repeated("v\nf\nvt\ng\nusemtl\nl\n", 20000));
    add(made, "flood", "obj", "almost keywords", repeated("usemtm mtllic usemt ", 20000));
    add(made, "flood", "obj", "one vertex in every face", points + repeated("f 1 2 3\nf 1 3 4\n", 20000));
    addForText(made, "obj", objSamples()[0]);
    addForText(made, "obj", objSamples()[1]);
}

// ----- OFF

static void addOff(Made* made)
{
    const std::string points = "0 0 0\n1 0 0\n1 1 0\n0 1 0\n";
    addFilled(made, "count", "off", "OFF\n@ @ @\n" + points + "3 0 1 2\n3 0 2 3\n", { "4", "2", "0" }, countValues);
    addFilled(made, "count", "off", "OFF\n4 2 0\n" + points + "@ 0 1 2\n3 0 2 3\n", { "3" }, countValues);
    addFilled(made, "index", "off", "OFF\n4 2 0\n" + points + "3 @ 1 @\n4 0 1 2 @\n", { "0", "2", "3" }, indexValues);
    addFilled(made, "number", "off", "OFF\n3 1 0\n@ 0 @\n1 0 0\n1 1 0\n3 0 1 2\n", { "0", "0" }, floatValues);
    for (int length : { 253, 254, 255, 256, 257, 258, 1000, 100000 })
        add(made, "limit", "off", "a line of " + std::to_string(length) + " bytes",
            "OFF\n4 1 0\n" + points + "3 0 1 2" + std::string(static_cast<size_t>(length) - 8, ' ') + "\n");
    for (int corners : { 0, 1, 2, 3, 4, 5, 6, 100 })
        add(made, "limit", "off", std::to_string(corners) + " corners",
            "OFF\n4 1 0\n" + points + std::to_string(corners) + repeated(" 1", corners) + "\n");
    add(made, "flood", "off", "comments only", repeated("# nothing\n", 50000));
    addForText(made, "off", offSamples()[0]);
    addForText(made, "off", offSamples()[1]);
}

// ----- DXF

static std::string dxfFile(const std::string& face)
{
    return "  0\nSECTION\n  2\nENTITIES\n" + face + "  0\nENDSEC\n  0\nEOF\n";
}

static std::string dxfCorners()
{
    std::string text;
    for (int corner = 0; corner < 4; ++corner)
        for (int axis = 1; axis <= 3; ++axis)
            text += std::to_string(10 * axis + corner) + "\n" + (corner == axis ? "1.0" : "0.5") + "\n";
    return text;
}

static void addDxf(Made* made)
{
    std::string face = "  0\n3DFACE\n  8\nlayer\n" + dxfCorners();
    addFilled(made, "index", "dxf", dxfFile("  0\n3DFACE\n@\nlayer\n" + dxfCorners() + "@\n0\n"), { "8", "62" },
              indexValues);
    addFilled(
        made, "number", "dxf",
        dxfFile(
            "  0\n3DFACE\n8\nl\n10\n@\n20\n0\n30\n@\n11\n1\n21\n0\n31\n0\n12\n1\n22\n1\n32\n0\n13\n1\n23\n1\n33\n0\n"),
        { "0", "0" }, floatValues);
    for (int length : { 2045, 2046, 2047, 2048, 2049, 2050, 70000 })
        add(made, "limit", "dxf", "a layer name of " + std::to_string(length) + " bytes",
            dxfFile("  0\n3DFACE\n8\n" + std::string(static_cast<size_t>(length), 'n') + "\n" + dxfCorners()));
    add(made, "order", "dxf", "a code twice", dxfFile("  0\n3DFACE\n8\nl\n8\nl\n" + dxfCorners()));
    add(made, "flood", "dxf", "faces without corners", repeated("0\n3DFACE\n", 30000));
    add(made, "flood", "dxf", "equal corners", dxfFile(repeated(face, 300)));
    add(made, "flood", "dxf", "sections only", repeated("0\nSECTION\n", 30000));
    addForText(made, "dxf", dxfSamples()[0]);
    addForText(made, "dxf", dxfSamples()[1]);
}

// ----- Poser

static std::string poserFile(const std::string& geometry, const std::string& material = "")
{
    return "{\nversion\n{\nnumber 4.01\n}\nprop box\n{\ngeomCustom\n{\n" + geometry + "}\n" + material + "}\n}\n";
}

static void addPoser(Made* made)
{
    const std::string points = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
    const std::string counts = "numbVerts 4\nnumbTVerts 4\nnumbTSets 8\nnumbElems 2\nnumbSets 8\n";
    addFilled(made, "count", "pp2",
              poserFile("numbVerts @\nnumbTVerts @\nnumbTSets @\nnumbElems @\n" + points + "f 1/1 2/2 3/3\n"),
              { "4", "4", "8", "2" }, countValues);
    addFilled(made, "index", "pp2", poserFile(counts + points + "f @/@ 2/2 @/@ 4/4\nf 1/1 2/2 3/3\n"),
              { "1", "1", "3", "3" }, indexValues);
    addFilled(
        made, "number", "pp2",
        poserFile(
            "numbVerts 4\nnumbTVerts 1\nnumbElems 1\nv @ 0 @\nv 1 0 0\nv 1 1 0\nvt @ 0\nusemtl m\nf 1/1 2/1 3/1\n",
            "material m\n{\nKdColor @ 0 0 1\ntMax @\nNsExponent @\n}\n"),
        { "0", "0", "0", "0", "0", "0" }, floatValues);
    for (int length : { 61, 62, 63, 64, 65, 2045, 2046, 2047, 2048, 2049, 100000 })
        for (const char* keyword : { "g ", "usemtl ", "" })
            add(made, "limit", "pp2", "a name of " + std::to_string(length) + " bytes",
                poserFile(counts + points + keyword + std::string(static_cast<size_t>(length), 'n') +
                          "\nf 1/1 2/2 3/3\n"));
    for (int count : { 511, 512, 513 })
        for (const char* keyword : { "g", "usemtl" })
            add(made, "limit", "pp2", std::to_string(count) + " names",
                poserFile(counts + points + manyNames(keyword, count, "f 1/1 2/2 3/3\n")));
    add(made, "nesting", "pp2", "braces 100,000 deep", repeated("{\n", 100000) + repeated("}\n", 100000));
    add(made, "nesting", "pp2", "braces 100,000 deep in a prop", "prop x\n" + repeated("{\n", 100000));
    add(made, "nesting", "pp2", "closing braces only", repeated("}\n", 100000));
    add(made, "nesting", "pp2", "quotes without an end",
        poserFile(counts + points + "f 1/1 2/2 3/3\n", "material m\n{\ntextureMap \"\"\"\"\n}\n"));
    std::string growing;
    for (int i = 1; growing.size() < 64000; ++i)
        growing += "numbElems " + std::to_string(i) + "\n";
    add(made, "flood", "pp2", "a growing face count", poserFile(growing + points + "f 1/1 2/2 3/3\n"));
    add(made, "flood", "pp2", "a growing vertex count", poserFile(replacedAll(growing, "Elems", "Verts")));
    add(made, "flood", "pp2", "many small blocks",
        "{\n" + repeated("prop box\n{\ngeomCustom\n{\n" + counts + points + "f 1/1 2/2 3/3\n}\n}\n", 500) + "}\n");
    addForText(made, "pp2", poserSamples()[0]);
}

static void addCr2(Made* made)
{
    addForText(made, "cr2", poserSamples()[1]);
}

// ----- PLY

// The reader refuses files of less than 256 bytes before it looks at them, so each gets a comment after the format.
static std::string plyFile(const std::string& text)
{
    size_t place = text.find('\n', text.find('\n') + 1) + 1;
    std::string lineEnd = text.substr(0, place).find('\r') == std::string::npos ? "\n" : "\r\n";
    return text.substr(0, place) + "comment " + std::string(256, '.') + lineEnd + text.substr(place);
}

static std::string plyHead(const std::string& format, const std::string& vertices, const std::string& faces,
                           const std::string& list = "uchar int")
{
    return plyFile("ply\nformat " + format + " 1.0\nelement vertex " + vertices +
                   "\nproperty float x\nproperty float y\nproperty float z\nelement face " + faces +
                   "\nproperty list " + list + " vertex_indices\nend_header\n");
}

static void addPlyHeaders(Made* made)
{
    const std::string data = "0 0 0\n1 0 0\n1 1 0\n3 0 1 2\n";
    addFilled(made, "count", "ply", plyHead("ascii", "@", "@") + data, { "3", "1" }, countValues);
    for (const char* word : { "", "float", "char", "double", "string", "list", "int int int", "uint8", "nothing" })
        add(made, "type", "ply", std::string("a list of ") + word, plyHead("ascii", "3", "1", word) + data);
    for (const char* format : { "", "ascii2", "binary", "binary_middle_endian", "ASCII", "ascii ascii" })
        add(made, "type", "ply", std::string("the format ") + format, plyHead(format, "3", "1") + data);
    for (int count : { 62, 63, 64, 65, 66, 1000 })
    {
        std::string elements, properties;
        for (int i = 0; i < count; ++i)
        {
            elements += "element e" + std::to_string(i) + " 0\nproperty int a\n";
            properties += "property list uchar nothing p" + std::to_string(i) + "\n";
        }
        add(made, "limit", "ply", std::to_string(count) + " elements",
            plyFile("ply\nformat ascii 1.0\n" + elements + "end_header\n"));
        add(made, "limit", "ply", std::to_string(count) + " properties",
            "ply\nformat binary_little_endian 1.0\nelement face 100\n" + properties + "end_header\n" +
                std::string(6400, '\x01'));
        add(made, "flood", "ply", std::to_string(count) + " lists without bytes",
            "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty float x\nelement face 1000\n" +
                properties + "end_header\n" + std::string(12, '\0') + std::string(64000, '\xFF'));
    }
    for (int length : { 29, 30, 31, 32, 4000, 4093, 4094, 4095, 4096, 4097, 70000 })
    {
        std::string name(static_cast<size_t>(length), 'n');
        add(made, "limit", "ply", "a property name of " + std::to_string(length) + " bytes",
            plyFile("ply\nformat ascii 1.0\nelement vertex 1\nproperty float " + name + "\nend_header\n1\n"));
        add(made, "limit", "ply", "an element name of " + std::to_string(length) + " bytes",
            plyFile("ply\nformat ascii 1.0\nelement " + name + " 1\nproperty float x\nend_header\n1\n"));
        add(made, "limit", "ply", "a comment of " + std::to_string(length) + " bytes",
            "ply\nformat ascii 1.0\ncomment " + name + "\n" + plyHead("ascii", "3", "1").substr(21) + data);
    }
}

static void addPlyData(Made* made)
{
    const std::string points = "0 0 0\n1 0 0\n1 1 0\n0 1 0\n";
    addFilled(made, "index", "ply", plyHead("ascii", "4", "2") + points + "3 @ 1 @\n4 0 1 2 @\n", { "0", "2", "3" },
              indexValues);
    addFilled(made, "count", "ply", plyHead("ascii", "4", "2") + points + "@ 0 1 2\n3 0 1 2\n", { "3" }, countValues);
    addFilled(made, "number", "ply", plyHead("ascii", "3", "1") + "@ 0 @\n1 0 0\n1 1 0\n3 0 1 2\n", { "0", "0" },
              floatValues);
    for (int words : { 254, 255, 256, 257, 1000 })
        add(made, "limit", "ply", std::to_string(words) + " words in a line",
            plyHead("ascii", "4", "1") + points + std::to_string(words - 1) + repeated(" 1", words - 1) + "\n");
    const std::string binaryPoints = floats({ 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 });
    for (int64_t value : wordValues)
    {
        add(made, "index", "ply", "the binary index " + std::to_string(value),
            plyHead("binary_little_endian", "4", "1") + binaryPoints + "\x03" + little(0, 4) + little(1, 4) +
                little(value, 4));
        add(made, "index", "ply", "the short binary index " + std::to_string(value),
            plyHead("binary_little_endian", "4", "1", "uchar short") + binaryPoints + "\x03" + little(0, 2) +
                little(1, 2) + little(value, 2));
        add(made, "index", "ply", "the big-endian index " + std::to_string(value),
            plyHead("binary_big_endian", "4", "1") + std::string(48, '\0') + "\x03" + big(0, 4) + big(1, 4) +
                big(value, 4));
        add(made, "count", "ply", "a list of " + std::to_string(value),
            plyHead("binary_little_endian", "4", "1", "int int") + binaryPoints + little(value, 4) + little(0, 4) +
                little(1, 4) + little(2, 4));
        add(made, "count", "ply", "a list without bytes of " + std::to_string(value),
            plyHead("binary_little_endian", "4", "1", "int nothing") + binaryPoints + little(value, 4));
    }
    for (uint32_t bits : floatBitsValues)
        add(made, "number", "ply", "the float " + std::to_string(bits),
            plyHead("binary_little_endian", "4", "1") + little(bits, 4) + binaryPoints.substr(4) + "\x03" +
                little(0, 4) + little(1, 4) + little(2, 4));
}

static void addPly(Made* made)
{
    addPlyHeaders(made);
    addPlyData(made);
    for (const std::string& sample : plySamples())
        addTruncations(made, "ply", plyFile(sample));
    addForText(made, "ply", plyFile(plySamples()[2]));
    addForText(made, "ply", plyFile(plySamples()[3]));
}

// ----- 3DS

static std::string chunk(int id, const std::string& data)
{
    return little(id, 2) + little(static_cast<int64_t>(6 + data.size()), 4) + data;
}

// Every place where a chunk of the sample stores its length.
static void findLengths(const std::string& bytes, size_t begin, size_t end, std::vector<size_t>* places)
{
    while (begin + 6 <= end)
    {
        size_t length = 0;
        for (size_t i = 0; i < 4; ++i)
            length |= static_cast<size_t>(static_cast<unsigned char>(bytes[begin + 2 + i])) << (8 * i);
        if (length < 6 || begin + length > end)
            return;
        places->push_back(begin + 2);
        int id = static_cast<unsigned char>(bytes[begin]) | static_cast<unsigned char>(bytes[begin + 1]) << 8;
        size_t children = begin + 6;
        if (id == 0x4000)
            children = bytes.find('\0', children) + 1;
        if (id == 0x4D4D || id == 0x3D3D || id == 0x4000 || id == 0x4100 || id == 0xAFFF || id == 0xB000 ||
            id == 0xB002 || (id >= 0xA010 && id <= 0xA200))
            findLengths(bytes, children, begin + length, places);
        begin += length;
    }
}

static void add3dsLengths(Made* made, const std::string& sample)
{
    std::vector<size_t> places;
    findLengths(sample, 0, sample.size(), &places);
    for (size_t place : places)
        for (int64_t length : { int64_t{ 0 }, int64_t{ 1 }, int64_t{ 2 }, int64_t{ 3 }, int64_t{ 4 }, int64_t{ 5 },
                                int64_t{ 6 }, int64_t{ 7 }, static_cast<int64_t>(sample.size()),
                                static_cast<int64_t>(sample.size()) + 1, int64_t{ 0x7FFFFFFF }, int64_t{ 0xFFFFFFFF } })
        {
            std::string bytes = sample;
            bytes.replace(place, 4, little(length, 4));
            add(made, "length", "3ds", "at " + std::to_string(place) + " " + std::to_string(length), bytes);
        }
}

static std::string threeDsFile(const std::string& vertices, const std::string& faces)
{
    std::string object =
        chunk(0x4000, std::string("box\0", 4) + chunk(0x4100, chunk(0x4110, vertices) + chunk(0x4120, faces)));
    return chunk(0x4D4D, chunk(0x3D3D, object));
}

static void add3dsValues(Made* made)
{
    const std::string points = floats({ 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 });
    const std::string fourPoints = little(4, 2) + points;
    for (int64_t value : wordValues)
    {
        std::string face = little(0, 2) + little(1, 2) + little(value, 2) + little(7, 2);
        add(made, "index", "3ds", "corner " + std::to_string(value), threeDsFile(fourPoints, little(1, 2) + face));
        std::string good = little(0, 2) + little(1, 2) + little(2, 2) + little(7, 2);
        add(made, "count", "3ds", std::to_string(value) + " faces", threeDsFile(fourPoints, little(value, 2) + good));
        add(made, "count", "3ds", std::to_string(value) + " vertices",
            threeDsFile(little(value, 2) + points, little(1, 2) + good));
        std::string uses = chunk(0x4130, std::string("red\0", 4) + little(1, 2) + little(value, 2));
        add(made, "index", "3ds", "face " + std::to_string(value) + " of a material",
            threeDsFile(fourPoints, little(1, 2) + good + uses));
        uses = chunk(0x4130, std::string("red\0", 4) + little(value, 2) + little(0, 2));
        add(made, "count", "3ds", std::to_string(value) + " faces of a material",
            threeDsFile(fourPoints, little(1, 2) + good + uses));
    }
    for (uint32_t bits : floatBitsValues)
        add(made, "number", "3ds", "the float " + std::to_string(bits),
            threeDsFile(little(4, 2) + little(bits, 4) + points.substr(4),
                        little(1, 2) + std::string("\0\0\1\0\2\0\0\0", 8)));
    for (size_t length :
         { size_t{ 33 }, size_t{ 34 }, size_t{ 35 }, size_t{ 36 }, size_t{ 63 }, size_t{ 64 }, size_t{ 5000 } })
    {
        std::string name(length, 'n');
        add(made, "limit", "3ds", "a name of " + std::to_string(length) + " bytes",
            chunk(0x4D4D, chunk(0x3D3D, chunk(0xAFFF, chunk(0xA000, name + std::string(1, '\0'))) +
                                            chunk(0x4000, name + std::string(1, '\0') +
                                                              chunk(0x4100, chunk(0x4110, fourPoints))))));
    }
    for (int count : { 510, 511, 512, 513, 600 })
    {
        std::string objects;
        for (int i = 0; i < count; ++i)
            objects += chunk(0x4000,
                             "o" + std::to_string(i) + std::string(1, '\0') + chunk(0x4100, chunk(0x4110, fourPoints)));
        add(made, "limit", "3ds", std::to_string(count) + " objects", chunk(0x4D4D, chunk(0x3D3D, objects)));
    }
}

static void add3ds(Made* made)
{
    add3dsLengths(made, threeDsSamples()[0]);
    add3dsLengths(made, threeDsSamples()[1]);
    add3dsValues(made);
    addTruncations(made, "3ds", threeDsSamples()[0]);
    for (int id : { 0x4D4D, 0x3D3D, 0x4000, 0x4100, 0xAFFF, 0xB000, 0xB002 })
    {
        std::string heads;
        constexpr int depth = 100000;
        for (int i = 0; i < depth; ++i)
            heads += little(id, 2) + little(int64_t{ 6 } * (depth - i), 4);
        add(made, "nesting", "3ds", "chunks 100,000 deep", chunk(0x4D4D, chunk(0x3D3D, heads)));
        add(made, "flood", "3ds", "empty chunks", chunk(0x4D4D, chunk(0x3D3D, repeated(chunk(id, ""), 20000))));
        add(made, "flood", "3ds", "chunks in each other's place",
            chunk(0x4D4D, chunk(0x3D3D, repeated(little(id, 2) + little(100000, 4), 20000))));
    }
}

// ----- RKF

static void addRkf(Made* made)
{
    const std::string sample = rkfSamples()[0];
    for (size_t word = 0; word < 4; ++word)
        for (int64_t value : wordValues)
        {
            std::string bytes = sample;
            bytes.replace(4 * word, 4, little(value, 4));
            add(made, "count", "rkf", "header word " + std::to_string(word) + " is " + std::to_string(value), bytes);
        }
    for (size_t corner = 0; corner < 8; ++corner)
        for (int64_t value : wordValues)
        {
            std::string bytes = sample;
            bytes.replace(16 + 48 + 4 * corner, 4, little(value, 4));
            add(made, "index", "rkf", "corner " + std::to_string(corner) + " is " + std::to_string(value), bytes);
        }
    for (size_t coordinate = 0; coordinate < 12; coordinate += 5)
        for (uint32_t bits : floatBitsValues)
        {
            std::string bytes = sample;
            bytes.replace(16 + 4 * coordinate, 4, little(bits, 4));
            add(made, "number", "rkf", "the float " + std::to_string(bits), bytes);
        }
    addTruncations(made, "rkf", sample);
}

// ----- STL

static void addBinaryStl(Made* made)
{
    const std::string sample = stlSamples()[0];
    for (int64_t value : wordValues)
    {
        std::string bytes = sample;
        bytes.replace(80, 4, little(value, 4));
        add(made, "count", "stl", "the count is " + std::to_string(value), bytes);
        add(made, "count", "stl", "as text, with a count of " + std::to_string(value), "solid" + bytes.substr(5));
    }
    for (size_t coordinate = 0; coordinate < 12; ++coordinate)
        for (uint32_t bits : floatBitsValues)
        {
            std::string bytes = sample;
            bytes.replace(84 + 4 * coordinate, 4, little(bits, 4));
            add(made, "number", "stl", "the float " + std::to_string(bits), bytes);
        }
    for (int64_t size = 0; size < static_cast<int64_t>(sample.size()); size += 7)
        add(made, "cut", "stl", "binary, cut after " + std::to_string(size) + " bytes",
            sample.substr(0, static_cast<size_t>(size)));
    add(made, "limit", "stl", "zero triangles", std::string(84, '\0'));
}

static void addStl(Made* made)
{
    addBinaryStl(made);
    const std::string facet = "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\n";
    addFilled(made, "number", "stl",
              "solid\nfacet normal @ 0 1\nouter loop\nvertex @ 0 @\nvertex 1 @ 0\nvertex 0 1 0\nendloop\n" + facet,
              { "0", "0", "0", "0" }, floatValues);
    for (int corners : { 0, 1, 2, 3, 4, 100 })
        add(made, "limit", "stl", std::to_string(corners) + " vertices in a loop",
            "solid\nfacet\nouter loop\n" + repeated("vertex 1 2 3\n", corners) + "endloop\n" + facet);
    for (int length : { 126, 127, 128, 129, 255, 256, 70000 })
    {
        std::string longWord(static_cast<size_t>(length), '1');
        add(made, "limit", "stl", "a number of " + std::to_string(length) + " digits",
            "solid\nfacet\nvertex 0." + longWord + " 0 0\nvertex 1 0 0\nvertex 0 1 0\nendfacet\n");
        add(made, "limit", "stl", "a name of " + std::to_string(length) + " bytes", "solid " + longWord + "\n" + facet);
    }
    add(made, "flood", "stl", "vertices without a loop", "solid\n" + repeated("vertex 1 2 3\n", 20000));
    add(made, "flood", "stl", "solids without facets", repeated("solid x\nendsolid x\n", 20000));
    add(made, "flood", "stl", "loops without vertices", "solid\n" + repeated("outer loop endloop ", 20000));
    addForText(made, "stl", stlSamples()[3]);
}

// ----- JPEG

static std::string textOf(const Bytes& bytes)
{
    return { bytes.begin(), bytes.end() };
}

// Every segment of the parts with its length changed.
static void addJpegLengths(Made* made, const std::string& file)
{
    for (size_t at = 2; at + 4 <= file.size() && file[at] == '\xFF' && file[at + 1] != '\xDA';)
    {
        size_t length = static_cast<size_t>(static_cast<unsigned char>(file[at + 2])) << 8 |
                        static_cast<unsigned char>(file[at + 3]);
        for (int64_t wrong :
             { 0, 1, 2, 3, 4, 5, static_cast<int>(length) - 1, static_cast<int>(length) + 1, 0x7FFF, 0xFFFF })
        {
            std::string bytes = file;
            bytes.replace(at + 2, 2, big(wrong, 2));
            add(made, "length", "jpg",
                "the segment at " + std::to_string(at) + " is " + std::to_string(wrong) + " long", bytes);
        }
        for (size_t k = 4; k < length + 2 && k < 24; ++k)
            for (int value : { 0x00, 0x01, 0x0A, 0x40, 0x7F, 0x80, 0xFF })
            {
                std::string bytes = file;
                bytes[at + k] = static_cast<char>(value);
                add(made, "value", "jpg", "byte " + std::to_string(at + k) + " is " + std::to_string(value), bytes);
            }
        at += 2 + length;
    }
}

static void addJpegOrders(Made* made, const JpegParts& parts)
{
    std::vector<Bytes> pieces = { parts.soi,     parts.application, parts.quant,   parts.frame, parts.huffman,
                                  parts.restart, parts.scan,        parts.entropy, parts.end };
    auto joinedPieces = [](const std::vector<Bytes>& all)
    {
        std::string bytes;
        for (const Bytes& piece : all)
            bytes += textOf(piece);
        return bytes;
    };
    for (size_t i = 0; i < pieces.size(); ++i)
    {
        std::vector<Bytes> changed = pieces;
        if (i + 1 < pieces.size())
        {
            std::swap(changed[i], changed[i + 1]);
            add(made, "order", "jpg", "part " + std::to_string(i) + " after the next", joinedPieces(changed));
        }
        changed = pieces;
        changed.insert(changed.begin() + static_cast<ptrdiff_t>(i), pieces[i]);
        add(made, "order", "jpg", "part " + std::to_string(i) + " twice", joinedPieces(changed));
        changed = pieces;
        changed.erase(changed.begin() + static_cast<ptrdiff_t>(i));
        add(made, "order", "jpg", "part " + std::to_string(i) + " missing", joinedPieces(changed));
    }
}

static void addJpeg(Made* made)
{
    JpegPlan plan;
    plan.restartInterval = 2;
    plan.width = plan.height = 40;
    plan.components = sampled(2, 2);
    plan.application = jfifSegment(1, 72, 72);
    const std::string file = textOf(buildJpeg(plan));
    addJpegLengths(made, file);
    addJpegOrders(made, planJpeg(plan));
    addTruncations(made, "jpg", file);
    for (int code = 0xC0; code <= 0xCF; ++code)
    {
        JpegPlan other = plan;
        other.frameCode = code;
        add(made, "type", "jpg", "frame " + std::to_string(code), textOf(buildJpeg(other)));
    }
    for (int side : { 0, 1, 7, 8, 9, 16, 17, 4095, 65535 })
        for (int other : { 0, 1, 65535 })
        {
            std::string bytes = file;
            size_t frame = bytes.find("\xFF\xC0");
            bytes.replace(frame + 5, 4, big(side, 2) + big(other, 2));
            add(made, "count", "jpg", std::to_string(side) + " rows of " + std::to_string(other), bytes);
        }
    add(made, "flood", "jpg", "fill bytes only", "\xFF\xD8" + std::string(200000, '\xFF'));
    std::string comment("\xFF\xFE\x00\x02", 4);
    add(made, "flood", "jpg", "empty comments", "\xFF\xD8" + repeated(comment, 50000) + file.substr(2));
}

struct Format
{
    const char* extension;
    void (*add)(Made* made);
};

static constexpr Format formats[] = {
    { "obj", addObj }, { "off", addOff }, { "dxf", addDxf }, { "pp2", addPoser }, { "cr2", addCr2 },
    { "ply", addPly }, { "3ds", add3ds }, { "stl", addStl }, { "rkf", addRkf },   { "jpg", addJpeg },
};

std::vector<HostileFile> hostileFiles()
{
    Made made;
    for (const Format& format : formats)
        format.add(&made);
    return made;
}

std::vector<HostileFile> hostileFilesOf(const std::string& extension)
{
    Made made;
    for (const Format& format : formats)
    {
        if (extension == format.extension)
            format.add(&made);
    }
    return made;
}
