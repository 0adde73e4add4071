// resources/make/jpeg_encoder.h - writing baseline JPEG files
#pragma once
#include <stdint.h>
#include <string>
#include <vector>

struct Picture
{
    int width, height;
    std::vector<uint8_t> rgb; // three bytes a pixel, rows from the top
    bool tiles;               // its left edge goes on where its right edge ends, and so do top and bottom
};

// A JFIF file: baseline, chroma at half the resolution both ways, Huffman codes made for this picture. Quality runs
// from 1 to 100 and scales the example quantisation tables of the JPEG standard (ITU-T T.81, annex K). What the last
// blocks hold beyond the edge is the picture's other side when it tiles, so that tiling shows no seam, else its edge.
std::string encodeJpeg(const Picture& picture, int quality);
