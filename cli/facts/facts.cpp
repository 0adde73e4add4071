// cli/facts/facts.cpp - counting faces by kind, group and material, and naming faults
#include "cli/facts/facts.h"

static void addCounts(FaceCounts* counts, const FaceCounts& more)
{
    counts->triangles += more.triangles;
    counts->quads += more.quads;
    counts->lineRecords += more.lineRecords;
}

// Counts a run of faces with the same attributes. Returns the slot after it.
static int32_t countRun(const Mesh* mesh, int32_t first, FaceCounts* run)
{
    uint32_t attributes = mesh->faceAttributes[first];
    int32_t f = first, quads = 0;
    for (; f < mesh->faceCount && mesh->faceAttributes[f] == attributes; ++f)
        quads += cornerCount(mesh->faces[f]) == 4;
    bool isLine = (attributes & faceLine) != 0;
    run->lineRecords = isLine ? f - first : 0;
    run->quads = isLine ? 0 : quads;
    run->triangles = isLine ? 0 : f - first - quads;
    return f;
}

static void countFaces(const Mesh* mesh, Facts* facts)
{
    facts->groups.resize(groupLimit);
    facts->materials.resize(materialLimit);
    for (int32_t f = 0; f < mesh->faceCount;)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        FaceCounts run;
        f = countRun(mesh, f, &run);
        if (attributes & faceDeleted)
            continue;
        addCounts(&facts->all, run);
        addCounts(&facts->groups[faceGroup(attributes)], run);
        addCounts(&facts->materials[faceMaterial(attributes)], run);
        facts->hidden += attributes & faceHidden ? allOf(run) : 0;
    }
}

int gatherFacts(const Mesh* mesh, Facts* facts)
{
    bool placeholder = mesh->uvCount == 1 && mesh->uvs[0].u == 0 && mesh->uvs[0].v == 0;
    facts->uvs = placeholder ? 0 : mesh->uvCount;
    countFaces(mesh, facts);
    return gatherStatistics(mesh, &facts->statistics);
}

std::string faultsOf(const MeshStatistics& statistics)
{
    struct Fault
    {
        int64_t count;
        const char *one, *many;
    };
    const Fault faults[] = {
        { statistics.openEdges, "open edge", "open edges" },
        { statistics.nonManifoldEdges, "non-manifold edge", "non-manifold edges" },
        { statistics.flippedEdges, "flipped edge", "flipped edges" },
        { statistics.degenerateFaces, "degenerate face", "degenerate faces" },
        { statistics.surface.duplicateFaces, "duplicate face", "duplicate faces" },
        { statistics.duplicateVertices, "duplicate vertex", "duplicate vertices" },
    };
    std::string text;
    for (const Fault& fault : faults)
    {
        if (fault.count > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(fault.count) + " " +
                    (fault.count == 1 ? fault.one : fault.many);
    }
    return text;
}
