// export/face_order.h - faces by group, within a group by material, within that in record order
#pragma once
#include "model/mesh.h"

// Visits the live faces of a mesh. groupMet is called once for each group that has one, before the group's faces, in
// group order; faceMet is called for each face. A group is met even when all its faces have a material past the mesh's
// count. Groups and materials past the counts are left out, but a mesh without groups (or materials) has a group (or
// material) 0. The function takes work memory for one index per face; without it, it walks through all faces for each
// pair of group and material.
void visitFacesInOrder(const Mesh* mesh, void* context, void (*groupMet)(void* context, int32_t group),
                       void (*faceMet)(void* context, int32_t material, int32_t face));
