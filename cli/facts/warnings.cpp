// cli/facts/warnings.cpp - the words of warnings and causes
#include "cli/facts/warnings.h"

#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/refused_memory.h"

#include <errno.h>
#include <string.h>

static void append(std::string* list, const char* between, const std::string& text)
{
    if (!text.empty())
        *list += (list->empty() ? "" : between) + text;
}

// "line 70", "byte 128", or nothing.
static std::string placeText(int64_t byte, int64_t line)
{
    if (line > 0)
        return "line " + std::to_string(line);
    return byte >= 0 ? "byte " + std::to_string(byte) : "";
}

// "812 LINE, 3 INSERT, 5 others"
static std::string namesText(const Report& report)
{
    std::string text;
    for (int32_t i = 0; i < report.nameCount; ++i)
        append(&text, ", ", std::to_string(report.names[i].count) + " " + report.names[i].name);
    if (report.otherNames > 0)
        append(&text, ", ", std::to_string(report.otherNames) + " others");
    return text;
}

static bool hasNames(const Report& report, ReportKind kind)
{
    return report.nameCount > 0 && report.namedKind == kind;
}

static std::string firstPlace(const ReportEntry& entry)
{
    std::string place = placeText(entry.firstByte, entry.firstLine);
    return place.empty() || entry.count == 1 ? place : "first at " + place;
}

std::string warningText(const Report& report, ReportKind kind)
{
    const ReportEntry& entry = report.entries[kind];
    std::string more = entry.detail;
    if (hasNames(report, kind))
        append(&more, "; ", namesText(report));
    append(&more, "; ", firstPlace(entry));
    std::string text = std::string(reportText(kind)) + ": " + std::to_string(entry.count);
    return more.empty() ? text : text + " (" + more + ")";
}

void printWarnings(const std::string& path, const Report& report, bool quiet)
{
    for (int kind = 0; kind < reportKindCount && !quiet; ++kind)
    {
        if (report.entries[kind].count > 0)
            explainFailure(path.c_str(), ("warning: " + warningText(report, static_cast<ReportKind>(kind))).c_str());
    }
}

// What was left out, where that is the reason that nothing was left.
static std::string explanation(const Report& report)
{
    std::string text;
    for (int i = 0; i < reportKindCount; ++i)
    {
        auto kind = static_cast<ReportKind>(i);
        const ReportEntry& entry = report.entries[i];
        if (entry.count == 0)
            continue;
        std::string one = reportText(kind);
        if (hasNames(report, kind))
            one = namesText(report);
        else if (entry.count > 1)
            one += ": " + std::to_string(entry.count);
        append(&one, ", ", hasNames(report, kind) ? "" : firstPlace(entry));
        append(&text, "; ", one);
    }
    return text;
}

static std::string causeInSystem(const std::string& path, bool outOfMemory)
{
    errno = 0;
    FILE* file = openFile(path.c_str(), "rb");
    if (!file)
        return errno ? strerror(errno) : "the file does not open";
    bool failed = fgetc(file) == EOF && ferror(file);
    int reason = errno;
    fclose(file);
    if (failed && reason)
        return strerror(reason);
    return outOfMemory || refusedMemoryUnreported() ? "out of memory" : "the file cannot be read";
}

std::string causeOf(const Report& report, const std::string& path, bool outOfMemory)
{
    if (!report.failure[0])
        return causeInSystem(path, outOfMemory);
    std::string text = report.failure;
    if (report.entriesExplain)
        append(&text, ": ", explanation(report));
    append(&text, ", ", placeText(report.failureByte, report.failureLine));
    return text;
}
