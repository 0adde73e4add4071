// import/common/characters.h - blanks, line ends and digits in text, one at a time and eight together
#pragma once
#include "model/ascii.h"

#include <stdint.h>
#include <string.h>

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

inline bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

inline bool isBlankOrLineEnd(char c)
{
    return isBlank(c) || isLineEnd(c);
}

// The bytes that end the text of a statement, a name or a number.
inline bool isTextEnd(char c)
{
    return c == 0 || isLineEnd(c);
}

// Like isspace in the C locale.
inline bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The bytes that scanf skips before a number, except line ends.
inline bool isSpaceInLine(char c)
{
    return isSpace(c) && !isLineEnd(c);
}

inline uint64_t loadEight(const char* at)
{
    uint64_t bytes;
    memcpy(&bytes, at, sizeof bytes);
    return bytes;
}

// The same byte eight times.
constexpr uint64_t eightTimes(uint8_t byte)
{
    return UINT64_C(0x0101010101010101) * byte;
}

// Marks, in their top bits, those of eight bytes that are at most '\r'. The lowest mark is right; higher ones may be
// wrong. Few bytes of a text are that low, so a search for a line end looks at single bytes only where this finds one.
inline uint64_t marksUpToReturn(uint64_t bytes)
{
    return (bytes - eightTimes('\r' + 1)) & ~bytes & eightTimes(0x80);
}

// Finds the first line end from at on; there must be one. Reads up to seven bytes after it.
inline const char* findLineEnd(const char* at)
{
    for (;;)
    {
        uint64_t low = marksUpToReturn(loadEight(at));
        if (!low)
        {
            at += 8;
            continue;
        }
        at += __builtin_ctzll(low) >> 3;
        if (isLineEnd(*at))
            return at;
        ++at;
    }
}

// Finds the first byte from at on that ends a text. Returns end when there is none before it. Reads up to seven bytes
// more.
inline const char* findTextEnd(const char* at, const char* end)
{
    while (at < end)
    {
        uint64_t low = marksUpToReturn(loadEight(at));
        if (!low)
        {
            at += 8;
            continue;
        }
        at += __builtin_ctzll(low) >> 3;
        if (at >= end || isTextEnd(*at))
            break;
        ++at; // a tab or another low byte that ends no text
    }
    return at < end ? at : end;
}
