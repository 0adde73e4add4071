// model/quad_cut.h - how a quad becomes two triangles, the same for the tool "TRI" and for a format without quads
#pragma once
#include "model/matrix.h"
#include "model/mesh.h"

// The slots of the corners at which the two triangles start; each takes the two corners that follow, around the quad.
struct QuadCut
{
    size_t first, second;
};

// Cuts along the shorter diagonal, of two equal ones along that from corner 0.
inline QuadCut cutOfQuad(const Mesh* mesh, const Corners& corners)
{
    auto squaredLength = [&](size_t a, size_t b)
    { return squaredDistance(mesh->vertices[corners[a]].position, mesh->vertices[corners[b]].position); };
    bool secondShorter = cornersAreVertices(mesh, corners, 4) && squaredLength(0, 2) > squaredLength(1, 3);
    return secondShorter ? QuadCut{ 3, 1 } : QuadCut{ 0, 2 };
}
