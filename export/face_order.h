// export/face_order.h - faces by group, within a group by material, within that in record order
#pragma once
#include "model/mesh.h"

// Calls groupMet before the first live face of each group, in group order, whatever that face's material; and faceMet
// for each live face. Groups and materials past the mesh's counts are left out, but a mesh without groups (materials)
// has one group (material) 0. Takes work memory for one index per face; when there is none it goes through the faces
// again for each pair instead.
void visitFacesInOrder(const Mesh* mesh, void* context, void (*groupMet)(void* context, int32_t group),
                       void (*faceMet)(void* context, int32_t material, int32_t face));
