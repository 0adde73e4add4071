// tests/check_mesh.h - the properties that every mesh has after every load and every tool
#pragma once
#include "model/mesh.h"

#include <string>

// Material and group slot 0 may be used without being counted, and so may the last one of a 3DS file, whose counts stop
// one below the limit.
inline uint32_t usableSlots(int32_t count, int32_t limit)
{
    if (count == limit - 1)
        return static_cast<uint32_t>(limit);
    return count > 0 ? static_cast<uint32_t>(count) : 1;
}

// Describes the first property that the mesh lacks; empty when it has all of them.
inline std::string brokenPromise(const Mesh* mesh)
{
    auto at = [](const char* what, int64_t index) { return std::string(what) + " " + std::to_string(index); };

    if (mesh->vertexCount < 0 || mesh->vertexCount > mesh->vertexCapacity)
        return at("vertexCount", mesh->vertexCount);
    if (mesh->uvCount < 0 || mesh->uvCount > mesh->uvCapacity)
        return at("uvCount", mesh->uvCount);
    if (mesh->faceCount < 0 || mesh->faceCount > mesh->faceCapacity)
        return at("faceCount", mesh->faceCount);
    if (mesh->materialCount < 0 || mesh->materialCount > materialLimit)
        return at("materialCount", mesh->materialCount);
    if (mesh->groupCount < 0 || mesh->groupCount > groupLimit)
        return at("groupCount", mesh->groupCount);
    // The triangles of a Poser file are not counted, so a tool that deletes some takes the count below 0.
    if (mesh->liveFaceCount < -mesh->faceCount || mesh->liveFaceCount > mesh->faceCount)
        return at("liveFaceCount", mesh->liveFaceCount);

    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        if (attributes & faceDeleted)
            continue;
        if (faceMaterial(attributes) >= usableSlots(mesh->materialCount, materialLimit))
            return at("material of face", f);
        if (faceGroup(attributes) >= usableSlots(mesh->groupCount, groupLimit))
            return at("group of face", f);
        for (size_t k = 0; k < 4; ++k)
        {
            uint32_t corner = mesh->faces[f][k], uv = mesh->faceUvs[f][k];
            bool absent = corner == noCorner && (k == 3 || (k == 2 && mesh->faces[f][3] == noCorner));
            if (!absent && corner >= static_cast<uint32_t>(mesh->vertexCount))
                return at("corner of face", f);
            if (uv != 0 && uv >= static_cast<uint32_t>(mesh->uvCount))
                return at("texture index of face", f);
        }
    }
    for (int32_t v = 0; v < mesh->vertexCount; ++v)
    {
        for (float coordinate : mesh->vertices[v].position)
        {
            if (!(coordinate > -1e18f && coordinate < 1e18f)) // squares of lengths stay finite
                return at("position of vertex", v);
        }
    }
    for (const auto* names : { &mesh->groupNames, &mesh->materialNames, &mesh->textureNames, &mesh->opacityNames })
    {
        for (const auto& name : *names)
        {
            if (name[nameRoom - 1] != 0)
                return std::string("a name without an end");
        }
    }
    return "";
}
