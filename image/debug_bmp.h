// image/debug_bmp.h - a decoded picture as a Windows bitmap, for looking at what the decoder made
#pragma once
#include "image/jpeg.h"

#include <stdio.h>

// Writes the pixels of the picture described by output to "test.bmp" in the current folder. Returns 1, or 0 when the
// file cannot be made or written whole.
int writeDebugBmp(const JpegOutput& output, const uint32_t* pixels);

// The same into an open file, the caller's, and under another name.
int writeDebugBmpTo(FILE* file, const JpegOutput& output, const uint32_t* pixels);
int writeDebugBmpAs(const char* path, const JpegOutput& output, const uint32_t* pixels);
