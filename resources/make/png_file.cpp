// resources/make/png_file.cpp - pixels for libpng to code
#include "png_file.h"

#include <stdio.h>

#include <png.h>

std::string pngFile(int width, int height, const std::vector<uint8_t>& rgba)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    std::string file(PNG_IMAGE_PNG_SIZE_MAX(image), '\0');
    png_alloc_size_t size = file.size();
    if (!png_image_write_to_memory(&image, file.data(), &size, 0, rgba.data(), 0, nullptr))
    {
        fprintf(stderr, "libpng: %s\n", image.message);
        return "";
    }
    file.resize(size);
    return file;
}
