// tests/tools/edges_literal.cpp - the edge table in its literal form: chains by the sum of both vertices
#include "tests/tools/literal.h"

static void insertLiteral(LiteralEdgeTable& table, int64_t a, int64_t b, int64_t face)
{
    size_t index = static_cast<size_t>(a + b + 1);
    for (;;)
    {
        LiteralEdge& edge = table.entries[index];
        if (edge.face1 == -1)
        {
            edge.vertex = a;
            edge.face1 = face;
            return;
        }
        if (edge.vertex == a || edge.vertex == b)
        {
            if (edge.face2 != -1)
                edge.many = true;
            else
            {
                edge.face2 = face;
                edge.disagrees = edge.vertex == a;
            }
            return;
        }
        if (edge.next == 0)
        {
            if (table.used == table.entries.size())
            {
                table.overflow = true;
                return;
            }
            edge.next = table.used++;
        }
        index = edge.next;
    }
}

LiteralEdgeTable literalEdgeTable(const Mesh* mesh)
{
    LiteralEdgeTable table;
    table.entries.resize(static_cast<size_t>(mesh->vertexCount) * 4);
    table.used = static_cast<size_t>(mesh->vertexCount) * 2;
    for (int32_t f = 0; f < mesh->faceCount && !table.overflow; ++f)
    {
        if (mesh->faceAttributes[f] & (faceDeleted | faceLine))
            continue;
        size_t n = mesh->faces[f][3] == noCorner ? 3 : 4;
        for (size_t k = 0; k < n && !table.overflow; ++k)
            insertLiteral(table, mesh->faces[f][k], mesh->faces[f][(k + 1) % n], f);
    }
    return table;
}

int64_t literalOtherFace(const LiteralEdgeTable& table, uint32_t a, uint32_t b, int64_t face)
{
    const LiteralEdge* edge = &table.entries[a + b + 1];
    while (edge->vertex != a && edge->vertex != b)
    {
        if (edge->next == 0)
            return -1;
        edge = &table.entries[edge->next];
    }
    return edge->face1 == face ? edge->face2 : edge->face2 == face ? edge->face1 : -1;
}
