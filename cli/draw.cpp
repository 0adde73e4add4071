// cli/draw.cpp - the choices of the window, made by options, and the frames drawn with them
#include "cli/draw.h"

#include "cli/load.h"
#include "cli/facts/warnings.h"
#include "image/textures.h"
#include "model/memory.h"
#include "platform/boxes.h"
#include "platform/terminal/terminal.h"
#include "shell/scene.h"

#include <stdio.h>
#include <chrono>

// Loads a JPEG file into the user's slot. Its warnings are those of a model.
static bool loadUserPicture(const std::string& path, const LoadArguments& load)
{
    Report report = {};
    bool read = loadTextureFile(path.c_str(), &TextureSlots[textureUser], nullptr, nullptr, &report) != 0;
    printWarnings(path, report, load.quiet);
    bool refused = read && load.strict && hasWarnings(report);
    if (!read || refused)
        explainFailure(path.c_str(), refused ? notWrittenStrictly : causeOf(report, path, saidOutOfMemory()).c_str());
    return read && !refused;
}

// Loads a built-in texture or a JPEG file into its slot. Returns the slot, or -1 after a message.
static int32_t loadTexture(const std::string& name, const LoadArguments& load)
{
    int32_t slot = textureSlotOf(name);
    bool ok = slot < textureUser ? loadTextureResource(&TextureSlots[slot], builtInTextures[slot]) != 0
                                 : loadUserPicture(name, load);
    return ok ? slot : -1;
}

// Loads the images that the options ask for, and makes the choices.
static int choose(Choices* chosen, const ViewArguments& view, const LoadArguments& load, bool builtIn)
{
    int32_t slot = view.texture ? loadTexture(*view.texture, load) : -1;
    if (view.texture && slot < 0)
        return 0;
    if (view.metallic && !loadTextureResource(&ReflectionImage, "reflect"))
        return 0;
    chooseByOptions(chosen, view, builtIn, slot);
    return 1;
}

// Each frame but the first turns the model by one degree first, as it turns after a flick of the mouse.
static void drawFrames(const RenderSettings* settings, FrameState* state, int32_t count, bool report)
{
    auto start = std::chrono::steady_clock::now();
    uint64_t polygons = 0;
    for (int32_t i = 0; i < count; ++i)
    {
        state->continuousRedraw = i > 0;
        RenderFrame(&frameBuffer, &modelList, settings, state);
        polygons += state->statistics.framePolygons;
    }
    if (!report)
        return;
    double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    fprintf(stderr, "frames %d ms-per-frame %.3f kpol-per-s %.0f\n", count, ms / count,
            ms > 0 ? static_cast<double>(polygons) / ms : 0.0);
}

int drawModel(Mesh* mesh, bool builtIn, const ViewArguments& view, const LoadArguments& load)
{
    installMesh(&modelList, mesh);
    Choices chosen = startChoices;
    if (!choose(&chosen, view, load, builtIn))
        return 0;
    FrameState state = startFrameState;
    state.displayWidth = view.width;
    state.displayHeight = view.height;
    state.view = viewByOptions(view);
    if (!createFrameBuffer(&frameBuffer, view.width, view.height))
        return reportOutOfMemory();
    drawFrames(&chosen.render, &state, view.frames.value_or(1), view.frames.has_value());
    return 1;
}

void releaseDrawing()
{
    destroyFrameBuffer(&frameBuffer);
    releaseModels();
    releaseImages();
}
