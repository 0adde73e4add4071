// tests/tools/random.h - small random meshes with everything that a tool must handle, and comparing meshes
#pragma once
#include "tests/tools/build.h"

// A copy of the counts, positions, faces and attributes of a mesh, for comparing.
struct MeshState
{
    std::vector<Point> points;
    std::vector<Corners> faces, faceUvs;
    std::vector<uint32_t> attributes;
    int32_t liveFaceCount, groupCount;
    std::vector<std::string> groups;
};

inline MeshState stateOf(const Mesh* mesh)
{
    MeshState state = {};
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const float* p = mesh->vertices[i].position;
        state.points.push_back({ p[0], p[1], p[2] });
    }
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        state.faces.push_back(mesh->faces[f]);
        state.faceUvs.push_back(mesh->faceUvs[f]);
        state.attributes.push_back(mesh->faceAttributes[f]);
    }
    state.liveFaceCount = mesh->liveFaceCount;
    state.groupCount = mesh->groupCount;
    for (int32_t i = 0; i < mesh->groupCount; ++i)
        state.groups.emplace_back(mesh->groupNames[i]);
    return state;
}

inline void expectEqualStates(const MeshState& a, const MeshState& b, unsigned seed)
{
    ASSERT_EQ(a.points.size(), b.points.size()) << "seed " << seed;
    for (size_t i = 0; i < a.points.size(); ++i) // by bits, because zeros of different sign must differ
        ASSERT_EQ(memcmp(&a.points[i], &b.points[i], sizeof(Point)), 0) << "seed " << seed << " vertex " << i;
    ASSERT_EQ(a.faces, b.faces) << "seed " << seed;
    ASSERT_EQ(a.faceUvs, b.faceUvs) << "seed " << seed;
    ASSERT_EQ(a.attributes, b.attributes) << "seed " << seed;
    ASSERT_EQ(a.liveFaceCount, b.liveFaceCount) << "seed " << seed;
    ASSERT_EQ(a.groups, b.groups) << "seed " << seed;
}

struct RandomShape
{
    int vertexLimit = 12;
    int faceLimit = 30;
    float spread = 2; // coordinates are whole steps from 0 to spread
    float step = 1;   // between coordinates
    bool onlyTriangles = false;
    bool closedFormsOnly = false; // no deleted, hidden and line records, no repeated corners
};

inline MeshPointer randomMesh(unsigned seed, const RandomShape& shape = {})
{
    std::mt19937 random(seed);
    auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    int vertexCount = 3 + below(shape.vertexLimit - 2), faceCount = 1 + below(shape.faceLimit);
    std::vector<Point> points;
    for (int i = 0; i < vertexCount; ++i)
    {
        auto coordinate = [&] { return shape.step * static_cast<float>(below(static_cast<int>(shape.spread) + 1)); };
        float x = coordinate(), y = coordinate(), z = coordinate();
        points.push_back({ below(5) == 0 && x == 0 ? -0.0f : x, y, z });
    }
    std::vector<Corners> faces;
    std::vector<uint32_t> attributes;
    for (int f = 0; f < faceCount; ++f)
    {
        bool line = !shape.closedFormsOnly && below(10) == 0;
        size_t count = line ? 2 : shape.onlyTriangles || vertexCount == 3 || below(2) ? 3 : 4;
        bool distinct = shape.closedFormsOnly || below(4) != 0;
        Corners corners = { none, none, none, none };
        for (size_t k = 0; k < count; ++k)
        {
            bool repeated;
            do
            {
                corners[k] = static_cast<uint32_t>(below(vertexCount));
                repeated = false;
                for (size_t j = 0; j < k; ++j)
                    repeated |= corners[j] == corners[k];
            } while (distinct && repeated);
        }
        faces.push_back(corners);
        uint32_t word = static_cast<uint32_t>(below(2)) | static_cast<uint32_t>(below(2)) << faceGroupShift;
        word |= line ? faceLine | 2u << faceLinePointsShift : 0;
        if (!shape.closedFormsOnly)
        {
            word |= below(8) == 0 ? faceDeleted : 0;
            word |= below(8) == 0 ? faceHidden : 0;
        }
        attributes.push_back(word);
    }
    MeshPointer mesh = buildMesh(points, faces);
    mesh->liveFaceCount = 0;
    for (int f = 0; f < faceCount; ++f)
    {
        mesh->faceAttributes[f] = attributes[static_cast<size_t>(f)];
        mesh->liveFaceCount += !(attributes[static_cast<size_t>(f)] & faceDeleted);
    }
    mesh->materialCount = mesh->groupCount = 2;
    strcpy(mesh->groupNames[1], "second");
    return mesh;
}

// Fills the corners of some deleted slots with arbitrary values.
inline void spoilDeletedSlots(Mesh* mesh, unsigned seed)
{
    std::mt19937 random(seed);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] & faceDeleted && random() % 2)
            mesh->faces[f] = { static_cast<uint32_t>(random()), 1000000, 0x80000000u, static_cast<uint32_t>(random()) };
    }
}
