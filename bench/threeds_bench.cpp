// bench/threeds_bench.cpp - reading generated 3DS files of 10 to 60 MB, compared with assimp
#include "reader_timing.h"

#include "import/threeds/threeds.h"

static std::string chunk(uint16_t id, const std::string& data)
{
    std::string bytes;
    appendBytes(&bytes, id);
    appendBytes(&bytes, static_cast<uint32_t>(data.size() + 6));
    return bytes + data;
}

static std::string text(const std::string& name)
{
    return name + std::string(1, '\0');
}

// One wavy, textured grid of 170 x 170 quads with one material; the lists of a file hold up to 65,535 entries.
static std::string makeObject(int number)
{
    constexpr int side = 170;
    std::string vertices, uvs, faces, numbers = text("paint");
    appendBytes<uint16_t>(&vertices, (side + 1) * (side + 1));
    appendBytes<uint16_t>(&uvs, (side + 1) * (side + 1));
    appendBytes<uint16_t>(&faces, 2 * side * side);
    appendBytes<uint16_t>(&numbers, 2 * side * side);
    for (int y = 0; y <= side; ++y)
    {
        for (int x = 0; x <= side; ++x)
        {
            float p[3];
            gridPoint(x, y, side, p);
            p[0] += static_cast<float>(number * 10);
            vertices.append(reinterpret_cast<const char*>(p), sizeof p);
            appendBytes(&uvs, static_cast<float>(x) / side);
            appendBytes(&uvs, static_cast<float>(y) / side);
        }
    }
    int face = 0;
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            int a = y * (side + 1) + x, b = a + side + 1;
            for (int corner : { a, a + 1, b, 7, a + 1, b + 1, b, 7 })
                appendBytes(&faces, static_cast<uint16_t>(corner));
            appendBytes(&numbers, static_cast<uint16_t>(face++));
            appendBytes(&numbers, static_cast<uint16_t>(face++));
        }
    }
    return chunk(0x4000, text("grid" + std::to_string(number)) +
                             chunk(0x4100, chunk(0x4110, vertices) + chunk(0x4140, uvs) +
                                               chunk(0x4120, faces + chunk(0x4130, numbers))));
}

static std::string make3ds(int objects)
{
    std::string colour = chunk(0xA020, chunk(0x0011, std::string(3, '\x7F')));
    std::string editor = chunk(0xAFFF, chunk(0xA000, text("paint")) + colour);
    for (int i = 0; i < objects; ++i)
        editor += makeObject(i);
    return chunk(0x4D4D, chunk(0x0002, std::string("\3\0\0\0", 4)) + chunk(0x3D3D, editor));
}

static void ours(benchmark::State& state)
{
    timeOurs(state, Sample("-o.3ds", make3ds(static_cast<int>(state.range(0)))), Load3dsFile);
}
BENCHMARK(ours)->Arg(9)->Arg(25)->Arg(50)->Unit(benchmark::kMillisecond);

#ifdef KESTRELBOX_ASSIMP
static void assimp(benchmark::State& state)
{
    timeAssimp(state, Sample("-o.3ds", make3ds(static_cast<int>(state.range(0)))));
}
BENCHMARK(assimp)->Arg(9)->Arg(25)->Unit(benchmark::kMillisecond);
#endif
