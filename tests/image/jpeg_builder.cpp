// tests/image/jpeg_builder.cpp - a baseline encoder of given coefficients
#include "jpeg_builder.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <random>

// How many codes of each length 1-16 a table may have. The most frequent symbols get the shortest codes.
static const std::array<int, 16> dcProfile = { 0, 1, 5, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0 };
static const std::array<int, 16> acProfile = { 0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 125 };

struct Symbol
{
    int table;      // component's slot: dc, 4 + ac
    int symbol;     // -1: a restart marker
    int size, bits; // appended
};

struct Code
{
    int length, bits;
};

using CodeTable = std::map<int, Code>;

static void put16(Bytes* bytes, int value)
{
    bytes->push_back(static_cast<uint8_t>(value >> 8));
    bytes->push_back(static_cast<uint8_t>(value));
}

static void append(Bytes* bytes, const Bytes& more)
{
    for (uint8_t byte : more)
        bytes->push_back(byte);
}

Bytes segmentOf(int code, const Bytes& data)
{
    Bytes bytes = { 0xFF, static_cast<uint8_t>(code) };
    put16(&bytes, static_cast<int>(data.size()) + 2);
    append(&bytes, data);
    return bytes;
}

Bytes jfifSegment(int unit, int xDensity, int yDensity)
{
    Bytes data = { 'J', 'F', 'I', 'F', 0, 1, 2, static_cast<uint8_t>(unit) };
    put16(&data, xDensity);
    put16(&data, yDensity);
    put16(&data, 0);
    return segmentOf(0xE0, data);
}

