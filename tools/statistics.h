// tools/statistics.h - how sound a mesh is
#pragma once
#include "model/mesh.h"

// Surfaces only: faces that are neither deleted nor lines. Hidden ones count.
struct MeshStatistics
{
    int32_t degenerateFaces;   // a vertex twice, or no area
    int32_t duplicateVertices; // at the position of an earlier vertex
    int64_t openEdges;         // with one face
    int64_t nonManifoldEdges;  // with three faces and more
};

// Counts in time linear in vertices and faces. Planes must be up to date. A face with a vertex twice, or with a corner
// that is no vertex, has no edges; one that has no area otherwise does.
// Returns 1, or 0 after "Out of memory".
int gatherStatistics(const Mesh* mesh, MeshStatistics* statistics);
