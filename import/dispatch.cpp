// import/dispatch.cpp - the table of readers
#include "import/dispatch.h"

#include "import/text/dxf.h"
#include "import/obj/obj.h"
#include "import/text/off.h"
#include "import/ply/ply.h"
#include "import/text/poser.h"
#include "import/threeds/threeds.h"
#include "platform/boxes.h"
#include "platform/file_names.h"

#include <string.h>

struct Reader
{
    char extension[4]; // upper case
    int (*load)(Mesh* mesh, const char* path);
};

// clang-format off
static constexpr Reader readers[] = {
    { "OBJ", LoadObjFile },
    { "3DS", Load3dsFile },
    { "DXF", LoadDxfFile },
    { "OFF", LoadOffFile },
    { "PP2", LoadPoserFile },
    { "HR2", LoadPoserFile },
    { "CR2", LoadPoserFile },
    { "PLY", LoadPlyFile },
};
// clang-format on

static char upperCase(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

int readModelFile(Mesh* mesh, const char* path, char (&shortName)[shortNameRoom], int reportErrors)
{
    shortName[0] = 0;
    size_t length = strlen(path);
    if (length < 5 || path[length - 4] != '.')
        return 0;
    const char* name = fileNameOf(path);
    size_t nameLength = strnlen(name, shortNameRoom - 1);
    memcpy(shortName, name, nameLength);
    shortName[nameLength] = 0;

    char extension[4] = {};
    for (size_t i = 0; i < 3; ++i)
        extension[i] = upperCase(path[length - 3 + i]);
    for (const Reader& reader : readers)
    {
        if (strcmp(reader.extension, extension) == 0)
            return reader.load(mesh, path);
    }
    if (reportErrors)
        messageBox("Not supported file format", shortName, iconStop);
    return 0;
}
