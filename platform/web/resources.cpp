// platform/web/resources.cpp - the built-in model inside the module, and pictures that lie beside it
//
// The pictures are two thirds of all bytes of the program, and the first picture needs none of them.
#include "platform/resources.h"

#include "platform/web/host.h"

#include <strings.h>

extern "C" const uint8_t embedded_model[];
extern "C" const uint8_t embedded_model_end[];

struct PageFile
{
    const char* name;
    const char* file; // beside the module
    ResourceBytes read;
};

static PageFile pageFiles[] = {
    { "wood", "wood.jpg", {} },
    { "metal", "metal.jpg", {} },
    { "pattern", "pattern.jpg", {} },
    { "reflect", "reflect.jpg", {} },
};

int findResource(const char* name, ResourceBytes* found)
{
    if (strcasecmp(name, "model") == 0)
    {
        *found = { embedded_model, static_cast<size_t>(embedded_model_end - embedded_model) };
        return 1;
    }
    for (PageFile& file : pageFiles)
    {
        if (strcasecmp(file.name, name) != 0)
            continue;
        if (!file.read.bytes)
            file.read.bytes = readPageFile(file.file, &file.read.size);
        *found = file.read;
        return file.read.bytes != nullptr;
    }
    return 0;
}
