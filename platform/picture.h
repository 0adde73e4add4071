// platform/picture.h - the off-screen bitmap that frames are converted into
#pragma once
#include <stdint.h>

struct Picture
{
    uint8_t*
        bits; // rows x widthPixels x 3 bytes, top row first, blue green red; rows start widthPixels * 3 bytes apart
    int32_t widthPixels; // a multiple of 4
    int32_t rows;
    void* handle; // the platform's own
};

// Makes the bitmap, zero-filled. Returns 1, or 0 with the record cleared.
int makePicture(Picture* picture, int32_t widthPixels, int32_t rows);

// Copies a rectangle of the bitmap, in pixels from its upper left corner, to the same place in the display window.
void presentPicture(const Picture* picture, int32_t x, int32_t y, int32_t width, int32_t height);

// Releases the bitmap and clears the record; a cleared record is fine.
void destroyPicture(Picture* picture);
