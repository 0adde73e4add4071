// image/colour.cpp - component rows to words 0x00RRGGBB, plain and for SSE2 and AVX2
//
// red = Y + 1.402 Cr, green = Y - 0.71414 Cr - 0.34414 Cb, blue = Y + 1.772 Cb, where Cr and Cb are samples - 128.
#include "image/colour.h"

#include "image/vectors.h"

// A weight with 16 fractional bits.
static constexpr int32_t weight(double x)
{
    return static_cast<int32_t>(x * 65536 + 0.5);
}

constexpr int32_t redFromCr = weight(1.402), blueFromCb = weight(1.772);
constexpr int32_t greenFromCr = -weight(0.71414), greenFromCb = -weight(0.34414);
constexpr int32_t half = 32768;

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

#ifdef JPEG_SSE2

// (a x + b y + half) >> 16 in eight lanes, for interleaved pairs x y and the factors a b of weights.
inlineSse2 __m128i weighSse2(__m128i low, __m128i high, __m128i weights)
{
    const __m128i round = _mm_set1_epi32(half);
    return _mm_packs_epi32(_mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(low, weights), round), 16),
                           _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(high, weights), round), 16));
}

// The weights do not fit in a 16-bit factor; their whole multiples of 65536 are added outside the shift.
withSse2 void convertYccSse2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n)
{
    const __m128i middle = _mm_set1_epi16(128), zero = _mm_setzero_si128();
    const __m128i redWeight = pairSse2(0, redFromCr - 65536), blueWeight = pairSse2(blueFromCb - 2 * 65536, 0);
    const __m128i greenWeight = pairSse2(greenFromCb, greenFromCr + 65536);
    int32_t i = 0;
    for (; i + 8 <= n; i += 8)
    {
        __m128i luma = widen8(y + i);
        __m128i b = _mm_sub_epi16(widen8(cb + i), middle);
        __m128i r = _mm_sub_epi16(widen8(cr + i), middle);
        __m128i low = _mm_unpacklo_epi16(b, r), high = _mm_unpackhi_epi16(b, r);
        __m128i red = _mm_add_epi16(_mm_add_epi16(luma, r), weighSse2(low, high, redWeight));
        __m128i green = _mm_add_epi16(_mm_sub_epi16(luma, r), weighSse2(low, high, greenWeight));
        __m128i blue = _mm_add_epi16(_mm_add_epi16(luma, _mm_add_epi16(b, b)), weighSse2(low, high, blueWeight));
        __m128i blueGreen = _mm_unpacklo_epi8(_mm_packus_epi16(blue, blue), _mm_packus_epi16(green, green));
        __m128i redZero = _mm_unpacklo_epi8(_mm_packus_epi16(red, red), zero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i), _mm_unpacklo_epi16(blueGreen, redZero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i + 4), _mm_unpackhi_epi16(blueGreen, redZero));
    }
    convertYcc(words + i, y + i, cb + i, cr + i, n - i);
}

withSse2 void convertGreySse2(uint32_t* words, const uint8_t* grey, int32_t n)
{
    const __m128i zero = _mm_setzero_si128();
    int32_t i = 0;
    for (; i + 8 <= n; i += 8)
    {
        __m128i g = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(grey + i));
        __m128i twice = _mm_unpacklo_epi8(g, g), once = _mm_unpacklo_epi8(g, zero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i), _mm_unpacklo_epi16(twice, once));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i + 4), _mm_unpackhi_epi16(twice, once));
    }
    convertGrey(words + i, grey + i, n - i);
}

inlineAvx2 __m256i widen16(const uint8_t* bytes)
{
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
}

inlineAvx2 __m256i weighAvx2(__m256i low, __m256i high, int32_t cbWeight, int32_t crWeight)
{
    const __m256i round = _mm256_set1_epi32(half), weights = _mm256_broadcastsi128_si256(pairSse2(cbWeight, crWeight));
    return _mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(low, weights), round), 16),
                              _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(high, weights), round), 16));
}

// Like convertYccSse2, with eight pixels in each half of a register.
withAvx2 void convertYccAvx2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n)
{
    const __m256i middle = _mm256_set1_epi16(128), zero = _mm256_setzero_si256();
    int32_t i = 0;
    for (; i + 16 <= n; i += 16)
    {
        __m256i luma = widen16(y + i);
        __m256i b = _mm256_sub_epi16(widen16(cb + i), middle);
        __m256i r = _mm256_sub_epi16(widen16(cr + i), middle);
        __m256i low = _mm256_unpacklo_epi16(b, r), high = _mm256_unpackhi_epi16(b, r);
        __m256i red = _mm256_add_epi16(_mm256_add_epi16(luma, r), weighAvx2(low, high, 0, redFromCr - 65536));
        __m256i green =
            _mm256_add_epi16(_mm256_sub_epi16(luma, r), weighAvx2(low, high, greenFromCb, greenFromCr + 65536));
        __m256i blue = _mm256_add_epi16(_mm256_add_epi16(luma, _mm256_add_epi16(b, b)),
                                        weighAvx2(low, high, blueFromCb - 2 * 65536, 0));
        __m256i blueGreen = _mm256_unpacklo_epi8(_mm256_packus_epi16(blue, blue), _mm256_packus_epi16(green, green));
        __m256i redZero = _mm256_unpacklo_epi8(_mm256_packus_epi16(red, red), zero);
        __m256i first = _mm256_unpacklo_epi16(blueGreen, redZero), second = _mm256_unpackhi_epi16(blueGreen, redZero);
        auto* out = reinterpret_cast<__m256i*>(words + i);
        _mm256_storeu_si256(out, _mm256_permute2x128_si256(first, second, 0x20));
        _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(first, second, 0x31));
    }
    convertYcc(words + i, y + i, cb + i, cr + i, n - i);
}

#endif
