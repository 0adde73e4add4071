// fuzz/life_fuzz.cpp - a whole life of a model: read, repaired with undo and redo, filtered, drawn, written in every
// format and as a picture, read again
//
// The first bytes choose: reader, number of tools, the tools, filter, render flags, preset, lights, view, size. The
// rest is the file.
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "fuzz/fuzzing.h"
#include "fuzz/memory_files.h"
#include "import/text/dxf.h"
#include "import/obj/obj.h"
#include "import/text/off.h"
#include "import/ply/ply.h"
#include "import/text/poser.h"
#include "import/rkf.h"
#include "import/stl/stl.h"
#include "import/threeds/threeds.h"
#include "model/mesh_copy.h"
#include "platform/processor.h"
#include "render/frame.h"
#include "render/materials.h"
#include "shell/picture_file.h"
#include "shell/scene.h"
#include "shell/undo.h"
#include "tools/filter.h"

#include <stdio.h>
#include <stdlib.h>

struct ChoiceBytes
{
    const uint8_t* bytes;
    size_t size;
};

static uint32_t choose(ChoiceBytes* choices, uint32_t count)
{
    if (choices->size == 0)
        return 0;
    --choices->size;
    return *choices->bytes++ % count;
}

// Runs tools, undo and redo. In the end all tools that can be taken back are taken back, which must give the first
// mesh, and are done again.
static void repair(ChoiceBytes* steps)
{
    Mesh* first = copyMesh(currentMesh());
    for (uint32_t count = choose(steps, 6); count > 0; --count)
    {
        uint32_t step = choose(steps, static_cast<uint32_t>(meshTools.size()) + 2);
        if (step < meshTools.size())
            runTool(&meshTools[step]);
        else if (step == meshTools.size())
            undoTool();
        else
            redoTool();
        checkMesh(currentMesh(), "repaired");
    }
    int undone = 0;
    while (undoTool())
        ++undone;
    if (!meshesAreEqual(first, currentMesh()))
    {
        fprintf(stderr, "undo: not the first mesh after %d steps\n", undone);
        abort();
    }
    freeKeptMesh(first);
    while (undone-- > 0 && redoTool())
    {
    }
    checkMesh(currentMesh(), "redone");
}

static RenderSettings chooseSettings(ChoiceBytes* choices)
{
    constexpr uint32_t flags[] = { renderBackCulled, renderWireframe, renderVertexColour,
                                   renderShadows,    renderRough,     renderMoon };
    RenderSettings settings = startRenderSettings;
    settings.renderFlags = 0;
    uint32_t wanted = choose(choices, 64);
    for (uint32_t i = 0; i < 6; ++i)
        settings.renderFlags |= wanted & (1u << i) ? flags[i] : 0;
    ApplyPreset(&settings, static_cast<int32_t>(choose(choices, 11)), 0);
    for (int32_t light = 0; light < lightCount; ++light)
        SetLight(&settings, light, choose(choices, 2));
    return settings;
}

static void draw(ChoiceBytes* choices, FrameState* state)
{
    RenderSettings settings = chooseSettings(choices);
    rotationAboutScreenAxes(&state->view.rotation, static_cast<float>(choose(choices, 256)),
                            static_cast<float>(choose(choices, 256)), 0);
    constexpr float zooms[] = { 1, 1.5f, 10, 1e4f, 1e9f };
    state->view.zoom = zooms[choose(choices, 5)];
    state->displayWidth = 10 + static_cast<int32_t>(choose(choices, 90));
    state->displayHeight = 10 + static_cast<int32_t>(choose(choices, 90));
    limitKernelLevel(choose(choices, 2) ? kernelsAvx512 : kernelsPlain);
    if (createFrameBuffer(&frameBuffer, state->displayWidth, state->displayHeight))
        RenderFrame(&frameBuffer, &modelList, &settings, state);
    limitKernelLevel(kernelsAvx512);
}

static void readBack(const char* name, int (*load)(Mesh*, const char*))
{
    Mesh* mesh = createMesh("prop");
    if (load(mesh, name))
        checkMesh(mesh, name);
    freeMesh(mesh);
}

static void write(const Mesh* mesh, const FrameState& state)
{
    if (WriteObjFile(mesh, "m.obj", "m.obj"))
        readBack("m.obj", LoadObjFile);
    PreviewSource preview = { frameBuffer.picture.bits, state.displayWidth, state.displayHeight,
                              frameBuffer.pitch * 3 };
    if (frameBuffer.cells && WritePropFile(mesh, "m.pp2", &preview))
        readBack("m.pp2", LoadPoserFile);
    if (WriteRkfFile(mesh, "m.rkf", false))
        readBack("m.rkf", LoadRkfFile);
    if (WriteStlFile(mesh, "m.stl"))
        readBack("m.stl", LoadStlFile);
    WriteLuxFiles(mesh, "m.lxs");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    static int (*const readers[])(Mesh*, const char*) = { LoadObjFile, LoadOffFile,   LoadPlyFile, Load3dsFile,
                                                          LoadDxfFile, LoadPoserFile, LoadRkfFile, LoadStlFile };
    beginInput();
    ChoiceBytes choices = { bytes, size };
    auto reader = readers[choose(&choices, 8)];
    uint8_t plan[24] = {};
    for (uint8_t& step : plan)
        step = static_cast<uint8_t>(choose(&choices, 256));
    Mesh* mesh = createMesh("prop");
    if (!reader(mesh, memoryFile(choices.bytes, choices.size)))
    {
        freeMesh(mesh);
        return endInput();
    }
    checkMesh(mesh, "reader");
    ChoiceBytes steps = { plan, sizeof plan };
    installMesh(&modelList, mesh);
    repair(&steps);
    mesh = currentMesh();
    applyFilter(mesh, static_cast<int32_t>(choose(&steps, 8)));
    fitModelList(&modelList);
    FrameState state = startFrameState;
    draw(&steps, &state);
    write(mesh, state);
    if (frameBuffer.cells && choose(&steps, 4) == 0) // deflating takes longer than all the rest
        writePicture("m.png", &frameBuffer, state.displayWidth, state.displayHeight);
    destroyFrameBuffer(&frameBuffer);
    releaseModels();
    return endInput();
}
