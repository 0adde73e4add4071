// platform/web/picture.cpp - the picture on the page's canvas and in the clipboard
#include "platform/picture.h"
#include "platform/web/host.h"
#include "platform/web/page_state.h"

#include <string.h>
#include <algorithm>
#include <vector>

static std::vector<uint8_t> pixels; // kept from one frame to the next

// Converts pixels of a row by fours, while sixteen bytes of it are left. Returns how many.
static int32_t convertFours(uint8_t* out, const uint8_t* in, int32_t width)
{
    using Bytes = uint8_t __attribute__((vector_size(16)));
    int32_t column = 0;
    for (; column + 6 <= width; column += 4, in += 12, out += 16)
    {
        Bytes bytes;
        memcpy(&bytes, in, sizeof bytes);
        bytes = __builtin_shufflevector(bytes, Bytes{} + 255, 2, 1, 0, 16, 5, 4, 3, 16, 8, 7, 6, 16, 11, 10, 9, 16);
        memcpy(out, &bytes, sizeof bytes);
    }
    return column;
}

// Converts a rectangle, cut at the picture's border, to the canvas's form.
static void convert(const Picture* picture, int32_t x, int32_t y, int32_t width, int32_t height)
{
    pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    uint8_t* out = pixels.data();
    for (int32_t row = y; row < y + height; ++row)
    {
        const uint8_t* in =
            picture->bits +
            (static_cast<size_t>(row) * static_cast<size_t>(picture->widthPixels) + static_cast<size_t>(x)) * 3;
        int32_t column = convertFours(out, in, width);
        in += 3 * column;
        out += 4 * column;
        for (; column < width; ++column, in += 3, out += 4)
        {
            out[0] = in[2];
            out[1] = in[1];
            out[2] = in[0];
            out[3] = 255;
        }
    }
}

void presentPicture(const Picture* picture, int32_t x, int32_t y, int32_t width, int32_t height)
{
    width = std::min(width, picture->widthPixels - x);
    height = std::min(height, picture->rows - y);
    if (width <= 0 || height <= 0)
        return;
    convert(picture, x, y, width, height);
    showPixels(pixels.data(), x, y, width, height);
}

int copyPicture(const Picture* picture, int32_t width, int32_t height)
{
    width = std::min(width, picture->widthPixels);
    height = std::min(height, picture->rows);
    convert(picture, 0, 0, width, height);
    copyPixels(pixels.data(), width, height);
    return 1;
}

int32_t displayRefreshRate()
{
    return pageState.refreshRate;
}
