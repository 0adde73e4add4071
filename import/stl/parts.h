// import/stl/parts.h - what the readers of binary files and of text share
#pragma once
#include "model/mesh.h"
#include "model/report.h"

struct StlReader
{
    Mesh* mesh;
    Report* report;          // null: none
    bool normals;            // are computed
    int32_t facesDone;       // triangles that completeTriangles has had
    int64_t degenerateFaces; // of these; counted for a report only
};

// Adds the normals of the triangles since the last call up to finishNormals, and counts those without area. Called
// every few thousand triangles, while these are in the cache.
void completeTriangles(StlReader* reader);
