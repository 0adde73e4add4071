// bench/render_bench.cpp - whole frames and their steps: a sphere of 4,096 triangles, one of 1,048,576, and triangles
// that fill the display, plain, textured and with shadows
#include "render/kernels.h"
#include "render/faces.h"
#include "render/frame.h"
#include "render/materials.h"
#include "render/project.h"
#include "render/raster.h"
#include "render/shadows.h"
#include "render/view.h"
#include "sphere.h"

#include <benchmark/benchmark.h>

#include <vector>

struct Scene
{
    FrameBuffer target = {};
    ModelList list = {};
    std::vector<uint32_t> pixels;
    Image image = {};
    RenderSettings settings = startRenderSettings;
    FrameState state = startFrameState;
    FrameTransforms transforms = {};
};

// The sphere fills the display's height: by default its radius is half the diagonal of its box.
static void openScene(Scene* scene, int32_t rings, uint32_t extraFlags)
{
    scene->settings.renderFlags |= extraFlags;
    ApplyPreset(&scene->settings, presetProp, 0);
    SetLight(&scene->settings, 0, 1);
    rotationAboutScreenAxes(&scene->state.view.rotation, 25, 20, 0);
    createFrameBuffer(&scene->target, 620, 520);
    scene->pixels.assign(512 * 512, 0);
    for (size_t i = 0; i < scene->pixels.size(); ++i)
        scene->pixels[i] = static_cast<uint32_t>(i * 2654435761u >> 8);
    scene->image = { scene->pixels.data(), 512, 512 };
    scene->settings.currentTexture = &scene->image;
    installMesh(&scene->list, makeSphere(rings, rings * 2));
    scene->list.radius = 1;
    setUpCamera(&scene->transforms, &scene->state.view, scene->list.centre, scene->list.radius, 620, 520);
}

static void closeScene(Scene* scene)
{
    clearModelList(&scene->list);
    destroyFrameBuffer(&scene->target);
}