Bytes adobeSegment(int transform)
{
    return segmentOf(0xEE, { 'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0, static_cast<uint8_t>(transform) });
}

std::vector<PlanComponent> sampled(int h, int v)
{
    return { { 1, h, v }, { 2, 1, 1 }, { 3, 1, 1 } };
}

static int bitSize(int value)
{
    int size = 0;
    for (int left = value < 0 ? -value : value; left > 0; left >>= 1)
        ++size;
    return size;
}

static int valueBits(int value, int size)
{
    return value < 0 ? value - 1 + (1 << size) : value;
}

static void codeBlock(const PlanComponent& component, const int* zigzag, int* prediction, std::vector<Symbol>* out)
{
    int difference = zigzag[0] - *prediction;
    *prediction = zigzag[0];
    int size = bitSize(difference);
    out->push_back({ component.dc, size, size, valueBits(difference, size) });
    int run = 0;
    for (int k = 1; k < 64; ++k)
    {
        if (zigzag[k] == 0)
        {
            ++run;
            continue;
        }
        for (; run > 15; run -= 16)
            out->push_back({ 4 + component.ac, 0xF0, 0, 0 });
        size = bitSize(zigzag[k]);
        out->push_back({ 4 + component.ac, run << 4 | size, size, valueBits(zigzag[k], size) });
        run = 0;
    }
    if (run > 0)
        out->push_back({ 4 + component.ac, 0, 0, 0 });
}

static BlockMaker randomBlocks(unsigned seed)
{
    auto random = std::make_shared<std::mt19937>(seed);
    return [random](int component, int, int* zigzag)
    {
        auto below = [&](int n) { return static_cast<int>((*random)() % static_cast<unsigned>(n)); };
        zigzag[0] = below(component == 0 ? 160 : 100) - 70;
        int count = below(3) == 0 ? 0 : below(3) == 0 ? below(40) : below(8);
        for (int i = 0; i < count; ++i)
        {
            int k = 1 + below(below(4) == 0 ? 63 : 14);
            zigzag[k] = below(below(6) == 0 ? 61 : 9) - (below(2) == 0 ? 4 : 2);
        }
    };
}

// All symbols of the scan, in file order.
static std::vector<Symbol> codeScan(const JpegPlan& plan)
{
    BlockMaker make = plan.block ? plan.block : randomBlocks(plan.seed);
    std::vector<Symbol> out;
    size_t n = plan.components.size();
    int maxH = 1, maxV = 1;
    for (const PlanComponent& c : plan.components)
    {
        maxH = std::max(maxH, c.h);
        maxV = std::max(maxV, c.v);
    }
    auto ceilOf = [](int a, int b) { return (a + b - 1) / b; };
    const PlanComponent& only = plan.components[0];
    int across = n == 1 ? ceilOf(plan.width * only.h, 8 * maxH) : ceilOf(plan.width, 8 * maxH);
    int down = n == 1 ? ceilOf(plan.height * only.v, 8 * maxV) : ceilOf(plan.height, 8 * maxV);
    std::vector<int> predictions(n, 0), indices(n, 0);
    for (int mcu = 0; mcu < across * down; ++mcu)
    {
        if (plan.restartInterval > 0 && mcu > 0 && mcu % plan.restartInterval == 0)
        {
            out.push_back({ 0, -1, 0, 0 });
            std::fill(predictions.begin(), predictions.end(), 0);
        }
        for (size_t c = 0; c < n; ++c)
            for (int b = 0; b < (n == 1 ? 1 : plan.components[c].h * plan.components[c].v); ++b)
            {
                int zigzag[64] = {};
                make(static_cast<int>(c), indices[c]++, zigzag);
                codeBlock(plan.components[c], zigzag, &predictions[c], &out);
            }
    }
    return out;
}

// Gives codes to the symbols of a table and appends the table to a DHT segment.
static CodeTable makeCodes(int table, const std::vector<Symbol>& symbols, Bytes* dht)
{
    std::map<int, int> frequencies;
    for (const Symbol& s : symbols)
        if (s.symbol >= 0 && s.table == table)
            ++frequencies[s.symbol];
    if (frequencies.empty())
        frequencies[0] = 1;
    std::vector<std::pair<int, int>> order;
    for (auto [symbol, count] : frequencies)
        order.push_back({ -count, symbol });
    std::sort(order.begin(), order.end());
    const auto& profile = table < 4 ? dcProfile : acProfile;
    CodeTable codes;
    Bytes counts(16, 0), values;
    int code = 0;
    size_t used = 0;
    for (int length = 1; length <= 16; ++length, code <<= 1)
        for (int i = 0; i < profile[static_cast<size_t>(length - 1)] && used < order.size(); ++i)
        {
            codes[order[used].second] = { length, code++ };
            values.push_back(static_cast<uint8_t>(order[used++].second));
            ++counts[static_cast<size_t>(length - 1)];
        }
    dht->push_back(static_cast<uint8_t>(table < 4 ? table : 0x10 + table - 4));
    append(dht, counts);
    append(dht, values);
    return codes;
}

struct BitWriter
{
    Bytes bytes;
    uint32_t bits = 0;
    int held = 0;
    void put(int value, int count)
    {
        bits = bits << count | (static_cast<uint32_t>(value) & ((1u << count) - 1));
        held += count;
        while (held >= 8)
        {
            held -= 8;
            bytes.push_back(static_cast<uint8_t>(bits >> held));
            if (bytes.back() == 0xFF)
                bytes.push_back(0);
        }
    }
    void align()
    {
        if (held > 0)
            put(0x7F, 8 - held);
    }
};

static Bytes quantSegments(const JpegPlan& plan)
{
    Bytes segments;
    for (int table = 0; table < 4; ++table)
    {
        Bytes data = { static_cast<uint8_t>(plan.wideQuant ? 0x10 | table : table) };
        for (int k = 0; k < 64; ++k)
        {
            if (plan.wideQuant)
                put16(&data, plan.quant);
            else
                data.push_back(static_cast<uint8_t>(plan.quant));
        }
        append(&segments, segmentOf(0xDB, data));
    }
    return segments;
}

static Bytes frameSegment(const JpegPlan& plan)
{
    Bytes frame = { static_cast<uint8_t>(plan.precision) };
    put16(&frame, plan.height);
    put16(&frame, plan.width);
    frame.push_back(static_cast<uint8_t>(plan.components.size()));
    for (const PlanComponent& c : plan.components)
        append(&frame,
               { static_cast<uint8_t>(c.id), static_cast<uint8_t>(c.h << 4 | c.v), static_cast<uint8_t>(c.quant) });
    return segmentOf(plan.frameCode, frame);
}

static Bytes scanSegment(const JpegPlan& plan)
{
    Bytes scan = { static_cast<uint8_t>(plan.components.size()) };
    for (const PlanComponent& c : plan.components)
        append(&scan, { static_cast<uint8_t>(c.id), static_cast<uint8_t>(c.dc << 4 | c.ac) });
    append(&scan, { 0, 63, 0 });
    return segmentOf(0xDA, scan);
}

static Bytes writeSymbols(const std::vector<Symbol>& symbols, std::map<int, CodeTable>& tables)
{
    BitWriter writer;
    int restarts = 0;
    for (const Symbol& s : symbols)
    {
        if (s.symbol < 0)
        {
            writer.align();
            append(&writer.bytes, { 0xFF, static_cast<uint8_t>(0xD0 + restarts++ % 8) });
            continue;
        }
        Code code = tables[s.table][s.symbol];
        writer.put(code.bits, code.length);
        writer.put(s.bits, s.size);
    }
    writer.align();
    return writer.bytes;
}

JpegParts planJpeg(const JpegPlan& plan)
{
    JpegParts parts;
    parts.soi = { 0xFF, 0xD8 };
    parts.application = plan.application;
    parts.quant = quantSegments(plan);
    parts.frame = frameSegment(plan);
    parts.scan = scanSegment(plan);
    if (plan.restartInterval > 0)
        parts.restart = segmentOf(
            0xDD, { static_cast<uint8_t>(plan.restartInterval >> 8), static_cast<uint8_t>(plan.restartInterval) });

    std::vector<Symbol> symbols = codeScan(plan);
    std::map<int, CodeTable> tables;
    Bytes dht;
    for (const PlanComponent& c : plan.components)
        for (int table : { c.dc, 4 + c.ac })
            if (!tables.count(table))
                tables[table] = makeCodes(table, symbols, &dht);
    parts.huffman = segmentOf(0xC4, dht);
    parts.entropy = writeSymbols(symbols, tables);
    parts.end = { 0xFF, 0xD9 };
    return parts;
}

Bytes joinParts(const JpegParts& parts)
{
    Bytes bytes;
    for (const Bytes* part : { &parts.soi, &parts.application, &parts.quant, &parts.frame, &parts.huffman,
                               &parts.restart, &parts.scan, &parts.entropy, &parts.end })
        append(&bytes, *part);
    return bytes;
}

Bytes buildJpeg(const JpegPlan& plan)
{
    return joinParts(planJpeg(plan));
}
