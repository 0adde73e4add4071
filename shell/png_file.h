// shell/png_file.h - pictures as PNG files of 24 bits a pixel
//
// The chunks are written here and their contents deflated by zlib, which Debian has for every target of this program.
// It has no PNG library for Windows. The folder export/ has no dependency, so that this writer stands beside
// picture_file.cpp, the only user.
//
// Source: Portable Network Graphics, second edition (W3C, 2003; ISO/IEC 15948)
#pragma once
#include "export/bmp.h"

// Writes the rows that WriteBmpFile would write, and the density where it is known. Returns 1, or 0 with the target as
// it was: after "Out of memory"; after the box of fillRow; else as openOutput and closeOutput say.
int WritePngFile(const char* path, const BmpPicture* picture);
