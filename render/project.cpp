// render/project.cpp - face classification and projection
#include "render/project.h"

#include "render/frame_buffer.h"
#include "render/kernels.h"

#include <algorithm>

static FaceDirections directionsOf(const FrameTransforms* transforms)
{
    FaceDirections directions;
    lightDirectionInModel(directions.light, transforms);
    transformDirection(directions.eye, &transforms->normalTransposed, eyeDirection);
    return directions;
}

void classifyFaceRange(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end)
{
    for (int32_t i = first; i < end; ++i)
    {
        const float* normal = mesh->facePlanes[i].normal;
        const uint32_t before = mesh->faceAttributes[i];
        uint32_t attributes = before;
        uint32_t lit = dotProduct(normal, directions->light) >= litSideThreshold ? faceLit : 0;
        uint32_t eyeFacing = dotProduct(normal, directions->eye) >= 0 ? faceEyeFacing : 0;
        if (!(attributes & (faceHidden | faceDeleted)))
            attributes = (attributes & ~faceLit) | lit;
        if (!(attributes & faceLine))
            attributes = (attributes & ~faceEyeFacing) | eyeFacing;
        if (attributes != before) // few faces change sides from frame to frame
            mesh->faceAttributes[i] = attributes;
    }
}

void classifyFaces(Mesh* mesh, const FrameTransforms* transforms)
{
    FaceDirections directions = directionsOf(transforms);
    vertexKernels().classify(mesh, &directions, 0, mesh->faceCount);
}

void projectVertices(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height)
{
    const Matrix screen = transforms->screen;
    const uint32_t centre = static_cast<uint32_t>(width / 2) << 16 | static_cast<uint32_t>(height / 2);
    int32_t x0 = width - 1, y0 = height - 1, x1 = 0, y1 = 0;
    bool anyOffScreen = false;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        int32_t p[3];
        transformPointToInt(p, &screen, mesh->vertices[i].position);
        ProjectedVertex* vertex = &mesh->projected[i];
        uint32_t flags = (vertex->flags & vertexShadowed) | (static_cast<uint32_t>(p[2]) & vertexDepthMask);
        bool inside = p[0] > 0 && p[0] < width && p[1] > 0 && p[1] < height && p[2] >= 1 && p[2] < depthLimit;
        if (inside)
        {
            x0 = std::min(x0, p[0]);
            x1 = std::max(x1, p[0]);
            y0 = std::min(y0, p[1]);
            y1 = std::max(y1, p[1]);
            vertex->xy = static_cast<uint32_t>(p[0]) << 16 | static_cast<uint32_t>(p[1]);
        }
        else
        {
            flags |= vertexOffScreen;
            anyOffScreen = true;
            vertex->xy = centre;
        }
        vertex->flags = flags;
    }
    if (anyOffScreen)
    {
        x0 = std::min(x0, width / 2);
        x1 = std::max(x1, width / 2);
        y0 = std::min(y0, height / 2);
        y1 = std::max(y1, height / 2);
    }
    const int32_t rect[4] = { x0, y0, x1, y1 };
    std::copy_n(rect, 4, mesh->screenRect);
}

void projectVerticesToLight(Mesh* mesh, const FrameTransforms* transforms)
{
    const Matrix light = transforms->light;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        int32_t p[3];
        transformPointToInt(p, &light, mesh->vertices[i].position);
        ProjectedVertex* vertex = &mesh->projected[i];
        bool inside =
            p[0] >= 0 && p[0] <= shadowMapSide && p[1] >= 0 && p[1] <= shadowMapSide && p[2] >= 0 && p[2] <= depthLimit;
        vertex->xy = inside ? static_cast<uint32_t>(p[0]) << 16 | static_cast<uint32_t>(p[1]) : 0;
        vertex->flags = inside ? static_cast<uint32_t>(p[2]) : vertexOffScreen;
    }
}
