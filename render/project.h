// render/project.h - what a frame works out for every vertex and every face before it draws
//
// The flags word of a projected vertex: depth in the low half; above it the off-screen mark, the shadow mark, and the
// key of the shading that its colour holds (material, side, and whether there is one).
#pragma once
#include "model/mesh.h"
#include "render/view.h"

#include <stdint.h>

constexpr uint32_t vertexDepthMask = 0xFFFFu;
constexpr uint32_t vertexMaterialShift = 16; // 9 bits
constexpr uint32_t vertexShadowed = 1u << 28;
constexpr uint32_t vertexEyeFacing = 1u << 29; // shaded for a face turned toward the eye
constexpr uint32_t vertexShaded = 1u << 30;
constexpr uint32_t vertexOffScreen = 1u << 31; // or off the shadow map, until the vertices are projected to the screen
constexpr uint32_t vertexKeyMask = vertexShaded | vertexEyeFacing | 0x1FFu << vertexMaterialShift;

// Sets or clears the lit-side and eye-facing bits of all faces. Hidden and deleted faces keep their lit side, polylines
// their eye-facing bit; a face without area counts as facing both.
void classifyFaces(Mesh* mesh, const FrameTransforms* transforms);

constexpr float litSideThreshold = -0.05f; // of the light's direction along the normal

// In model space.
struct FaceDirections
{
    float light[3], eye[3];
};

// classifyFaces for faces first..end - 1.
void classifyFaceRange(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end);
void classifyFaceRangeAvx2(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end); // equal bits

// Screen position and depth of all vertices, rounded down; shadow marks stay, shading keys go.
//
// Out:    projected[vertexCount], screenRect. A vertex on or past the display's border, or not in front of depth 1 to
//         16383, is off the screen and stands in the display's centre.
void projectVertices(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height);
void projectVerticesSse2(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height); // equal values
void projectVerticesAvx2(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height); // equal values

// Map places and light depths, no shadow marks; off the map is marked as off the screen is (render/shadows.h).
void projectVerticesToLight(Mesh* mesh, const FrameTransforms* transforms);
void projectVerticesToLightSse2(Mesh* mesh, const FrameTransforms* transforms); // equal values
void projectVerticesToLightAvx2(Mesh* mesh, const FrameTransforms* transforms); // equal values

inline int32_t projectedX(const ProjectedVertex& vertex)
{
    return static_cast<int32_t>(vertex.xy >> 16);
}

inline int32_t projectedY(const ProjectedVertex& vertex)
{
    return static_cast<int32_t>(vertex.xy & 0xFFFF);
}
