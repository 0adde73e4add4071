// cli/facts/textures.h - the texture files that a model names
#pragma once
#include "model/mesh.h"
#include "model/report.h"

#include <string>
#include <vector>

// A texture of a material: the path where it was found, empty where it is missing, and its size.
struct FoundTexture
{
    std::string path;
    int64_t sizeBytes = -1; // -1: unknown
};

// By material; those without a name stay empty.
struct ModelTextures
{
    std::vector<FoundTexture> textures, opacities;
};

// Looks for the textures beside the model, and counts the missing ones in the report.
ModelTextures findTextures(const Mesh* mesh, const std::string& modelPath, Report* report);
