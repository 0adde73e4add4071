// import/common/names.cpp - a hash table of names
#include "import/common/names.h"

#include "model/seeded_hash.h"

#include <string.h>

static_assert(nameRoom <= 4 * hashWordLimit);

void startNames(NameTable* table, char (*names)[nameRoom])
{
    *table = {};
    table->names = names;
}

// Finds the place of the name, or the free place where it would go. There are twice as many places as slots. For a name
// that is too long for a slot it finds a free place.
static size_t findPlace(const NameTable* table, const char* name)
{
    constexpr size_t mask = 2 * nameLimit - 1;
    size_t place = hashBytes(hashSeed(), name, strnlen(name, nameRoom)) & mask;
    while (table->places[place] && strcmp(table->names[table->places[place] - 1], name) != 0)
        place = (place + 1) & mask;
    return place;
}

void addFoundNames(NameTable* table, int32_t count)
{
    for (; table->count < count; ++table->count)
    {
        int16_t* place = &table->places[findPlace(table, table->names[table->count])];
        if (*place == 0)
            *place = static_cast<int16_t>(table->count + 1);
    }
}

int32_t findName(const NameTable* table, const char* name)
{
    return table->places[findPlace(table, name)] - 1;
}

int32_t findOrAddName(NameTable* table, const char* text)
{
    char name[nameRoom];
    copyNameFromText(name, text);
    size_t place = findPlace(table, name);
    if (table->places[place] == 0)
    {
        if (table->count == nameLimit)
            return -1;
        memcpy(table->names[table->count], name, sizeof name);
        table->places[place] = static_cast<int16_t>(++table->count);
    }
    return table->places[place] - 1;
}

static size_t nameLength(const char* text)
{
    size_t length = 0;
    while (length < nameRoom - 1 && text[length] && text[length] != '\n' && text[length] != '\r')
        ++length;
    return length;
}

bool isNameCut(const char* text)
{
    size_t length = nameLength(text);
    return text[length] && text[length] != '\n' && text[length] != '\r';
}

void copyNameFromText(char (&slot)[nameRoom], const char* text)
{
    size_t length = nameLength(text);
    memcpy(slot, text, length);
    memset(slot + length, 0, nameRoom - length);
}
