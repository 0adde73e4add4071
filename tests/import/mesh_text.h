// tests/import/mesh_text.h - parts of a mesh as short texts for comparing
#pragma once
#include "model/mesh.h"

#include <stdio.h>
#include <string>

inline std::string positionOf(const Mesh* mesh, int32_t vertex)
{
    const float* p = mesh->vertices[vertex].position;
    char text[100];
    snprintf(text, sizeof text, "%g %g %g", static_cast<double>(p[0]), static_cast<double>(p[1]),
             static_cast<double>(p[2]));
    return text;
}

inline std::string cornersText(const Corners& corners)
{
    std::string text;
    for (uint32_t corner : corners)
    {
        text += text.empty() ? "" : " ";
        text += std::to_string(static_cast<int32_t>(corner));
    }
    return text;
}

// The faces as "0 1 2 -1; 0 2 3 -1".
inline std::string recordsText(const Corners* records, int32_t count)
{
    std::string text;
    for (int32_t f = 0; f < count; ++f)
    {
        text += f ? "; " : "";
        text += cornersText(records[f]);
    }
    return text;
}

inline std::string facesOf(const Mesh* mesh)
{
    return recordsText(mesh->faces, mesh->faceCount);
}

inline std::string faceUvsOf(const Mesh* mesh)
{
    return recordsText(mesh->faceUvs, mesh->faceCount);
}
