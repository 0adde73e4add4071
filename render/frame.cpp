// render/frame.cpp - one frame, step by step
#include "render/frame.h"

#include "model/settings.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "render/faces.h"
#include "render/kernels.h"
#include "render/project.h"
#include "render/shadows.h"
#include "render/view.h"

#include <stdio.h>
#include <algorithm>

constexpr int32_t titleIntervalMs = 1000;

FrameStatistics frameStatistics;
PixelRect dirtyRect = { 0, 0, -1, -1 };

static PixelRect unionOf(const PixelRect& a, const PixelRect& b)
{
    return { std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1) };
}

static void clearDirtyRect(FrameBuffer* target, int32_t width, int32_t height)
{
    if (displayState.fullRedraw)
    {
        displayState.fullRedraw = 0;
        dirtyRect = { 0, 0, width - 1, height - 1 };
    }
    int32_t x1 = std::min(dirtyRect.x1, target->pitch - 1), y1 = std::min(dirtyRect.y1, target->rows - 1);
    ClearRect(target->cells, dirtyRect.x0, dirtyRect.y0, x1, y1, target->pitch * 4, renderSettings.backgroundColour);
}

// Shadows are marked before the vertices get their screen positions, in the same words.
static void prepareMesh(FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms, bool shadows)
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

// Presents what the last two frames touched, in whole groups of four columns.
static void presentFrame(FrameBuffer* target, const Mesh* mesh)
{
    PixelRect drawn = { mesh->screenRect[0], mesh->screenRect[1], mesh->screenRect[2], mesh->screenRect[3] };
    PixelRect changed = unionOf(drawn, dirtyRect);
    dirtyRect = drawn;
    PresentRect(target, changed.x0 & ~3, changed.y0, (changed.x1 & ~3) + 4, changed.y1, 1);
}

static void restartTimer(uint32_t now)
{
    frameStatistics.timerStart = now;
    frameStatistics.accumulatedPolygons = 0;
}

// Polygons per millisecond in the title, once a second.
static void updateTitle(const Mesh* mesh)
{
    uint32_t now = tickCount();
    int32_t elapsed = static_cast<int32_t>(now - frameStatistics.timerStart);
    if (elapsed < 0) // the clock has wrapped
    {
        elapsed = 0;
        restartTimer(now);
    }
    if (elapsed <= titleIntervalMs)
        return;
    int32_t rate = static_cast<int32_t>(frameStatistics.accumulatedPolygons) / elapsed;
    char title[sizeof programName + fileNameRoom + 128];
    snprintf(title, sizeof title, "%s: %s - vert %ld  pol %ld  uv %ld   %ld Kpol/s", programName, currentFileName,
             static_cast<long>(mesh->vertexCount), static_cast<long>(mesh->faceCount), static_cast<long>(mesh->uvCount),
             static_cast<long>(rate));
    setWindowTitle(title);
    restartTimer(now);
}

void RenderFrame(FrameBuffer* target, ModelList* list)
{
    if (frameStatistics.timerStart == 0)
        frameStatistics.timerStart = tickCount();
    frameStatistics.framePolygons = 0;
    int32_t width = std::min(displayState.displayWidth, target->pitch - 4);
    int32_t height = std::min(displayState.displayHeight, target->rows);
    clearDirtyRect(target, width, height);
    if (displayState.continuousRedraw)
        spinView();
    Mesh* mesh = list->count > 0 ? list->meshes[0] : nullptr;
    if (!mesh)
        return;

    SetRendererRounding();
    FrameTransforms transforms;
    setUpCamera(&transforms, list->centre, list->radius, width, height);
    frameStatistics.vertexCount = mesh->vertexCount;
    frameStatistics.litVertices = 0;
    prepareMesh(target, mesh, &transforms, renderSettings.renderFlags & renderShadows);
    vertexKernels().project(mesh, &transforms, width, height);
    drawMesh(target, mesh, &transforms);
    RestoreRounding();

    frameStatistics.accumulatedPolygons += frameStatistics.framePolygons;
    presentFrame(target, mesh);
    updateTitle(mesh);
}
