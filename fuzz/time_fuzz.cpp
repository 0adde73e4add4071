// fuzz/time_fuzz.cpp - an input whose time grows faster than its size
//
// An input describes a file of 16 kB and more. Its first bytes choose the reader, the part of the rest that is
// repeated, and the size. In the repeated part, the byte 1 stands for the number of the repetition, and the byte 2 for
// the number of those that follow, since many a slow input counts. A file that takes more than a microsecond a byte of
// processor time, three times in a row, is a finding. The slowest inputs known take about 600 ns a byte, with the
// sanitizers. Each new step of time per byte counts as something new, so that libFuzzer goes on from the slowest
// inputs.
#include "fuzz/fuzzing.h"
#include "fuzz/jpeg_segments.h"
#include "fuzz/memory_files.h"
#include "image/jpeg.h"
#include "import/obj/obj.h"
#include "import/ply/ply.h"
#include "import/rkf.h"
#include "import/stl/stl.h"
#include "import/text/dxf.h"
#include "import/text/off.h"
#include "import/text/poser.h"
#include "import/threeds/threeds.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

constexpr double nanosecondsPerByteLimit = 1000;
constexpr size_t leastBytes = 16 * 1024;
constexpr size_t choiceBytes = 4;
constexpr int64_t pixelLimit = 1 << 16; // the time of a picture grows with its pixels as well
constexpr int stepCount = 64;           // of time per byte, four for each doubling

static void readJpeg(const std::string& file)
{
    Image image = {};
    const auto* bytes = reinterpret_cast<const uint8_t*>(file.data());
    if (announcedPixels(jpegSegments(file)) <= pixelLimit && decodeJpegMemory(bytes, file.size(), &image))
        free(image.pixels);
}

static void readMtl(const std::string& file)
{
    Mesh* mesh = createMesh("prop");
    mesh->materialCount = 3;
    copyName(mesh->materialNames[1], "red");
    ReadMtlFile(mesh, memoryFile(reinterpret_cast<const uint8_t*>(file.data()), file.size()));
    freeMesh(mesh);
}

template <int (*load)(Mesh*, const char*)>
static void readModel(const std::string& file)
{
    Mesh* mesh = createMesh("prop");
    load(mesh, memoryFile(reinterpret_cast<const uint8_t*>(file.data()), file.size()));
    freeMesh(mesh);
}

struct TimedReader
{
    const char* name;
    void (*read)(const std::string& file);
};

// In the order of the seeds (fuzz/make_seeds.cpp).
static const TimedReader readers[] = {
    { "obj", readModel<LoadObjFile> },
    { "off", readModel<LoadOffFile> },
    { "ply", readModel<LoadPlyFile> },
    { "threeds", readModel<Load3dsFile> },
    { "dxf", readModel<LoadDxfFile> },
    { "poser", readModel<LoadPoserFile> },
    { "rkf", readModel<LoadRkfFile> },
    { "mtl", readMtl },
    { "jpeg", readJpeg },
    { "stl", readModel<LoadStlFile> },
};
constexpr size_t readerCount = std::size(readers);

__attribute__((section("__libfuzzer_extra_counters"))) static uint8_t steps[readerCount][stepCount];

static double slowest[readerCount]; // nanoseconds per byte

// Not at the end, because a fuzzer that is stopped by a signal ends at once.
static void noteTime(size_t reader, double perByte)
{
    if (perByte < 1.2 * slowest[reader])
        return;
    slowest[reader] = perByte;
    fprintf(stderr, "%s: %.0f ns a byte\n", readers[reader].name, perByte);
}

static void appendCounted(std::string* file, const std::string& part, size_t number, size_t following)
{
    for (char c : part)
    {
        if (c == 1 || c == 2)
            *file += std::to_string(c == 1 ? number : following);
        else
            *file += c;
    }
}

static std::string describedFile(const uint8_t* bytes, size_t size)
{
    std::string text(bytes + choiceBytes, bytes + size);
    size_t start = text.size() * bytes[1] / 256;
    size_t length = 1 + (text.size() - start) * bytes[2] / 256;
    std::string file = text.substr(0, start), part = text.substr(start, length);
    size_t wanted = leastBytes << (bytes[3] % 3);
    size_t repetitions = part.empty() ? 0 : wanted / part.size() + 1;
    for (size_t i = 0; i < repetitions; ++i)
        appendCounted(&file, part, i + 1, repetitions - i);
    return start + length < text.size() ? file + text.substr(start + length) : file;
}

static double nanosecondsOf(size_t reader, const std::string& file)
{
    timespec before, after;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
    beginInput();
    readers[reader].read(file);
    endInput();
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &after);
    return static_cast<double>(after.tv_sec - before.tv_sec) * 1e9 +
           static_cast<double>(after.tv_nsec - before.tv_nsec);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    if (size <= choiceBytes)
        return -1;
    size_t reader = bytes[0] % readerCount;
    std::string file = describedFile(bytes, size);
    if (file.size() < leastBytes)
        return -1;
    double perByte = nanosecondsOf(reader, file) / static_cast<double>(file.size());
    for (int again = 0; again < 2 && perByte > nanosecondsPerByteLimit; ++again)
        perByte = fmin(perByte, nanosecondsOf(reader, file) / static_cast<double>(file.size()));
    if (perByte > nanosecondsPerByteLimit)
    {
        fprintf(stderr, "%s takes %.0f ns for each of %zu bytes\n", readers[reader].name, perByte, file.size());
        abort();
    }
    noteTime(reader, perByte);
    int step = static_cast<int>(4 * log2(fmax(perByte, 1)));
    steps[reader][step < stepCount ? step : stepCount - 1] = 1;
    return 0;
}
