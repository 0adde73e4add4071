// fuzz/mtl_fuzz.cpp - reads any bytes as the material library of a mesh with a few materials
#include "fuzz/fuzzing.h"
#include "fuzz/memory_files.h"
#include "import/obj/obj.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    beginInput();
    Mesh* mesh = createMesh("prop");
    mesh->materialCount = bytes && size % 5 == 0 ? materialLimit : 3; // at times all slots have names
    for (int32_t i = 0; i < mesh->materialCount; ++i)
        copyName(mesh->materialNames[i], i == 0 ? "red" : i == 1 ? "a b" : "blue");
    ReadMtlFile(mesh, memoryFile(bytes, size));
    checkMesh(mesh, "library");
    freeMesh(mesh);
    return endInput();
}
