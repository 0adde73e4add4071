// image/source.cpp - the byte source: a block of memory or a file behind a buffer
#include "image/source.h"

#include "platform/files.h"

JpegSource jpegSource;
int progressiveRefused;

// What an exhausted source reads as. It has its own place: the block of memory may be read-only.
static const uint8_t endOfImage[2] = { 0xFF, 0xD9 };

void setMemorySource(const uint8_t* bytes, size_t size)
{
    jpegSource = { bytes, size, nullptr, bytes, size, static_cast<int64_t>(size) };
    progressiveRefused = 0;
    emptyJpegPool();
}

void setFileSource(FILE* file, uint8_t* buffer)
{
    jpegSource = { nullptr, 0, file, buffer, fileBufferBytes, measureFile(file) };
    progressiveRefused = 0;
    emptyJpegPool();
}

int refillSource()
{
    size_t got = 0;
    if (jpegSource.file)
        got = fread(const_cast<uint8_t*>(jpegSource.buffer), 1, jpegSource.bufferBytes, jpegSource.file);
    if (got == 0)
    {
        jpegSource.next = endOfImage;
        jpegSource.bytesLeft = sizeof endOfImage;
        return 0;
    }
    jpegSource.next = jpegSource.buffer;
    jpegSource.bytesLeft = got;
    return 1;
}

int32_t readByte()
{
    if (jpegSource.bytesLeft == 0)
        refillSource();
    --jpegSource.bytesLeft;
    return *jpegSource.next++;
}

int32_t readWord()
{
    int32_t high = readByte();
    return high << 8 | readByte();
}

int skipBytes(int32_t n)
{
    if (n < 1)
        return 1;
    size_t toSkip = static_cast<size_t>(n);
    while (toSkip > jpegSource.bytesLeft)
    {
        toSkip -= jpegSource.bytesLeft;
        if (!refillSource())
            return 0;
    }
    jpegSource.next += toSkip;
    jpegSource.bytesLeft -= toSkip;
    return 1;
}
