// resources/make/output.cpp - little-endian numbers and whole files
#include "output.h"

#include <stdio.h>
#include <bit>

void putHalf(std::string* file, uint32_t value)
{
    file->push_back(static_cast<char>(value & 0xFF));
    file->push_back(static_cast<char>(value >> 8 & 0xFF));
}

void putWord(std::string* file, uint32_t value)
{
    putHalf(file, value & 0xFFFF);
    putHalf(file, value >> 16);
}

void putFloat(std::string* file, float value)
{
    putWord(file, std::bit_cast<uint32_t>(value));
}

bool writeFile(const char* folder, const char* name, const std::string& bytes)
{
    std::string path = std::string(folder) + "/" + name;
    FILE* file = fopen(path.c_str(), "wb");
    bool written = file && fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (file && fclose(file) != 0)
        written = false;
    if (!written)
        fprintf(stderr, "cannot write %s\n", path.c_str());
    return written;
}
