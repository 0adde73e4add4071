// fuzz/fuzzing.cpp - before and after each input
#include "fuzz/fuzzing.h"

#include "fuzz/memory_files.h"
#include "model/memory.h"
#include "tests/check_mesh.h"
#include "tests/recording/recording.h"

#include <stdio.h>
#include <stdlib.h>

void beginInput()
{
    memoryTable = {};
    resetRecording();
}

int endInput()
{
    if (recorded.liveBlocks != 0)
    {
        fprintf(stderr, "%d blocks are not released\n", recorded.liveBlocks);
        abort();
    }
    if (!recorded.progress.empty() && !recorded.progress.back().closed)
    {
        fprintf(stderr, "a progress bar is left\n");
        abort();
    }
    recorded = {};
    removeMemoryFiles();
    return 0;
}

void checkMesh(const Mesh* mesh, const char* where)
{
    std::string broken = brokenPromise(mesh);
    if (broken.empty())
        return;
    fprintf(stderr, "%s: broken: %s\n", where, broken.c_str());
    abort();
}
