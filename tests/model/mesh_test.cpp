// tests/model/mesh_test.cpp - creating, growing, measuring and freeing meshes
#include "model/mesh.h"

#include "platform/processor.h"
#include "tests/clean_test.h"

#include <math.h>
#include <stddef.h>
#include <string.h>
#include <random>

static const std::vector<RecordedBox> outOfMemory = { outOfMemoryBox };

class MeshRecord : public CleanTest
{
protected:
    void SetUp() override
    {
        CleanTest::SetUp();
        mesh = createMesh("prop");
        ASSERT_NE(mesh, nullptr);
    }
    void TearDown() override
    {
        resetRecording();
        freeMesh(mesh);
        CleanTest::TearDown();
    }
    void addVertex(float x, float y, float z)
    {
        ASSERT_EQ(growVertices(mesh, 1), 1);
        mesh->vertices[mesh->vertexCount++] = { { x, y, z }, opaqueWhite, {}, 0 };
    }
    void addFace(const Corners& corners, uint32_t attributes)
    {
        ASSERT_EQ(growFaces(mesh, 1), 1);
        mesh->faces[mesh->faceCount] = corners;
        mesh->faceAttributes[mesh->faceCount++] = attributes;
    }
    Mesh* mesh = nullptr;
};

TEST_F(MeshRecord, AFreshMeshHasDefaultMaterialsInEverySlot)
{
    for (const Material& material : mesh->materials)
    {
        for (int k = 0; k < 3; ++k)
        {
            EXPECT_EQ(material.ambient[k], 0);
            EXPECT_EQ(material.diffuse[k], 1);
            EXPECT_EQ(material.specular[k], 0.5f);
            EXPECT_EQ(material.extra[k], 0);
            EXPECT_EQ(material.reserved1[k], 0u);
        }
        EXPECT_EQ(material.ambientLevel, 1);
        EXPECT_EQ(material.diffuseLevel, 1);
        EXPECT_EQ(material.specularLevel, 1);
        EXPECT_EQ(material.shadingMode, 1);
        EXPECT_EQ(material.shininess, 10);
        EXPECT_EQ(material.transparency, 0);
        EXPECT_EQ(material.reserved2 | material.reserved3 | material.reserved4, 0u);
    }
}

TEST_F(MeshRecord, AFreshMeshHasItsNamesAndNothingElse)
{
    EXPECT_STREQ(mesh->name, "prop");
    EXPECT_STREQ(mesh->materialNames[0], "Preview");
    EXPECT_STREQ(mesh->groupNames[0], "default");
    for (int i = 1; i < groupLimit; ++i)
        EXPECT_EQ(mesh->materialNames[i][0] | mesh->groupNames[i][0] | mesh->textureNames[i][0] |
                      mesh->opacityNames[i][0],
                  0);
    EXPECT_EQ(mesh->vertexCount | mesh->uvCount | mesh->lineCount | mesh->liveFaceCount | mesh->faceCount, 0);
    EXPECT_EQ(mesh->materialCount | mesh->groupCount | mesh->faceCapacity | mesh->vertexCapacity | mesh->uvCapacity, 0);
    EXPECT_TRUE(!mesh->vertices && !mesh->projected && !mesh->uvs && !mesh->faces && !mesh->faceUvs &&
                !mesh->facePlanes && !mesh->faceAttributes);
}

TEST_F(MeshRecord, MaterialFieldsLieBackToBackInTheirOrder)
{
    EXPECT_EQ(sizeof(Material), 96u);
    EXPECT_EQ(offsetof(Material, diffuse), 12u);
    EXPECT_EQ(offsetof(Material, specular), 24u);
    EXPECT_EQ(offsetof(Material, extra), 36u);
    EXPECT_EQ(offsetof(Material, ambientLevel), 48u);
    EXPECT_EQ(offsetof(Material, diffuseLevel), 52u);
    EXPECT_EQ(offsetof(Material, specularLevel), 56u);
    EXPECT_EQ(offsetof(Material, shadingMode), 60u);
    EXPECT_EQ(offsetof(Material, shininess), 64u);
    EXPECT_EQ(offsetof(Material, reserved1), 68u);
    EXPECT_EQ(offsetof(Material, reserved2), 80u);
    EXPECT_EQ(offsetof(Material, reserved3), 84u);
    EXPECT_EQ(offsetof(Material, transparency), 88u);
    EXPECT_EQ(offsetof(Material, reserved4), 92u);
    EXPECT_EQ(sizeof(MeshVertex), 32u);
    EXPECT_EQ(offsetof(MeshVertex, colour), 12u);
    EXPECT_EQ(offsetof(MeshVertex, normal), 16u);
}

