// render/faces.h - drawing a mesh pass by pass
#pragma once
#include "render/frame.h"

// Draws the mesh in this order:
// 1. opaque faces turned toward the eye
// 2. opaque faces turned away, unless they are culled
// 3. when any face that is not hidden is transparent: the transparent faces turned away, unless they are culled, then
//    the transparent faces turned toward the eye
//
// In:  projected vertices and classified faces
// Out: cells; colours and shading keys of the vertices; framePolygons and litVertices, added to what they hold
void drawMesh(FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms, const RenderSettings* settings,
              FrameStatistics* statistics);
