// resources/make/png_encoder.cpp - rows as differences from the row above, repeats found by hashing, fixed codes
//
// Layout: ISO/IEC 15948 (PNG), RFC 1950 (zlib) and RFC 1951 (deflate).
#include "png_encoder.h"

#include <array>

static void putBig(std::string* file, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        file->push_back(static_cast<char>(value >> shift & 0xFF));
}

static uint32_t crcOf(const std::string& bytes)
{
    uint32_t crc = 0xFFFFFFFFu;
    for (char byte : bytes)
    {
        crc ^= static_cast<uint8_t>(byte);
        for (int i = 0; i < 8; ++i)
            crc = crc & 1 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
    }
    return ~crc;
}

static uint32_t adlerOf(const std::vector<uint8_t>& bytes)
{
    uint32_t a = 1, b = 0;
    for (uint8_t byte : bytes)
    {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

static void putChunk(std::string* file, const char* type, const std::string& data)
{
    putBig(file, static_cast<uint32_t>(data.size()));
    std::string chunk = type + data;
    *file += chunk;
    putBig(file, crcOf(chunk));
}

struct BitWriter
{
    std::string* out;
    uint32_t bits;
    int count;
};

static void putBits(BitWriter* writer, uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
    {
        writer->bits |= (value >> i & 1) << writer->count;
        if (++writer->count < 8)
            continue;
        writer->out->push_back(static_cast<char>(writer->bits));
        writer->bits = 0;
        writer->count = 0;
    }
}

// Huffman codes go out from their highest bit on.
static void putCode(BitWriter* writer, uint32_t code, int count)
{
    for (int i = count - 1; i >= 0; --i)
        putBits(writer, code >> i & 1, 1);
}

static void putLiteral(BitWriter* writer, uint32_t symbol)
{
    if (symbol < 144)
        putCode(writer, 0x30 + symbol, 8);
    else if (symbol < 256)
        putCode(writer, 0x190 + symbol - 144, 9);
    else if (symbol < 280)
        putCode(writer, symbol - 256, 7);
    else
        putCode(writer, 0xC0 + symbol - 280, 8);
}

// Lengths 3 to 257 in groups of four classes, each group with one extra bit more than the one before.
static void putLength(BitWriter* writer, uint32_t length)
{
    uint32_t rest = length - 3;
    if (rest < 8)
        return putLiteral(writer, 257 + rest);
    int extra = 0;
    while (rest >> (extra + 3))
        ++extra;
    putLiteral(writer, 257 + 4 * static_cast<uint32_t>(extra) + (rest >> extra));
    putBits(writer, rest, extra);
}

static void putDistance(BitWriter* writer, uint32_t distance)
{
    uint32_t rest = distance - 1;
    if (rest < 4)
        return putCode(writer, rest, 5);
    int extra = 0;
    while (rest >> (extra + 2))
        ++extra;
    putCode(writer, 2 * static_cast<uint32_t>(extra) + (rest >> extra), 5);
    putBits(writer, rest, extra);
}

static std::string deflated(const std::vector<uint8_t>& bytes)
{
    constexpr size_t window = 32768, longest = 257;
    std::string out = "\x78\x01";
    BitWriter writer = { &out, 0, 0 };
    putBits(&writer, 3, 3); // the last block, fixed codes
    std::vector<size_t> lastSeen(1 << 14, SIZE_MAX);
    for (size_t at = 0; at < bytes.size();)
    {
        size_t length = 0, seen = SIZE_MAX;
        if (at + 3 <= bytes.size())
        {
            uint32_t three =
                bytes[at] | static_cast<uint32_t>(bytes[at + 1]) << 8 | static_cast<uint32_t>(bytes[at + 2]) << 16;
            size_t& slot = lastSeen[three * 0x9E3779B1u >> 18];
            seen = slot;
            slot = at;
            if (seen != SIZE_MAX && at - seen <= window)
                while (length < longest && at + length < bytes.size() && bytes[seen + length] == bytes[at + length])
                    ++length;
        }
        if (length < 4)
        {
            putLiteral(&writer, bytes[at++]);
            continue;
        }
        putLength(&writer, static_cast<uint32_t>(length));
        putDistance(&writer, static_cast<uint32_t>(at - seen));
        at += length;
    }
    putLiteral(&writer, 256);
    while (writer.count)
        putBits(&writer, 0, 1);
    putBig(&out, adlerOf(bytes));
    return out;
}

std::string encodePng(int width, int height, const std::vector<uint8_t>& rgba)
{
    size_t rowBytes = static_cast<size_t>(width) * 4;
    std::vector<uint8_t> rows;
    for (size_t y = 0; y < static_cast<size_t>(height); ++y)
    {
        rows.push_back(2); // differences from the row above
        for (size_t x = 0; x < rowBytes; ++x)
        {
            size_t at = y * rowBytes + x;
            rows.push_back(static_cast<uint8_t>(rgba[at] - (y ? rgba[at - rowBytes] : 0)));
        }
    }
    std::string header;
    putBig(&header, static_cast<uint32_t>(width));
    putBig(&header, static_cast<uint32_t>(height));
    header += std::string("\x08\x06\x00\x00\x00", 5);
    std::string file = std::string("\x89PNG\r\n\x1A\n", 8);
    putChunk(&file, "IHDR", header);
    putChunk(&file, "IDAT", deflated(rows));
    putChunk(&file, "IEND", "");
    return file;
}
