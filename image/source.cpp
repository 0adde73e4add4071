// image/source.cpp - the byte source: a block of memory, or a file behind a buffer
#include "image/source.h"

#include "platform/files.h"

#include <string.h>

// What an exhausted source reads as. It has its own place because the block of memory may be read-only.
static const uint8_t endOfImage[2] = { 0xFF, 0xD9 };

JpegSource memorySource(const uint8_t* bytes, size_t size)
{
    return { bytes, size, nullptr, nullptr, static_cast<int64_t>(size) };
}

JpegSource fileSource(FILE* file, uint8_t* buffer)
{
    return { nullptr, 0, file, buffer, measureFile(file) };
}

bool refillSource(JpegSource* source)
{
    size_t got = source->file ? fread(source->buffer, 1, fileBufferRoom, source->file) : 0;
    source->next = got > 0 ? source->buffer : endOfImage;
    source->bytesLeft = got > 0 ? got : sizeof endOfImage;
    return got > 0;
}

bool hasRunOut(const JpegSource& source)
{
    return source.next >= endOfImage && source.next <= endOfImage + sizeof endOfImage;
}

int64_t bytesRead(const JpegSource& source)
{
    if (hasRunOut(source))
        return source.totalBytes;
    int64_t taken = source.file ? filePosition(source.file) : source.totalBytes;
    return taken - static_cast<int64_t>(source.bytesLeft);
}

SourcePlace placeOf(const JpegSource& source)
{
    SourcePlace place = { source.next, source.bytesLeft, 0, {} };
    if (source.file)
    {
        place.filePosition = filePosition(source.file);
        memcpy(place.buffer, source.buffer, fileBufferRoom);
    }
    return place;
}

bool returnTo(JpegSource* source, const SourcePlace& place)
{
    source->next = place.next;
    source->bytesLeft = place.bytesLeft;
    if (!source->file)
        return true;
    memcpy(source->buffer, place.buffer, fileBufferRoom);
    return seekFile(source->file, place.filePosition) != 0;
}

int32_t readByte(JpegSource* source)
{
    if (source->bytesLeft == 0)
        refillSource(source);
    --source->bytesLeft;
    return *source->next++;
}

int32_t readWord(JpegSource* source)
{
    int32_t high = readByte(source);
    return high << 8 | readByte(source);
}

bool skipBytes(JpegSource* source, int32_t n)
{
    if (n < 1)
        return true;
    size_t toSkip = static_cast<size_t>(n);
    while (toSkip > source->bytesLeft)
    {
        toSkip -= source->bytesLeft;
        if (!refillSource(source))
            return false;
    }
    source->next += toSkip;
    source->bytesLeft -= toSkip;
    return true;
}

int32_t findMarker(JpegSource* source, int64_t* skipped)
{
    for (int64_t other = 0;;)
    {
        while (readByte(source) != 0xFF)
            ++other;
        int32_t code = readByte(source);
        while (code == 0xFF)
            code = readByte(source);
        if (skipped)
            *skipped = other;
        if (code != 0)
            return code;
    }
}
