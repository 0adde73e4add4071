// resources/make/output.h - little-endian numbers and whole files, for every generator
#pragma once
#include <stdint.h>
#include <string>

// Appends 16 or 32 bits, little endian.
void putHalf(std::string* file, uint32_t value);
void putWord(std::string* file, uint32_t value);
void putFloat(std::string* file, float value);

// Writes folder/name. Returns false after a message on standard error.
bool writeFile(const char* folder, const char* name, const std::string& bytes);
