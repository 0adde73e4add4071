// tools/statistics.h - counting what is wrong with a mesh
#pragma once
#include "model/mesh.h"
#include "tools/surface.h"

// Of the faces that are neither deleted nor records of polylines, hidden ones included.
struct MeshStatistics
{
    int32_t degenerateFaces;   // a vertex twice, or no area
    int32_t duplicateVertices; // at the position of an earlier vertex
    int64_t openEdges;         // with one face
    int64_t nonManifoldEdges;  // with three or more faces
    int64_t flippedEdges;      // with two faces that run along it in the same direction: one of them is turned over
    bool closed;               // there are edges, and each has two faces
    SurfaceMeasures surface;
};

// Whether the volume of a surface means something: it is closed, and its faces agree on what is inside.
inline bool enclosesVolume(const MeshStatistics& statistics)
{
    return statistics.closed && statistics.flippedEdges == 0;
}

// Counts in time linear in vertices and faces. Planes and normals are not used. A face that uses a vertex twice, or has
// a corner that is not a vertex, has no edges; any other face without area has. Returns 1, or 0 after "Out of memory".
int gatherStatistics(const Mesh* mesh, MeshStatistics* statistics);
