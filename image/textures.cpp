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

void loadBuiltInTextures()
{
    for (int slot = 0; slot < textureUser; ++slot)
        loadTextureResource(&TextureSlots[slot], builtInTextures[slot]);
    loadTextureResource(&ReflectionImage, "reflect");
}

// The decoder keeps the data of a file in memory and searches all of it for markers. A sparse file can be much larger
// than the disk, so a file that no picture needs is refused by its size alone.
static int decodeTextureFile(FILE* file, Image* image, JpegOutput* output)
{
    progressiveRefused = 0;
    return measureFile(file) <= textureFileLimit && decodeJpegFile(file, image, output);
}

int loadTextureFile(const char* path, Image* image, int* opened, JpegOutput* output)
{
    FILE* file = openFile(path, "rb");
    if (opened)
        *opened = file != nullptr;
    if (!file)
        return 0;
    Image fresh = {};
    int ok = decodeTextureFile(file, &fresh, output);
    fclose(file);
    if (!ok)
    {
        messageBox(progressiveRefused ? "Progressive Jpeg not supported" : "Error reading Jpeg file", "error",
                   iconNone);
        return 0;
    }
    free(image->pixels);
    *image = fresh;
    return 1;
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
