// render/other/project_lanes.cpp - projection, one vertex a step
//
// Lane k holds row k of the transform, and the sums run in the same order as in render/project.cpp.
#include "render/other/kernels.h"

#include "platform/other/lanes.h"

struct TransformColumns
{
    FloatLanes x, y, z, translation;
};

static TransformColumns columnsOf(const Matrix& matrix)
{
    const float* m = matrix.m;
    return { FloatLanes{ m[0], m[4], m[8], 0 }, FloatLanes{ m[1], m[5], m[9], 0 }, FloatLanes{ m[2], m[6], m[10], 0 },
             FloatLanes{ m[3], m[7], m[11], 0 } };
}

static IntLanes transformPoint(const TransformColumns& t, const float* point)
{
    return floorToIntLanes(((t.x * allLanes(point[0]) + t.y * allLanes(point[1])) + t.z * allLanes(point[2])) +
                           t.translation);
}

void projectVerticesLanes(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height)
{
    const TransformColumns columns = columnsOf(transforms->screen);
    const IntLanes above = { width, height, depthLimit, 1 }, below = { 0, 0, 0, -1 };
    const IntLanes centre = { width / 2, height / 2, 0, 0 };
    IntLanes lowest = { width - 1, height - 1, 0, 0 }, highest = {};
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        IntLanes p = transformPoint(columns, mesh->vertices[i].position);
        bool inside = bitsOf((p > below) & (p < above)) == 0xF;
        IntLanes place = inside ? p : centre;
        lowest = lowerOf(lowest, place);
        highest = higherOf(highest, place);
        ProjectedVertex* vertex = &mesh->projected[i];
        vertex->xy = static_cast<uint32_t>(place[0]) << 16 | static_cast<uint32_t>(place[1]);
        vertex->flags = (vertex->flags & vertexShadowed) | (static_cast<uint32_t>(p[2]) & vertexDepthMask) |
                        (inside ? 0 : vertexOffScreen);
    }
    int32_t* rect = mesh->screenRect;
    rect[0] = lowest[0];
    rect[1] = lowest[1];
    rect[2] = highest[0];
    rect[3] = highest[1];
}
