// import/dispatch.cpp - the table of readers
#include "import/dispatch.h"

#include "import/text/dxf.h"
#include "import/obj/obj.h"
#include "import/text/off.h"
#include "import/ply/ply.h"
#include "import/stl/stl.h"
#include "import/text/poser.h"
#include "import/threeds/threeds.h"
#include "model/ascii.h"
#include "platform/boxes.h"
#include "platform/file_names.h"

#include <string.h>

struct Reader
{
    char extension[4]; // upper case
    int (*load)(Mesh* mesh, const char* path, const ReadOptions& options);
};

// For the readers that have no options.
template <int (*load)(Mesh* mesh, const char* path)>
static int loadWithoutOptions(Mesh* mesh, const char* path, const ReadOptions&)
{
    return load(mesh, path);
}

static int load3ds(Mesh* mesh, const char* path, const ReadOptions& options)
{
    return Load3dsFile(mesh, path, options.keyframes3ds);
}

// clang-format off
static constexpr Reader readers[] = {
    { "OBJ", loadWithoutOptions<LoadObjFile> },
    { "3DS", load3ds },
    { "DXF", loadWithoutOptions<LoadDxfFile> },
    { "OFF", loadWithoutOptions<LoadOffFile> },
    { "PP2", loadWithoutOptions<LoadPoserFile> },
    { "HR2", loadWithoutOptions<LoadPoserFile> },
    { "CR2", loadWithoutOptions<LoadPoserFile> },
    { "PLY", loadWithoutOptions<LoadPlyFile> },
    { "STL", loadWithoutOptions<LoadStlFile> },
};
// clang-format on

// Whether a path is long enough and has a '.' before its last three characters.
static bool hasExtension(const char* path)
{
    size_t length = strlen(path);
    return length >= 5 && path[length - 4] == '.';
}

// The reader for a path with an extension; null when there is none.
static const Reader* findReader(const char* path)
{
    size_t length = strlen(path);
    char extension[4] = {};
    for (size_t i = 0; i < 3; ++i)
        extension[i] = asciiUpper(path[length - 3 + i]);
    for (const Reader& reader : readers)
    {
        if (strcmp(reader.extension, extension) == 0)
            return &reader;
    }
    return nullptr;
}

int isModelName(const char* path)
{
    return hasExtension(path) && findReader(path) != nullptr;
}

int readModelFile(Mesh* mesh, const char* path, const ReadOptions& options)
{
    if (!hasExtension(path))
        return 0;
    if (const Reader* reader = findReader(path))
        return reader->load(mesh, path, options);
    messageBox("Not supported file format", fileNameOf(path), iconStop);
    return 0;
}
