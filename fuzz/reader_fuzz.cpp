// fuzz/reader_fuzz.cpp - gives a reader any bytes: it refuses them with a reason, or makes a sound mesh; and its report
// fits the file
#include READER_HEADER
#include "cli/facts/warnings.h"
#include "fuzz/fuzzing.h"
#include "fuzz/memory_files.h"
#include "import/common/report_lines.h"
#include "model/mesh_copy.h"
#include "tests/recording/recording.h"

#include <stdio.h>
#include <stdlib.h>

constexpr size_t bytesPerInputByte = 64;
constexpr size_t bytesFree = size_t{ 64 } << 20;
constexpr size_t compareEvery = 4; // sizes of inputs that are read without a report, too

// The readers, with the options that some of them have.
[[maybe_unused]] static int read(int (*load)(Mesh*, const char*, Report*), Mesh* mesh, const char* path, Report* report)
{
    return load(mesh, path, report);
}

[[maybe_unused]] static int read(int (*load)(Mesh*, const char*, Report*, bool), Mesh* mesh, const char* path,
                                 Report* report)
{
    return load(mesh, path, report, true);
}

[[maybe_unused]] static int read(int (*load)(Mesh*, const char*, bool, Report*, bool), Mesh* mesh, const char* path,
                                 Report* report)
{
    return load(mesh, path, true, report, true);
}

[[maybe_unused]] static int read(int (*load)(Mesh*, const char*, const char*, Report*, bool), Mesh* mesh,
                                 const char* path, Report* report)
{
    return load(mesh, path, nullptr, report, true);
}

static void expect(bool holds, const char* what)
{
    if (holds)
        return;
    fprintf(stderr, "the report: %s\n", what);
    abort();
}

static void checkPlace(int64_t byte, int64_t line, int64_t size)
{
    expect(byte >= -1 && byte <= size, "a position outside of the file");
    expect(line >= 0 && line <= size + 1, "a line that the file does not have");
}

static void checkReport(Report* report, bool ok, const char* path, size_t size)
{
    expect((report->failure[0] != 0) == !ok, "a reason that does not fit the result");
    locateReport(report, path);
    checkPlace(report->failureByte, report->failureLine, static_cast<int64_t>(size));
    for (int i = 0; i < reportKindCount; ++i)
    {
        const ReportEntry& entry = report->entries[i];
        expect(entry.count >= 0, "a negative count");
        if (entry.count == 0)
            continue;
        checkPlace(entry.firstByte, entry.firstLine, static_cast<int64_t>(size));
        expect(!warningText(*report, static_cast<ReportKind>(i)).empty(), "a kind without words");
    }
    expect(ok || !causeOf(*report, path, false).empty(), "a failure without words");
}

static void compareWithoutReport(const Mesh* mesh, bool ok, const char* path)
{
    Mesh* silent = createMesh("prop");
    bool same = (read(READER, silent, path, nullptr) != 0) == ok && (!ok || meshesAreEqual(mesh, silent));
    freeMesh(silent);
    expect(same, "reading is another one without it");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    beginInput();
    const char* path = memoryFile(bytes, size);
    Mesh* mesh = createMesh("prop");
    Report report = {};
    bool ok = read(READER, mesh, path, &report) != 0;
    if (recorded.peakBytes > size * bytesPerInputByte + bytesFree)
    {
        fprintf(stderr, "%zu bytes of memory for a file of %zu\n", recorded.peakBytes, size);
        abort();
    }
    if (ok)
        checkMesh(mesh, "reader");
    checkReport(&report, ok, path, size);
    if (size % compareEvery == 0)
        compareWithoutReport(mesh, ok, path);
    freeMesh(mesh);
    return endInput();
}
