// tests/model/mesh_copy_test.cpp - copies of meshes, and meshes outside the memory table
#include "model/mesh_copy.h"

#include "tests/clean_test.h"

#include <string.h>

class MeshCopy : public CleanTest
{
protected:
    void SetUp() override
    {
        CleanTest::SetUp();
        mesh = createMesh("prop");
        ASSERT_NE(mesh, nullptr);
        ASSERT_TRUE(growVertices(mesh, 70) && growUvs(mesh, 50) && growFaces(mesh, 90));
        mesh->vertexCount = 60;
        mesh->uvCount = 40;
        mesh->faceCount = mesh->liveFaceCount = 80;
        fill(mesh->vertices, 60, 1);
        fill(mesh->uvs, 40, 2);
        fill(mesh->faces, 80, 3);
        fill(mesh->faceUvs, 80, 4);
        fill(mesh->facePlanes, 80, 5);
        fill(mesh->faceAttributes, 80, 6);
    }
    void TearDown() override
    {
        freeMesh(mesh);
        CleanTest::TearDown();
    }

    template <typename T>
    static void fill(T* array, size_t count, uint8_t first)
    {
        auto* bytes = reinterpret_cast<uint8_t*>(array);
        for (size_t i = 0; i < count * sizeof(T); ++i)
            bytes[i] = static_cast<uint8_t>(first + i * 7);
    }

    Mesh* mesh = nullptr;
};

TEST_F(MeshCopy, HasTheSameContentsAndNothingInTheMemoryTable)
{
    MemoryTable before = memoryTable;
    Mesh* copy = copyMesh(mesh);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(memcmp(&before, &memoryTable, sizeof before), 0);
    EXPECT_TRUE(meshesAreEqual(mesh, copy));
    EXPECT_EQ(memcmp(copy->vertices, mesh->vertices, 60 * sizeof(MeshVertex)), 0);
    EXPECT_EQ(memcmp(copy->uvs, mesh->uvs, 40 * sizeof(Uv)), 0);
    EXPECT_EQ(memcmp(copy->faces, mesh->faces, 80 * sizeof(Corners)), 0);
    EXPECT_EQ(memcmp(copy->faceUvs, mesh->faceUvs, 80 * sizeof(Corners)), 0);
    EXPECT_EQ(memcmp(copy->facePlanes, mesh->facePlanes, 80 * sizeof(Plane)), 0);
    EXPECT_EQ(memcmp(copy->faceAttributes, mesh->faceAttributes, 80 * sizeof(uint32_t)), 0);
    EXPECT_EQ(copy->vertexCapacity, 60);
    EXPECT_EQ(copy->uvCapacity, 40);
    EXPECT_EQ(copy->faceCapacity, 80);
    EXPECT_LT(meshBytes(copy), meshBytes(mesh));
    EXPECT_EQ(meshBytes(copy), copyBytes(mesh));
    freeKeptMesh(copy);
}

TEST_F(MeshCopy, TakenBackItIsAMeshLikeAnyOther)
{
    Mesh* copy = copyMesh(mesh);
    keepMesh(mesh);
    ASSERT_EQ(takeMeshBack(copy), 1);
    ASSERT_EQ(growVertices(copy, 5), 1);
    ASSERT_EQ(growUvs(copy, 5), 1);
    ASSERT_EQ(growFaces(copy, 5), 1);
    EXPECT_TRUE(meshesAreEqual(mesh, copy)) << "growing keeps the contents";
    freeKeptMesh(mesh);
    mesh = copy; // freed as an ordinary mesh
}

TEST_F(MeshCopy, AnEmptyMeshCanBeCopied)
{
    Mesh* empty = createMesh("empty");
    Mesh* copy = copyMesh(empty);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->vertices, nullptr);
    EXPECT_TRUE(meshesAreEqual(empty, copy));
    freeMesh(empty);
    freeKeptMesh(copy);
}

TEST_F(MeshCopy, ExchangingMeshesWorksInAFullTable)
{
    Mesh* copy = copyMesh(mesh);
    memoryTable.highWater = memoryEntryLimit;
    for (MemoryEntry& entry : memoryTable.entries)
        if (!entry.address)
            entry.address = this; // somebody else's
    EXPECT_EQ(takeMeshBack(copy), 0);
    keepMesh(mesh);
    EXPECT_EQ(takeMeshBack(copy), 1);
    EXPECT_EQ(takeMeshBack(mesh), 0);
    keepMesh(copy);
    EXPECT_EQ(takeMeshBack(mesh), 1);
    freeKeptMesh(copy);
}

TEST_F(MeshCopy, RefusedMemoryGivesNoCopyAndNoMessage)
{
    for (int n = 1; n <= 8; ++n)
    {
        int live = recorded.liveBlocks;
        recorded.allocations = 0;
        recorded.refuseOnly = n;
        EXPECT_EQ(copyMesh(mesh), nullptr) << n;
        EXPECT_EQ(recorded.liveBlocks, live) << n;
    }
    recorded.refuseOnly = 0;
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(MeshCopy, EveryDifferenceCountsButThoseOfFrames)
{
    Mesh* copy = copyMesh(mesh);
    auto differs = [&](auto* value)
    {
        uint8_t* byte = reinterpret_cast<uint8_t*>(value);
        *byte ^= 1;
        bool equal = meshesAreEqual(mesh, copy) != 0;
        *byte ^= 1;
        return !equal;
    };
    EXPECT_TRUE(differs(&copy->vertices[59].spare));
    EXPECT_TRUE(differs(&copy->uvs[39].v));
    EXPECT_TRUE(differs(&copy->faces[79][3]));
    EXPECT_TRUE(differs(&copy->faceUvs[79][3]));
    EXPECT_TRUE(differs(&copy->facePlanes[79].distance));
    EXPECT_TRUE(differs(&copy->faceAttributes[79]));
    EXPECT_TRUE(differs(&copy->materials[511].reserved4));
    EXPECT_TRUE(differs(&copy->radius));
    EXPECT_TRUE(differs(&copy->boundsMax[2]));
    EXPECT_TRUE(differs(&copy->groupNames[511][63]));
    EXPECT_TRUE(differs(&copy->opacityNames[511][63]));
    EXPECT_TRUE(differs(&copy->liveFaceCount));
    EXPECT_TRUE(differs(&copy->groupCount));
    EXPECT_TRUE(differs(&copy->name[0]));
    EXPECT_FALSE(differs(&copy->screenRect[0]));
    EXPECT_FALSE(differs(&copy->vertexCapacity));
    copy->faceAttributes[3] ^= faceLit | faceEyeFacing;
    EXPECT_TRUE(meshesAreEqual(mesh, copy));
    copy->faceAttributes[3] ^= faceHidden;
    EXPECT_FALSE(meshesAreEqual(mesh, copy));
    freeKeptMesh(copy);
}
