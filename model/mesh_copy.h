// model/mesh_copy.h - copies of a mesh that outlive it, for undo
//
// A kept mesh has the same record and arrays as any other, but its blocks are not in the memory table (model/memory.h),
// so that any number of them can be kept beside the mesh that is shown. It must be taken back before it is drawn,
// changed or freed by freeMesh. Keeping and taking back move no bytes, whatever the size of the mesh.
#pragma once
#include "model/mesh.h"

#include <stddef.h>

// A kept copy of a mesh, whose arrays are as long as their contents. What the last frame has projected is not copied:
// the next frame projects again. The caller owns the copy. Null, without a message, when memory is refused.
Mesh* copyMesh(const Mesh* mesh);

// Makes a mesh a kept one.
void keepMesh(Mesh* mesh);

// Makes a kept mesh an ordinary one again. Returns 1, or 0 with nothing changed when the memory table has no entries
// left for it. It always has when a mesh with the same arrays has been kept just before.
int takeMeshBack(Mesh* mesh);

// Frees a kept mesh. Null is ignored.
void freeKeptMesh(Mesh* mesh);

// The bytes of the record and its arrays, and those that a copy of the mesh has.
size_t meshBytes(const Mesh* mesh);
size_t copyBytes(const Mesh* mesh);

// Whether two meshes have the same contents, bit for bit. Capacities and what frames write (faceLit and faceEyeFacing,
// projected, screenRect) do not count.
int meshesAreEqual(const Mesh* a, const Mesh* b);

// Whether two meshes have the same lists of groups and materials.
int meshNamesAreEqual(const Mesh* a, const Mesh* b);
