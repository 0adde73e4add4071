// resources/make/jpeg_file.h - JPEG files of the generated textures
#pragma once
#include <stdint.h>
#include <string>
#include <vector>

struct TexturePixels
{
    int width, height;
    std::vector<uint8_t> rgb; // three bytes a pixel, rows from the top
    bool tiles;               // its left edge continues its right edge, and its top edge its bottom edge
};

// A JFIF file of a texture: baseline, chroma at half the resolution both ways, Huffman codes made for this texture.
// Quality is 1 to 100 and scales libjpeg's tables. The last blocks reach beyond the edge: a texture that tiles
// continues there with its other side, so that tiling shows no seam; any other repeats its edge.
std::string jpegFile(const TexturePixels& texture, int quality);
