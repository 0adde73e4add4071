// tests/tools/filter_test.cpp - showing one group or one material
#include "tools/filter.h"

#include "tests/tools/random.h"

using Filter = ToolTest;

// Three groups and two materials; face i is in group i % 3 and material i / 3, and lies at x = i.
static MeshPointer sixFaces()
{
    std::vector<Point> points;
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < 6; ++i)
    {
        float x = static_cast<float>(i);
        points.insert(points.end(), { { x, 0, 0 }, { x, 1, 0 }, { x, 0, 1 } });
        faces.push_back({ 3 * i, 3 * i + 1, 3 * i + 2, none });
    }
    MeshPointer mesh = buildMesh(points, faces);
    for (uint32_t i = 0; i < 6; ++i)
        mesh->faceAttributes[i] = i / 3 | i % 3 << faceGroupShift;
    mesh->groupCount = 3;
    mesh->materialCount = 2;
    copyName(mesh->groupNames[1], "walls");
    copyName(mesh->groupNames[2], "roof");
    copyName(mesh->materialNames[1], "brick");
    return mesh;
}

static std::vector<uint32_t> shownFaces(const Mesh* mesh)
{
    std::vector<uint32_t> shown;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!(mesh->faceAttributes[f] & faceHidden))
            shown.push_back(static_cast<uint32_t>(f));
    }
    return shown;
}

using Faces = std::vector<uint32_t>;

TEST_F(Filter, TheListNamesGroupsThenMaterials)
{
    MeshPointer mesh = sixFaces();
    Texts names;
    for (int32_t i = 0; i < filterEntryCount(mesh.get()); ++i)
        names.emplace_back(filterEntryName(mesh.get(), i));
    EXPECT_EQ(names, (Texts{ "All Groups", "default", "walls", "roof", "All Materials", "Preview", "brick" }));
}

TEST_F(Filter, AnEntryHasItsFacesAndTheWholeListHasAll)
{
    MeshPointer mesh = sixFaces();
    mesh->faceAttributes[4] |= faceDeleted;
    std::vector<int32_t> counts;
    for (int32_t i = 0; i < 8; ++i)
        counts.push_back(filterEntryFaces(mesh.get(), i));
    EXPECT_EQ(counts, (std::vector<int32_t>{ 5, 2, 1, 2, 0, 3, 2, 0 }));
}

TEST_F(Filter, HiddenFacesAndPolylinesCanBeRemoved)
{
    MeshPointer mesh = sixFaces();
    mesh->faceAttributes[0] |= faceLine | 7u << faceLinePointsShift; // a polyline of two records in group 0
    mesh->faceAttributes[3] |= faceLine;
    mesh->lineCount = 1;
    mesh->liveFaceCount = 4;
    applyFilter(mesh.get(), 2);
    removeHiddenFaces(mesh.get());
    EXPECT_EQ(mesh->lineCount, 0);
    EXPECT_EQ(mesh->liveFaceCount, 2);
    Faces left;
    for (uint32_t f = 0; f < 6; ++f)
    {
        EXPECT_FALSE(mesh->faceAttributes[f] & faceHidden);
        if (!(mesh->faceAttributes[f] & faceDeleted))
            left.push_back(f);
    }
    EXPECT_EQ(left, (Faces{ 1, 4 }));
}

TEST_F(Filter, AGroupShowsItsFacesAndFitsThem)
{
    MeshPointer mesh = sixFaces();
    applyFilter(mesh.get(), 2);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 1, 4 }));
    EXPECT_EQ(mesh->boundsMin[0], 1);
    EXPECT_EQ(mesh->boundsMax[0], 4);
    EXPECT_EQ(recorded.beeps, 0);
}

TEST_F(Filter, TheFirstMaterialFollowsAllMaterials)
{
    MeshPointer mesh = sixFaces();
    applyFilter(mesh.get(), 5);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 0, 1, 2 }));
    EXPECT_EQ(mesh->boundsMax[0], 2);
    applyFilter(mesh.get(), 6);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 3, 4, 5 }));
}

