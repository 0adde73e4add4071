// shell/picture_file.cpp - where the rows of each bitmap come from
#include "shell/picture_file.h"

#include "export/bmp.h"
#include "model/ascii.h"
#include "model/memory.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "shell/file_dialogs.h"
#include "shell/png_file.h"
#include "shell/scene.h"
#include "shell/title.h"

#include <string.h>
#include <algorithm>
#include <bit>

static bool fillFrameRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    const FrameBuffer* target = static_cast<const FrameBuffer*>(picture->source);
    size_t strideBytes = static_cast<size_t>(target->pitch) * 3;
    size_t fromTop = static_cast<size_t>(picture->height - 1 - row);
    memcpy(bytes, target->picture.bits + fromTop * strideBytes, bmpRowBytes(picture->width));
    return true;
}

static bool isPngName(const char* path)
{
    constexpr size_t length = 4;
    size_t start = strlen(path);
    if (start < length)
        return false;
    std::string end = path + start - length;
    for (char& c : end)
        c = asciiLower(c);
    return end == ".png";
}

static int writeByName(const char* path, const BmpPicture* picture)
{
    return isPngName(path) ? WritePngFile(path, picture) : WriteBmpFile(path, picture);
}

int writePicture(const char* path, const FrameBuffer* target, int32_t width, int32_t height)
{
    BmpPicture picture = { width, height, true, 0, 0, fillFrameRow, target };
    return writeByName(path, &picture);
}

int writePictureAsPng(const char* path, const FrameBuffer* target, int32_t width, int32_t height)
{
    BmpPicture picture = { width, height, true, 0, 0, fillFrameRow, target };
    return WritePngFile(path, &picture);
}

// Words 0x00RRGGBB to blue, green and red bytes. Four pixels make twelve bytes.
static void packPixels(uint8_t* bytes, const uint32_t* words, int32_t count)
{
    int32_t x = 0;
    if constexpr (std::endian::native == std::endian::little)
        for (; x + 4 <= count; x += 4, bytes += 12)
        {
            const uint32_t* four = words + x;
            uint64_t low = four[0] | uint64_t{ four[1] } << 24 | uint64_t{ four[2] } << 48;
            uint32_t high = four[2] >> 16 | four[3] << 8;
            memcpy(bytes, &low, sizeof low);
            memcpy(bytes + sizeof low, &high, sizeof high);
        }
    for (; x < count; ++x)
    {
        *bytes++ = static_cast<uint8_t>(words[x]);
        *bytes++ = static_cast<uint8_t>(words[x] >> 8);
        *bytes++ = static_cast<uint8_t>(words[x] >> 16);
    }
}

static bool fillDecodedRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    packPixels(bytes, static_cast<const uint32_t*>(picture->source) + ptrdiff_t{ row } * picture->width,
               picture->width);
    return true;
}

static BmpPicture describeDecoded(const JpegOutput& decoded, const uint32_t* pixels)
{
    constexpr int32_t dotsPerCentimetre = 2;
    BmpPicture picture = { decoded.width, decoded.height, false, 0, 0, fillDecodedRow, pixels };
    if (decoded.densityUnit == dotsPerCentimetre)
    {
        picture.xPerMetre = static_cast<uint32_t>(decoded.xDensity) * 100;
        picture.yPerMetre = static_cast<uint32_t>(decoded.yDensity) * 100;
    }
    return picture;
}

int writeDecodedPicture(const char* path, const JpegOutput& decoded, const uint32_t* pixels)
{
    BmpPicture picture = describeDecoded(decoded, pixels);
    return writeByName(path, &picture);
}

struct RowByRow
{
    JpegFile* jpeg;
    uint32_t* words; // of a row
};

// After the last row the JPEG file is closed, because the picture may take its place.
static bool fillNextRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    const RowByRow* source = static_cast<const RowByRow*>(picture->source);
    if (!readJpegRow(source->jpeg, source->words))
        return false;
    packPixels(bytes, source->words, picture->width);
    if (row > 0)
        return true;
    const JpegFile& jpeg = *source->jpeg;
    closeJpegFile(source->jpeg);
    return !jpeg.strict || !hasWarnings(*jpeg.report);
}

int writeJpegAsPicture(const char* path, JpegFile* jpeg)
{
    RowByRow source = { jpeg,
                        static_cast<uint32_t*>(workAlloc(static_cast<size_t>(jpeg->image.width) * sizeof(uint32_t))) };
    if (!source.words)
        return 0;
    BmpPicture picture = describeDecoded(jpeg->image, nullptr);
    picture.fillRow = fillNextRow;
    picture.source = &source;
    picture.topFirst = true;
    int ok = writeByName(path, &picture);
    workFree(source.words);
    return ok;
}

int saveImage()
{
    std::string path;
    return choosePictureToSave(currentFileName, &path) &&
           writePicture(path.c_str(), &frameBuffer, frameState.displayWidth, frameState.displayHeight);
}

int copyImage()
{
    if (!copyPicture(&frameBuffer.picture, frameState.displayWidth, frameState.displayHeight))
    {
        messageBox("The picture cannot be copied", "Error", iconStop);
        return 0;
    }
    holdTitle(programName + (": " + currentFileName) + " - picture copied");
    return 1;
}

// The dumps have no window to show a message in, so they write straight into the file.
static int dumpPicture(const char* path, const BmpPicture* picture)
{
    FILE* file = openFile(path, "wb");
    if (!file)
        return 0;
    int ok = WriteBmp(file, picture);
    return fclose(file) == 0 && ok;
}

int writeDebugBmp(const JpegOutput& decoded, const uint32_t* pixels)
{
    BmpPicture picture = describeDecoded(decoded, pixels);
    return dumpPicture("test.bmp", &picture);
}

static bool fillShadowRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    const FrameBuffer* target = static_cast<const FrameBuffer*>(picture->source);
    int32_t fromTop = target->shadowSize - 1 - row;
    const uint16_t* depths = target->shadowMap + ptrdiff_t{ fromTop } * target->shadowSize;
    for (int32_t x = 0; x < target->shadowSize; ++x)
        memset(bytes + x * 3, std::min(depths[x] >> 6, 255), 3);
    return true;
}

int DumpShadowMap(const FrameBuffer* target)
{
    static bool called = false;
    if (called)
        return 0;
    called = true;
    BmpPicture picture = { target->shadowSize, target->shadowSize, true, 0, 0, fillShadowRow, target };
    return dumpPicture("shadow.bmp", &picture);
}
