// tests/render/scenes.h - procedural meshes and a display for the renderer's tests
#pragma once
#include "model/mesh.h"
#include "platform/processor.h"
#include "render/frame.h"

#include <gtest/gtest.h>

#include <stdint.h>
#include <vector>

// The settings and state that a test's displays draw with.
extern RenderSettings renderSettings;
extern FrameState frameState;

// Resets settings, state, recording and kernels to those at program start, with the preset White on both sides.
void resetRenderer();

// Every test starts with a reset, and restores the processor's kernels at its end.
class RenderTest : public testing::Test
{
protected:
    RenderTest()
    {
        resetRenderer();
    }
    ~RenderTest() override
    {
        limitKernelLevel(kernelsAvx512);
    }
};

// A display of the given size with its frame buffer and the list that it shows. Frees everything at its end.
struct Display
{
    FrameBuffer target;
    ModelList list;

    Display(int32_t width, int32_t height);
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    void draw();
    void drawWhole(); // with fullRedraw
    uint32_t cell(int32_t x, int32_t y) const;
    std::vector<uint32_t> cells() const; // of the visible part
};

// Meshes with normals, bounds and live counts; the caller owns them until they are installed.
Mesh* emptyMesh();
uint32_t addVertex(Mesh* mesh, float x, float y, float z);
void addFace(Mesh* mesh, uint32_t a, uint32_t b, uint32_t c, uint32_t d = noCorner, uint32_t attributes = 0);
void finishMesh(Mesh* mesh);

// 2 x rings x segments triangles less those at the poles, around the y axis, with texture coordinates.
Mesh* makeSphere(int32_t rings, int32_t segments);
Mesh* makeTorus(int32_t rings, int32_t segments, float tubeRadius);
Mesh* makeCube();                                         // quads
Mesh* makeTriangles(const std::vector<float>& positions); // nine floats for each

// A big upright ring before a small sphere, so that one casts a shadow on the other.
Mesh* makeStillLife();