TEST_F(MeshRecord, LongNamesAreCutAndTerminated)
{
    std::string name(200, 'x');
    Mesh* other = createMesh(name.c_str());
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(std::string(other->name), std::string(63, 'x'));
    freeMesh(other);
}

TEST_F(MeshRecord, CreationWithoutMemoryShowsItsBox)
{
    resetRecording();
    recorded.refuseFrom = 1;
    EXPECT_EQ(createMesh("prop"), nullptr);
    EXPECT_EQ(recorded.boxes, outOfMemory);
}

TEST_F(MeshRecord, FreeingNothingDoesNothing)
{
    int blocks = recorded.liveBlocks;
    freeMesh(nullptr);
    EXPECT_EQ(recorded.liveBlocks, blocks);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(MeshRecord, GrowingByNothingSucceedsWithoutAllocating)
{
    resetRecording();
    EXPECT_EQ(growVertices(mesh, 0), 1);
    EXPECT_EQ(growUvs(mesh, 0), 1);
    EXPECT_EQ(growFaces(mesh, 0), 1);
    EXPECT_EQ(recorded.allocations, 0);
    EXPECT_EQ(mesh->vertices, nullptr);
    EXPECT_EQ(mesh->vertexCapacity | mesh->uvCapacity | mesh->faceCapacity, 0);
}

TEST_F(MeshRecord, GrowingFacesTwiceAddsUpAndKeepsTheFirst)
{
    ASSERT_EQ(growFaces(mesh, 10), 1);
    for (uint32_t f = 0; f < 10; ++f)
    {
        mesh->faces[f] = { f, f + 1, f + 2, f + 3 };
        mesh->faceUvs[f] = { f, 0, 0, f };
        mesh->faceAttributes[f] = f * 3;
        mesh->facePlanes[f].distance = static_cast<float>(f);
    }
    ASSERT_EQ(growFaces(mesh, 10), 1);
    EXPECT_EQ(mesh->faceCapacity, 20);
    for (uint32_t f = 0; f < 10; ++f)
    {
        EXPECT_EQ(mesh->faces[f], (Corners{ f, f + 1, f + 2, f + 3 }));
        EXPECT_EQ(mesh->faceUvs[f], (Corners{ f, 0, 0, f }));
        EXPECT_EQ(mesh->faceAttributes[f], f * 3);
        EXPECT_EQ(mesh->facePlanes[f].distance, static_cast<float>(f));
    }
    mesh->faces[19] = {};
    mesh->faceUvs[19] = {};
    mesh->facePlanes[19] = {};
    mesh->faceAttributes[19] = 0; // all four reach as far
}

// The recording platform marks what is not cleared.
TEST_F(MeshRecord, UnclearedArraysKeepTheirContentsToo)
{
    ASSERT_TRUE(growVertices(mesh, 2, grownUncleared) && growUvs(mesh, 2, grownUncleared) &&
                growFaces(mesh, 2, grownCornersUncleared));
    EXPECT_NE(mesh->vertices[1].spare, 0u);
    EXPECT_NE(mesh->uvs[1].u, 0);
    EXPECT_NE(mesh->faces[1][3], 0u);
    EXPECT_NE(mesh->facePlanes[1].distance, 0);
    EXPECT_EQ(mesh->projected[1].flags | mesh->faceUvs[1][3] | mesh->faceAttributes[1], 0u);
    mesh->vertices[1].spare = 1;
    mesh->uvs[1] = { 2, 3 };
    mesh->faces[1] = { 4, 5, 6, 7 };
    mesh->faceUvs[1] = { 8, 9, 10, 11 };
    ASSERT_TRUE(growVertices(mesh, 2, grownUncleared) && growUvs(mesh, 2) && growFaces(mesh, 2, grownUncleared));
    EXPECT_EQ(mesh->vertices[1].spare, 1u);
    EXPECT_EQ(mesh->uvs[1].v, 3);
    EXPECT_EQ(mesh->uvs[3].u, 0);
    EXPECT_EQ(mesh->faces[1], (Corners{ 4, 5, 6, 7 }));
    EXPECT_EQ(mesh->faceUvs[1], (Corners{ 8, 9, 10, 11 }));
    EXPECT_NE(mesh->faceUvs[3][0] & mesh->faceAttributes[3], 0u);
}

TEST_F(MeshRecord, GrowingVerticesKeepsBothArraysAlike)
{
    ASSERT_EQ(growVertices(mesh, 3), 1);
    mesh->vertices[2].position[1] = 8;
    mesh->projected[2].colour = 9;
    ASSERT_EQ(growVertices(mesh, 4), 1);
    EXPECT_EQ(mesh->vertexCapacity, 7);
    EXPECT_EQ(mesh->vertices[2].position[1], 8);
    EXPECT_EQ(mesh->projected[2].colour, 9u);
    mesh->vertices[6] = {};
    mesh->projected[6] = {};
    ASSERT_EQ(growUvs(mesh, 2), 1);
    mesh->uvs[1] = { 3, 4 };
    ASSERT_EQ(growUvs(mesh, 5), 1);
    EXPECT_EQ(mesh->uvCapacity, 7);
    EXPECT_EQ(mesh->uvs[1].v, 4);
}

TEST_F(MeshRecord, CapacityOfAnArrayThatIsGoneCountsForNothing)
{
    ASSERT_EQ(growUvs(mesh, 100), 1);
    tableFree(mesh->uvs);
    mesh->uvs = nullptr;
    ASSERT_EQ(growUvs(mesh, 4), 1);
    EXPECT_EQ(mesh->uvCapacity, 4);
}

TEST_F(MeshRecord, EveryRefusedGrowthShowsItsBoxAndCanBeFreed)
{
    for (int already = 0; already < 2; ++already)
    {
        for (int n = 1; n <= 7; ++n)
        {
            resetRecording();
            Mesh* other = createMesh("prop");
            int32_t first = already ? 5 : 0;
            ASSERT_TRUE(growVertices(other, first) && growUvs(other, first) && growFaces(other, first));
            resetRecording();
            recorded.refuseOnly = n;
            EXPECT_EQ(growVertices(other, 5) && growUvs(other, 5) && growFaces(other, 5), 0) << n;
            EXPECT_EQ(recorded.boxes, outOfMemory) << n;
            EXPECT_EQ(other->vertices == nullptr, n == 2 || (n == 1 && !already)) << n; // goes with its partner
            int blocks = blocksBefore + 1;
            freeMesh(other);
            EXPECT_EQ(recorded.liveBlocks, blocks) << n;
        }
    }
}

TEST_F(MeshRecord, CapacitiesThatDoNotFitAreRefused)
{
    ASSERT_TRUE(growVertices(mesh, 1) && growUvs(mesh, 1) && growFaces(mesh, 1));
    for (int32_t n : { INT32_MAX, -1, INT32_MIN })
    {
        EXPECT_EQ(growVertices(mesh, n), 0);
        EXPECT_EQ(growUvs(mesh, n), 0);
        EXPECT_EQ(growFaces(mesh, n), 0);
    }
    EXPECT_EQ(recorded.boxes.size(), 9u);
    EXPECT_EQ(mesh->vertexCapacity, 1);
}

TEST_F(MeshRecord, CornersAreCountedByTheAbsentOnes)
{
    EXPECT_EQ(cornerCount({ 1, 2, noCorner, noCorner }), 2);
    EXPECT_EQ(cornerCount({ 1, 2, 3, noCorner }), 3);
    EXPECT_EQ(cornerCount({ 1, 2, 3, 4 }), 4);
    EXPECT_EQ(cornerCount({ 1, 2, noCorner, 4 }), 2);
}

TEST_F(MeshRecord, AttributeFieldsAreTakenApart)
{
    uint32_t word = 511u | 300u << 9 | faceHidden | faceDeleted | faceLine | faceLit | faceEyeFacing;
    EXPECT_EQ(faceMaterial(word), 511u);
    EXPECT_EQ(faceGroup(word), 300u);
    EXPECT_EQ(faceHidden | faceDeleted | faceLine | faceLit | faceEyeFacing, 0xF8000000u);
}

TEST_F(MeshRecord, CornersOutsideTheVerticesAreNone)
{
    mesh->vertexCount = 3;
    EXPECT_TRUE(cornersAreVertices(mesh, { 0, 1, 2, noCorner }, 3));
    EXPECT_FALSE(cornersAreVertices(mesh, { 0, 1, 2, noCorner }, 4));
    EXPECT_FALSE(cornersAreVertices(mesh, { 0, 3, 2, 1 }, 4));
    mesh->vertexCount = 0;
}

TEST_F(MeshRecord, BoundsOfOneVertexAreThatVertex)
{
    addVertex(3, -4, 5);
    EXPECT_EQ(computeBounds(mesh), 1);
    float want[3] = { 3, -4, 5 };
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(mesh->boundsMin[axis], want[axis]);
        EXPECT_EQ(mesh->boundsMax[axis], want[axis]);
        EXPECT_EQ(mesh->centre[axis], want[axis]);
    }
    EXPECT_EQ(mesh->radius, 0);
}

