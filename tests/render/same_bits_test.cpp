// tests/render/same_bits_test.cpp - with the same normals, a picture has the same bytes on every processor
#include "model/matrix.h"
#include "model/reciprocal_root.h"
#include "render/materials.h"
#include "render/view.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

constexpr uint32_t side = 41; // vertices

static void setLengthOne(float* v)
{
    float scale = fixedReciprocalRoot(dotProduct(v, v));
    for (int axis = 0; axis < 3; ++axis)
        v[axis] *= scale;
}

// Hills, made of sums and products only.
static float heightAt(float x, float y)
{
    return 0.9f * x * y * (1 - x * x) + 0.4f * (1 - y * y) * x * x;
}

// Gives every vertex and every face a normal that does not come from the processor's estimate.
static void setNormals(Mesh* mesh)
{
    constexpr float step = 1.0f / 64;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const float* p = mesh->vertices[i].position;
        float* normal = mesh->vertices[i].normal;
        normal[0] = heightAt(p[0] - step, p[1]) - heightAt(p[0] + step, p[1]);
        normal[1] = heightAt(p[0], p[1] - step) - heightAt(p[0], p[1] + step);
        normal[2] = 2 * step;
        setLengthOne(normal);
    }
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const float* normal = mesh->vertices[mesh->faces[f][0]].normal;
        std::copy(normal, normal + 3, mesh->facePlanes[f].normal);
        mesh->facePlanes[f].distance = dotProduct(normal, mesh->vertices[mesh->faces[f][0]].position);
    }
}

static Mesh* makeHills()
{
    Mesh* mesh = emptyMesh();
    for (uint32_t i = 0; i < side * side; ++i)
    {
        float x = static_cast<float>(i % side) / 20 - 1, y = static_cast<float>(i / side) / 20 - 1;
        uint32_t vertex = addVertex(mesh, x, y, heightAt(x, y));
        mesh->vertices[vertex].colour = 0xFF000000u | i * 0x00010305u;
    }
    for (uint32_t i = 0; i + side + 1 < side * side; ++i)
        if (i % side + 1 < side)
        {
            addFace(mesh, i, i + 1, i + side + 1);
            addFace(mesh, i, i + side + 1, i + side);
        }
    finishMesh(mesh);
    setNormals(mesh);
    return mesh;
}

class SameBits : public RenderTest
{
};

// The digest was taken on x86.
TEST_F(SameBits, PicturesOfGivenNormals)
{
    uint32_t digest = 0;
    for (uint32_t flags : { 0u, uint32_t{ renderShadows }, renderShadows | renderVertexColour, uint32_t{ renderMoon },
                            uint32_t{ renderWireframe } })
    {
        resetRenderer();
        Display display(301, 217);
        installMesh(&display.list, makeHills());
        renderSettings.renderFlags = flags;
        for (float angle : { -40.0f, 13.0f, 19.0f, 77.5f })
        {
            rotationAboutScreenAxes(&frameState.view.rotation, angle, angle / 2, -angle);
            display.drawWhole();
            for (uint32_t cell : display.cells())
                digest = digest * 0x01000193 ^ cell;
        }
    }
    EXPECT_EQ(digest, 663609610u);
}
