// fuzz/memory_file.h - bytes as a file that a reader can open by name, without a disk
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <string>

// The name of a file in memory with these bytes; the same name every time, the file before it is gone then.
const char* memoryFile(const uint8_t* bytes, size_t size);
