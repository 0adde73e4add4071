// import/obj/parts.h - what the parts of the OBJ reader share
#pragma once
#include "import/common/names.h"
#include "import/obj/source.h"
#include "model/mesh.h"

// How many of each a large file seems to hold; 0: not known.
struct ObjEstimate
{
    int32_t vertices, uvs, faces;
};

struct ObjReader
{
    ObjSource source;
    Mesh* mesh;
    ObjEstimate estimate;
    int32_t vertexCount, uvCount, faceCount, polygonCount, lineCount;
    uint32_t attributes; // of the next face: current material and group
    NameTable groups, materials;
    char library[nameRoom];
};

// Takes vertices, texture coordinates, triangles and quads as long as their lines are plain, lie in the block and have
// room in the mesh: the statements that nearly all of a large file is. What it leaves is for NextObjStatement. Returns
// how many it took, at most `most`.
int32_t takePlainStatements(ObjReader* reader, int32_t most);
