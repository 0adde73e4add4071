// export/text_writer.h - text through one block into a file
//
// Every writer fills a block of its own and hands it to the file when it is full, so that a number costs its digits and
// nothing else. A failed write is remembered: nothing more is written, and finishText returns 0.
#pragma once
#include "export/number_format.h"
#include "export/output_file.h"

#include <stddef.h>
#include <stdio.h>

constexpr size_t textBlockRoom = 64 * 1024;
constexpr size_t textLineRoom = 512; // bytes that one call of textRoom gives

// 64 KiB: the tests keep it on the stack, writeTextOutput does not.
struct TextWriter
{
    FILE* file; // the caller's, open for binary writing
    int failed;
    size_t usedBytes;
    char block[textBlockRoom + numberSlack];
};

// Starts a text in an open file. The file loses its own buffer: the writer's block is the only one.
void startText(TextWriter* writer, FILE* file);

// Writes what is left to the file, which stays open. Returns 1 when everything was written, else 0.
int finishText(TextWriter* writer);

void flushText(TextWriter* writer);

// Where the next bytes go: there is room for textLineRoom bytes, and numberSlack more may be overwritten. textWritten
// takes the end of what was put there.
inline char* textRoom(TextWriter* writer)
{
    if (writer->usedBytes + textLineRoom > textBlockRoom)
        flushText(writer);
    return writer->block + writer->usedBytes;
}

inline void textWritten(TextWriter* writer, const char* end)
{
    writer->usedBytes = static_cast<size_t>(end - writer->block);
}

// Ends a line at out and returns the end of that.
inline char* putLineEnd(char* out)
{
    out[0] = '\r';
    out[1] = '\n';
    return out + 2;
}

// Writes any number of bytes.
void writeBytes(TextWriter* writer, const void* bytes, size_t count);

// Writes a line and its end. In the format "%s" is a string, "%d" an int, "%f" a float, "%%" a percent sign.
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
void writeLine(TextWriter* writer, const char* format, ...);

void writeBlankLine(TextWriter* writer);

// Opens an output, has its text written and closes it. Returns 1; or 0 when the file could not be created or not be
// written whole, and after "Out of memory".
int writeTextOutput(OutputFile* output, const std::string& target, void (*writeText)(TextWriter* writer, void* context),
                    void* context);
