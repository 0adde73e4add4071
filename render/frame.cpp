// render/frame.cpp - one frame, step by step
#include "render/frame.h"

#include "platform/processor.h"
#include "render/faces.h"
#include "render/kernels.h"
#include "render/project.h"
#include "render/shadows.h"

#include <algorithm>

static PixelRect unionOf(const PixelRect& a, const PixelRect& b)
{
    return { std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1) };
}

// Clears what the last frame drew, or the whole display.
static void clearForFrame(FrameBuffer* target, FrameState* state, int32_t width, int32_t height, uint32_t background)
{
    if (state->fullRedraw)
    {
        state->fullRedraw = 0;
        state->dirtyRect = { 0, 0, width - 1, height - 1 };
    }
    const PixelRect& dirty = state->dirtyRect;
    int32_t x1 = std::min(dirty.x1, target->pitch - 1), y1 = std::min(dirty.y1, target->rows - 1);
    ClearRect(target->cells, dirty.x0, dirty.y0, x1, y1, target->pitch * 4, background);
}

// The shadow marks come before the screen positions because both use the same words of a vertex.
static void classifyAndShadow(FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms, bool shadows)
{
    if (shadows)
    {
        ClearShadowMap(target->shadowMap, target->shadowSize);
        ProjectToLight(mesh, transforms);
    }
    classifyFaces(mesh, transforms);
    if (shadows)
    {
        RenderShadowMap(target, mesh);
        MarkShadowedVertices(target, mesh, transforms);
    }
}

// Presents what this frame and the last one touched, in whole groups of four columns.
static void presentFrame(FrameBuffer* target, FrameState* state, const Mesh* mesh)
{
    PixelRect drawn = { mesh->screenRect[0], mesh->screenRect[1], mesh->screenRect[2], mesh->screenRect[3] };
    PixelRect changed = unionOf(drawn, state->dirtyRect);
    state->dirtyRect = drawn;
    PresentRect(target, changed.x0 & ~3, changed.y0, (changed.x1 & ~3) + 4, changed.y1, 1);
}

void RenderFrame(FrameBuffer* target, ModelList* list, const RenderSettings* settings, FrameState* state)
{
    state->statistics = {};
    int32_t width = std::min(state->displayWidth, target->pitch - 4);
    int32_t height = std::min(state->displayHeight, target->rows);
    clearForFrame(target, state, width, height, settings->backgroundColour);
    if (state->continuousRedraw)
        spinView(&state->view);
    Mesh* mesh = list->count > 0 ? list->meshes[0] : nullptr;
    if (!mesh)
        return;

    state->statistics.vertexCount = mesh->vertexCount;
    SetRendererRounding();
    FrameTransforms transforms;
    setUpCamera(&transforms, &state->view, list->centre, list->radius, width, height);
    classifyAndShadow(target, mesh, &transforms, settings->renderFlags & renderShadows);
    vertexKernels().project(mesh, &transforms, width, height);
    drawMesh(target, mesh, &transforms, settings, &state->statistics);
    RestoreRounding();
    presentFrame(target, state, mesh);
}
