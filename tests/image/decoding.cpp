// tests/image/decoding.cpp - running the decoder and djpeg on a block of bytes
#include "decoding.h"

#include "image/jpeg.h"
#include "platform/processor.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <memory>

std::optional<Decoded> decode(const Bytes& file, JpegOutput* output, const JpegHeap& heap)
{
    auto exact = std::make_unique<uint8_t[]>(file.size());
    std::copy(file.begin(), file.end(), exact.get());
    Image image;
    int ok = decodeJpeg(memorySource(exact.get(), file.size()), &image, output, heap);
    if (!ok)
    {
        EXPECT_EQ(image.pixels, nullptr);
        EXPECT_EQ(image.width, 0);
        EXPECT_EQ(image.height, 0);
        return {};
    }
    Decoded decoded{ image.width, image.height, {} };
    for (int y = image.height - 1; y >= 0; --y)
        decoded.pixels.insert(decoded.pixels.end(), image.pixels + static_cast<ptrdiff_t>(y) * image.width,
                              image.pixels + static_cast<ptrdiff_t>(y + 1) * image.width);
    free(image.pixels);
    return decoded;
}

std::optional<Decoded> decodePlain(const Bytes& file)
{
    limitKernelLevel(kernelsPlain);
    std::optional<Decoded> decoded = decode(file);
    limitKernelLevel(kernelsAvx512);
    return decoded;
}

bool refused(const Bytes& file, const JpegHeap& heap)
{
    return !decode(file, nullptr, heap).has_value();
}

Bytes readFile(const std::string& path)
{
    Bytes bytes;
    if (FILE* file = fopen(path.c_str(), "rb"))
    {
        uint8_t block[65536];
        while (size_t got = fread(block, 1, sizeof block, file))
            bytes.insert(bytes.end(), block, block + got);
        fclose(file);
    }
    return bytes;
}

void writeFile(const std::string& path, const Bytes& bytes)
{
    FILE* file = fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr) << path;
    EXPECT_EQ(fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
    fclose(file);
}

std::string temporary(const std::string& name)
{
    return testing::TempDir() + "kb_image_" + std::to_string(getpid()) + "_" + name;
}

bool haveProgram(const std::string& name)
{
    return system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

static int number(const Bytes& bytes, size_t at)
{
    int32_t value;
    memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

std::optional<Decoded> decodeByDjpeg(const Bytes& file, const std::string& options)
{
    std::string path = temporary("djpeg.jpg");
    writeFile(path, file);
    FILE* pipe = popen(("djpeg -dct int -bmp " + options + " " + path + " 2>/dev/null").c_str(), "r");
    Bytes bmp;
    uint8_t block[65536];
    while (size_t got = fread(block, 1, sizeof block, pipe))
        bmp.insert(bmp.end(), block, block + got);
    pclose(pipe);
    remove(path.c_str());
    if (bmp.size() < 54)
        return {};
    Decoded decoded{ number(bmp, 18), number(bmp, 22), {} };
    size_t each = bmp[28] / 8u;
    size_t offset = static_cast<size_t>(number(bmp, 10));
    size_t rowBytes = (static_cast<size_t>(decoded.width) * each + 3) & ~size_t{ 3 };
    for (int y = decoded.height - 1; y >= 0; --y)
        for (int x = 0; x < decoded.width; ++x)
        {
            const uint8_t* p = &bmp[offset + static_cast<size_t>(y) * rowBytes + static_cast<size_t>(x) * each];
            decoded.pixels.push_back(each == 1 ? p[0] * 0x10101u
                                               : static_cast<uint32_t>(p[2] << 16 | p[1] << 8 | p[0]));
        }
    return decoded;
}
