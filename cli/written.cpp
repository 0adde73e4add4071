// cli/written.cpp - the files of a format, and what is lost in them
#include "cli/written.h"

#include "export/lux.h"
#include "export/written_names.h"
#include "platform/boxes.h"
#include "platform/file_names.h"
#include "platform/files.h"
#include "platform/folders.h"

#include <string.h>

static std::string withExtension(const std::string& path, const char* extension)
{
    return path.substr(0, path.size() - 4) + extension;
}

static std::vector<std::string> filesOfKind(OutputFormat format, bool withLibrary, const std::string& path)
{
    std::vector<std::string> files = { path };
    if (format == OutputFormat::obj && withLibrary)
        files.push_back(withExtension(path, ".mtl"));
    if (format == OutputFormat::pp2)
        files.push_back(withExtension(path, ".rsr"));
    if (format != OutputFormat::lxs)
        return files;
    std::string base = folderOf(path.c_str()) + luxBaseName(path.c_str());
    return { base + ".lxs", base + ".lxo", base + ".lxm", base + "_textures.txt" };
}

std::vector<std::string> filesOf(OutputFormat format, const Mesh* mesh, const std::string& path)
{
    return filesOfKind(format, mesh->materialCount > 0, path);
}

std::vector<std::string> possibleFilesOf(const std::string& path)
{
    OutputFormat format;
    return outputFormatOf(path, &format) ? filesOfKind(format, true, path) : std::vector<std::string>{ path };
}

void sayKept(const std::string& path, bool quiet)
{
    if (!quiet)
        explainFailure(path.c_str(), "kept, it is there already (--no-clobber)");
}

bool wouldReplace(const std::string& path)
{
    std::string place;
    return !isStandardOutput(path) && pathExists(path) && findFileTarget(path.c_str(), &place) != targetDirect;
}

static void noteNames(const char (*names)[nameRoom], int32_t count, const char* breakers, Report* report)
{
    for (int32_t i = 0; i < count; ++i)
    {
        if (!nameFits(names[i], breakers))
            noteDetail(report, namesChanged, -1, "\"%s\"", names[i]);
    }
}

// A name of a texture that does not fit is left out.
static void noteAllNames(OutputFormat format, const Mesh* mesh, Report* report)
{
    const char* names = format == OutputFormat::lxs ? quoteBreakers : lineBreakers;
    const char* textures = format == OutputFormat::obj ? lineBreakers : quoteBreakers;
    noteNames(mesh->groupNames, mesh->groupCount, lineBreakers, report);
    noteNames(mesh->materialNames, mesh->materialCount, names, report);
    noteNames(mesh->textureNames, mesh->materialCount, textures, report);
    noteNames(mesh->opacityNames, mesh->materialCount, textures, report);
}

static bool hasFaces(const Mesh* mesh)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!(mesh->faceAttributes[f] & faceDeleted))
            return true;
    }
    return false;
}

static void noteUnreadable(OutputFormat format, const Mesh* mesh, const std::string& path, Report* report)
{
    bool isRead = format == OutputFormat::obj || format == OutputFormat::pp2;
    if (isRead && mesh->vertexCount == 0)
        noteDetail(report, resultUnreadable, -1, "it has no vertex");
    else if (format == OutputFormat::obj && !hasFaces(mesh))
        noteDetail(report, resultUnreadable, -1, "it has no face and no line");
    if (format == OutputFormat::obj && mesh->materialCount > 0 &&
        strlen(fileNameOf(withExtension(path, ".mtl").c_str())) >= nameRoom)
        noteDetail(report, resultUnreadable, -1, "the name of its library is longer than %d bytes", nameRoom - 1);
}

static bool fileExists(const std::string& path)
{
    FILE* file = openFile(path.c_str(), "rb");
    if (file)
        fclose(file);
    return file != nullptr;
}

void reportWriting(OutputFormat format, const Mesh* mesh, const std::string& path, Report* report)
{
    noteUnreadable(format, mesh, path, report);
    if (format != OutputFormat::rkf && format != OutputFormat::stl) // which have no names
        noteAllNames(format, mesh, report);
    std::vector<std::string> files = filesOf(format, mesh, path);
    for (const std::string& file : files)
    {
        if (file != path && fileExists(file))
            noteDetail(report, filesReplaced, -1, "%s", file.c_str());
    }
}
