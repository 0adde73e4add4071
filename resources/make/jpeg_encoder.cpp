// resources/make/jpeg_encoder.cpp - colour conversion, cosine transform, quantisation and entropy coding
//
// A unit of 16 x 16 pixels is four blocks of luminance and one of each chrominance. The whole picture becomes a list of
// symbols first; their counts give the Huffman codes, and then the list is written.
#include "jpeg_encoder.h"

#include "sweep.h"

#include <math.h>
#include <algorithm>
#include <array>

constexpr int blockSide = 8, blockSize = 64, unitSide = 16;

// clang-format off
static const uint8_t zigzag[blockSize] = {
     0,  1,  8, 16,  9,  2,  3, 10, 17, 24, 32, 25, 18, 11,  4,  5,
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13,  6,  7, 14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};

static const uint8_t exampleTables[2][blockSize] = {
    {
        16, 11, 10, 16,  24,  40,  51,  61,
        12, 12, 14, 19,  26,  58,  60,  55,
        14, 13, 16, 24,  40,  57,  69,  56,
        14, 17, 22, 29,  51,  87,  80,  62,
        18, 22, 37, 56,  68, 109, 103,  77,
        24, 35, 55, 64,  81, 104, 113,  92,
        49, 64, 78, 87, 103, 121, 120, 101,
        72, 92, 95, 98, 112, 100, 103,  99,
    },
    {
        17, 18, 24, 47, 99, 99, 99, 99,
        18, 21, 26, 66, 99, 99, 99, 99,
        24, 26, 56, 99, 99, 99, 99, 99,
        47, 66, 99, 99, 99, 99, 99, 99,
        99, 99, 99, 99, 99, 99, 99, 99,
        99, 99, 99, 99, 99, 99, 99, 99,
        99, 99, 99, 99, 99, 99, 99, 99,
        99, 99, 99, 99, 99, 99, 99, 99,
    },
};
// clang-format on

using Block = std::array<double, blockSize>;
using QuantTable = std::array<int, blockSize>; // row by row

// A Huffman symbol with the bits that follow its code.
struct Symbol
{
    uint8_t table; // 0 and 1: differences and coefficients of luminance; 2 and 3: of chrominance
    uint8_t value;
    uint8_t extraBits;
    uint16_t extra;
};

struct HuffmanTable
{
    std::array<uint8_t, 17> countOfLength = {};
    std::vector<uint8_t> values; // shortest codes first
    std::array<uint16_t, 256> code = {};
    std::array<uint8_t, 256> length = {};
};

struct Encoder
{
    const Picture* picture;
    QuantTable tables[2];
    double cosines[blockSide][blockSide]; // frequency, place
    std::vector<Symbol> symbols;
    int lastDc[3];
};

static QuantTable quantTable(int which, int quality)
{
    int scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    QuantTable table;
    for (size_t i = 0; i < blockSize; ++i)
        table[i] = std::clamp((exampleTables[which][i] * scale + 50) / 100, 1, 255);
    return table;
}

static void makeCosines(Encoder* encoder)
{
    for (int frequency = 0; frequency < blockSide; ++frequency)
        for (int place = 0; place < blockSide; ++place)
            encoder->cosines[frequency][place] =
                (frequency ? 0.5 : sqrt(0.125)) * cosineOfTurn((2 * place + 1) * frequency / 32.0);
}

static const uint8_t* pixelAt(const Picture& picture, int x, int y)
{
    x = picture.tiles ? x % picture.width : std::min(x, picture.width - 1);
    y = picture.tiles ? y % picture.height : std::min(y, picture.height - 1);
    return &picture.rgb[(static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x)) * 3];
}

static Block transformed(const Encoder& encoder, const Block& samples)
{
    Block rows = {}, result = {};
    for (size_t y = 0; y < blockSide; ++y)
        for (size_t u = 0; u < blockSide; ++u)
            for (size_t x = 0; x < blockSide; ++x)
                rows[y * blockSide + u] += samples[y * blockSide + x] * encoder.cosines[u][x];
    for (size_t v = 0; v < blockSide; ++v)
        for (size_t u = 0; u < blockSide; ++u)
            for (size_t y = 0; y < blockSide; ++y)
                result[v * blockSide + u] += rows[y * blockSide + u] * encoder.cosines[v][y];
    return result;
}

// Adds a number as the count of its bits and the bits; a negative one as its ones' complement.
static void addNumber(Encoder* encoder, int table, int zeroRun, int number)
{
    int bits = 0;
    for (int rest = abs(number); rest; rest >>= 1)
        ++bits;
    int extra = number < 0 ? number + (1 << bits) - 1 : number;
    encoder->symbols.push_back({ static_cast<uint8_t>(table), static_cast<uint8_t>(zeroRun << 4 | bits),
                                 static_cast<uint8_t>(bits), static_cast<uint16_t>(extra) });
}

