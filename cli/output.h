// cli/output.h - standard output in large blocks that notices when it is not taken
#pragma once
#include <stdint.h>
#include <string>

// Text for standard output; finishOutput says whether all of it was taken.
struct Output
{
    std::string pending;
    bool failed = false;
};

// Hands what is pending to standard output; a failure is remembered.
void flushOutput(Output* out);

// Append to the line.
void put(Output* out, const char* text);
void putInteger(Output* out, int64_t value);
void putHex(Output* out, uint32_t value); // 8 lower-case digits
void putFloat(Output* out, float value);  // its 32 bits as hex

// A name in double quotes; a double quote, a backslash and every byte outside 32..126 as \xHH.
void putName(Output* out, const char* name);

// The same for people: a backslash stands as it is.
void putReadableName(Output* out, const char* name);

// Ends a line; writes when enough has come together.
void endLine(Output* out);

// Returns 1, or 0 after a line on standard error when the output was not taken whole.
int finishOutput(Output* out);
