// cli/formats.cpp - the table of formats, and kbx formats
#include "cli/formats.h"

#include "cli/output.h"

#include <stdio.h>

struct Format
{
    const char* name; // also the extension of its files
    bool picture, read, written;
    const char* text;
};

static const Format formats[] = {
    { "obj", false, true, true, "Wavefront OBJ, with its materials (.mtl)" },
    { "3ds", false, true, false, "3D Studio" },
    { "dxf", false, true, false, "AutoCAD DXF, plain 3DFACE entities" },
    { "ply", false, true, false, "Stanford PLY, text and binary" },
    { "off", false, true, false, "Object File Format" },
    { "stl", false, true, true, "STL, text and binary; written binary" },
    { "pp2", false, true, true, "Poser prop, with its preview (.rsr)" },
    { "hr2", false, true, false, "Poser hair, the geometry inside" },
    { "cr2", false, true, false, "Poser figure, the geometry inside" },
    { "rkf", false, true, true, "the program's own format" },
    { "lxs", false, false, true, "LuxRender scene, with .lxo, .lxm and a list of its textures" },
    { "jpg", true, true, false, "baseline JPEG, for --texture and kbx decode" },
    { "png", true, false, true, "PNG picture" },
    { "bmp", true, false, true, "Windows bitmap" },
};

static bool hasUse(const Format& format, FormatUse use)
{
    switch (use)
    {
    case FormatUse::modelRead: return !format.picture && format.read;
    case FormatUse::modelWritten: return !format.picture && format.written;
    case FormatUse::pictureWritten: return format.picture && format.written;
    }
    return false;
}

std::vector<std::string> formatNames(FormatUse use)
{
    std::vector<std::string> names;
    for (const Format& format : formats)
    {
        if (hasUse(format, use))
            names.push_back(format.name);
    }
    return names;
}

int runFormats()
{
    Output out;
    put(&out, "format  read  written\n");
    for (const Format& format : formats)
    {
        char line[128];
        snprintf(line, sizeof line, "%-6s  %-4s  %-7s  %s", format.name, format.read ? "yes" : "no",
                 format.written ? "yes" : "no", format.text);
        put(&out, line);
        endLine(&out);
    }
    return finishOutput(&out) ? 0 : 1;
}