static void addBlock(Encoder* encoder, int component, const Block& samples)
{
    Block block = transformed(*encoder, samples);
    const QuantTable& quant = encoder->tables[component ? 1 : 0];
    int table = component ? 2 : 0, zeroRun = 0;
    for (size_t i = 0; i < blockSize; ++i)
    {
        double exact = block[zigzag[i]] / quant[zigzag[i]];
        int number = static_cast<int>(floor(exact + 0.5));
        if (i == 0)
        {
            addNumber(encoder, table, 0, number - encoder->lastDc[component]);
            encoder->lastDc[component] = number;
        }
        else if (number == 0)
            ++zeroRun;
        else
        {
            for (; zeroRun > 15; zeroRun -= 16)
                encoder->symbols.push_back({ static_cast<uint8_t>(table + 1), 0xF0, 0, 0 });
            addNumber(encoder, table + 1, zeroRun, number);
            zeroRun = 0;
        }
    }
    if (zeroRun)
        encoder->symbols.push_back({ static_cast<uint8_t>(table + 1), 0, 0, 0 });
}

// Six blocks: luminance left and right, above and below, then the two chrominances, each the mean of 2 x 2 pixels.
static void addUnit(Encoder* encoder, int left, int top)
{
    Block luma[4] = {}, blue = {}, red = {};
    for (int y = 0; y < unitSide; ++y)
    {
        for (int x = 0; x < unitSide; ++x)
        {
            const uint8_t* p = pixelAt(*encoder->picture, left + x, top + y);
            double r = p[0], g = p[1], b = p[2];
            size_t quarter = static_cast<size_t>(y / blockSide * 2 + x / blockSide);
            luma[quarter][static_cast<size_t>(y % blockSide * blockSide + x % blockSide)] =
                0.299 * r + 0.587 * g + 0.114 * b - 128;
            auto half = static_cast<size_t>(y / 2 * blockSide + x / 2);
            blue[half] += (-0.168735892 * r - 0.331264108 * g + 0.5 * b) / 4;
            red[half] += (0.5 * r - 0.418687589 * g - 0.081312411 * b) / 4;
        }
    }
    for (const Block& block : luma)
        addBlock(encoder, 0, block);
    addBlock(encoder, 1, blue);
    addBlock(encoder, 2, red);
}

// Code lengths of at most 16 bits by Huffman's method, long ones shortened as annex K.2 of the standard does it. A
// symbol that never occurs stands last, so that no code is all ones.
static std::array<int, 257> codeLengths(const std::array<int64_t, 256>& counts, std::array<int, 64>* lengthCounts)
{
    std::array<int64_t, 257> weight;
    std::copy(counts.begin(), counts.end(), weight.begin());
    weight[256] = 1;
    std::array<int, 257> group, length = {};
    for (size_t i = 0; i < group.size(); ++i)
        group[i] = weight[i] ? static_cast<int>(i) : -1;
    for (;;)
    {
        int least = -1, second = -1;
        for (int i = 0; i < 257; ++i)
        {
            if (group[static_cast<size_t>(i)] != i)
                continue;
            auto w = [&](int k) { return weight[static_cast<size_t>(k)]; };
            if (least < 0 || w(i) <= w(least))
            {
                second = least;
                least = i;
            }
            else if (second < 0 || w(i) <= w(second))
                second = i;
        }
        if (second < 0)
            break;
        weight[static_cast<size_t>(second)] += weight[static_cast<size_t>(least)];
        for (size_t i = 0; i < group.size(); ++i)
        {
            if (group[i] != least && group[i] != second)
                continue;
            group[i] = second;
            ++length[i];
        }
    }
    lengthCounts->fill(0);
    for (int bits : length)
        if (bits)
            ++(*lengthCounts)[static_cast<size_t>(bits)];
    return length;
}

static void limitLengths(std::array<int, 64>* counts)
{
    for (size_t i = counts->size() - 1; i > 16; --i)
    {
        while ((*counts)[i] > 0)
        {
            size_t shorter = i - 2;
            while ((*counts)[shorter] == 0)
                --shorter;
            (*counts)[i] -= 2;
            (*counts)[i - 1] += 1;
            (*counts)[shorter + 1] += 2;
            (*counts)[shorter] -= 1;
        }
    }
    size_t longest = 16;
    while ((*counts)[longest] == 0)
        --longest;
    --(*counts)[longest]; // the symbol that never occurs
}

