// tests/mesh_pointer.h - meshes that free themselves, for tests
#pragma once
#include "model/mesh.h"

#include <memory>

struct Point
{
    float x, y, z;
};

struct MeshFreer
{
    void operator()(Mesh* mesh) const
    {
        freeMesh(mesh);
    }
};
using MeshPointer = std::unique_ptr<Mesh, MeshFreer>;

constexpr uint32_t none = noCorner; // short, for rows of corners
