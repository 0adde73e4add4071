// fuzz/memory_files.h - platform/files.h and platform/pending_files.h in memory, for fuzzers that need no disk
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <string>

// Makes these bytes the contents of a file of one name, and of no other file. Returns the name, "model.obj". A model
// that names it as its material library ("mtllib model.obj") reads itself as one.
const char* memoryFile(const uint8_t* bytes, size_t size);

// Makes these bytes the contents of a file of any name.
void memoryFileAt(const std::string& name, const uint8_t* bytes, size_t size);

// Removes all files, with those that writers have left.
void removeMemoryFiles();
