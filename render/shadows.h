// render/shadows.h - which vertices something nearer to the light hides
//
// The map holds the light's view of the model, 16-bit depths where larger is nearer to the light, row 0 at the bottom
// of that view. Marks are per vertex; the colours between them spread the shade. There is no bias, on purpose: equal
// depths do not shadow, and what a vertex's own surface can rise by within its entry is allowed for instead.
//
// Source: Lance Williams, "Casting Curved Shadows on Curved Surfaces", 1978
#pragma once
#include "model/mesh.h"
#include "render/frame_buffer.h"
#include "render/raster.h"
#include "render/view.h"

// Every vertex's column << 16 | row of the map, its light depth in the low half of the flags, and no shadow mark. A
// vertex outside the map's columns and rows 0..1024 or depths 0..16384 is marked off the map: it neither gets nor casts
// a shadow.
void ProjectToLight(Mesh* mesh, const FrameTransforms* transforms);

// Draws the faces on the lit side into the map, each span with its last column included, the nearer depth kept.
void RenderShadowMap(FrameBuffer* target, const Mesh* mesh);

// Raises count map entries to a depth that changes by a step for each; depth and step are 16.16, and what a span works
// out is held within 0 and highest. room: entries from the first on that belong to the map, at least count.
void fillShadowSpan(uint16_t* entry, int32_t count, int32_t depth, int32_t perColumn, int32_t highest);
void fillShadowSpanAvx2(uint16_t* entry, int32_t count, int32_t room, int32_t depth, int32_t perColumn,
                        int32_t highest); // equal entries

// A plane in 16.16 depths: what it changes by per column and per row.
struct DepthPlane
{
    int64_t perColumn, perRow;
};

// A triangle on the map; its plane goes through the depth at x, y.
struct ShadowTriangle
{
    SpanEdge left, right;
    int32_t topRow, bottomRow;
    DepthPlane plane;
    int32_t x, y, highest, depth;
};

// Raise the entries of the triangle's spans in a map of side x side.
void fillShadowRows(uint16_t* map, int32_t side, const ShadowTriangle* triangle);
void fillShadowRowsAvx2(uint16_t* map, int32_t side, const ShadowTriangle* triangle); // equal entries

// Sets or clears the shadow marks by the map. A vertex is in shadow when its entry is nearer to the light than the
// vertex, by more than its own surface can be within that entry: on a finely cut, steep surface the entry holds the
// depth of a neighbour that lies in the same column and row.
void MarkShadowedVertices(const FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms);

// Writes the map as a grey picture to "shadow.bmp", once in a run of the program.
// Returns 1, or 0: it has been called before, or the file could not be written.
int DumpShadowMap(const FrameBuffer* target);
