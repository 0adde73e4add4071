// tests/render/scenes.cpp - procedural meshes and the state for drawing them in tests
#include "tests/render/scenes.h"

#include "model/matrix.h"
#include "model/normals.h"
#include "render/materials.h"
#include "render/view.h"
#include "tests/recording/recording.h"

#include <math.h>
#include <string.h>

constexpr float pi = 3.14159265f;

RenderSettings renderSettings;
FrameState frameState;

void resetRenderer()
{
    renderSettings = startRenderSettings;
    frameState = startFrameState;
    limitKernelLevel(kernelsAvx512);
    resetRecording();
    ApplyPreset(&renderSettings, presetWhite, presetWhite);
    for (int32_t i = 0; i < lightCount; ++i)
        SetLight(&renderSettings, i, i == 0);
}

Display::Display(int32_t width, int32_t height) : target{}, list{}
{
    frameState.displayWidth = width;
    frameState.displayHeight = height;
    createFrameBuffer(&target, width, height);
}

Display::~Display()
{
    clearModelList(&list);
    destroyFrameBuffer(&target);
}

void Display::draw()
{
    RenderFrame(&target, &list, &renderSettings, &frameState);
}

void Display::drawWhole()
{
    frameState.fullRedraw = 1;
    draw();
}

uint32_t Display::cell(int32_t x, int32_t y) const
{
    return target.cells[static_cast<ptrdiff_t>(y) * target.pitch + x];
}

std::vector<uint32_t> Display::cells() const
{
    std::vector<uint32_t> visible;
    for (int32_t y = 0; y < frameState.displayHeight; ++y)
    {
        const uint32_t* row = target.cells + static_cast<ptrdiff_t>(y) * target.pitch;
        visible.insert(visible.end(), row, row + frameState.displayWidth);
    }
    return visible;
}

Mesh* emptyMesh()
{
    Mesh* mesh = createMesh("object");
    mesh->materialCount = mesh->groupCount = 1;
    return mesh;
}

static int32_t roomFor(int32_t count)
{
    return count < 16 ? 16 : count;
}

uint32_t addVertex(Mesh* mesh, float x, float y, float z)
{
    if (mesh->vertexCount == mesh->vertexCapacity)
        growVertices(mesh, roomFor(mesh->vertexCount));
    mesh->vertices[mesh->vertexCount] = { { x, y, z }, opaqueWhite, {}, 0 };
    return static_cast<uint32_t>(mesh->vertexCount++);
}

static void addUv(Mesh* mesh, float u, float v)
{
    if (mesh->uvCount == mesh->uvCapacity)
        growUvs(mesh, roomFor(mesh->uvCount));
    mesh->uvs[mesh->uvCount++] = { u, v };
}

void addFace(Mesh* mesh, uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t attributes)
{
    if (mesh->faceCount == mesh->faceCapacity)
        growFaces(mesh, roomFor(mesh->faceCount));
    int32_t slot = mesh->faceCount++;
    mesh->faces[slot] = { a, b, c, d };
    mesh->faceUvs[slot] = {};
    if (mesh->uvCount == mesh->vertexCount)
        mesh->faceUvs[slot] = { a, b, c == noCorner ? 0 : c, d == noCorner ? 0 : d };
    mesh->faceAttributes[slot] = attributes;
    ++mesh->liveFaceCount;
}

void finishMesh(Mesh* mesh)
{
    computeNormals(mesh);
    computeBounds(mesh);
}

// At the poles, equal corners would make a face without area.
static void addFaceWithArea(Mesh* mesh, uint32_t a, uint32_t b, uint32_t c)
{
    const float *p = mesh->vertices[a].position, *q = mesh->vertices[b].position, *r = mesh->vertices[c].position;
    if (squaredDistance(p, q) > 0 && squaredDistance(q, r) > 0 && squaredDistance(r, p) > 0)
        addFace(mesh, a, b, c);
}

static void spherePoint(float s, float t, float* p)
{
    float latitude = (s - 0.5f) * pi, longitude = t * 2 * pi;
    float radius = s == 0 || s == 1 ? 0 : cosf(latitude);
    p[0] = radius * sinf(longitude);
    p[1] = sinf(latitude);
    p[2] = radius * cosf(longitude);
}

