// fuzz/reader_fuzz.cpp - gives a reader any bytes: it refuses them, or makes a sound mesh
#include READER_HEADER
#include "fuzz/memory_file.h"
#include "model/memory.h"
#include "tests/check_mesh.h"
#include "tests/recording/recording.h"

#include <stdio.h>
#include <stdlib.h>

constexpr size_t bytesPerInputByte = 64;
constexpr size_t bytesFree = size_t{ 64 } << 20;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    memoryTable = {};
    resetRecording();
    Mesh* mesh = createMesh("prop");
    int ok = READER(mesh, memoryFile(bytes, size));
    if (ok)
    {
        std::string broken = brokenPromise(mesh);
        if (!broken.empty())
        {
            fprintf(stderr, "broken: %s\n", broken.c_str());
            abort();
        }
    }
    freeMesh(mesh);
    if (recorded.liveBlocks != 0)
        abort();
    if (recorded.peakBytes > size * bytesPerInputByte + bytesFree)
    {
        fprintf(stderr, "%zu bytes of memory for a file of %zu\n", recorded.peakBytes, size);
        abort();
    }
    if (!recorded.progress.empty() && !recorded.progress.back().closed)
        abort();
    return 0;
}
