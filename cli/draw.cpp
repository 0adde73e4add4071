// cli/draw.cpp - the window's choices, made by options
#include "cli/draw.h"

#include "image/textures.h"
#include "model/settings.h"
#include "platform/processor.h"
#include "render/frame.h"
#include "render/materials.h"
#include "render/view.h"
#include "shell/scene.h"

#include <stdio.h>
#include <string.h>
#include <chrono>

static const char* const textureNames[] = { "wood", "metal", "pattern" };

// What the Texture menu does: the picture on a white front and a brick back.
static int chooseTexture(const std::string& name)
{
    int32_t index = 0;
    while (index < textureUser && name != textureNames[index])
        ++index;
    Image* slot = &TextureSlots[index];
    int opened = 1;
    int ok = index < textureUser ? loadTextureResource(slot, textureNames[index])
                                 : loadTextureFile(name.c_str(), slot, &opened);
    if (!opened)
        fprintf(stderr, "kbx: cannot read %s\n", name.c_str());
    if (!ok)
        return 0;
    renderSettings.textureIndex = index;
    renderSettings.currentTexture = slot;
    renderSettings.renderFlags |= renderTextured;
    renderSettings.materialPreset = presetWhite;
    ApplyPreset(presetWhite, presetBrick);
    return 1;
}

static int chooseMetallic()
{
    if (!loadTextureResource(&ReflectionImage, "reflect"))
        return 0;
    renderSettings.currentTexture = &ReflectionImage;
    renderSettings.renderFlags |= renderMetallic;
    ApplyPreset(presetWhite, presetBrick);
    return 1;
}

static void chooseFlags(const ViewArguments& view)
{
    uint32_t flags = renderSettings.renderFlags & ~(renderBackCulled | renderVertexColour);
    flags |= view.backCulled ? renderBackCulled : 0;
    flags |= view.vertexColour ? renderVertexColour : 0;
    flags |= view.wireframe ? renderWireframe : 0;
    flags |= view.shadows ? renderShadows : 0;
    flags |= view.rough ? renderRough : 0;
    flags |= view.moon ? renderMoon : 0;
    renderSettings.renderFlags = flags;
}

static int chooseSurface(const ViewArguments& view, bool builtIn)
{
    renderSettings.materialPreset = builtIn ? presetBrass : presetProp;
    ApplyPreset(renderSettings.materialPreset, renderSettings.backPreset);
    if (view.texture && !chooseTexture(*view.texture))
        return 0;
    if (view.metallic && !chooseMetallic())
        return 0;
    if (view.preset)
    {
        renderSettings.materialPreset = *view.preset;
        ApplyPreset(*view.preset, renderSettings.backPreset);
    }
    chooseFlags(view);
    return 1;
}

static void chooseLights(uint32_t mask)
{
    renderSettings.lightMask = mask;
    for (int32_t light = 0; light < lightCount; ++light)
        SetLight(light, mask & (1u << light));
}

static void chooseView(const ViewArguments& view)
{
    resetView();
    if (view.view)
    {
        for (size_t i = 0; i < 9; ++i)
            viewState.rotation.m[i / 3 * 4 + i % 3] = (*view.view)[i];
    }
    Matrix turn;
    rotationAboutScreenAxes(&turn, view.rotateDegrees[0], view.rotateDegrees[1], view.rotateDegrees[2]);
    multiplyMatrices(&viewState.rotation, &turn, &viewState.rotation);
    renderSettings.zoom = view.zoom;
}

// Each frame but the first turns the model by one degree first, as a flung one would.
static void drawFrames(int32_t count, bool report)
{
    auto start = std::chrono::steady_clock::now();
    uint64_t polygons = 0;
    rotationAboutScreenAxes(&viewState.step, 0, 1, 0);
    for (int32_t i = 0; i < count; ++i)
    {
        displayState.continuousRedraw = i > 0;
        RenderFrame(&frameBuffer, &modelList);
        polygons += frameStatistics.framePolygons;
    }
    if (!report)
        return;
    double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    fprintf(stderr, "frames %d ms-per-frame %.3f kpol-per-s %.0f\n", count, ms / count,
            ms > 0 ? static_cast<double>(polygons) / ms : 0.0);
}

int drawModel(Mesh* mesh, bool builtIn, const ViewArguments& view)
{
    installMesh(&modelList, mesh);
    displayState.useSse2 = (CpuFeatures() & processorSse2) != 0;
    displayState.displayWidth = view.width;
    displayState.displayHeight = view.height;
    renderSettings.backgroundIndex = view.background;
    renderSettings.backgroundColour = backgroundColours[view.background];
    if (!chooseSurface(view, builtIn))
        return 0;
    chooseLights(view.lightMask);
    chooseView(view);
    if (!createFrameBuffer(&frameBuffer))
    {
        fputs("kbx: there is no memory for a picture of this size\n", stderr);
        return 0;
    }
    drawFrames(view.frames.value_or(1), view.frames.has_value());
    return 1;
}

void releaseDrawing()
{
    destroyFrameBuffer(&frameBuffer);
    releaseModels();
    releasePictures();
}
