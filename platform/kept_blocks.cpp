// platform/kept_blocks.cpp - the list of released blocks
#include "platform/kept_blocks.h"

#include <string.h>

constexpr size_t anyRoom = size_t{ 2 } << 20;    // a block of this size serves any smaller request
constexpr int keptBlockLimit = 8;                // the arrays of a model
constexpr size_t keptRoom = size_t{ 256 } << 20; // of all kept blocks together

struct KeptBlock
{
    void* address;
    size_t sizeBytes;
};

static KeptBlock kept[keptBlockLimit]; // the oldest first
static int keptCount;
static size_t keptBytes;

static void* takeOut(int i)
{
    void* block = kept[i].address;
    keptBytes -= kept[i].sizeBytes;
    --keptCount;
    memmove(&kept[i], &kept[i + 1], static_cast<size_t>(keptCount - i) * sizeof *kept);
    return block;
}

void* takeKeptBlock(size_t sizeBytes)
{
    int best = -1;
    size_t bestBytes = sizeBytes > anyRoom ? 2 * sizeBytes : anyRoom;
    for (int i = 0; i < keptCount; ++i)
    {
        size_t bytes = kept[i].sizeBytes;
        if (bytes < sizeBytes || bytes > bestBytes)
            continue;
        best = i;
        bestBytes = bytes;
    }
    return best < 0 ? nullptr : takeOut(best);
}

void keepBlock(void* block, size_t sizeBytes, void (*release)(void* block))
{
    if (sizeBytes > keptRoom)
        return release(block);
    while (keptCount == keptBlockLimit || keptBytes + sizeBytes > keptRoom)
        dropOldestBlock(release);
    kept[keptCount++] = { block, sizeBytes };
    keptBytes += sizeBytes;
}

bool dropOldestBlock(void (*release)(void* block))
{
    if (keptCount == 0)
        return false;
    release(takeOut(0));
    return true;
}
