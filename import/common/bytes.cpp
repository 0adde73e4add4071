// import/common/bytes.cpp - filling the block, skipping and seeking
#include "import/common/bytes.h"

#include "platform/files.h"

void startBytes(ByteSource* source, FILE* file, int64_t sizeBytes)
{
    source->file = file;
    source->sizeBytes = sizeBytes;
    source->blockStart = source->runStart = 0;
    source->at = source->fill = 0;
    source->takenBytes = source->fetchedBytes = 0;
    source->bad = 0;
}

void refillBytes(ByteSource* source)
{
    size_t unread = source->fill - source->at;
    memmove(source->block, source->block + source->at, unread);
    source->blockStart += static_cast<int64_t>(source->at);
    source->at = 0;
    size_t got = fread(source->block + unread, 1, byteBlockBytes - unread, source->file);
    source->fill = unread + got;
    source->fetchedBytes += static_cast<int64_t>(got);
    memset(source->block + source->fill, 0, bytePadding);
}

const uint8_t* takeRecords(ByteSource* source, size_t recordBytes, int64_t wanted, int64_t* count)
{
    size_t held = source->bad ? 0 : source->fill - source->at;
    if (!source->bad && held < recordBytes)
        held = holdBytes(source, recordBytes);
    auto whole = static_cast<int64_t>(held / recordBytes);
    *count = whole < wanted ? whole : wanted;
    if (*count == 0)
    {
        source->bad = 1;
        return nullptr;
    }
    return takeBytes(source, static_cast<size_t>(*count) * recordBytes);
}

// Whether the cursor has gone over the file again too often.
static bool overspent(const ByteSource* source)
{
    constexpr int64_t fewBytes = int64_t{ 4 } * byteBlockBytes;
    return source->takenBytes > 2 * source->sizeBytes || source->fetchedBytes > 4 * source->sizeBytes + fewBytes;
}

void seekBytes(ByteSource* source, int64_t position)
{
    if (source->bad)
        return;
    source->takenBytes += bytePosition(source) - source->runStart;
    source->runStart = position;
    int64_t inBlock = position - source->blockStart;
    if (inBlock >= 0 && inBlock <= static_cast<int64_t>(source->fill))
        source->at = static_cast<size_t>(inBlock);
    else
    {
        // Past the end there is nothing to put the file at: reads there fail, and a seek back starts over.
        int64_t reachable = position < source->sizeBytes ? position : source->sizeBytes;
        if (!seekFile(source->file, reachable))
            source->bad = 1;
        source->blockStart = position;
        source->at = source->fill = 0;
    }
    if (overspent(source))
        source->bad = 1;
}

void skipBytes(ByteSource* source, int64_t bytes)
{
    if (bytes > bytesLeft(source))
    {
        source->bad = 1;
        return;
    }
    auto held = static_cast<int64_t>(source->fill - source->at);
    if (bytes <= held)
        source->at += static_cast<size_t>(bytes);
    else
        seekBytes(source, bytePosition(source) + bytes);
}
