// platform/posix/resources.cpp - the files that resources/embed.S includes in the program
#include "platform/resources.h"

#include <strings.h>

#define EMBEDDED(name)                                                                                                 \
    extern "C" const uint8_t embedded_##name[];                                                                        \
    extern "C" const uint8_t embedded_##name##_end[];
EMBEDDED(model)
EMBEDDED(wood)
EMBEDDED(metal)
EMBEDDED(pattern)
EMBEDDED(reflect)

struct EmbeddedFile
{
    const char* name;
    const uint8_t* begin;
    const uint8_t* end;
};

static const EmbeddedFile files[] = {
    { "model", embedded_model, embedded_model_end },       { "wood", embedded_wood, embedded_wood_end },
    { "metal", embedded_metal, embedded_metal_end },       { "pattern", embedded_pattern, embedded_pattern_end },
    { "reflect", embedded_reflect, embedded_reflect_end },
};

int findResource(const char* name, ResourceBytes* found)
{
    for (const EmbeddedFile& file : files)
    {
        if (strcasecmp(file.name, name) == 0)
        {
            *found = { file.begin, static_cast<size_t>(file.end - file.begin) };
            return 1;
        }
    }
    return 0;
}
