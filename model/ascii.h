// model/ascii.h - letters and digits of ASCII, the same in every locale
#pragma once

// The lower-case letter of an upper-case one; every other byte, also of UTF-8, stays as it is.
inline char asciiLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The upper-case letter of a lower-case one; every other byte stays as it is.
inline char asciiUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
