// tests/tools/polygons_literal.cpp - Quad and TRI in their literal forms
#include "tests/tools/literal.h"
#include "tools/edges.h"

#include <array>

static float squaredLength(const Mesh* mesh, uint32_t a, uint32_t b)
{
    const float *p = mesh->vertices[a].position, *q = mesh->vertices[b].position;
    float x = p[0] - q[0], y = p[1] - q[1], z = p[2] - q[2];
    return (x * x + y * y) + z * z;
}

int literalQuads(Mesh* mesh)
{
    EdgeTable edges;
    if (!buildEdgeTable(mesh, &edges))
        return -1;
    int merges = 0;
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        Corners c = mesh->faces[f], t = mesh->faceUvs[f];
        if (mesh->faceAttributes[f] & (faceDeleted | faceLine) || c[3] != noCorner)
            continue;
        float d01 = squaredLength(mesh, c[0], c[1]), d12 = squaredLength(mesh, c[1], c[2]),
              d20 = squaredLength(mesh, c[2], c[0]);
        int edge = d01 >= d12 && d01 >= d20 ? 0 : d01 < d12 && d12 >= d20 ? 1 : 2;
        uint32_t a = c[static_cast<size_t>(edge)], b = c[static_cast<size_t>((edge + 1) % 3)];
        uint32_t g = otherFace(&edges, a, b, f);
        if (g == noFace || mesh->faceAttributes[g] & faceDeleted || mesh->faces[g][3] != noCorner)
            continue;
        if ((mesh->faceAttributes[f] & 0x3FFFF) != (mesh->faceAttributes[g] & 0x3FFFF))
            continue;
        for (size_t k = 0; k < 3; ++k)
        {
            uint32_t x = mesh->faces[g][k], u = mesh->faceUvs[g][k];
            if (x == a || x == b)
                continue;
            mesh->faces[f] = edge == 0   ? Corners{ c[0], x, c[1], c[2] }
                             : edge == 1 ? Corners{ c[0], c[1], x, c[2] }
                                         : Corners{ c[0], c[1], c[2], x };
            mesh->faceUvs[f] = edge == 0   ? Corners{ t[0], u, t[1], t[2] }
                               : edge == 1 ? Corners{ t[0], t[1], u, t[2] }
                                           : Corners{ t[0], t[1], t[2], u };
            mesh->faceAttributes[g] |= faceDeleted;
            --mesh->liveFaceCount;
            ++merges;
            break;
        }
    }
    freeEdgeTable(&edges);
    return merges;
}

LiteralFaces literalTriangles(const Mesh* mesh)
{
    LiteralFaces out;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t word = mesh->faceAttributes[f];
        const Corners &c = mesh->faces[f], &t = mesh->faceUvs[f];
        if (word & faceDeleted)
            continue;
        bool quad = c[3] != noCorner && !(word & faceLine);
        out.live += word & faceLine ? 0 : quad ? 2 : 1;
        out.attributes.insert(out.attributes.end(), quad ? 2 : 1, word);
        if (!quad)
        {
            out.faces.push_back(c);
            out.uvs.push_back(t);
            continue;
        }
        bool first = squaredLength(mesh, c[0], c[2]) <= squaredLength(mesh, c[1], c[3]);
        for (const auto& order : first ? std::array<std::array<size_t, 3>, 2>{ { { 0, 1, 2 }, { 2, 3, 0 } } }
                                       : std::array<std::array<size_t, 3>, 2>{ { { 3, 0, 1 }, { 1, 2, 3 } } })
        {
            out.faces.push_back({ c[order[0]], c[order[1]], c[order[2]], noCorner });
            out.uvs.push_back({ t[order[0]], t[order[1]], t[order[2]], 0 });
        }
    }
    return out;
}
