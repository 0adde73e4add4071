// export/text_writer.cpp - blocks into a file, and lines that are written once rather than a million times
#include "export/text_writer.h"
#include "model/memory.h"
#include "platform/pages.h"

#include <assert.h>
#include <stdarg.h>

void startText(TextWriter* writer, FILE* file)
{
    writer->file = file;
    writer->failed = 0;
    writer->usedBytes = 0;
    setvbuf(file, nullptr, _IONBF, 0); // the block here is the only one
}

void flushText(TextWriter* writer)
{
    if (!writer->failed && writer->usedBytes > 0 &&
        fwrite(writer->block, 1, writer->usedBytes, writer->file) != writer->usedBytes)
        writer->failed = 1;
    writer->usedBytes = 0;
}

int finishText(TextWriter* writer)
{
    flushText(writer);
    if (!writer->failed && fflush(writer->file) != 0)
        writer->failed = 1;
    return !writer->failed;
}

void writeBytes(TextWriter* writer, const void* bytes, size_t count)
{
    const char* from = static_cast<const char*>(bytes);
    while (count > 0)
    {
        if (writer->usedBytes == textBlockRoom)
            flushText(writer);
        size_t room = textBlockRoom - writer->usedBytes;
        size_t part = count < room ? count : room;
        memcpy(writer->block + writer->usedBytes, from, part);
        writer->usedBytes += part;
        from += part;
        count -= part;
    }
}

static void writeField(TextWriter* writer, char kind, va_list* arguments)
{
    if (kind == 's')
    {
        const char* text = va_arg(*arguments, const char*);
        writeBytes(writer, text, strlen(text));
        return;
    }
    char* out = textRoom(writer);
    switch (kind)
    {
    case 'd': out = formatInt(out, va_arg(*arguments, int)); break;
    case 'f': out = formatPlain(out, static_cast<float>(va_arg(*arguments, double))); break;
    case '%': *out++ = '%'; break;
    default: assert(0); // a format that is not known
    }
    textWritten(writer, out);
}

void writeBlankLine(TextWriter* writer)
{
    textWritten(writer, putLineEnd(textRoom(writer)));
}

void writeLine(TextWriter* writer, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    while (*format)
    {
        size_t plain = strcspn(format, "%");
        writeBytes(writer, format, plain);
        format += plain;
        if (*format)
        {
            writeField(writer, format[1], &arguments);
            format += 2;
        }
    }
    va_end(arguments);
    writeBlankLine(writer);
}

int writeTextOutput(OutputFile* output, const std::string& target, void (*writeText)(TextWriter* writer, void* context),
                    void* context)
{
    auto* writer = static_cast<TextWriter*>(allocatePages(sizeof(TextWriter))); // too large for a small stack
    if (!writer)
        return reportOutOfMemory();
    int ok = openOutput(output, target);
    if (ok)
    {
        startText(writer, output->file);
        writeText(writer, context);
        ok = closeOutput(output, finishText(writer) != 0);
    }
    releasePages(writer);
    return ok;
}
