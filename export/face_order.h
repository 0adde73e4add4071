// export/face_order.h - faces by group, within a group by material, within that in record order
#pragma once
#include "model/mesh.h"

// The live faces of a mesh in that order. Groups and materials past the counts are left out, but a mesh without groups
// (or materials) has a group (or material) 0.
struct FaceOrder
{
    int32_t groups;      // at least 1
    int32_t materials;   // at least 1
    int32_t* pairStarts; // [groups * materials + 1]: where pair p starts in faces; it ends where the next one starts
    int32_t* faces;      // by pair = group * materials + material
    uint8_t met[groupLimit]; // groups with a live face of any material
};

// Sorts the faces. Returns 1 and an order for freeFaceOrder; or 0, with a cleared one, after "Out of memory".
int makeFaceOrder(FaceOrder* order, const Mesh* mesh);

// A cleared order is fine.
void freeFaceOrder(FaceOrder* order);

// Visits the faces. groupMet is called once for each group that has one, before the group's faces, in group order;
// faceMet is called for each face. A group is met even when all its faces have a material past the mesh's count.
void visitFaces(const FaceOrder* order, void* context, void (*groupMet)(void* context, int32_t group),
                void (*faceMet)(void* context, int32_t material, int32_t face));
