// export/preview.h - the small picture that Poser shows for a prop: a file of its own beside it
//
// The file is the image of a Macintosh resource fork with one picture of 91 x 91 pixels in it. The picture has two
// channels only, green and blue: red repeats green, so that a new preview looks like the others of a user's library.
//
// Source: Inside Macintosh, "More Macintosh Toolbox" (resource forks) and "Imaging With QuickDraw" (pictures)
#pragma once
#include <stdint.h>
#include <string>

constexpr int32_t previewSide = 91;

// A rendered frame: 3 bytes per pixel in blue, green, red order, top row first, rows strideBytes apart.
struct PreviewSource
{
    const uint8_t* bits;
    int32_t width;
    int32_t height;
    int32_t strideBytes;
};

// Reduces the centred square of the frame to previewSide x previewSide pixels of 4 bytes: green, green, blue, 0, top
// row first. A frame narrower than it is high leaves the pixels beside it black.
void reduceToPreview(const PreviewSource* source, uint8_t* pixels);

// Returns the bytes of the whole file for a frame.
std::string previewFile(const PreviewSource* source);

// Returns the bytes of the picture alone, from previewSide x previewSide pixels of 4 bytes, of which the first three
// are kept.
std::string encodePicture(const uint8_t* pixels);
