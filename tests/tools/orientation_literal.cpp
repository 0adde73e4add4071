// tests/tools/orientation_literal.cpp - Fix Normals in its literal form: four links at each face, and a stack of faces
#include "tests/tools/literal.h"
#include "tools/orientation.h"

#include <vector>

constexpr uint32_t linkMark = 1u << 30;
constexpr uint32_t linkFace = (1u << 28) - 1;

struct Adjacency
{
    uint32_t links[4] = { noCorner, noCorner, noCorner, noCorner };
    bool visited = false, queued = false, turn = false;
};

static void addLink(Adjacency& record, uint32_t link)
{
    for (int slot = 0; slot < 3; ++slot)
    {
        if (record.links[slot] == noCorner)
        {
            record.links[slot] = link;
            return;
        }
    }
    record.links[3] = link;
}

static void flip(Mesh* mesh, std::vector<Adjacency>& records, uint32_t g)
{
    flipFace(mesh->faces[g], mesh->faceUvs[g]);
    for (uint32_t& link : records[g].links)
    {
        if (link == noCorner)
            break;
        link ^= linkMark;
        for (uint32_t& back : records[link & linkFace].links)
        {
            if (back != noCorner && (back & linkFace) == g)
            {
                back ^= linkMark;
                break;
            }
        }
    }
}

static std::vector<Adjacency> linkFaces(const LiteralEdgeTable& table, size_t faceCount)
{
    std::vector<Adjacency> records(faceCount);
    for (const LiteralEdge& edge : table.entries)
    {
        if (edge.many || edge.face1 == -1 || edge.face2 == -1)
            continue;
        uint32_t mark = edge.disagrees ? linkMark : 0;
        addLink(records[static_cast<size_t>(edge.face1)], static_cast<uint32_t>(edge.face2) | mark);
        addLink(records[static_cast<size_t>(edge.face2)], static_cast<uint32_t>(edge.face1) | mark);
    }
    return records;
}

struct FaceStack
{
    std::vector<uint32_t> faces;
    size_t top;
};

static void push(FaceStack* stack, uint32_t face)
{
    stack->faces[stack->top] = face;
    if (stack->top + 1 < stack->faces.size())
        ++stack->top;
}

static void visit(Mesh* mesh, std::vector<Adjacency>& records, FaceStack* stack, uint32_t g)
{
    records[g].visited = true;
    if (records[g].turn)
        flip(mesh, records, g);
    records[g].turn = false;
    for (uint32_t link : records[g].links)
    {
        if (link == noCorner)
            break;
        uint32_t h = link & linkFace;
        if (records[h].visited || records[h].queued)
            continue;
        records[h].queued = true;
        records[h].turn = (link & linkMark) != 0;
        push(stack, h);
    }
}

static bool anyDisagrees(const LiteralEdgeTable& table)
{
    for (const LiteralEdge& edge : table.entries)
    {
        if (!edge.many && edge.face1 != -1 && edge.disagrees)
            return true;
    }
    return false;
}

std::string literalFixNormals(Mesh* mesh)
{
    LiteralEdgeTable table = literalEdgeTable(mesh);
    if (table.overflow)
        return "edge table overflow";
    if (!anyDisagrees(table))
        return "Normals ok, nothing to do";
    size_t faceCount = static_cast<size_t>(mesh->faceCount);
    std::vector<Adjacency> records = linkFaces(table, faceCount);
    FaceStack stack = { std::vector<uint32_t>(faceCount + 1), 0 };
    for (uint32_t f = 0; f < faceCount; ++f)
    {
        if (records[f].links[0] == noCorner || records[f].visited)
            continue;
        push(&stack, f);
        while (stack.top > 0)
            visit(mesh, records, &stack, stack.faces[--stack.top]);
    }
    return "    Normals fixed";
}
