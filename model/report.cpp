// model/report.cpp - the kinds of a report, and adding to it
#include "model/report.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

struct KindTexts
{
    ReportKind kind;
    const char* key; // programs depend on it, so it never changes
    const char* text;
};

static constexpr KindTexts kindTexts[] = {
    { facesTooManyCorners, "facesTooManyCorners", "faces left out for more than 32 corners" },
    { facesCut, "facesCut", "faces cut to their first corners" },
    { facesBadCorners, "facesBadCorners", "faces left out for a corner that is not a vertex" },
    { facesTooFewCorners, "facesTooFewCorners", "faces left out for too few corners" },
    { facesRepeatedCorners, "facesRepeatedCorners", "faces left out for repeated corners" },
    { cornersRepeated, "cornersRepeated", "faces from which repeated corners were left out" },
    { facesBeforeVertices, "facesBeforeVertices", "faces left out because they come before the vertices" },
    { facesDegenerate, "facesDegenerate", "faces without area" },
    { uvIndicesReset, "uvIndicesReset", "texture indices set to 0" },
    { valuesZeroed, "valuesZeroed", "positions and values set to 0, not finite or 1048576 and more" },
    { numbersMissing, "numbersMissing", "positions and values set to 0, a number is missing" },
    { coloursOutOfRange, "coloursOutOfRange", "colours outside 0..255, cut to 8 bits" },
    { coloursFractional, "coloursFractional", "colours of type float, read as whole numbers 0..255" },
    { linesTooLong, "linesTooLong", "lines too long, the rest read as another line" },
    { lineUnended, "lineUnended", "last line left out, it has no line end" },
    { readingEndedEarly, "readingEndedEarly", "reading ended early" },
    { restIgnored, "restIgnored", "rest of the file passed over" },
    { listsIgnored, "listsIgnored", "lists on the faces passed over" },
    { elementsIgnored, "elementsIgnored", "elements passed over" },
    { entitiesIgnored, "entitiesIgnored", "entities passed over" },
    { geometryElsewhere, "geometryElsewhere", "geometry in other files not read" },
    { chunksPastParent, "chunksPastParent", "chunks that reach past their parent" },
    { chunksTooShort, "chunksTooShort", "chunks shorter than what is read from them" },
    { namesCut, "namesCut", "names cut" },
    { groupsPastLimit, "groupsPastLimit", "groups past 512 left out" },
    { materialsPastLimit, "materialsPastLimit", "materials past 512 left out" },
    { materialsMissing, "materialsMissing", "materials missing from the file, material 0 used" },
    { librariesIgnored, "librariesIgnored", "material libraries passed over, only the last one is read" },
    { libraryMissing, "libraryMissing", "material library not read" },
    { texturesMissing, "texturesMissing", "textures missing" },
    { pictureDamaged, "pictureDamaged", "damaged parts of the picture" },
    { resultUnreadable, "resultUnreadable", "the written file could not be read again" },
    { namesChanged, "namesChanged", "names changed for the format" },
    { filesReplaced, "filesReplaced", "files replaced" },
};

static constexpr bool kindsAreInOrder()
{
    for (size_t i = 0; i < sizeof kindTexts / sizeof kindTexts[0]; ++i)
    {
        if (kindTexts[i].kind != i)
            return false;
    }
    return sizeof kindTexts / sizeof kindTexts[0] == reportKindCount;
}
static_assert(kindsAreInOrder());

const char* reportKey(ReportKind kind)
{
    return kindTexts[kind].key;
}

const char* reportText(ReportKind kind)
{
    return kindTexts[kind].text;
}

bool hasWarnings(const Report& report)
{
    for (const ReportEntry& entry : report.entries)
    {
        if (entry.count > 0)
            return true;
    }
    return false;
}

void addToReport(Report* report, ReportKind kind, int64_t byte, int64_t count)
{
    ReportEntry* entry = &report->entries[kind];
    if (entry->count == 0)
        entry->firstByte = byte;
    entry->count += count;
}

void noteDetail(Report* report, ReportKind kind, int64_t byte, const char* format, ...)
{
    if (!report)
        return;
    ReportEntry* entry = &report->entries[kind];
    if (entry->count == 0)
    {
        va_list arguments;
        va_start(arguments, format);
        vsnprintf(entry->detail, sizeof entry->detail, format, arguments);
        va_end(arguments);
    }
    addToReport(report, kind, byte, 1);
}

void noteName(Report* report, ReportKind kind, int64_t byte, const char* name, size_t length, int64_t count)
{
    if (!report || count <= 0)
        return;
    addToReport(report, kind, byte, count);
    report->namedKind = kind;
    length = length < reportNameRoom ? length : reportNameRoom - 1;
    for (int32_t i = 0; i < report->nameCount; ++i)
    {
        ReportName* known = &report->names[i];
        if (strncmp(known->name, name, length) == 0 && known->name[length] == 0)
        {
            known->count += count;
            return;
        }
    }
    if (report->nameCount == reportNameLimit)
    {
        report->otherNames += count;
        return;
    }
    ReportName* added = &report->names[report->nameCount++];
    memcpy(added->name, name, length);
    added->name[length] = 0;
    added->count = count;
}

bool failReading(Report* report, int64_t byte, const char* format, ...)
{
    if (!report || report->failure[0])
        return false;
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(report->failure, sizeof report->failure, format, arguments);
    va_end(arguments);
    report->failureByte = byte;
    return false;
}

bool failForLackOf(Report* report, const char* what)
{
    if (report && !report->failure[0])
        report->entriesExplain = true;
    return failReading(report, -1, "%s", what);
}
