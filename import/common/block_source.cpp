// import/common/block_source.cpp - fetching blocks and changing the position in the file
#include "import/common/block_source.h"

#include "platform/files.h"

#include <string.h>

// Starts an empty block at a position of the file.
static void emptyBlock(BlockSource* source, int64_t position)
{
    source->blockStart = position;
    source->at = source->end = source->block;
    source->ended = false;
}

void startBlocks(BlockSource* source, FILE* file, size_t blockBytes)
{
    setvbuf(file, nullptr, _IONBF, 0); // the blocks are large enough without a buffer of the library
    source->file = file;
    source->sizeBytes = measureFile(file);
    source->fetchedBytes = 0;
    source->blockBytes = blockBytes;
    auto front = reinterpret_cast<uintptr_t>(source->storage) + blockFrontRoom;
    source->block = source->storage + blockFrontRoom + (blockAlignment - front % blockAlignment) % blockAlignment;
    memset(source->block - blockFrontRoom, 0, blockFrontRoom);
    emptyBlock(source, 0);
    memset(source->end, 0, blockPaddingRoom);
}

void fetchBlock(BlockSource* source)
{
    if (source->ended)
        return;
    char* block = source->block;
    size_t unread = heldBytes(source), wanted = source->blockBytes - unread;
    memmove(block, source->at, unread);
    source->blockStart += source->at - block;
    size_t came = fread(block + unread, 1, wanted, source->file);
    source->fetchedBytes += static_cast<int64_t>(came);
    source->at = block;
    source->end = block + unread + came;
    source->ended = came < wanted;
    memset(source->end, 0, blockPaddingRoom);
}

bool moveBlocks(BlockSource* source, int64_t position)
{
    int64_t inBlock = position - source->blockStart;
    if (inBlock >= 0 && inBlock <= source->end - source->block)
    {
        source->at = source->block + inBlock;
        return true;
    }
    // The file is never put past its end. Reads there find nothing, and a later move back fetches a new block.
    int64_t reachable = position < source->sizeBytes ? position : source->sizeBytes;
    emptyBlock(source, position);
    return seekFile(source->file, reachable);
}