TEST_F(MeshRecord, BoundsOfNoVertexStayAsTheyWere)
{
    mesh->boundsMin[0] = 7;
    mesh->radius = 8;
    EXPECT_EQ(computeBounds(mesh), 0);
    EXPECT_EQ(mesh->boundsMin[0], 7);
    EXPECT_EQ(mesh->radius, 8);
}

TEST_F(MeshRecord, BoundsTakeInEveryUsedVertex)
{
    addVertex(-1, 2, 0);
    addVertex(3, -2, 6);
    addVertex(0, 0, -6);
    addVertex(100, 100, 100);
    mesh->vertexCount = 3; // the last is not in use
    ASSERT_EQ(computeBounds(mesh), 1);
    EXPECT_EQ(mesh->boundsMin[0], -1);
    EXPECT_EQ(mesh->boundsMax[0], 3);
    EXPECT_EQ(mesh->boundsMin[1], -2);
    EXPECT_EQ(mesh->boundsMax[1], 2);
    EXPECT_EQ(mesh->boundsMin[2], -6);
    EXPECT_EQ(mesh->boundsMax[2], 6);
    EXPECT_EQ(mesh->centre[0], 1);
    EXPECT_EQ(mesh->radius, sqrtf(2 * 2 + 2 * 2 + 6 * 6));
}

