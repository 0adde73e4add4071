// cli/facts.cpp - counting faces by kind, group and material, and naming faults
#include "cli/facts.h"

static void countFace(FaceCounts* counts, bool isLine, bool isQuad)
{
    counts->lineRecords += isLine;
    counts->quads += !isLine && isQuad;
    counts->triangles += !isLine && !isQuad;
}

static void countFaces(const Mesh* mesh, Facts* facts)
{
    facts->groups.resize(groupLimit);
    facts->materials.resize(materialLimit);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        if (attributes & faceDeleted)
            continue;
        bool isLine = (attributes & faceLine) != 0, isQuad = cornerCount(mesh->faces[f]) == 4;
        for (FaceCounts* counts :
             { &facts->all, &facts->groups[faceGroup(attributes)], &facts->materials[faceMaterial(attributes)] })
            countFace(counts, isLine, isQuad);
        facts->hidden += (attributes & faceHidden) != 0;
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
