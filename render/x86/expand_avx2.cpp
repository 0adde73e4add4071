// render/x86/expand_avx2.cpp - cells to 24-bit pixels, eight at a time
#include "render/x86/kernels.h"

#include "platform/x86/targets.h"

#include <stddef.h>
#include <immintrin.h>

// Eight cells become 24 bytes: each half of the register is packed by itself, then the halves are joined. A store
// writes 32 bytes, so the loop ends where the eight bytes too many would not be overwritten.
withAvx2 void expandCellsAvx2(uint8_t* pixels, const uint32_t* cells, int32_t count)
{
    const __m256i red = _mm256_set1_epi32(0xF800), green = _mm256_set1_epi32(0x07E0), blue = _mm256_set1_epi32(0x001F);
    const __m256i join = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7);
    const __m128i packHalf = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    const __m256i pack = _mm256_broadcastsi128_si256(packHalf);
    int32_t i = 0;
    for (; i + 16 <= count; i += 8)
    {
        __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cells + i));
        __m256i pixel = _mm256_or_si256(_mm256_slli_epi32(_mm256_and_si256(c, red), 8),
                                        _mm256_slli_epi32(_mm256_and_si256(c, green), 5));
        pixel = _mm256_or_si256(pixel, _mm256_slli_epi32(_mm256_and_si256(c, blue), 3));
        pixel = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(pixel, pack), join);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels + static_cast<ptrdiff_t>(i) * 3), pixel);
    }
    expandCells(pixels + static_cast<ptrdiff_t>(i) * 3, cells + i, count - i);
}
