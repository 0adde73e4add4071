// model/report.h - what a reader or writer left out or changed, and why a file was not read
//
// Readers and writers accept damaged models silently, because a user in a window looks at the result. A script cannot
// look, so the command line passes a report, and whatever was left out or changed is counted there. A report is only
// written, never asked: the mesh is the same with and without one. Every function ignores a null report.
#pragma once
#include <stddef.h>
#include <stdint.h>

enum ReportKind : uint8_t
{
    // faces and corners
    facesTooManyCorners,
    facesCut,
    facesBadCorners,
    facesTooFewCorners,
    facesRepeatedCorners,
    cornersRepeated,
    facesBeforeVertices,
    facesDegenerate,
    uvIndicesReset,
    // numbers
    valuesZeroed,
    numbersMissing,
    coloursOutOfRange,
    coloursFractional,
    // the text of the file
    linesTooLong,
    lineUnended,
    readingEndedEarly,
    restIgnored,
    // parts of the file
    listsIgnored,
    elementsIgnored,
    entitiesIgnored,
    geometryElsewhere,
    chunksPastParent,
    chunksTooShort,
    // names and what they lead to
    namesCut,
    groupsPastLimit,
    materialsPastLimit,
    materialsMissing,
    librariesIgnored,
    libraryMissing,
    texturesMissing,
    // pictures
    pictureDamaged,
    // written files
    resultUnreadable,
    namesChanged,
    filesReplaced,

    reportKindCount
};

// The stable key of a kind for programs, and its text for people.
const char* reportKey(ReportKind kind);
const char* reportText(ReportKind kind);

struct ReportEntry
{
    int64_t count;     // how often it happened; 0: never
    int64_t firstByte; // where it happened first, from the start of the file; -1: not known
    int64_t firstLine; // the same as a line of text, from 1; 0: not known
    char detail[160];  // more about the first; empty for most
};

constexpr int32_t reportNameLimit = 16; // different names of one report; the others are counted together
constexpr size_t reportNameRoom = 64;

// How many things of one name were left out.
struct ReportName
{
    char name[reportNameRoom];
    int64_t count;
};

// Large enough to be kept out of a small stack. A zero-filled report is empty.
struct Report
{
    ReportEntry entries[reportKindCount];
    ReportName names[reportNameLimit]; // of the kind in namedKind
    int32_t nameCount;
    int64_t otherNames; // things whose names found no place
    ReportKind namedKind;
    bool isText;         // positions lie in lines of text
    char failure[192];   // why nothing was read; empty: it was, or the file did not open
    bool entriesExplain; // the entries are the reason of the failure
    int64_t failureByte; // as in ReportEntry
    int64_t failureLine;
};

// Whether anything has been counted.
bool hasWarnings(const Report& report);

// Count something that happened at a byte of the file, -1 when the place is not known.
void addToReport(Report* report, ReportKind kind, int64_t byte, int64_t count);
inline void note(Report* report, ReportKind kind, int64_t byte, int64_t count = 1)
{
    if (report && count > 0)
        addToReport(report, kind, byte, count);
}

// Counts it, and explains the first one.
__attribute__((format(printf, 4, 5))) void noteDetail(Report* report, ReportKind kind, int64_t byte, const char* format,
                                                      ...);

// Counts things of a name. All calls of one reader have the same kind.
void noteName(Report* report, ReportKind kind, int64_t byte, const char* name, size_t length, int64_t count = 1);

// Sets the reason why a file is not read; the first one stays, because the others follow from it. Returns false for the
// caller to return.
__attribute__((format(printf, 3, 4))) bool failReading(Report* report, int64_t byte, const char* format, ...);

// The same when everything that could be read has been left out: the entries tell the rest.
bool failForLackOf(Report* report, const char* what);
