// cli/output.h - writing standard output in large blocks and noticing when that fails
#pragma once
#include <stdint.h>
#include <string>

// Text for standard output. A write that fails is remembered until finishOutput.
struct Output
{
    std::string pending;
    int64_t lines = 0; // ended so far
    bool failed = false;
    bool closed = false; // because nobody reads any more
};

// Writes the pending text.
void flushOutput(Output* out);

// Append to the pending text.
void put(Output* out, const char* text);
void putInteger(Output* out, int64_t value);
void putHex(Output* out, uint32_t value); // 8 lower-case digits
void putFloat(Output* out, float value);  // its 32 bits as hex

// Appends a name in double quotes. A double quote, a backslash and every byte outside 32..126 become \xHH.
void putName(Output* out, const char* name);

// The same for people: a backslash stays as it is.
void putReadableName(Output* out, const char* name);

// Ends a line, and writes the pending text when it is large enough.
void endLine(Output* out);

// Writes the pending text through to whoever reads it.
void passOnOutput(Output* out);

// Writes the rest. Returns 1, or 0 when any write has failed, after a line on standard error unless the reader of a
// pipe has closed it.
int finishOutput(Output* out);
