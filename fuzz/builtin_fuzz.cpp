// fuzz/builtin_fuzz.cpp - any bytes in the format of the built-in model
#include "model/builtin.h"
#include "model/memory.h"
#include "tests/check_mesh.h"
#include "tests/recording/recording.h"

#include <stdlib.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    memoryTable = {};
    resetRecording();
    Mesh* mesh = createMesh("prop");
    int hasMaterials = 0;
    loadModelBytes(bytes, size, mesh, &hasMaterials);
    freeMesh(mesh);
    if (recorded.liveBlocks != 0)
        abort();
    return 0;
}