TEST_F(MeshRecord, FastBoundsHaveTheBitsOfThePlainOnes)
{
    std::mt19937 random(9);
    const float values[] = { 0.0f, -0.0f, 1, -1, 1e-42f, -1e-42f, INFINITY, -INFINITY, NAN, 3.5f, -2e9f };
    growVertices(mesh, 12);
    for (int round = 0; round < 3000; ++round)
    {
        mesh->vertexCount = 1 + round % 12;
        for (int32_t i = 0; i < mesh->vertexCount; ++i)
        {
            for (float& x : mesh->vertices[i].position)
                x = values[random() % (sizeof values / sizeof *values)];
            mesh->vertices[i].colour = static_cast<uint32_t>(random());
        }
        float found[2][6];
        for (int fast = 0; fast < 2; ++fast)
        {
            limitKernelLevel(fast ? kernelsSse : kernelsPlain);
            computeBounds(mesh);
            memcpy(found[fast], mesh->boundsMin, 3 * sizeof(float));
            memcpy(found[fast] + 3, mesh->boundsMax, 3 * sizeof(float));
        }
        ASSERT_EQ(memcmp(found[0], found[1], sizeof found[0]), 0) << round;
    }
    limitKernelLevel(kernelsAvx512);
}

TEST_F(MeshRecord, VisibleBoundsLeaveOutHiddenAndDeletedFaces)
{
    for (int i = 0; i < 12; ++i)
        addVertex(static_cast<float>(i), static_cast<float>(-i), 1);
    addFace({ 0, 1, 2, noCorner }, faceHidden);
    addFace({ 3, 4, 5, noCorner }, 0);
    addFace({ 5, 6, noCorner, noCorner }, faceLine);
    addFace({ 7, 8, 9, 10 }, faceDeleted);
    computeVisibleBounds(mesh);
    EXPECT_EQ(mesh->boundsMin[0], 3);
    EXPECT_EQ(mesh->boundsMax[0], 6);
    EXPECT_EQ(mesh->boundsMin[1], -6);
    EXPECT_EQ(mesh->centre[2], 1);
    EXPECT_EQ(mesh->radius, sqrtf(1.5f * 1.5f + 1.5f * 1.5f));
}

