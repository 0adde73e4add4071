// import/common/names.h - the group and material names of a mesh while it is being read
#pragma once
#include "model/mesh.h"

// There are as many group slots as material slots, so one table type serves both.
constexpr int32_t nameLimit = groupLimit;
static_assert(nameLimit == materialLimit);

// Finds a name without comparing it to all others, because files may change group or material with every face.
struct NameTable
{
    char (*names)[nameRoom];       // the mesh's own slots
    int32_t count;                 // how many of them are in use
    int16_t places[2 * nameLimit]; // found by hash, then the next free one; each holds a slot's index + 1, 0: free
};

// Makes an empty table over the slots of a mesh. New names overwrite what the slots hold.
void startNames(NameTable* table, char (*names)[nameRoom]);

// Adds the names that the first slots already hold. Of equal names the first one is found.
void addFoundNames(NameTable* table, int32_t count);

// The slot of the exact name, or -1.
int32_t findName(const NameTable* table, const char* name);

// The slot of the name, which ends with 0 or a line end and is cut to nameRoom - 1 bytes. A new name gets the next
// slot. Returns -1 when all slots are taken.
int32_t findOrAddName(NameTable* table, const char* text);

// Whether a text that ends with 0 or a line end is too long for a slot.
bool isNameCut(const char* text);

// Copies a text that ends with 0 or a line end, cut to nameRoom - 1 bytes. The rest of the slot is zero.
void copyNameFromText(char (&slot)[nameRoom], const char* text);
