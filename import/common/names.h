// import/common/names.h - the group and material names of a mesh while it is being read
#pragma once
#include "model/mesh.h"

// Groups and materials have as many slots, so that one table serves both.
constexpr int32_t nameLimit = groupLimit;
static_assert(nameLimit == materialLimit);

// Finds names without comparing them all: files change group or material with every face.
struct NameTable
{
    char (*names)[nameRoom];       // the mesh's own slots
    int32_t count;                 // of them in use
    int16_t places[2 * nameLimit]; // by hash, then the next free place; the slot's index + 1, 0: free
};

// Makes an empty table over the slots of a mesh. Names that are added overwrite what the slots hold.
void startNames(NameTable* table, char (*names)[nameRoom]);

// Adds the names that the first slots hold already; of equal ones the first is found.
void addFoundNames(NameTable* table, int32_t count);

// The slot of the exact name, or -1.
int32_t findName(const NameTable* table, const char* name);

// The slot of the name, which ends with 0 or a line end and is cut to nameRoom - 1 bytes. A new name gets the next
// slot; -1 when all slots are taken.
int32_t findOrAddName(NameTable* table, const char* text);

// Copies a text that ends with 0 or a line end, cut to nameRoom - 1 bytes. The rest of the slot is zero.
void copyNameFromText(char (&slot)[nameRoom], const char* text);
