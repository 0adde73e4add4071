// cli/texture_copies.cpp - planning, reading and placing the copies of pictures
#include "cli/texture_copies.h"

#include "platform/boxes.h"
#include "platform/file_names.h"
#include "platform/files.h"
#include "platform/folders.h"

#include <errno.h>
#include <string.h>
#include <algorithm>
#include <filesystem>

// A ':' separates folders or drives in names of other operating systems.
std::string placeOfPicture(const std::string& folder, std::string name)
{
    std::replace(name.begin(), name.end(), '\\', '/');
    if (name.empty() || name[0] == '/' || name.back() == '/' || name.find(':') != std::string::npos)
        return "";
    for (size_t start = 0; start < name.size(); start = std::min(name.find('/', start), name.size()) + 1)
    {
        if (name.compare(start, std::min(name.find('/', start), name.size()) - start, "..") == 0)
            return "";
    }
    return folder + name;
}

static std::filesystem::path pathOf(const std::string& name)
{
    return std::u8string(name.begin(), name.end());
}

static bool sameFile(const std::string& a, const std::string& b)
{
    std::error_code error;
    return std::filesystem::equivalent(pathOf(a), pathOf(b), error) && !error;
}

static bool sameBytes(const std::string& a, const std::string& b)
{
    FILE* files[2] = { openFile(a.c_str(), "rb"), openFile(b.c_str(), "rb") };
    bool same = files[0] && files[1];
    char blocks[2][4096];
    for (size_t came = 1; same && came > 0;)
    {
        came = fread(blocks[0], 1, sizeof blocks[0], files[0]);
        same = fread(blocks[1], 1, sizeof blocks[1], files[1]) == came && memcmp(blocks[0], blocks[1], came) == 0;
    }
    for (FILE* file : files)
    {
        if (file)
            fclose(file);
    }
    return same;
}

bool samePicture(const std::string& a, const std::string& b)
{
    return sameFile(a, b) || sameBytes(a, b);
}

// Adds a copy unless it is there. Returns what stands in the way.
static std::string addCopy(const TextureCopy& copy, const std::vector<std::string>& outputFiles,
                           std::vector<TextureCopy>* copies)
{
    for (const TextureCopy& other : *copies)
    {
        if (foldedName(other.to) != foldedName(copy.to))
            continue;
        return sameFile(other.from, copy.from) ? "" : copy.from + " and " + other.from + " would both be " + copy.to;
    }
    for (const std::string& file : outputFiles)
    {
        if (foldedName(file) == foldedName(copy.to))
            return copy.from + " would be " + copy.to + ", which the model needs";
    }
    if (pathExists(copy.to))
        return samePicture(copy.from, copy.to)
                   ? ""
                   : copy.to + " is there already, and is another picture than " + copy.from;
    copies->push_back(copy);
    return "";
}

std::string planTextureCopies(const Mesh* mesh, const ModelTextures& textures, const std::string& output,
                              const std::vector<std::string>& outputFiles, std::vector<TextureCopy>* copies)
{
    const std::string folder = folderOf(output);
    for (size_t m = 0; m < textures.textures.size() && m < static_cast<size_t>(mesh->materialCount); ++m)
    {
        const std::pair<const FoundTexture*, const char*> both[] = {
            { &textures.textures[m], mesh->textureNames[m] }, { &textures.opacities[m], mesh->opacityNames[m] }
        };
        for (const auto& [found, name] : both)
        {
            if (found->path.empty())
                continue;
            std::string to = placeOfPicture(folder, name);
            if (to.empty())
                return "the name \"" + std::string(name) + "\" of a picture leads out of the folder of " + output;
            std::string obstacle = addCopy({ found->path, to }, outputFiles, copies);
            if (!obstacle.empty())
                return obstacle;
        }
    }
    return "";
}

// Copies the bytes. Returns whether reading has come to the end; the writer of the file notices what it lacks.
static bool copyBytes(FILE* from, FILE* to)
{
    char block[65536];
    for (size_t came; (came = fread(block, 1, sizeof block, from)) > 0;)
    {
        if (fwrite(block, 1, came, to) != came)
            return true;
    }
    return !ferror(from);
}

static bool prepareCopy(const TextureCopy& copy, OutputFile* file)
{
    FILE* from = openFile(copy.from.c_str(), "rb");
    std::string folder = folderOf(copy.to);
    bool ready = from && (folder.empty() || makeFolder(folder));
    if (!ready)
        explainFailure(from ? folder.c_str() : copy.from.c_str(), strerror(errno));
    ready = ready && openOutput(file, copy.to);
    if (ready && !copyBytes(from, file->file))
    {
        explainFailure(copy.from.c_str(), "cannot be read");
        dropOutput(file);
        ready = false;
    }
    if (from)
        fclose(from);
    return ready && closeOutput(file, true);
}

bool prepareTextureCopies(const std::vector<TextureCopy>& copies, std::vector<OutputFile>* files)
{
    files->assign(copies.size(), OutputFile{});
    for (size_t i = 0; i < copies.size(); ++i)
    {
        if (!prepareCopy(copies[i], &(*files)[i]))
            return placeTextureCopies(files, false);
    }
    return true;
}

bool placeTextureCopies(std::vector<OutputFile>* files, bool modelWritten)
{
    return commitOutputs(files->data(), static_cast<int>(files->size()), modelWritten) != 0;
}
