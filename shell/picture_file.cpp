// shell/picture_file.cpp - where the rows of each bitmap come from
#include "shell/picture_file.h"

#include "export/bmp.h"
#include "model/ascii.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "shell/file_dialogs.h"
#include "shell/png_file.h"
#include "shell/scene.h"
#include "shell/title.h"

#include <string.h>
#include <algorithm>

static void fillFrameRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    const FrameBuffer* target = static_cast<const FrameBuffer*>(picture->source);
    size_t strideBytes = static_cast<size_t>(target->pitch) * 3;
    size_t fromTop = static_cast<size_t>(picture->height - 1 - row);
    size_t pixelBytes = static_cast<size_t>(picture->width) * 3;
    memcpy(bytes, target->picture.bits + fromTop * strideBytes, pixelBytes);
    memset(bytes + pixelBytes, 0, bmpRowBytes(picture->width) - pixelBytes); // not what a larger display has left there
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

static void fillDecodedRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    const uint32_t* words = static_cast<const uint32_t*>(picture->source) + ptrdiff_t{ row } * picture->width;
    for (int32_t x = 0; x < picture->width; ++x)
    {
        *bytes++ = static_cast<uint8_t>(words[x]);
        *bytes++ = static_cast<uint8_t>(words[x] >> 8);
        *bytes++ = static_cast<uint8_t>(words[x] >> 16);
    }
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

static void fillShadowRow(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    const FrameBuffer* target = static_cast<const FrameBuffer*>(picture->source);
    int32_t fromTop = target->shadowSize - 1 - row;
    const uint16_t* depths = target->shadowMap + ptrdiff_t{ fromTop } * target->shadowSize;
    for (int32_t x = 0; x < target->shadowSize; ++x)
        memset(bytes + x * 3, std::min(depths[x] >> 6, 255), 3);
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
