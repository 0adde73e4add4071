// cli/facts/textures.cpp - looking for the texture files of a model
#include "cli/facts/textures.h"

#include "import/common/paths.h"
#include "platform/files.h"

#include <stdio.h>
#include <string.h>

static int64_t sizeOf(const std::string& path)
{
    FILE* file = openFile(path.c_str(), "rb");
    int64_t sizeBytes = file ? measureFile(file) : -1;
    if (file)
        fclose(file);
    return sizeBytes;
}

static FoundTexture find(const std::string& modelPath, const char* name, FolderListings* listings, Report* report)
{
    FoundTexture found;
    if (!*name)
        return found;
    found.path = findTextureFile(modelPath.c_str(), name, listings);
    if (found.path.empty())
        noteName(report, texturesMissing, -1, name, strlen(name));
    else
        found.sizeBytes = sizeOf(found.path);
    return found;
}

ModelTextures findTextures(const Mesh* mesh, const std::string& modelPath, Report* report)
{
    ModelTextures found;
    FolderListings listings;
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        found.textures.push_back(find(modelPath, mesh->textureNames[m], &listings, report));
        found.opacities.push_back(find(modelPath, mesh->opacityNames[m], &listings, report));
    }
    return found;
}