TEST_F(Filter, AllMaterialsShowsEverythingAndBeeps)
{
    MeshPointer mesh = sixFaces();
    applyFilter(mesh.get(), 2);
    applyFilter(mesh.get(), 4);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 0, 1, 2, 3, 4, 5 }));
    EXPECT_EQ(mesh->boundsMax[0], 5);
    EXPECT_EQ(recorded.beeps, 1);
}

TEST_F(Filter, NumbersThatAreInNoListShowEverythingAndBeep)
{
    MeshPointer mesh = sixFaces();
    int beeps = 0;
    for (int32_t index : { 7, 1000, INT32_MAX, -1, INT32_MIN })
    {
        applyFilter(mesh.get(), index);
        EXPECT_EQ(shownFaces(mesh.get()).size(), 6u) << index;
        EXPECT_EQ(recorded.beeps, ++beeps) << index;
    }
}

TEST_F(Filter, EntryZeroFitsAllVertices)
{
    std::vector<Point> points = { { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 9, 9, 9 } }; // the last is in no face
    MeshPointer mesh = buildMesh(points, { { 0, 1, 2, none }, { 2, 1, 0, none } });
    mesh->faceAttributes[0] = faceHidden;
    mesh->faceAttributes[1] = faceHidden | faceDeleted;
    applyFilter(mesh.get(), 0);
    EXPECT_EQ(mesh->faceAttributes[0], 0u);
    EXPECT_EQ(mesh->faceAttributes[1], faceDeleted);
    EXPECT_EQ(mesh->boundsMax[0], 9);
    applyFilter(mesh.get(), 1);
    EXPECT_EQ(mesh->boundsMax[0], 1);
    applyFilter(mesh.get(), 0);
    EXPECT_EQ(mesh->boundsMax[0], 9);
    EXPECT_EQ(recorded.beeps, 0);
}

TEST_F(Filter, DeletedSlotsAreLeftAloneWhileSomethingMatches)
{
    MeshPointer mesh = sixFaces();
    mesh->faceAttributes[0] |= faceDeleted;
    mesh->faceAttributes[1] |= faceDeleted | faceHidden;
    applyFilter(mesh.get(), 3);
    EXPECT_EQ(mesh->faceAttributes[0] & faceHidden, 0u);
    EXPECT_EQ(mesh->faceAttributes[1] & faceHidden, faceHidden);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 0, 2, 5 }));
    applyFilter(mesh.get(), 100); // nothing matches: every slot is shown
    EXPECT_EQ(mesh->faceAttributes[1] & faceHidden, 0u);
}

TEST_F(Filter, AGroupOfDeletedFacesOnlyMatchesNothing)
{
    MeshPointer mesh = sixFaces();
    mesh->faceAttributes[1] |= faceDeleted;
    mesh->faceAttributes[4] |= faceDeleted;
    applyFilter(mesh.get(), 2);
    EXPECT_EQ(recorded.beeps, 1);
    EXPECT_EQ(shownFaces(mesh.get()).size(), 6u);
}

TEST_F(Filter, LineRecordsAreFilteredLikeFaces)
{
    MeshPointer mesh =
        buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 1, 2, none }, { 0, 1, none, none } });
    mesh->groupCount = 2;
    mesh->faceAttributes[1] = faceLine | 2u << faceLinePointsShift | 1u << faceGroupShift;
    applyFilter(mesh.get(), 1);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 0 }));
    applyFilter(mesh.get(), 2);
    EXPECT_EQ(shownFaces(mesh.get()), (Faces{ 1 }));
    EXPECT_EQ(mesh->boundsMax[1], 0);
}

TEST_F(Filter, NoMeshAndAnEmptyMeshAreFine)
{
    applyFilter(nullptr, 1);
    MeshPointer mesh = buildMesh({}, {});
    applyFilter(mesh.get(), 0);
    applyFilter(mesh.get(), 1);
    EXPECT_EQ(mesh->boundsMin[0], -0.1f);
    EXPECT_EQ(mesh->boundsMax[2], 0.1f);
    EXPECT_EQ(recorded.beeps, 1);
}
