// tests/page/base64.cpp - base 64 of RFC 4648
#include "tests/page/base64.h"

#include <stdint.h>

static const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string encodeBase64(const std::string& bytes)
{
    std::string text;
    uint32_t bits = 0;
    int count = 0;
    for (char c : bytes)
    {
        bits = bits << 8 | static_cast<uint8_t>(c);
        for (count += 8; count >= 6; count -= 6)
            text += letters[bits >> (count - 6) & 63];
    }
    if (count > 0)
        text += letters[bits << (6 - count) & 63];
    text.append((4 - text.size() % 4) % 4, '=');
    return text;
}

std::string decodeBase64(const std::string& text)
{
    uint8_t values[256] = {};
    for (size_t i = 0; i < letters.size(); ++i)
        values[static_cast<uint8_t>(letters[i])] = static_cast<uint8_t>(i);
    std::string bytes;
    uint32_t bits = 0;
    int count = 0;
    for (char c : text)
    {
        if (c == '=')
            break;
        bits = bits << 6 | values[static_cast<uint8_t>(c)];
        count += 6;
        if (count >= 8)
        {
            count -= 8;
            bytes.push_back(static_cast<char>(bits >> count));
        }
    }
    return bytes;
}
