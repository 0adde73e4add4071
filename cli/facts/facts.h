// cli/facts/facts.h - what there is to say about a model, as kbx info and the page's views do
#pragma once
#include "cli/facts/textures.h"
#include "tools/statistics.h"

#include <string>
#include <vector>

// A model, what reading it left out, and where its textures are.
struct LoadedModel
{
    Mesh* mesh = nullptr; // the caller frees it; null when the model failed
    Report report = {};
    ModelTextures textures;
    std::string error; // why there is no mesh
};

struct FaceCounts
{
    int32_t triangles = 0;
    int32_t quads = 0;
    int32_t lineRecords = 0;
};

inline int32_t allOf(const FaceCounts& counts)
{
    return counts.triangles + counts.quads + counts.lineRecords;
}

struct Facts
{
    MeshStatistics statistics = {};
    int32_t uvs = 0; // 0 where the mesh has only the placeholder
    int32_t hidden = 0;
    FaceCounts all;
    std::vector<FaceCounts> groups, materials; // by slot
};

// Returns 0 after "Out of memory".
int gatherFacts(const Mesh* mesh, Facts* facts);

// What is wrong with the surface, such as "6 open edges, 1 degenerate face"; empty when it is sound.
std::string faultsOf(const MeshStatistics& statistics);

// The facts as a JSON object, and the object of a file that failed. In one line, or laid out for reading.
std::string factsAsJson(const std::string& path, const LoadedModel& model, const Facts& facts, bool inOneLine);
std::string errorAsJson(const std::string& path, const std::string& error, bool inOneLine);
