// import/common/characters.h - blanks, line ends and digits in text, one at a time and eight together
#pragma once
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

// What ends the text of a statement, a name or a number.
inline bool isTextEnd(char c)
{
    return c == 0 || isLineEnd(c);
}

// isspace of the C locale.
inline bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// What scanf skips before a number, without the line ends.
inline bool isSpaceInLine(char c)
{
    return isSpace(c) && !isLineEnd(c);
}

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
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

// Marks, by their top bits, bytes of eight that are at most '\r'. The lowest mark is right; those above it may be
// wrong. Few bytes of a text are that low, so that a search for a line end looks at single bytes only where this finds
// one.
inline uint64_t marksUpToReturn(uint64_t bytes)
{
    return (bytes - eightTimes('\r' + 1)) & ~bytes & eightTimes(0x80);
}

// The first line end from at on, which must be there. Reads up to seven bytes behind it.
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

// The first byte from at on that ends a text, or end when there is none before it. Reads up to seven bytes behind.
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
        ++at; // a tab or the like
    }
    return at < end ? at : end;
}
