// import/common/lines.cpp - text files, a line or a character at a time
#include "import/common/lines.h"

#include "platform/files.h"

#include <string.h>

void startLines(LineSource* source, FILE* file)
{
    setvbuf(file, nullptr, _IONBF, 0); // the blocks are large enough
    source->file = file;
    source->sizeBytes = measureFile(file);
    source->blockStart = 0;
    source->next = 0;
    source->fill = 0;
    source->ended = 0;
    source->held = 0;
    source->line = source->block;
    source->lineLength = 0;
    memset(source->block, 0, sizeof source->block);
}

void refillLines(LineSource* source)
{
    if (source->ended)
        return;
    size_t kept = source->fill - source->next;
    memmove(source->block, source->block + source->next, kept);
    source->blockStart += static_cast<int64_t>(source->next);
    source->next = 0;
    size_t wanted = lineBlockBytes - kept;
    size_t got = fread(source->block + kept, 1, wanted, source->file);
    source->fill = kept + got;
    source->ended = got < wanted;
    source->block[source->fill] = 0; // what is read past the end is no number
}

int nextLine(LineSource* source, size_t limitBytes)
{
    size_t most = limitBytes - 1;
    source->block[source->next] = source->held;
    size_t available = fetchBytes(source, most);
    if (available == 0)
        return 0;
    if (most > available)
        most = available;

    char* begin = source->block + source->next;
    auto* lineFeed = static_cast<char*>(memchr(begin, '\n', most));
    size_t length = lineFeed ? static_cast<size_t>(lineFeed - begin) + 1 : most;
    source->next += length;
    source->held = source->block[source->next];
    source->block[source->next] = 0;
    source->line = begin;
    source->lineLength = strlen(begin);
    return 1;
}