static void drawFrames(benchmark::State& state, uint32_t extraFlags)
{
    Scene scene;
    openScene(&scene, static_cast<int32_t>(state.range(0)), extraFlags);
    double triangles = scene.list.meshes[0]->faceCount;
    for (auto _ : state)
    {
        scene.state.fullRedraw = 1;
        RenderFrame(&scene.target, &scene.list, &scene.settings, &scene.state);
    }
    state.counters["Mtri/s"] = benchmark::Counter(triangles * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
    closeScene(&scene);
}

static void FrameLit(benchmark::State& state)
{
    drawFrames(state, 0);
}

static void FrameTextured(benchmark::State& state)
{
    drawFrames(state, renderTextured);
}

static void FrameShadowed(benchmark::State& state)
{
    drawFrames(state, renderShadows);
}

// Times one step of a frame after the other steps have been done once.
template <class Step>
static void timeStep(benchmark::State& state, uint32_t extraFlags, Step step)
{
    Scene scene;
    openScene(&scene, static_cast<int32_t>(state.range(0)), extraFlags);
    RenderFrame(&scene.target, &scene.list, &scene.settings, &scene.state);
    for (auto _ : state)
    {
        step(&scene, scene.list.meshes[0]);
        benchmark::ClobberMemory();
    }
    closeScene(&scene);
}

static void StepProject(benchmark::State& state)
{
    timeStep(state, 0, [](Scene* scene, Mesh* mesh) { vertexKernels().project(mesh, &scene->transforms, 620, 520); });
}

static void StepClassify(benchmark::State& state)
{
    timeStep(state, 0, [](Scene* scene, Mesh* mesh) { classifyFaces(mesh, &scene->transforms); });
}

// Times shading alone and filling alone, by clearing or keeping the keys.
static void StepShade(benchmark::State& state)
{
    timeStep(state, 0,
             [](Scene* scene, Mesh* mesh)
             {
                 for (int32_t i = 0; i < mesh->vertexCount; ++i)
                 {
                     float normal[3];
                     transformDirection(normal, &scene->transforms.normal, mesh->vertices[i].normal);
                     mesh->projected[i].colour = shadeVertex(&mesh->materials[0], scene->settings.lights, normal, 0,
                                                             scene->settings.renderFlags, ~0u);
                 }
             });
}

static void StepFill(benchmark::State& state)
{
    timeStep(state, 0,
             [](Scene* scene, Mesh* mesh)
             {
                 ClearRect(scene->target.cells, 0, 0, 619, 519, scene->target.pitch * 4, 0x528A);
                 drawMesh(&scene->target, mesh, &scene->transforms, &scene->settings, &scene->state.statistics);
             });
}

static void StepShadowMap(benchmark::State& state)
{
    timeStep(state, renderShadows,
             [](Scene* scene, Mesh* mesh)
             {
                 ClearShadowMap(scene->target.shadowMap, scene->target.shadowSize);
                 ProjectToLight(mesh, &scene->transforms);
                 RenderShadowMap(&scene->target, mesh);
             });
}

static void StepMarkShadows(benchmark::State& state)
{
    timeStep(state, renderShadows,
             [](Scene* scene, Mesh* mesh) { MarkShadowedVertices(&scene->target, mesh, &scene->transforms); });
}

static void StepClear(benchmark::State& state)
{
    timeStep(state, 0,
             [](Scene* scene, Mesh*)
             { ClearRect(scene->target.cells, 0, 0, 619, 519, scene->target.pitch * 4, 0x528A); });
}

static void StepConvert(benchmark::State& state)
{
    timeStep(
        state, 0,
        [](Scene* scene, Mesh*)
        { cellExpander()(scene->target.picture.bits, scene->target.cells, scene->target.pitch * scene->target.rows); });
}

// 32 layers of two triangles over the whole display, each nearer than the one before.
static void fillLayers(benchmark::State& state, TriangleFiller RasterKernels::*kind, AttributeSet set,
                       uint32_t transparency)
{
    Scene scene;
    openScene(&scene, 4, 0);
    TriangleFiller filler = rasterKernels().*kind;
    FillState fill = { scene.target.cells, scene.target.pitch, &scene.image, transparency, { 2048, 1024, 2048, 0 }, 0 };
    constexpr int32_t layers = 32;
    for (auto _ : state)
    {
        ClearRect(scene.target.cells, 0, 0, 619, 519, scene.target.pitch * 4, 0x528A);
        for (int32_t layer = 0; layer < layers; ++layer)
        {
            int32_t near = 100 + layer * 200, far = near + 90;
            const TriangleCorner corners[4] = { { 0, 0, near, 0xFF302010, 0, 0 },
                                                { 620, 0, far, 0xFFC0E0F0, 0, 1 },
                                                { 620, 520, near, 0xFFFF8040, 1, 1 },
                                                { 0, 520, far, 0xFF10FF80, 1, 0 } };
            const TriangleCorner second[3] = { corners[0], corners[2], corners[3] };
            SpanState span;
            rasterKernels().setUp(&span, corners, set);
            filler(&fill, &span);
            rasterKernels().setUp(&span, second, set);
            filler(&fill, &span);
        }
    }
    state.counters["Mpixel/s"] =
        benchmark::Counter(620.0 * 520 * layers * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
    closeScene(&scene);
}

static void LayersOpaque(benchmark::State& state)
{
    fillLayers(state, &RasterKernels::opaque, opaqueAttributes, 0);
}

static void LayersTransparent(benchmark::State& state)
{
    fillLayers(state, &RasterKernels::transparent, transparentAttributes, 0x999999);
}

static void LayersTextured(benchmark::State& state)
{
    fillLayers(state, &RasterKernels::textured, texturedAttributes, 0);
}

// The argument is the number of rings: the sphere has nearly 2 x rings x 2 x rings triangles.
BENCHMARK(FrameLit)->Arg(32)->Arg(512)->Arg(1619)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameTextured)->Arg(32)->Arg(512)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameShadowed)->Arg(32)->Arg(512)->Arg(1619)->Unit(benchmark::kMillisecond);
BENCHMARK(StepClear)->Arg(32)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepConvert)->Arg(32)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepProject)->Arg(32)->Arg(512)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepClassify)->Arg(32)->Arg(512)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepShade)->Arg(32)->Arg(512)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepFill)->Arg(32)->Arg(512)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepShadowMap)->Arg(32)->Arg(512)->Unit(benchmark::kMicrosecond);
BENCHMARK(StepMarkShadows)->Arg(32)->Arg(512)->Unit(benchmark::kMicrosecond);
BENCHMARK(LayersOpaque)->Unit(benchmark::kMillisecond);
BENCHMARK(LayersTransparent)->Unit(benchmark::kMillisecond);
BENCHMARK(LayersTextured)->Unit(benchmark::kMillisecond);
