// import/dispatch.cpp - the table of readers
#include "import/dispatch.h"

#include "import/common/report_lines.h"
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
#include "platform/files.h"

#include <stdio.h>
#include <string.h>

struct Reader
{
    char extension[4]; // upper case
    int (*load)(Mesh* mesh, const char* path, const ReadOptions& options);
};

// For the readers that have no options of their own.
template <int (*load)(Mesh* mesh, const char* path, Report* report, bool normals)>
static int loadWithoutOptions(Mesh* mesh, const char* path, const ReadOptions& options)
{
    return load(mesh, path, options.report, options.normals);
}

static int loadDxf(Mesh* mesh, const char* path, const ReadOptions& options)
{
    return LoadDxfFile(mesh, path, options.report);
}

static int load3ds(Mesh* mesh, const char* path, const ReadOptions& options)
{
    return Load3dsFile(mesh, path, options.keyframes3ds, options.report, options.normals);
}

static int loadPly(Mesh* mesh, const char* path, const ReadOptions& options)
{
    return LoadPlyFile(mesh, path, options.plyList, options.report, options.normals);
}

// clang-format off
static constexpr Reader readers[] = {
    { "OBJ", loadWithoutOptions<LoadObjFile> },
    { "3DS", load3ds },
    { "DXF", loadDxf },
    { "OFF", loadWithoutOptions<LoadOffFile> },
    { "PP2", loadWithoutOptions<LoadPoserFile> },
    { "HR2", loadWithoutOptions<LoadPoserFile> },
    { "CR2", loadWithoutOptions<LoadPoserFile> },
    { "PLY", loadPly },
    { "STL", loadWithoutOptions<LoadStlFile> },
};
// clang-format on

// Whether a path is long enough and has a '.' before its last three characters.
static bool hasExtension(const char* path)
{
    size_t length = strlen(path);
    return length >= 5 && path[length - 4] == '.';
}

// The reader for what ends in an extension, which has three characters; null when there is none.
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

// Replaces the reason of a failure when the file is text in an encoding that no reader knows: what the reader has found
// wrong only follows from that.
static void explainEncoding(Report* report, const char* path)
{
    static constexpr struct
    {
        const char* mark;
        const char* name;
    } encodings[] = { { "\xFF\xFE", "UTF-16" }, { "\xFE\xFF", "UTF-16" }, { "\xEF\xBB\xBF", "UTF-8" } };
    char start[3] = {};
    FILE* file = openFile(path, "rb");
    if (!file)
        return;
    size_t length = fread(start, 1, sizeof start, file);
    fclose(file);
    for (const auto& [mark, name] : encodings)
    {
        if (length < strlen(mark) || memcmp(start, mark, strlen(mark)) != 0)
            continue;
        snprintf(report->failure, sizeof report->failure, "the file begins with the byte order mark of %s", name);
        report->entriesExplain = false;
        report->failureByte = 0;
    }
}

int readModelFile(Mesh* mesh, const char* path, const ReadOptions& options)
{
    if (!options.format && !hasExtension(path))
        return failReading(options.report, -1, "the name has no extension that says how to read it");
    if (const Reader* reader = findReader(options.format ? options.format : path))
    {
        int ok = reader->load(mesh, path, options);
        if (options.report && options.report->failure[0])
            explainEncoding(options.report, path);
        if (options.report)
            locateReport(options.report, path);
        return ok;
    }
    failReading(options.report, -1, "files with this extension are not read");
    messageBox("Not supported file format", fileNameOf(path), iconStop);
    return 0;
}
