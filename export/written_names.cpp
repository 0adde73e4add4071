// export/written_names.cpp - replacing what a line cannot hold
#include "export/written_names.h"

#include <stdio.h>

const char* writtenName(const char (*names)[nameRoom], int32_t slot, const char* breakers, WrittenName* written)
{
    const char* name = names[slot];
    if (nameFits(name, breakers))
        return name;
    snprintf(written->text, sizeof written->text, "%s_%d", name, slot);
    for (char* at = strpbrk(written->text, breakers); at; at = strpbrk(at, breakers))
        *at++ = '_';
    return written->text;
}
