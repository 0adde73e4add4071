// bench/jpeg_bench.cpp - decodes JPEG files of 2048 x 2048 and 8192 x 8192, in Mpixel/s, and compares stb_image and
// turbojpeg where they are installed
//
// The files have random coefficients with the distribution of a photograph: about 12 in a luma block, most of them
// small and of low frequency.
#include "image/jpeg.h"
#include "jpeg_builder.h"
#include "platform/processor.h"

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <algorithm>
#include <memory>
#include <random>

#ifdef HAVE_STB_IMAGE
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_JPEG
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop
#endif

#ifdef HAVE_TURBOJPEG
#include <turbojpeg.h>
#endif

enum Kind
{
    kind420,
    kind420Large,
    kind444,
    kindGrey
};

static int sideOf(Kind kind)
{
    return kind == kind420Large ? 8192 : 2048;
}

static int geometricNumber(std::mt19937& random, int percent, int limit)
{
    int n = 0;
    while (n < limit && static_cast<int>(random() % 100) < percent)
        ++n;
    return n;
}

static Bytes makeFile(Kind kind)
{
    JpegPlan plan;
    plan.width = plan.height = sideOf(kind);
    plan.quant = 12;
    plan.components = kind == kindGrey  ? std::vector<PlanComponent>{ { 1, 1, 1 } }
                      : kind != kind444 ? sampled(2, 2)
                                        : sampled(1, 1);
    for (size_t i = 1; i < plan.components.size(); ++i)
        plan.components[i].dc = plan.components[i].ac = plan.components[i].quant = 1;
    auto random = std::make_shared<std::mt19937>(1u);
    auto level = std::make_shared<std::vector<int>>(3, 0);
    plan.block = [random, level](int component, int, int* zigzag)
    {
        std::mt19937& r = *random;
        int& dc = (*level)[static_cast<size_t>(component)];
        int step = geometricNumber(r, 70, 40);
        dc = std::clamp(dc + (r() % 2 ? step : -step), -60, 60);
        zigzag[0] = dc;
        int k = 0;
        for (int count = geometricNumber(r, component == 0 ? 94 : 80, 40); count > 0 && k < 60; --count)
        {
            k += 1 + geometricNumber(r, 40, 3);
            int size = 1 + geometricNumber(r, 55 - k / 2, 60);
            zigzag[k] = r() % 2 ? size : -size;
        }
    };
    return buildJpeg(plan);
}

static const Bytes& fileOf(Kind kind)
{
    static Bytes made[4];
    if (made[kind].empty())
        made[kind] = makeFile(kind);
    return made[kind];
}

static void countPixels(benchmark::State& state, Kind kind, const Bytes& file)
{
    double pixels = static_cast<double>(sideOf(kind)) * sideOf(kind);
    state.counters["Mpixel/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * pixels / 1e6, benchmark::Counter::kIsRate);
    state.counters["bits/pixel"] = static_cast<double>(file.size()) * 8 / pixels;
}

static void decodeOurs(benchmark::State& state, Kind kind, KernelLevel highest)
{
    const Bytes& file = fileOf(kind);
    limitKernelLevel(highest);
    for (auto _ : state)
    {
        Image image;
        if (!decodeJpegMemory(file.data(), file.size(), &image))
            state.SkipWithError("refused");
        benchmark::DoNotOptimize(image.pixels);
        free(image.pixels);
    }
    limitKernelLevel(kernelsAvx512);
    countPixels(state, kind, file);
}

#ifdef HAVE_STB_IMAGE
static void decodeStb(benchmark::State& state, Kind kind)
{
    const Bytes& file = fileOf(kind);
    for (auto _ : state)
    {
        int width, height, channels;
        stbi_uc* pixels =
            stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels, 4);
        if (!pixels)
            state.SkipWithError("refused");
        benchmark::DoNotOptimize(pixels);
        stbi_image_free(pixels);
    }
    countPixels(state, kind, file);
}
#define BESIDE_STB(name, kind) BENCHMARK_CAPTURE(decodeStb, name, kind)->Unit(benchmark::kMillisecond)
#else
#define BESIDE_STB(name, kind) static_assert(true)
#endif

#ifdef HAVE_TURBOJPEG
static void decodeTurbo(benchmark::State& state, Kind kind)
{
    const Bytes& file = fileOf(kind);
    tjhandle turbo = tjInitDecompress();
    size_t bytes = static_cast<size_t>(sideOf(kind)) * static_cast<size_t>(sideOf(kind)) * 4;
    for (auto _ : state)
    {
        auto* pixels = static_cast<unsigned char*>(malloc(bytes));
        if (!pixels || tjDecompress2(turbo, file.data(), static_cast<unsigned long>(file.size()), pixels, 0, 0, 0,
                                     TJPF_BGRX, TJFLAG_ACCURATEDCT))
            state.SkipWithError("refused");
        benchmark::DoNotOptimize(pixels);
        free(pixels);
    }
    tjDestroy(turbo);
    countPixels(state, kind, file);
}
#define BESIDE_TURBO(name, kind) BENCHMARK_CAPTURE(decodeTurbo, name, kind)->Unit(benchmark::kMillisecond)
#else
#define BESIDE_TURBO(name, kind) static_assert(true)
#endif

BENCHMARK_CAPTURE(decodeOurs, 420, kind420, kernelsAvx512)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeOurs, 420_plain, kind420, kernelsPlain)->Unit(benchmark::kMillisecond);
BESIDE_STB(420, kind420);
BESIDE_TURBO(420, kind420);
BENCHMARK_CAPTURE(decodeOurs, 420_large, kind420Large, kernelsAvx512)->Unit(benchmark::kMillisecond);
BESIDE_STB(420_large, kind420Large);
BESIDE_TURBO(420_large, kind420Large);
BENCHMARK_CAPTURE(decodeOurs, 444, kind444, kernelsAvx512)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeOurs, 444_plain, kind444, kernelsPlain)->Unit(benchmark::kMillisecond);
BESIDE_STB(444, kind444);
BESIDE_TURBO(444, kind444);
BENCHMARK_CAPTURE(decodeOurs, grey, kindGrey, kernelsAvx512)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeOurs, grey_plain, kindGrey, kernelsPlain)->Unit(benchmark::kMillisecond);
BESIDE_STB(grey, kindGrey);
BESIDE_TURBO(grey, kindGrey);
