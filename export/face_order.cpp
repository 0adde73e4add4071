// export/face_order.cpp - sorting faces by counting
#include "export/face_order.h"

#include "model/memory.h"
#include "platform/pages.h"

// The pair of a face, -1 when it is not to be written.
static int32_t pairOf(const FaceOrder* order, uint32_t attributes)
{
    int32_t group = static_cast<int32_t>(faceGroup(attributes));
    int32_t material = static_cast<int32_t>(faceMaterial(attributes));
    if ((attributes & faceDeleted) != 0 || group >= order->groups || material >= order->materials)
        return -1;
    return group * order->materials + material;
}

static void noteGroups(FaceOrder* order, const Mesh* mesh)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        if ((mesh->faceAttributes[f] & faceDeleted) == 0)
            order->met[faceGroup(mesh->faceAttributes[f])] = 1;
}

// Fills one block with the pairs and the faces: counts the faces of each pair, adds the counts up, then places the
// faces. Placing a face moves the start of its pair on by one, so that it becomes the pair's end.
static void sortFaces(FaceOrder* order, const Mesh* mesh, int32_t* block)
{
    int64_t pairs = int64_t{ order->groups } * order->materials;
    int32_t* counts = block + 2; // shifted by two, so that after placing entry p is the start of pair p again
    order->pairStarts = block;
    order->faces = block + pairs + 2;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        int32_t pair = pairOf(order, mesh->faceAttributes[f]);
        if (pair >= 0)
            ++counts[pair];
    }
    for (int64_t p = 1; p < pairs; ++p)
        counts[p] += counts[p - 1];
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        int32_t pair = pairOf(order, mesh->faceAttributes[f]);
        if (pair >= 0)
            order->faces[block[pair + 1]++] = f;
    }
}

// Without memory for the order, the faces would have to be searched for each pair of a group and a material, of which
// there are up to 262,144. That would take hours, so it fails instead.
int makeFaceOrder(FaceOrder* order, const Mesh* mesh)
{
    *order = {};
    order->groups = mesh->groupCount > 0 ? mesh->groupCount : 1;
    order->materials = mesh->materialCount > 0 ? mesh->materialCount : 1;
    int64_t pairs = int64_t{ order->groups } * order->materials;
    auto* block = static_cast<int32_t*>(allocatePages(blockSize(pairs + 2 + mesh->faceCount, sizeof(int32_t))));
    if (!block)
    {
        *order = {};
        return reportOutOfMemory();
    }
    noteGroups(order, mesh);
    sortFaces(order, mesh, block);
    return 1;
}

void freeFaceOrder(FaceOrder* order)
{
    releasePages(order->pairStarts);
    *order = {};
}

void visitFaces(const FaceOrder* order, void* context, void (*groupMet)(void* context, int32_t group),
                void (*faceMet)(void* context, int32_t material, int32_t face))
{
    for (int32_t group = 0; group < order->groups; ++group)
    {
        if (!order->met[group])
            continue;
        groupMet(context, group);
        for (int32_t material = 0; material < order->materials; ++material)
        {
            int32_t pair = group * order->materials + material;
            for (int32_t i = order->pairStarts[pair]; i < order->pairStarts[pair + 1]; ++i)
                faceMet(context, material, order->faces[i]);
        }
    }
}
