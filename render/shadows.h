// render/shadows.h - the shadow map, and the vertices that lie in shadow
//
// The map holds the light's view of the model: 16-bit depths, larger nearer to the light, with row 0 at the bottom of
// that view. Vertices are marked, not pixels; the interpolation of colours spreads the shade over the faces. There is
// no constant depth bias, because it would detach a shadow from its object. Instead, equal depths do not shadow, and a
// vertex is allowed the height that its own surface can have within its map entry.
//
// Source: Lance Williams, "Casting Curved Shadows on Curved Surfaces", 1978
#pragma once
#include "model/mesh.h"
#include "render/frame_buffer.h"
#include "render/raster.h"
#include "render/view.h"

// Stores each vertex's place on the map as column << 16 | row, and its light depth in the low half of the flags. Clears
// the shadow mark. A vertex outside columns and rows 0..1024 or depths 0..16384 gets the off-screen mark. It is never
// in shadow, and its faces cast none.
void ProjectToLight(Mesh* mesh, const FrameTransforms* transforms);

// Draws the faces on the lit side into the map. A span includes the column of its right edge, and an entry keeps the
// depth nearest to the light.
void RenderShadowMap(FrameBuffer* target, const Mesh* mesh);

// Raises the entries under the faces first..first + 7 of the mesh that cast a shadow and have small triangles only. A
// bit of the result stands for a face that it has left, at most partly drawn: k for face first + k. Drawing it again
// does no harm. The mesh has 1 to blockVertexLimit vertices (render/face_blocks.h). There is no plain version: faces
// are then drawn one by one.
using ShadowBlockFiller = uint32_t (*)(uint16_t* map, int32_t side, const Mesh* mesh, int32_t first);

// Raises count entries of the map to a 16.16 depth that changes by perColumn with each entry. Depths are clamped to
// 0..highest.
void fillShadowSpan(uint16_t* entry, int32_t count, int32_t depth, int32_t perColumn, int32_t highest);

// The slope of a plane in 16.16 depths.
struct DepthPlane
{
    int64_t perColumn, perRow;
};

// A triangle on the map. Its plane has the given depth at x, y.
struct ShadowTriangle
{
    SpanEdge left, right;
    int32_t topRow, bottomRow;
    DepthPlane plane;
    int32_t x, y, highest, depth;
};

// Raises the entries under the triangle's spans in a map of side x side.
void fillShadowRows(uint16_t* map, int32_t side, const ShadowTriangle* triangle);

// Sets or clears the shadow mark of every vertex. A vertex is in shadow when its map entry is nearer to the light by
// more than its own surface can rise within that entry. On a finely divided, steep surface the entry holds the depth of
// a neighbour in the same column and row, and that neighbour must not shadow the vertex.
void MarkShadowedVertices(const FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms);
