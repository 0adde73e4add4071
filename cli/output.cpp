// cli/output.cpp - formatting text and writing it to standard output in blocks
#include "cli/output.h"

#include "platform/files.h"

#include <stdio.h>
#include <string.h>
#include <charconv>

constexpr size_t blockBytes = size_t{ 1 } << 16;

static void noteFailure(Output* out)
{
    out->closed |= causeOfFailure() == EPIPE;
    out->failed = true;
}

void flushOutput(Output* out)
{
    if (fwrite(out->pending.data(), 1, out->pending.size(), stdout) != out->pending.size())
        noteFailure(out);
    out->pending.clear();
}

void put(Output* out, const char* text)
{
    out->pending += text;
}

void putInteger(Output* out, int64_t value)
{
    char digits[24];
    out->pending.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void putHex(Output* out, uint32_t value)
{
    for (int shift = 28; shift >= 0; shift -= 4)
        out->pending += "0123456789abcdef"[(value >> shift) & 15];
}

void putFloat(Output* out, float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    putHex(out, bits);
}

static void putQuoted(Output* out, const char* name, const char* escaped)
{
    out->pending += '"';
    for (; *name; ++name)
    {
        auto byte = static_cast<unsigned char>(*name);
        if (byte >= 32 && byte <= 126 && !strchr(escaped, *name))
        {
            out->pending += *name;
            continue;
        }
        out->pending += "\\x";
        out->pending += "0123456789abcdef"[byte >> 4];
        out->pending += "0123456789abcdef"[byte & 15];
    }
    out->pending += '"';
}

void putName(Output* out, const char* name)
{
    putQuoted(out, name, "\"\\");
}

void putReadableName(Output* out, const char* name)
{
    putQuoted(out, name, "\"");
}

void endLine(Output* out)
{
    out->pending += '\n';
    ++out->lines;
    if (out->pending.size() >= blockBytes)
        flushOutput(out);
}

void passOnOutput(Output* out)
{
    flushOutput(out);
    if (fflush(stdout) != 0)
        noteFailure(out);
}

int finishOutput(Output* out)
{
    passOnOutput(out);
    if (out->failed && !out->closed) // who closes a pipe has read enough
        fputs("kbx: standard output could not be written\n", stderr);
    return !out->failed;
}
