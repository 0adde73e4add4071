// resources/make/output.h - what every generator writes its file with
#pragma once
#include <stdint.h>
#include <string>

// Appends 16 or 32 bits, little endian.
void putHalf(std::string* file, uint32_t value);
void putWord(std::string* file, uint32_t value);
void putFloat(std::string* file, float value);

// Writes folder/name whole. Returns false after a line on standard error.
bool writeFile(const char* folder, const char* name, const std::string& bytes);
