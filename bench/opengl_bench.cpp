// bench/opengl_bench.cpp - the frames of render_bench drawn by OpenGL in software (Mesa's llvmpipe through OSMesa) on
// one thread: the same spheres and turns, filling the height of a picture of 620 x 520, until the pixels are finished
#include "sphere.h"

#include <GL/osmesa.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <benchmark/benchmark.h>

#include <stdlib.h>
#include <string.h>
#include <vector>

constexpr int width = 620, height = 520;

struct Canvas
{
    OSMesaContext context = nullptr;
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{ width } * height);
};

static bool openCanvas(Canvas* canvas)
{
    setenv("LP_NUM_THREADS", "0", 1); // the caller's thread does all the work
    const int wanted[] = {
        OSMESA_FORMAT, OSMESA_BGRA, OSMESA_DEPTH_BITS, 24, OSMESA_PROFILE, OSMESA_COMPAT_PROFILE, 0, 0
    };
    canvas->context = OSMesaCreateContextAttribs(wanted, nullptr);
    return canvas->context &&
           OSMesaMakeCurrent(canvas->context, canvas->pixels.data(), GL_UNSIGNED_BYTE, width, height) &&
           strstr(reinterpret_cast<const char*>(glGetString(GL_RENDERER)), "llvmpipe");
}

// One user light, a shiny material, and no faces turned away, as the window starts.
static void setUpScene(bool textured)
{
    constexpr float aspect = static_cast<float>(width) / height;
    const float lightDirection[] = { 0.5f, 0.6f, 1, 0 }, grey[] = { 0.7f, 0.7f, 0.7f, 1 };
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glOrtho(-aspect, aspect, -1, 1, -2, 2);
    glMatrixMode(GL_MODELVIEW);
    glLightfv(GL_LIGHT0, GL_POSITION, lightDirection);
    glRotatef(25, 1, 0, 0);
    glRotatef(20, 0, 1, 0);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, grey);
    glMaterialfv(GL_FRONT, GL_SPECULAR, grey);
    glMaterialf(GL_FRONT, GL_SHININESS, 20);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    if (!textured)
        return;
    std::vector<uint32_t> texels(512 * 512);
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = static_cast<uint32_t>(i * 2654435761u >> 8);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 512, 512, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glEnable(GL_TEXTURE_2D);
}

static void* functionNamed(const char* name)
{
    return reinterpret_cast<void*>(OSMesaGetProcAddress(name));
}

template <class Element>
static void fillBuffer(GLenum target, const std::vector<Element>& elements)
{
    GLuint buffer;
    reinterpret_cast<PFNGLGENBUFFERSPROC>(functionNamed("glGenBuffers"))(1, &buffer);
    reinterpret_cast<PFNGLBINDBUFFERPROC>(functionNamed("glBindBuffer"))(target, buffer);
    reinterpret_cast<PFNGLBUFFERDATAPROC>(functionNamed("glBufferData"))(
        target, static_cast<GLsizeiptr>(elements.size() * sizeof(Element)), elements.data(), GL_STATIC_DRAW);
}

// The mesh in OpenGL's own buffers: 8 floats a vertex (texture coordinate, normal, position), 3 corners a face.
static GLsizei loadSphere(int32_t rings)
{
    Mesh* mesh = makeSphere(rings, 2 * rings);
    std::vector<float> vertices;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const MeshVertex& vertex = mesh->vertices[i];
        vertices.insert(vertices.end(), { mesh->uvs[i].u, mesh->uvs[i].v });
        vertices.insert(vertices.end(), vertex.normal, vertex.normal + 3);
        vertices.insert(vertices.end(), vertex.position, vertex.position + 3);
    }
    std::vector<uint32_t> corners;
    for (int32_t i = 0; i < mesh->faceCount; ++i)
        corners.insert(corners.end(), mesh->faces[i].begin(), mesh->faces[i].begin() + 3);
    freeMesh(mesh);
    fillBuffer(GL_ARRAY_BUFFER, vertices);
    fillBuffer(GL_ELEMENT_ARRAY_BUFFER, corners);
    glInterleavedArrays(GL_T2F_N3F_V3F, 0, nullptr);
    return static_cast<GLsizei>(corners.size());
}

static void drawFrames(benchmark::State& state, bool textured)
{
    Canvas canvas;
    if (!openCanvas(&canvas))
    {
        state.SkipWithError("no llvmpipe");
        return;
    }
    setUpScene(textured);
    GLsizei corners = loadSphere(static_cast<int32_t>(state.range(0)));
    for (auto _ : state)
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glDrawElements(GL_TRIANGLES, corners, GL_UNSIGNED_INT, nullptr);
        glFinish();
        benchmark::DoNotOptimize(canvas.pixels.data());
    }
    if (canvas.pixels[width * (height / 2) + width / 2] == canvas.pixels[0])
        state.SkipWithError("nothing was drawn");
    state.counters["Mtri/s"] = benchmark::Counter(corners / 3 * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
    OSMesaDestroyContext(canvas.context);
}

static void openGlLit(benchmark::State& state)
{
    drawFrames(state, false);
}

static void openGlTextured(benchmark::State& state)
{
    drawFrames(state, true);
}

BENCHMARK(openGlLit)->Arg(32)->Arg(512)->Unit(benchmark::kMillisecond);
BENCHMARK(openGlTextured)->Arg(32)->Arg(512)->Unit(benchmark::kMillisecond);
