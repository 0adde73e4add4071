// import/common/lines.h - text files, a line or a character at a time
//
// The file comes in blocks; a line is handed out where it lies in the block, terminated in place, so that nothing is
// copied, and has numberPadding readable bytes after it. The bytes before the block's end that belong to an unfinished
// line move to its front when the next one comes.
#pragma once
#include "import/common/numbers.h"

#include <stdint.h>
#include <stdio.h>

constexpr size_t lineBlockBytes = 64 * 1024;

struct LineSource
{
    FILE* file; // the caller's
    int64_t sizeBytes;
    int64_t blockStart; // position in the file of the block's first byte
    size_t next;        // offset in the block of the first byte not handed out
    size_t fill;        // bytes in the block
    int ended;          // the file has no more bytes than the block
    char held;          // the byte at next, while a line's terminator stands in its place
    char* line;         // of nextLine: the line, its line feed included
    size_t lineLength;  // up to the first NUL, which ends a line for everybody who reads it as text
    char block[lineBlockBytes + numberPadding + 1];
};

// Starts at the beginning of a file. sizeBytes is -1 for a file that cannot be measured.
void startLines(LineSource* source, FILE* file);

// Takes the next line: up to and including its line feed, at most limitBytes - 1 bytes (what is left of a longer line
// is the next one). A last line need not have a line feed. Returns 1, or 0 at the end of the file or when it cannot be
// read. The line stays where it is until the next call. limitBytes may not pass lineBlockBytes.
int nextLine(LineSource* source, size_t limitBytes);

// Position in the file of the first byte that has not been handed out.
inline int64_t linePosition(const LineSource* source)
{
    return source->blockStart + static_cast<int64_t>(source->next);
}

// Brings more of the file into the block, in which at most lineBlockBytes - 1 unread bytes may be left.
void refillLines(LineSource* source);

// Sees to it that the block has the next `bytes` bytes, or all that are left; at most lineBlockBytes. Returns how many
// unread bytes it has.
inline size_t fetchBytes(LineSource* source, size_t bytes)
{
    if (source->fill - source->next < bytes)
        refillLines(source);
    return source->fill - source->next;
}

// The bytes to come, when the block has at least so many of them; null when a line is to be taken by nextLine. What has
// been read of them is then given up to `end`. The bytes past the block's end, numberPadding of them, can be read.
inline const char* peekBytes(LineSource* source, size_t bytes)
{
    source->block[source->next] = source->held;
    size_t available = fetchBytes(source, bytes);
    source->held = source->block[source->next];
    return available < bytes ? nullptr : source->block + source->next;
}

inline void takeBytes(LineSource* source, const char* end)
{
    source->next = static_cast<size_t>(end - source->block);
    source->held = *end;
}

// The next byte, or -1 at the end of the file. Bytes and lines do not mix.
inline int nextByte(LineSource* source)
{
    if (fetchBytes(source, 1) == 0)
        return -1;
    return static_cast<unsigned char>(source->block[source->next++]);
}
