// import/common/report_lines.cpp - from bytes to lines
#include "import/common/report_lines.h"

#include "import/common/characters.h"
#include "platform/files.h"

#include <algorithm>

struct Place
{
    int64_t byte;
    int64_t* line;
};

static int gatherPlaces(Report* report, Place (&places)[reportKindCount + 1])
{
    int count = 0;
    for (ReportEntry& entry : report->entries)
    {
        if (entry.count > 0 && entry.firstByte >= 0)
            places[count++] = { entry.firstByte, &entry.firstLine };
    }
    if (report->failure[0] && report->failureByte >= 0)
        places[count++] = { report->failureByte, &report->failureLine };
    std::sort(places, places + count, [](const Place& a, const Place& b) { return a.byte < b.byte; });
    return count;
}

// A byte belongs to the line whose line end comes at or after it. The LF of CR LF counts for both, so that a position
// between them is still in the line that they end.
static void countLines(FILE* file, const Place* places, int count)
{
    char block[4096];
    int64_t at = 0, line = 1;
    char before = 0;
    for (size_t came; count > 0 && (came = fread(block, 1, sizeof block, file)) > 0;)
    {
        for (size_t i = 0; i < came; ++i, ++at)
        {
            if (isLineEnd(before) && !(before == '\r' && block[i] == '\n'))
                ++line;
            before = block[i];
            for (; count > 0 && places->byte <= at; ++places, --count)
                *places->line = line;
        }
    }
    for (; count > 0; ++places, --count)
        *places->line = line;
}

void locateReport(Report* report, const char* path)
{
    Place places[reportKindCount + 1];
    int count = report->isText ? gatherPlaces(report, places) : 0;
    FILE* file = count > 0 ? openFile(path, "rb") : nullptr;
    if (!file)
        return;
    countLines(file, places, count);
    fclose(file);
}
