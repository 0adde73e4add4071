// render/project.h - projecting the vertices and classifying the faces of a frame before it is drawn
//
// The flags word of a projected vertex has the depth in its low half. Above it stand the off-screen mark, the shadow
// mark, and the key of the shading that the vertex's colour holds: material, side, and whether it is shaded at all.
#pragma once
#include "model/mesh.h"
#include "render/raster.h"
#include "render/view.h"

#include <stdint.h>

constexpr uint32_t vertexDepthMask = 0xFFFFu;
constexpr uint32_t vertexMaterialShift = 16; // 9 bits
constexpr uint32_t vertexShadowed = 1u << 28;
constexpr uint32_t vertexEyeFacing = 1u << 29; // shaded for a face turned toward the eye
constexpr uint32_t vertexShaded = 1u << 30;
constexpr uint32_t vertexOffScreen = 1u << 31; // or off the shadow map, until the vertices are projected to the screen
constexpr uint32_t vertexKeyMask = vertexShaded | vertexEyeFacing | 0x1FFu << vertexMaterialShift;

// Sets or clears the lit-side and eye-facing bits of all faces. Hidden and deleted faces keep their lit-side bit,
// polylines their eye-facing bit. A face without area counts as facing both the light and the eye.
void classifyFaces(Mesh* mesh, const FrameTransforms* transforms);

constexpr float litSideThreshold = -0.05f; // of the light's direction along the normal

// In model space.
struct FaceDirections
{
    float light[3], eye[3];
};

// classifyFaces for faces first..end - 1.
void classifyFaceRange(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end);

// Screen position and depth of all vertices, rounded down. Shadow marks stay, shading keys are cleared.
//
// Out:    projected[vertexCount], screenRect. A vertex on or past the display's border, or with a depth outside
//         1..16383, is marked off the screen and placed in the display's centre.
void projectVertices(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height);

// The kernels of ProjectToLight (render/shadows.h): place on the shadow map and light depth of all vertices. Shadow
// marks are cleared, and a vertex off the map gets the off-screen mark.
void projectVerticesToLight(Mesh* mesh, const FrameTransforms* transforms);

inline int32_t projectedX(const ProjectedVertex& vertex)
{
    return static_cast<int32_t>(vertex.xy >> 16);
}

inline int32_t projectedY(const ProjectedVertex& vertex)
{
    return static_cast<int32_t>(vertex.xy & 0xFFFF);
}

// A corner with the vertex's place and depth, and nothing else yet.
inline TriangleCorner projectedCorner(const ProjectedVertex& vertex)
{
    return { projectedX(vertex), projectedY(vertex), static_cast<int32_t>(vertex.flags & vertexDepthMask), 0, 0, 0 };
}
