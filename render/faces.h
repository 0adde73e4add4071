// render/faces.h - drawing a mesh pass by pass
#pragma once
#include "render/frame.h"
#include "render/view.h"

// Draws the mesh in the order: opaque faces toward the eye; those turned away, unless they are culled; and when any
// face that is not hidden is transparent, the transparent ones turned away, then those toward the eye.
//
// In:  projected vertices and classified faces
// Out: cells; colours and shading keys of the vertices; frameStatistics
void drawMesh(FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms);
