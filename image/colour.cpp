// image/colour.cpp - component rows to words 0x00RRGGBB
#include "image/colour.h"

#include "image/colour_weights.h"
#include "image/kernels.h"

struct ColourTables
{
    int32_t crRed[256], cbBlue[256];
    int32_t crGreen[256], cbGreen[256]; // with 16 fractional bits; the second one includes the rounding
};

static constexpr ColourTables makeTables()
{
    ColourTables tables = {};
    for (int32_t i = 0; i < 256; ++i)
    {
        int32_t x = i - 128;
        tables.crRed[i] = (redFromCr * x + half) >> 16;
        tables.cbBlue[i] = (blueFromCb * x + half) >> 16;
        tables.crGreen[i] = greenFromCr * x;
        tables.cbGreen[i] = greenFromCb * x + half;
    }
    return tables;
}

static constexpr ColourTables tables = makeTables();

ColourSpace fileColourSpace(const JpegState& state)
{
    const Component* c = state.components;
    switch (state.componentCount)
    {
    case 1: return colourGrey;
    case 3:
        if (state.jfifSeen)
            return colourYcc;
        if (state.adobeSeen)
            return state.adobeTransform == 0 ? colourRgb : colourYcc;
        return c[0].id == 'R' && c[1].id == 'G' && c[2].id == 'B' ? colourRgb : colourYcc;
    case 4: return state.adobeSeen && state.adobeTransform != 0 ? colourYcck : colourCmyk;
    default: return colourUnknown;
    }
}

bool colourFits(const JpegState& state)
{
    switch (state.colourSpace)
    {
    case colourGrey: return state.componentCount == 1;
    case colourRgb:
    case colourYcc: return state.componentCount == 3;
    case colourCmyk:
    case colourYcck: return state.componentCount == 4;
    case colourUnknown: break;
    }
    return false;
}

static uint32_t clampByte(int32_t x)
{
    return static_cast<uint32_t>(x < 0 ? 0 : x > 255 ? 255 : x);
}

static uint32_t packed(uint32_t red, uint32_t green, uint32_t blue)
{
    return red << 16 | green << 8 | blue;
}

static uint32_t fromYcc(int32_t y, int32_t cb, int32_t cr)
{
    return packed(clampByte(y + tables.crRed[cr]), clampByte(y + ((tables.cbGreen[cb] + tables.crGreen[cr]) >> 16)),
                  clampByte(y + tables.cbBlue[cb]));
}

void convertYcc(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n)
{
    for (int32_t i = 0; i < n; ++i)
        words[i] = fromYcc(y[i], cb[i], cr[i]);
}

void convertGrey(uint32_t* words, const uint8_t* grey, int32_t n)
{
    for (int32_t i = 0; i < n; ++i)
        words[i] = grey[i] * 0x10101u;
}

// Samples are amounts of ink: the pixel keeps what the ink of its colour and the black ink leave of 255.
static void convertCmyk(uint32_t* words, const uint8_t* const* rows, int32_t n)
{
    for (int32_t i = 0; i < n; ++i)
    {
        int32_t key = rows[3][i];
        words[i] = packed(clampByte(255 - (rows[0][i] + key)), clampByte(255 - (rows[1][i] + key)),
                          clampByte(255 - (rows[2][i] + key)));
    }
}

void convertRow(const JpegState& state, uint32_t* words, const uint8_t* const* rows)
{
    int32_t n = state.width;
    switch (state.colourSpace)
    {
    case colourGrey: state.kernels.grey(words, rows[0], n); break;
    case colourYcc: state.kernels.ycc(words, rows[0], rows[1], rows[2], n); break;
    case colourRgb:
        for (int32_t i = 0; i < n; ++i)
            words[i] = packed(rows[0][i], rows[1][i], rows[2][i]);
        break;
    case colourCmyk: convertCmyk(words, rows, n); break;
    case colourYcck: // such files store the key inverted, so it adds to the luma
        for (int32_t i = 0; i < n; ++i)
            words[i] = fromYcc(rows[0][i] + rows[3][i], rows[1][i], rows[2][i]);
        break;
    case colourUnknown: break;
    }
}
