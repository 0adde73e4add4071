// fuzz/reader_fuzz.cpp - gives a reader any bytes: it refuses them, or makes a sound mesh
#include READER_HEADER
#include "fuzz/fuzzing.h"
#include "fuzz/memory_files.h"
#include "tests/recording/recording.h"

#include <stdio.h>
#include <stdlib.h>

constexpr size_t bytesPerInputByte = 64;
constexpr size_t bytesFree = size_t{ 64 } << 20;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    beginInput();
    Mesh* mesh = createMesh("prop");
    if (READER(mesh, memoryFile(bytes, size)))
        checkMesh(mesh, "reader");
    freeMesh(mesh);
    if (recorded.peakBytes > size * bytesPerInputByte + bytesFree)
    {
        fprintf(stderr, "%zu bytes of memory for a file of %zu\n", recorded.peakBytes, size);
        abort();
    }
    return endInput();
}
