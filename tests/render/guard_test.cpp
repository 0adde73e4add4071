// tests/render/guard_test.cpp - frames in buffers with inaccessible pages before and after them
//
// Writing or reading one byte before the first or after the last cell, map entry or pixel ends the program.
#include "platform/processor.h"
#include "render/frame.h"
#include "render/materials.h"
#include "render/view.h"
#include "tests/recording/recording.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

// sizeBytes of zeros between two inaccessible pages, adjacent to the page before them or the one after them.
struct GuardedBlock
{
    uint8_t* all;
    size_t allBytes;
    uint8_t* bytes;

    GuardedBlock(size_t sizeBytes, bool atEnd)
    {
        auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        size_t inside = (sizeBytes + page - 1) / page * page;
        allBytes = inside + 2 * page;
        void* mapped = mmap(nullptr, allBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        EXPECT_NE(mapped, MAP_FAILED);
        all = static_cast<uint8_t*>(mapped);
        EXPECT_EQ(mprotect(all + page, inside, PROT_READ | PROT_WRITE), 0);
        bytes = all + page + (atEnd ? inside - sizeBytes : 0);
    }
    ~GuardedBlock()
    {
        munmap(all, allBytes);
    }
    GuardedBlock(const GuardedBlock&) = delete;
    GuardedBlock& operator=(const GuardedBlock&) = delete;
};

// A display whose three buffers are guarded. The model may contain any values.
struct GuardedDisplay
{
    Display display;
    FrameBuffer own;
    GuardedBlock cells, map, pixels;

    GuardedDisplay(int32_t width, int32_t height, bool atEnd)
        : display(width, height), own(display.target), cells(cellCount() * sizeof(uint32_t), atEnd),
          map(static_cast<size_t>(shadowMapSide) * shadowMapSide * sizeof(uint16_t), atEnd),
          pixels(cellCount() * 3, atEnd)
    {
        display.target.cells = reinterpret_cast<uint32_t*>(cells.bytes);
        display.target.shadowMap = reinterpret_cast<uint16_t*>(map.bytes);
        display.target.picture.bits = pixels.bytes;
    }
    ~GuardedDisplay()
    {
        display.target = own;
    }
    size_t cellCount() const
    {
        return static_cast<size_t>(own.pitch) * static_cast<size_t>(own.rows);
    }
};

// A copy of a mesh's array on pages that cannot be written. The mesh uses it as long as it exists.
template <class Record>
struct ReadOnlyArray
{
    Record** place;
    Record* own;
    GuardedBlock block;

