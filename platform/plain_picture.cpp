// platform/plain_picture.cpp - the picture in plain memory, for programs that need no bitmap of the operating system
#include "platform/large_blocks.h"
#include "platform/picture.h"

#include <stdlib.h>

int makePicture(Picture* picture, int32_t widthPixels, int32_t rows)
{
    *picture = {};
    if (widthPixels <= 0 || rows <= 0)
        return 0;
    picture->bits =
        static_cast<uint8_t*>(allocateZeroed(static_cast<size_t>(rows), static_cast<size_t>(widthPixels) * 3));
    if (!picture->bits)
        return 0;
    picture->widthPixels = widthPixels;
    picture->rows = rows;
    return 1;
}

void destroyPicture(Picture* picture)
{
    free(picture->bits);
    *picture = {};
}
