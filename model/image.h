// model/image.h - a decoded picture, filled by the decoder and sampled by the renderer
#pragma once
#include <stdint.h>

struct Image
{
    uint32_t*
        pixels; // width x height words 0x00RRGGBB from malloc, row 0 the bottom row; null when there is no picture
    int32_t width;
    int32_t height;
};
