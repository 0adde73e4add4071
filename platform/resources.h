// platform/resources.h - the files inside the program
//
// On Windows they are RCDATA (win32/resources.cpp), elsewhere bytes that the linker puts into the program
// (posix/resources.cpp).
#pragma once
#include <stddef.h>
#include <stdint.h>

struct ResourceBytes
{
    const uint8_t* bytes; // read-only, valid for the whole run
    size_t size;
};

// Finds an embedded file by its name ("model", "wood", "metal", "pattern", "reflect"; letter case does not matter).
// Returns 1, or 0 when the program has no such file.
int findResource(const char* name, ResourceBytes* found);