    ReadOnlyArray(Record** array, int32_t count)
        : place(array), own(*array), block(sizeof(Record) * static_cast<size_t>(count), false)
    {
        *place = reinterpret_cast<Record*>(block.bytes);
        std::copy_n(own, count, *place);
        EXPECT_EQ(mprotect(block.bytes, sizeof(Record) * static_cast<size_t>(count), PROT_READ), 0);
    }
    ~ReadOnlyArray()
    {
        *place = own;
    }
    ReadOnlyArray(const ReadOnlyArray&) = delete;
    ReadOnlyArray& operator=(const ReadOnlyArray&) = delete;
};

// Values that no file should contain. Some readers copy materials byte for byte, and arithmetic can give the others.
static float wildValue(std::mt19937& random)
{
    constexpr float wild[] = { 0,
                               -0.0f,
                               1,
                               -1,
                               0.5f,
                               255,
                               1e9f,
                               -1e9f,
                               2147483648.0f,
                               -2147483648.0f,
                               3e38f,
                               -3e38f,
                               1e-40f,
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN() };
    return wild[random() % std::size(wild)];
}

static float ordinaryValue(std::mt19937& random)
{
    return static_cast<float>(random() % 2001) / 1000 - 1;
}

static void spoilMaterials(Mesh* mesh, std::mt19937& random)
{
    mesh->materialCount = 8;
    for (int32_t i = 0; i < mesh->materialCount; ++i)
    {
        Material* material = &mesh->materials[i];
        for (int c = 0; c < 3; ++c)
        {
            material->ambient[c] = wildValue(random);
            material->diffuse[c] = wildValue(random);
            material->specular[c] = wildValue(random);
        }
        material->ambientLevel = wildValue(random);
        material->diffuseLevel = wildValue(random);
        material->specularLevel = wildValue(random);
        material->shadingMode = static_cast<int32_t>(random());
        material->shininess = i % 2 ? static_cast<int32_t>(random()) : INT32_MIN;
        material->transparency = wildValue(random);
    }
}

// Faces of all kinds. One vertex in `wildEvery` lies anywhere, and its normal and texture coordinate are arbitrary too.
static Mesh* makeRubble(unsigned seed, uint32_t wildEvery)
{
    std::mt19937 random(seed);
    Mesh* mesh = emptyMesh();
    auto value = [&] { return random() % wildEvery == 0 ? wildValue(random) : ordinaryValue(random); };
    constexpr uint32_t vertices = 120, faces = 150;
    for (uint32_t i = 0; i < vertices; ++i)
        addVertex(mesh, ordinaryValue(random), ordinaryValue(random), ordinaryValue(random));
    auto corner = [&] { return static_cast<uint32_t>(random() % vertices); };
    for (uint32_t f = 0; f < faces; ++f)
    {
        uint32_t line = f % 10 == 0 ? faceLine : 0;
        addFace(mesh, corner(), corner(), f % 15 == 1 ? noCorner : corner(), f % 3 || f % 15 == 1 ? noCorner : corner(),
                line | f % 8);
    }
    finishMesh(mesh);
    growUvs(mesh, static_cast<int32_t>(vertices));
    mesh->uvCount = static_cast<int32_t>(vertices);
    for (uint32_t i = 0; i < vertices; ++i)
    {
        mesh->uvs[i] = { value(), value() };
        for (int k = 0; k < 3; ++k)
        {
            mesh->vertices[i].position[k] = value();
            mesh->vertices[i].normal[k] = value();
        }
    }
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        for (size_t k = 0; k < static_cast<size_t>(cornerCount(mesh->faces[f])); ++k)
            mesh->faceUvs[f][k] = corner();
    spoilMaterials(mesh, random);
    return mesh;
}

static void drawEverything(GuardedDisplay* guarded, std::mt19937& random, int frames)
{
    constexpr uint32_t flags[] = { renderBackCulled, renderWireframe, renderVertexColour, renderTextured,
                                   renderShadows,    renderRough,     renderMetallic,     renderMoon };
    constexpr float zooms[] = { 1, 1.5f, 40, 1e6f, 1e20f, 3e38f };
    for (int i = 0; i < frames; ++i)
    {
        renderSettings.renderFlags = 0;
        for (uint32_t flag : flags)
            renderSettings.renderFlags |= random() % 2 ? flag : 0;
        if (i % 3) // outlines hide most of the rest
            renderSettings.renderFlags &= ~renderWireframe;
        frameState.view.zoom = zooms[random() % std::size(zooms)];
        limitKernelLevel(i % 4 != 0 ? kernelsAvx512 : kernelsPlain);
        ApplyPreset(&renderSettings, i % 2 ? presetProp : static_cast<int32_t>(random() % presetCount), presetWhite);
        for (int32_t light = 0; light < 3; ++light)
            SetLight(&renderSettings, light, random() % 2);
        rotationAboutScreenAxes(&frameState.view.rotation, static_cast<float>(random() % 360),
                                static_cast<float>(random() % 360), 0);
        frameState.fullRedraw = random() % 4 == 0;
        guarded->display.draw();
    }
}

static void drawInto(int32_t width, int32_t height, int frames)
{
    std::vector<uint32_t> texels(8 * 8, 0x406080);
    Image image = { texels.data(), 8, 8 };
    for (bool atEnd : { false, true })
        for (uint32_t wildEvery : { 1000000u, 20u, 1u })
        {
            resetRenderer();
            std::mt19937 random(static_cast<unsigned>(width * 31 + height));
            GuardedDisplay guarded(width, height, atEnd);
            ASSERT_TRUE(guarded.own.cells);
            Mesh* mesh = makeRubble(static_cast<unsigned>(width + height) + wildEvery, wildEvery);
            installMesh(&guarded.display.list, mesh);
            if (wildEvery == 1)
                for (float* bound : { &guarded.display.list.radius, &guarded.display.list.centre[0] })
                    *bound = wildValue(random);
            renderSettings.currentTexture = &image;
            drawEverything(&guarded, random, frames);
        }
}

class GuardedFrames : public RenderTest
{
};

TEST_F(GuardedFrames, SmallDisplays)
{
    const int32_t sizes[][2] = { { 10, 10 }, { 11, 13 }, { 10, 97 }, { 97, 10 }, { 64, 64 }, { 63, 129 }, { 203, 97 } };
    for (const auto& size : sizes)
        drawInto(size[0], size[1], 16);
}

TEST_F(GuardedFrames, OrdinaryAndLongDisplays)
{
    const int32_t sizes[][2] = { { 620, 520 }, { 1023, 767 }, { 4000, 10 }, { 10, 3000 } };
    for (const auto& size : sizes)
        drawInto(size[0], size[1], 8);
}

TEST_F(GuardedFrames, TheLargestDisplay)
{
    drawInto(4000, 3000, 2);
}

// A turn changes the sides of faces, a zoom not even those. A store to anything else ends the program, even one of the
// value that is there.
TEST_F(GuardedFrames, AFrameAfterATurnOrAZoomStoresOnlyWhatChanges)
{
    std::vector<uint32_t> texels(64 * 64, 0x00804020);
    Image image = { texels.data(), 64, 64 };
    renderSettings.currentTexture = &image;
    Display display(300, 200);
    installMesh(&display.list, makeSphere(17, 31));
    Mesh* mesh = display.list.meshes[0];
    for (KernelLevel level : { kernelsPlain, kernelsSse2, kernelsAvx512 })
    {
        limitKernelLevel(level);
        for (uint32_t flags : { 0u, renderTextured, renderShadows, renderWireframe, renderMetallic })
        {
            renderSettings.renderFlags = flags;
            display.drawWhole();
            ReadOnlyArray vertices(&mesh->vertices, mesh->vertexCount);
            ReadOnlyArray uvs(&mesh->uvs, mesh->uvCount);
            ReadOnlyArray faces(&mesh->faces, mesh->faceCount);
            ReadOnlyArray faceUvs(&mesh->faceUvs, mesh->faceCount);
            ReadOnlyArray planes(&mesh->facePlanes, mesh->faceCount);
            rotationAboutScreenAxes(&frameState.view.rotation, 10, static_cast<float>(flags), 30);
            display.draw();
            ReadOnlyArray attributes(&mesh->faceAttributes, mesh->faceCount);
            frameState.view.zoom += 0.1f;
            display.draw();
            EXPECT_GT(frameState.statistics.framePolygons, 0u);
        }
    }
}
