// export/number_texts.h - the texts of whole numbers that a file repeats
//
// A face names its vertices by their numbers, and a vertex has about six faces. Each number is formatted once and then
// copied: a triangle with texture coordinates takes 160 instructions instead of 390, and the conversion of a 10 MB OBJ
// an eighth less time.
#pragma once
#include "export/number_format.h"

// Eight bytes a number: up to seven digits, and how many there are in the highest byte. Numbers from count on are
// formatted each time. A cleared record has no texts.
struct NumberTexts
{
    uint64_t* of;
    uint32_t count;
};

constexpr uint32_t numberTextLimit = 1 << 20; // 8 MiB, and no more than seven digits

// Formats the numbers up to the largest one, where that many uses are worth it. Returns 1 and texts for
// freeNumberTexts; or 0, with a cleared record, after "Out of memory".
int makeNumberTexts(NumberTexts* texts, int64_t largest, int64_t uses);

void freeNumberTexts(NumberTexts* texts);

// "%d"
inline char* formatRepeated(const NumberTexts& texts, char* out, int32_t n)
{
    if (static_cast<uint32_t>(n) >= texts.count)
        return formatInt(out, n);
    uint64_t text = texts.of[n];
    memcpy(out, &text, sizeof text);
    return out + (text >> 56);
}
