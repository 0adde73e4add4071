// image/idct.cpp - the inverse DCT
#include "image/idct.h"
#include "image/kernels.h"

static int16_t saturate16(int32_t x)
{
    return static_cast<int16_t>(x < -32768 ? -32768 : x > 32767 ? 32767 : x);
}

static uint8_t sample(int32_t x)
{
    return static_cast<uint8_t>((x < -128 ? -128 : x > 127 ? 127 : x) + 128);
}

static int16_t low16(int32_t x)
{
    return static_cast<int16_t>(static_cast<uint32_t>(x) & 0xFFFF);
}

// 32-bit sums that wrap, as the vector instructions do.
static int32_t add(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

static int32_t sub(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// Eight 16-bit values of a column or row to eight sums with 13 more fractional bits.
static void butterfly(const int16_t* in, int32_t* out)
{
    int32_t t0 = add(in[0] * one, in[4] * one);
    int32_t t1 = sub(in[0] * one, in[4] * one);
    int32_t t2 = add(in[2] * fix0541, in[6] * even6);
    int32_t t3 = add(in[2] * even2, in[6] * fix0541);
    int32_t even[4] = { add(t0, t3), add(t1, t2), sub(t1, t2), sub(t0, t3) };

    int16_t sum3 = low16(in[7] + in[3]);
    int16_t sum4 = low16(in[5] + in[1]);
    int32_t z3 = add(sum3 * odd3, sum4 * fix1175);
    int32_t z4 = add(sum3 * fix1175, sum4 * odd4);
    int32_t odd[4] = { add(add(in[1] * odd1, in[7] * -fix0899), z4), add(add(in[3] * odd33, in[5] * -fix2562), z3),
                       add(add(in[5] * odd5, in[3] * -fix2562), z4), add(add(in[7] * odd7, in[1] * -fix0899), z3) };
    for (int32_t i = 0; i < 4; ++i)
    {
        out[i] = add(even[i], odd[i]);
        out[7 - i] = sub(even[i], odd[i]);
    }
}

// The product of a coefficient and its table entry in 32 bits, times 4.
static int32_t flatColumn(int16_t coefficient, int32_t entry)
{
    uint32_t product = static_cast<uint32_t>(int32_t{ coefficient }) * static_cast<uint32_t>(entry);
    return static_cast<int32_t>(product * 4);
}

void inverseDct(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes)
{
    int16_t rows[8][8];
    int16_t in[8];
    int32_t sums[8];
    for (int32_t column = 0; column < 8; ++column)
    {
        int32_t rest = 0;
        for (int32_t i = 0; i < 8; ++i)
        {
            in[i] = low16(block[i * 8 + column] * quant.low[i * 8 + column]);
            rest |= i > 0 ? block[i * 8 + column] : 0;
        }
        butterfly(in, sums);
        for (int32_t i = 0; i < 8; ++i)
        {
            int32_t x = add(sums[i], columnRound) >> columnShift;
            rows[i][column] = saturate16(rest == 0 ? flatColumn(block[column], quant.entries[column]) : x);
        }
    }
    for (int32_t row = 0; row < 8; ++row)
    {
        // A row with no more than its first value needs no path of its own: (x 2^13 + 2^17) >> 18 = (x + 16) >> 5.
        butterfly(rows[row], sums);
        for (int32_t i = 0; i < 8; ++i)
            out[row * strideBytes + i] = sample(add(sums[i], rowRound) >> rowShift);
    }
}

void inverseDctPair(const IdctTask* tasks)
{
    for (int i = 0; i < 2; ++i)
        inverseDct(tasks[i].block, *tasks[i].quant, tasks[i].out, tasks[i].strideBytes);
}

void inverseDctFlat(int16_t first, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes)
{
    int32_t x = saturate16(flatColumn(first, quant.entries[0]));
    uint8_t value = sample((x + 16) >> 5);
    for (int32_t row = 0; row < 8; ++row)
        for (int32_t i = 0; i < 8; ++i)
            out[row * strideBytes + i] = value;
}
