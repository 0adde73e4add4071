// model/image.h - an image, decoded from a JPEG file and used as a texture
#pragma once
#include <stdint.h>

struct Image
{
    // width x height words 0x00RRGGBB from malloc, the bottom row first; null when there is no image.
    uint32_t* pixels;
    int32_t width;
    int32_t height;
};