// A grid of rows x columns quads cut into triangles. position gives a point; the outward side is to its right.
template <class Position>
static void addGrid(Mesh* mesh, int32_t rows, int32_t columns, Position position)
{
    uint32_t first = static_cast<uint32_t>(mesh->vertexCount), across = static_cast<uint32_t>(columns) + 1;
    for (int32_t i = 0; i <= rows; ++i)
        for (int32_t j = 0; j <= columns; ++j)
        {
            float s = static_cast<float>(i) / static_cast<float>(rows);
            float t = static_cast<float>(j) / static_cast<float>(columns);
            float p[3];
            position(s, t, p);
            addVertex(mesh, p[0], p[1], p[2]);
            addUv(mesh, t, s);
        }
    for (uint32_t i = 0; i < static_cast<uint32_t>(rows); ++i)
        for (uint32_t j = 0; j < static_cast<uint32_t>(columns); ++j)
        {
            uint32_t a = first + i * across + j, b = a + 1, c = a + across, d = c + 1;
            addFaceWithArea(mesh, a, b, d);
            addFaceWithArea(mesh, a, d, c);
        }
}

Mesh* makeSphere(int32_t rings, int32_t segments)
{
    Mesh* mesh = emptyMesh();
    addGrid(mesh, rings, segments, spherePoint);
    finishMesh(mesh);
    return mesh;
}

static void addTorus(Mesh* mesh, int32_t rings, int32_t segments, float ringRadius, float tubeRadius, const float* at)
{
    addGrid(mesh, rings, segments,
            [=](float s, float t, float* p)
            {
                float around = s * 2 * pi, along = t * 2 * pi;
                float r = ringRadius + tubeRadius * cosf(around);
                p[0] = at[0] + r * sinf(along);
                p[1] = at[1] + tubeRadius * sinf(around);
                p[2] = at[2] + r * cosf(along);
            });
}

Mesh* makeTorus(int32_t rings, int32_t segments, float tubeRadius)
{
    Mesh* mesh = emptyMesh();
    constexpr float origin[3] = {};
    addTorus(mesh, rings, segments, 1, tubeRadius, origin);
    finishMesh(mesh);
    return mesh;
}

Mesh* makeCube()
{
    Mesh* mesh = emptyMesh();
    for (int i = 0; i < 8; ++i)
    {
        addVertex(mesh, i & 1 ? 1.0f : -1.0f, i & 2 ? 1.0f : -1.0f, i & 4 ? 1.0f : -1.0f);
        addUv(mesh, i & 1 ? 1.0f : 0.0f, i & 2 ? 1.0f : 0.0f);
    }
    constexpr uint32_t quads[6][4] = { { 4, 5, 7, 6 }, { 1, 0, 2, 3 }, { 5, 1, 3, 7 },
                                       { 0, 4, 6, 2 }, { 6, 7, 3, 2 }, { 0, 1, 5, 4 } };
    for (const auto& q : quads)
        addFace(mesh, q[0], q[1], q[2], q[3]);
    finishMesh(mesh);
    return mesh;
}

Mesh* makeTriangles(const std::vector<float>& positions)
{
    Mesh* mesh = emptyMesh();
    for (size_t i = 0; i + 9 <= positions.size(); i += 9)
    {
        uint32_t corner[3];
        for (size_t k = 0; k < 3; ++k)
            corner[k] = addVertex(mesh, positions[i + k * 3], positions[i + k * 3 + 1], positions[i + k * 3 + 2]);
        addFace(mesh, corner[0], corner[1], corner[2]);
    }
    finishMesh(mesh);
    return mesh;
}

Mesh* makeStillLife()
{
    Mesh* mesh = emptyMesh();
    addGrid(mesh, 48, 64, spherePoint);
    constexpr float origin[3] = { 0, 0.2f, 0 };
    addTorus(mesh, 24, 64, 1.5f, 0.12f, origin);
    finishMesh(mesh);
    return mesh;
}
