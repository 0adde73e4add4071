// platform/picture.h - the picture: the off-screen bitmap that every frame is converted into
//
// kestrelbox.exe links win32/picture.cpp (a DIB section), and tests link tests/recording. kestrelbox on Linux and kbx
// have it in plain memory (plain_picture.cpp); qt/picture.cpp shows it, terminal/window.cpp does not.
#pragma once
#include <stdint.h>

struct Picture
{
    // Blue, green and red bytes, the top row first; rows start widthPixels * 3 bytes apart.
    uint8_t* bits;
    int32_t widthPixels; // a multiple of 4
    int32_t rows;
    void* handle; // for the implementation
};

// Makes a zero-filled bitmap. Returns 1, or 0 with the record cleared.
int makePicture(Picture* picture, int32_t widthPixels, int32_t rows);

// Copies a rectangle of the bitmap, in pixels from its upper left corner, to the same place in the display window.
void presentPicture(const Picture* picture, int32_t x, int32_t y, int32_t width, int32_t height);

// Copies the upper left part of the bitmap to the clipboard, as a bitmap. Returns 1, or 0 when the clipboard or memory
// is refused, and where there is no clipboard.
int copyPicture(const Picture* picture, int32_t width, int32_t height);

// Releases the bitmap and clears the record. A cleared record stays as it is.
void destroyPicture(Picture* picture);

// How many times a second the screen that shows the display window is refreshed; 0 when it cannot be told.
int32_t displayRefreshRate();
