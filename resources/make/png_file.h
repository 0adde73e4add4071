// resources/make/png_file.h - PNG files, for the largest size of an icon
#pragma once
#include <stdint.h>
#include <string>
#include <vector>

// A PNG file of 8-bit red, green, blue and alpha, rows from the top, four bytes a pixel. Empty after a message on
// standard error when libpng fails.
std::string pngFile(int width, int height, const std::vector<uint8_t>& rgba);
