// tests/tools/weld_literal.cpp - Weld in its literal form: chains by steps of the key, an overflow of vertexCount
// entries
#include "tests/tools/literal.h"

#include <gtest/gtest.h>

#include <math.h>
#include <string.h>
#include <algorithm>
#include <vector>

struct WeldEntry
{
    int64_t vertex = -1, next = -1;
};

struct LiteralWeld
{
    const Mesh* mesh;
    std::vector<float> key;
    float smallest, scale, tolerance;
    std::vector<WeldEntry> table; // one entry for each step, then the overflow
    size_t overflow;
    std::vector<uint32_t> target; // what each vertex becomes
    std::vector<bool> used, dropped;
};

static bool isNear(const float* p, const float* q, float tolerance)
{
    return fabsf(p[0] - q[0]) <= tolerance && fabsf(p[1] - q[1]) <= tolerance && fabsf(p[2] - q[2]) <= tolerance;
}

static void findUsed(LiteralWeld* weld)
{
    const Mesh* mesh = weld->mesh;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        for (size_t k = 0; k < 4 && mesh->faces[f][k] != noCorner && !(mesh->faceAttributes[f] & faceDeleted); ++k)
            weld->used[mesh->faces[f][k]] = true;
    }
}

// Walks the chain of the vertex's step, to a vertex that is near or to the end.
static void enterVertex(LiteralWeld* weld, size_t i)
{
    size_t count = weld->key.size();
    size_t index = std::min(static_cast<size_t>((weld->key[i] - weld->smallest) * weld->scale), count - 1);
    while (weld->table[index].vertex != -1)
    {
        WeldEntry& entry = weld->table[index];
        if (isNear(weld->mesh->vertices[i].position, weld->mesh->vertices[entry.vertex].position, weld->tolerance))
        {
            weld->target[i] = static_cast<uint32_t>(entry.vertex);
            weld->dropped[i] = true;
            return;
        }
        if (entry.next == -1)
        {
            EXPECT_LT(weld->overflow, count); // never runs out
            entry.next = static_cast<int64_t>(count + weld->overflow++);
        }
        index = static_cast<size_t>(entry.next);
    }
    weld->table[index].vertex = static_cast<int64_t>(i);
}

// Moves the kept vertices down. Returns the new numbers.
static std::vector<uint32_t> keepVertices(const LiteralWeld& weld, Mesh* mesh)
{
    std::vector<uint32_t> renumbered(weld.key.size());
    uint32_t kept = 0;
    for (size_t i = 0; i < weld.key.size(); ++i)
    {
        if (weld.dropped[i])
            continue;
        memcpy(mesh->vertices[kept].position, mesh->vertices[i].position, sizeof mesh->vertices[i].position);
        mesh->vertices[kept].colour = mesh->vertices[i].colour;
        renumbered[i] = kept++;
    }
    mesh->vertexCount = static_cast<int32_t>(kept);
    return renumbered;
}

static void renumberFaces(const LiteralWeld& weld, Mesh* mesh, const std::vector<uint32_t>& renumbered)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        Corners& corners = mesh->faces[f];
        for (size_t k = 0; k < 4 && corners[k] != noCorner; ++k)
        {
            if (corners[k] >= renumbered.size() || !weld.used[corners[k]])
            {
                corners = { 0, 0, 0, noCorner };
                break;
            }
            corners[k] = renumbered[weld.target[corners[k]]];
        }
    }
}

int literalWeld(Mesh* mesh, WeldMode mode)
{
    size_t count = static_cast<size_t>(mesh->vertexCount);
    LiteralWeld weld = { mesh, {}, 0,  0, mode == weldExact ? 0 : 0.00001f, std::vector<WeldEntry>(2 * count),
                         0,    {}, {}, {} };
    for (size_t i = 0; i < count; ++i)
    {
        const float* p = mesh->vertices[i].position;
        weld.key.push_back(fabsf(p[0] - p[1] + p[2]));
        weld.target.push_back(static_cast<uint32_t>(i));
    }
    weld.used.resize(count);
    weld.smallest = *std::min_element(weld.key.begin(), weld.key.end());
    float largest = *std::max_element(weld.key.begin(), weld.key.end());
    if (weld.smallest == largest)
        return -1;
    weld.scale = static_cast<float>(count - 1) / (largest - weld.smallest);
    findUsed(&weld);
    weld.dropped.resize(count);
    for (size_t i = 0; i < count; ++i)
    {
        weld.dropped[i] = !weld.used[i];
        if (weld.used[i])
            enterVertex(&weld, i);
    }
    int removed = static_cast<int>(std::count(weld.dropped.begin(), weld.dropped.end(), true));
    if (removed > 0)
        renumberFaces(weld, mesh, keepVertices(weld, mesh));
    return removed;
}
