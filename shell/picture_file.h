// shell/picture_file.h - pictures in memory as files: the display's, a decoded one, the shadow map
//
// A file whose name ends in ".png", in any letter case, becomes a PNG file, any other a bitmap.
#pragma once
#include "image/textures.h"
#include "render/frame.h"

// Writes the display's part of the frame buffer's bitmap. In a bitmap file, rows are padded with what lies to the right
// of the display.
// Returns 1, or 0 as WriteBmpFile or WritePngFile does.
int writePicture(const char* path, const FrameBuffer* target, int32_t width, int32_t height);

// The same as a PNG file whatever its name is, such as standard output.
int writePictureAsPng(const char* path, const FrameBuffer* target, int32_t width, int32_t height);

// Writes the pixels that the decoder made of a picture, with the density that its file names in dots per centimetre.
// Returns 1, or 0 as WriteBmpFile or WritePngFile does.
int writeDecodedPicture(const char* path, const JpegOutput& decoded, const uint32_t* pixels);

// Writes the picture of an open JPEG file as its rows are decoded, so that it takes little memory whatever its size.
// The path must not lead to a device or a pipe. The JPEG file is closed when the picture is whole, which may take its
// place. Returns 1; or 0 as WriteBmpFile or WritePngFile does, after the message of readJpegRow, without memory, or
// where the file is read strictly and its report has a warning.
int writeJpegAsPicture(const char* path, JpegFile* jpeg);

// "Save Image": asks for a file and writes the picture into it. Returns 1 when the file is written; 0 when the user
// cancelled, or after a box with the cause.
int saveImage();

// Copies the display's picture to the clipboard and says so in the title. Returns 1, or 0 after a message box.
int copyImage();

// The dumps are for whoever looks for a fault in the decoder or the shadows; no command calls them. Both write into the
// current folder, say nothing, and return 1, or 0 when the file could not be written whole.

// Writes a decoded picture to "test.bmp".
int writeDebugBmp(const JpegOutput& decoded, const uint32_t* pixels);

// Writes the shadow map to "shadow.bmp", nearer to the light being brighter; only the first call of a run does.
int DumpShadowMap(const FrameBuffer* target);
