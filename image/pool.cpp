// image/pool.cpp - a chain of blocks, each behind a link word of 8 bytes
#include "image/pool.h"

#include <stdlib.h>

constexpr uint64_t linkBytes = 8;

union PoolLink
{
    PoolLink* next;
    uint64_t room;
};
static_assert(sizeof(PoolLink) == linkBytes);

void* poolAlloc(JpegState* state, uint64_t sizeBytes)
{
    if (sizeBytes > PTRDIFF_MAX - 2 * linkBytes)
        return nullptr;
    uint64_t rounded = (sizeBytes + 7) & ~uint64_t{ 7 };
    auto* block = static_cast<PoolLink*>(state->heap.zeroed(1, static_cast<size_t>(rounded + linkBytes)));
    if (!block)
        return nullptr;
    block->next = state->pool;
    state->pool = block;
    return block + 1;
}

void emptyPool(JpegState* state)
{
    while (state->pool)
    {
        PoolLink* next = state->pool->next;
        free(state->pool);
        state->pool = next;
    }
}
