// tests/model/ascii_test.cpp - letters and digits, byte by byte
#include "model/ascii.h"

#include <gtest/gtest.h>
#include <string>

TEST(Ascii, OnlyItsLettersChangeTheirCase)
{
    const std::string lower = "abcdefghijklmnopqrstuvwxyz", upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (int byte = 0; byte < 256; ++byte)
    {
        char c = static_cast<char>(byte);
        size_t small = lower.find(c), large = upper.find(c);
        EXPECT_EQ(asciiUpper(c), small == std::string::npos ? c : upper[small]) << byte;
        EXPECT_EQ(asciiLower(c), large == std::string::npos ? c : lower[large]) << byte;
        EXPECT_EQ(isDigit(c), std::string("0123456789").find(c) != std::string::npos) << byte;
    }
}
