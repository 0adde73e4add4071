// image/textures.cpp - loading the built-in textures and the user's
#include "image/textures.h"

#include "image/jpeg.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/resources.h"

#include <stdlib.h>

constexpr Image emptyUserTexture = { nullptr, 1, 1 };

Image TextureSlots[textureCount] = { {}, {}, {}, emptyUserTexture };
Image ReflectionImage;

int loadTextureResource(Image* image, const char* name)
{
    ResourceBytes resource;
    if (!findResource(name, &resource))
        return 0;
    free(image->pixels);
    return decodeJpegMemory(resource.bytes, resource.size, image);
}

void needTexture(const Image* image)
{
    if (!image || image->pixels)
        return;
    for (int slot = 0; slot < textureUser; ++slot)
    {
        if (image == &TextureSlots[slot])
            loadTextureResource(&TextureSlots[slot], builtInTextures[slot]);
    }
    if (image == &ReflectionImage)
        loadTextureResource(&ReflectionImage, "reflect");
}

// The decoder keeps the data of a file in memory and searches all of it for markers. A sparse file can be much larger
// than the disk, so a file that no picture needs is refused by its size alone.
static bool isTooLarge(FILE* file, Report* report)
{
    progressiveRefused = 0;
    return measureFile(file) > textureFileLimit && !failReading(report, -1, "a file of more than 256 MiB");
}

static int refuseFile()
{
    messageBox(progressiveRefused ? "Progressive Jpeg not supported" : "Error reading Jpeg file", "error", iconNone);
    return 0;
}

static FILE* openTextureFile(const char* path, int* opened)
{
    FILE* file = openFile(path, "rb");
    if (opened)
        *opened = file != nullptr;
    return file;
}

int loadTextureFile(const char* path, Image* image, int* opened, JpegOutput* output, Report* report)
{
    FILE* file = openTextureFile(path, opened);
    if (!file)
        return 0;
    Image fresh = {};
    int ok = !isTooLarge(file, report) && decodeJpegFile(file, &fresh, output, report);
    fclose(file);
    if (!ok)
        return refuseFile();
    free(image->pixels);
    *image = fresh;
    return 1;
}

int openJpegFile(JpegFile* jpeg, const char* path, int* opened, Report* report)
{
    *jpeg = {};
    jpeg->report = report;
    jpeg->file = openTextureFile(path, opened);
    if (!jpeg->file)
        return 0;
    if (!isTooLarge(jpeg->file, report))
        jpeg->rows = beginJpegRows(fileSource(jpeg->file, jpeg->buffer), &jpeg->image, jpegSystemHeap, report);
    if (jpeg->rows)
        return 1;
    closeJpegFile(jpeg);
    return refuseFile();
}

int readJpegRow(JpegFile* jpeg, uint32_t* words)
{
    jpeg->failed = nextJpegRow(jpeg->rows, words) == 0;
    return jpeg->failed ? refuseFile() : 1;
}

void closeJpegFile(JpegFile* jpeg)
{
    endJpegRows(jpeg->rows);
    if (jpeg->file)
        fclose(jpeg->file);
    jpeg->rows = nullptr;
    jpeg->file = nullptr;
}

void freeTextures()
{
    for (Image& texture : TextureSlots)
    {
        free(texture.pixels);
        texture = {};
    }
    TextureSlots[textureUser] = emptyUserTexture;
    free(ReflectionImage.pixels);
    ReflectionImage = {};
}
