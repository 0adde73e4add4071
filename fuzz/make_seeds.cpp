// fuzz/make_seeds.cpp - writes the seeds of every fuzzer: small files that use everything a format has
//
//   make_seeds FOLDER       writes FOLDER/<fuzzer>/seed-<n>
#include "tests/image/jpeg_builder.h"
#include "tests/samples.h"

#include <stdio.h>
#include <filesystem>
#include <fstream>

static Samples jpegSamples()
{
    Samples files;
    for (int grey = 0; grey < 2; ++grey)
        for (int restart = 0; restart < 3; restart += 2)
            for (int h = 1; h <= 2; ++h)
            {
                JpegPlan plan;
                plan.width = 20;
                plan.height = 18;
                plan.components = grey ? std::vector<PlanComponent>{ { 1, 1, 1 } } : sampled(h, 3 - h);
                plan.restartInterval = restart;
                plan.application = jfifSegment(1, 72, 72);
                plan.wideQuant = h == 2;
                Bytes bytes = buildJpeg(plan);
                files.emplace_back(reinterpret_cast<const char*>(bytes.data()), bytes.size());
            }
    return files;
}

// An input of fuzz/life_fuzz.cpp has 25 bytes that choose what to do, then the file.
static Samples lifeSamples(const std::vector<Samples>& byReader)
{
    Samples files;
    for (size_t reader = 0; reader < byReader.size(); ++reader)
        for (const std::string& file : byReader[reader])
        {
            std::string plan(1, static_cast<char>(reader));
            for (size_t k = 0; k < 24; ++k)
                plan += static_cast<char>(k * 37 + reader * 11 + file.size());
            files.push_back(plan + file);
        }
    return files;
}

// An input of fuzz/time_fuzz.cpp has four bytes that choose the reader, the repeated part and the size, then the file.
static Samples timeSamples(const std::vector<Samples>& byReader)
{
    Samples files;
    for (size_t reader = 0; reader < byReader.size(); ++reader)
        for (const std::string& file : byReader[reader])
            for (int start = 0; start < 256; start += 64)
                files.push_back(std::string{ static_cast<char>(reader), static_cast<char>(start), '\x40', '\0' } +
                                file);
    return files;
}

// An input of fuzz/given_fuzz.cpp has lines that choose and name, then the file.
static Samples givenSamples(const std::vector<std::pair<const char*, Samples>>& byExtension)
{
    Samples files;
    for (const auto& [extension, samples] : byExtension)
        for (char choice = '0'; choice < '5'; ++choice)
        {
            std::string end = std::string(".") + extension + "\n";
            files.push_back(std::string("2a") + end + choice + "folder/b" + end + static_cast<char>(choice + 5) + "a" +
                            end + samples[0]);
        }
    return files;
}

static int writeAll(const std::filesystem::path& folder, const Samples& files)
{
    std::filesystem::create_directories(folder);
    int n = 0;
    for (const std::string& bytes : files)
    {
        std::ofstream out(folder / ("seed-" + std::to_string(++n)), std::ios::binary);
        if (!(out << bytes).flush())
            return 0;
    }
    return 1;
}

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        fprintf(stderr, "make_seeds FOLDER\n");
        return 2;
    }
    std::filesystem::path to = argv[1];
    Samples obj = objSamples(), off = offSamples(), ply = plySamples(), threeDs = threeDsSamples(), dxf = dxfSamples();
    Samples poser = poserSamples(), rkf = rkfSamples(), stl = stlSamples(), mtl = mtlSamples(), jpeg = jpegSamples();
    int ok =
        writeAll(to / "obj", obj) && writeAll(to / "off", off) && writeAll(to / "ply", ply) &&
        writeAll(to / "threeds", threeDs) && writeAll(to / "dxf", dxf) && writeAll(to / "poser", poser) &&
        writeAll(to / "stl", stl) && writeAll(to / "rkf", rkf) && writeAll(to / "builtin", rkf) &&
        writeAll(to / "mtl", mtl) && writeAll(to / "jpeg", jpeg) &&
        writeAll(to / "time", timeSamples({ obj, off, ply, threeDs, dxf, poser, rkf, mtl, jpeg, stl })) &&
        writeAll(
            to / "given",
            givenSamples(
                { { "obj", obj }, { "off", off }, { "rkf", rkf }, { "jpg", jpeg }, { "stl", stl }, { "txt", mtl } })) &&
        writeAll(to / "life", lifeSamples({ obj, off, ply, threeDs, dxf, poser, rkf, stl }));
    return ok ? 0 : 1;
}
