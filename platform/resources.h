// platform/resources.h - the files inside the program
#pragma once
#include <stddef.h>
#include <stdint.h>

struct ResourceBytes
{
    const uint8_t* bytes; // read-only, there for the whole run
    size_t size;
};

// Finds an embedded file by its name ("model", "wood", "metal", "pattern", "reflect"; letter case does not matter).
// Returns 1, or 0 when the program carries none of that name.
int findResource(const char* name, ResourceBytes* found);