static HuffmanTable huffmanTable(const std::vector<Symbol>& symbols, int which)
{
    std::array<int64_t, 256> counts = {};
    for (const Symbol& symbol : symbols)
        counts[symbol.value] += symbol.table == which;
    std::array<int, 64> lengthCounts;
    std::array<int, 257> lengths = codeLengths(counts, &lengthCounts);
    limitLengths(&lengthCounts);

    HuffmanTable table;
    for (int bits = 1; bits < 64; ++bits)
        for (size_t i = 0; i < 256; ++i)
            if (lengths[i] == bits)
                table.values.push_back(static_cast<uint8_t>(i));
    uint32_t code = 0;
    size_t next = 0;
    for (size_t bits = 1; bits <= 16; ++bits, code <<= 1)
    {
        table.countOfLength[bits] = static_cast<uint8_t>(lengthCounts[bits]);
        for (int i = 0; i < lengthCounts[bits]; ++i, ++next, ++code)
        {
            table.code[table.values[next]] = static_cast<uint16_t>(code);
            table.length[table.values[next]] = static_cast<uint8_t>(bits);
        }
    }
    return table;
}

struct BitWriter
{
    std::string* file;
    uint32_t bits;
    int count;
};

static void putBits(BitWriter* writer, uint32_t bits, int count)
{
    for (int i = count - 1; i >= 0; --i)
    {
        writer->bits = writer->bits << 1 | (bits >> i & 1);
        if (++writer->count < 8)
            continue;
        writer->file->push_back(static_cast<char>(writer->bits & 0xFF));
        if ((writer->bits & 0xFF) == 0xFF)
            writer->file->push_back(0);
        writer->count = 0;
    }
}

static void putByte(std::string* file, int byte)
{
    file->push_back(static_cast<char>(byte));
}

static void putBig(std::string* file, int value)
{
    putByte(file, value >> 8 & 0xFF);
    putByte(file, value & 0xFF);
}

static void putHeaders(std::string* file, const Encoder& encoder)
{
    *file += std::string("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00\x01\x01\x00\x00\x01\x00\x01\x00\x00", 20);
    for (int which = 0; which < 2; ++which)
    {
        putBig(file, 0xFFDB);
        putBig(file, 3 + blockSize);
        putByte(file, which);
        for (size_t i = 0; i < blockSize; ++i)
            putByte(file, encoder.tables[which][zigzag[i]]);
    }
    putBig(file, 0xFFC0);
    putBig(file, 17);
    putByte(file, 8);
    putBig(file, encoder.picture->height);
    putBig(file, encoder.picture->width);
    putByte(file, 3);
    for (int component = 0; component < 3; ++component)
    {
        putByte(file, component + 1);
        putByte(file, component ? 0x11 : 0x22);
        putByte(file, component ? 1 : 0);
    }
}

static void putHuffmanTable(std::string* file, const HuffmanTable& table, int which)
{
    putBig(file, 0xFFC4);
    putBig(file, static_cast<int>(19 + table.values.size()));
    putByte(file, (which % 2) << 4 | which / 2); // class and number
    for (size_t bits = 1; bits <= 16; ++bits)
        putByte(file, table.countOfLength[bits]);
    for (uint8_t value : table.values)
        putByte(file, value);
}

static void putScan(std::string* file, const Encoder& encoder)
{
    HuffmanTable tables[4];
    for (int which = 0; which < 4; ++which)
    {
        tables[which] = huffmanTable(encoder.symbols, which);
        putHuffmanTable(file, tables[which], which);
    }
    *file += std::string("\xFF\xDA\x00\x0C\x03\x01\x00\x02\x11\x03\x11\x00\x3F\x00", 14);
    BitWriter writer = { file, 0, 0 };
    for (const Symbol& symbol : encoder.symbols)
    {
        const HuffmanTable& table = tables[symbol.table];
        putBits(&writer, table.code[symbol.value], table.length[symbol.value]);
        putBits(&writer, symbol.extra, symbol.extraBits);
    }
    while (writer.count)
        putBits(&writer, 1, 1);
    putBig(file, 0xFFD9);
}

std::string encodeJpeg(const Picture& picture, int quality)
{
    Encoder encoder = {};
    encoder.picture = &picture;
    encoder.tables[0] = quantTable(0, quality);
    encoder.tables[1] = quantTable(1, quality);
    makeCosines(&encoder);
    for (int top = 0; top < picture.height; top += unitSide)
        for (int left = 0; left < picture.width; left += unitSide)
            addUnit(&encoder, left, top);
    std::string file;
    putHeaders(&file, encoder);
    putScan(&file, encoder);
    return file;
}