TEST_F(MeshRecord, VisibleBoundsOfNothingAreASmallBox)
{
    addVertex(50, 50, 50);
    addFace({ 0, 0, 0, noCorner }, faceHidden);
    computeVisibleBounds(mesh);
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(mesh->boundsMin[axis], -0.1f);
        EXPECT_EQ(mesh->boundsMax[axis], 0.1f);
        EXPECT_EQ(mesh->centre[axis], 0);
    }
    EXPECT_NEAR(mesh->radius, 0.1732f, 0.0001f);
}

TEST_F(MeshRecord, InstallingReplacesEveryMeshAndFitsTheList)
{
    ModelList list = {};
    list.meshes[0] = createMesh("a");
    list.meshes[1] = createMesh("b");
    list.count = 2;
    addVertex(-2, 0, 0);
    addVertex(4, 0, 8);
    computeBounds(mesh);
    int blocks = recorded.liveBlocks;
    installMesh(&list, mesh);
    EXPECT_EQ(recorded.liveBlocks, blocks - 2);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.meshes[0], mesh);
    EXPECT_EQ(list.meshes[1], nullptr);
    EXPECT_EQ(list.centre[0], 1);
    EXPECT_EQ(list.centre[2], 4);
    EXPECT_EQ(list.radius, 5);
    clearModelList(&list);
    mesh = nullptr;
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.meshes[0], nullptr);
    clearModelList(&list); // nothing left to do
    EXPECT_EQ(recorded.liveBlocks, blocksBefore);
}

TEST_F(MeshRecord, ClearingPassesOverEmptyEntries)
{
    ModelList list = {};
    list.count = 3;
    list.meshes[1] = createMesh("b");
    clearModelList(&list);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(recorded.liveBlocks, blocksBefore + 1);
}

TEST_F(MeshRecord, TheListIsFittedToAllOfItsMeshes)
{
    ModelList list = {};
    list.count = 2;
    list.meshes[0] = mesh;
    list.meshes[1] = createMesh("b");
    float low[2][3] = { { -1, 0, 2 }, { 0, -3, 3 } }, high[2][3] = { { 1, 1, 4 }, { 5, 0, 3.5f } };
    for (int i = 0; i < 2; ++i)
    {
        memcpy(list.meshes[i]->boundsMin, low[i], sizeof low[i]);
        memcpy(list.meshes[i]->boundsMax, high[i], sizeof high[i]);
    }
    fitModelList(&list);
    EXPECT_EQ(list.boundsMin[0], -1);
    EXPECT_EQ(list.boundsMax[0], 5);
    EXPECT_EQ(list.boundsMin[1], -3);
    EXPECT_EQ(list.boundsMax[1], 1);
    EXPECT_EQ(list.boundsMin[2], 2);
    EXPECT_EQ(list.boundsMax[2], 4);
    EXPECT_EQ(list.centre[1], -1);
    EXPECT_EQ(list.radius, sqrtf(3 * 3 + 2 * 2 + 1 * 1));
    freeMesh(list.meshes[1]);
}

TEST_F(MeshRecord, AnEmptyListIsLeftAlone)
{
    ModelList list = {};
    list.radius = 3;
    fitModelList(&list);
    EXPECT_EQ(list.radius, 3);
}

TEST(FaceCorners, AreCountedUpToTheFirstAbsentOne)
{
    constexpr uint32_t none = noCorner;
    const Corners faces[] = {
        { 7, 7, 7, 7 },    { 7, 7, 7, none }, { 7, 7, none, 7 }, { 7, none, 7, 7 },
        { none, 7, 7, 7 }, { 7, 7, 7, 7 },    { 7, 7, 7, 7 }
    }; // the face behind a quad does not count
    const size_t counts[] = { 4, 3, 2, 1, 0, 4, 4 };
    for (size_t f = 0; f + 1 < std::size(faces); ++f)
        EXPECT_EQ(usedCorners(faces[f]), counts[f]) << f;
}
