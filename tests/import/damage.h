// tests/import/damage.h - readers with cut files, damaged files and too little memory
#pragma once
#include "tests/import/loading.h"

#include <stdlib.h>
#include <random>

// Cuts the file at every length. Each cut file is read or refused, and nothing is left behind.
inline void loadEveryCut(Loader load, const std::string& bytes)
{
    int blocks = recorded.liveBlocks;
    for (size_t length = 0; length < bytes.size(); ++length)
    {
        resetRecording();
        {
            LoadedMesh loaded(load, bytes.substr(0, length));
            if (loaded.result)
                expectSound(loaded.mesh);
            ASSERT_NE(loaded.result != 0, !recorded.boxes.empty()) << "cut at " << length;
        }
        ASSERT_EQ(recorded.liveBlocks, blocks) << "cut at " << length;
    }
}

// Changes, removes or inserts some bytes of the file, `rounds` times; KESTRELBOX_ROUNDS overrides the number.
inline void loadCorrupted(Loader load, const std::string& bytes, const std::string& favourites, int rounds)
{
    if (const char* asked = getenv("KESTRELBOX_ROUNDS"))
        rounds = atoi(asked);
    int blocks = recorded.liveBlocks;
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round)
    {
        std::string damaged = bytes;
        for (unsigned hits = 1 + random() % 4; hits > 0 && !damaged.empty(); --hits)
        {
            size_t at = random() % damaged.size();
            char byte = random() % 2 ? favourites[random() % favourites.size()] : static_cast<char>(random());
            switch (random() % 4)
            {
            case 0: damaged.erase(at, 1 + random() % 8); break;
            case 1: damaged.insert(at, 1 + random() % 4, byte); break;
            default: damaged[at] = byte; break;
            }
        }
        resetRecording();
        {
            LoadedMesh loaded(load, damaged);
            if (loaded.result)
                expectSound(loaded.mesh);
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << "round " << round;
            ASSERT_LT(recorded.peakBytes, 4u << 20) << "round " << round;
        }
        ASSERT_EQ(recorded.liveBlocks, blocks) << "round " << round;
    }
}

// Refuses every allocation of the load in turn, alone and with all later ones. The load fails, and the caller can free
// the mesh.
inline void loadWithRefusals(Loader load, const std::string& bytes)
{
    resetRecording();
    int blocks = recorded.liveBlocks;
    int needed;
    {
        LoadedMesh loaded(load, bytes);
        ASSERT_EQ(loaded.result, 1);
        needed = recorded.allocations;
    }
    for (int n = 2; n <= needed; ++n) // the first is the mesh itself
    {
        for (int onlyOne = 0; onlyOne < 2; ++onlyOne)
        {
            resetRecording();
            (onlyOne ? recorded.refuseOnly : recorded.refuseFrom) = n;
            {
                LoadedMesh loaded(load, bytes);
                ASSERT_EQ(loaded.result, 0) << "refused " << n;
                ASSERT_FALSE(recorded.boxes.empty());
                ASSERT_EQ(recorded.boxes.front(), (RecordedBox{ "Out of memory", "(default)", iconStop }));
                for (const RecordedProgress& bar : recorded.progress)
                    ASSERT_TRUE(bar.closed);
            }
            ASSERT_EQ(recorded.liveBlocks, blocks) << "refused " << n;
        }
    }
    resetRecording();
}

// Refuses every allocation of the load together with all later ones. The reader's first `silent` allocations fail
// without a message. After them it shows "Out of memory" and then its own refusal.
inline void loadWithEveryRefusal(Loader load, const std::string& bytes, int silent, const RecordedBox& refusal)
{
    ScratchFile file(bytes);
    int blocks = recorded.liveBlocks;
    bool finished = false;
    for (int n = 1; !finished && n < 100; ++n)
    {
        memoryTable = {};
        Mesh* mesh = createMesh("prop");
        resetRecording();
        recorded.refuseFrom = n;
        int ok = load(mesh, file.path.c_str());
        finished = ok && recorded.allocations < n;
        if (!finished)
        {
            bool wordless = n <= silent;
            EXPECT_EQ(ok, 0) << n;
            EXPECT_EQ(recorded.boxes,
                      wordless ? std::vector<RecordedBox>{} : (std::vector<RecordedBox>{ outOfMemoryBox, refusal }))
                << n;
            EXPECT_EQ(recorded.progress.empty(), wordless) << n;
        }
        recorded.refuseFrom = 0;
        freeMesh(mesh);
        EXPECT_EQ(recorded.liveBlocks, blocks) << n;
    }
    EXPECT_TRUE(finished);
}
