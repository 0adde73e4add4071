// fuzz/builtin_fuzz.cpp - any bytes in the format of the built-in model
#include "fuzz/fuzzing.h"
#include "model/builtin.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    beginInput();
    Mesh* mesh = createMesh("prop");
    int hasMaterials = 0;
    loadModelBytes(bytes, size, mesh, &hasMaterials);
    freeMesh(mesh);
    return endInput();
}
