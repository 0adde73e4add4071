// shell/picture_file.h - the picture of the display as a Windows bitmap
#pragma once
#include "render/frame.h"

#include <stddef.h>
#include <stdio.h>

// Writes the display's part of the frame buffer's bitmap: 24 bits, bottom row first, rows padded to 4 bytes with what
// lies to the right of the display. Returns 1, or 0 after a short write.
int writePicture(FILE* file, const FrameBuffer* target, int32_t width, int32_t height);

// The name with everything from its last '.' on replaced by an extension; a '.' in first position, or none, is kept.
void replaceExtension(const char* name, const char* extension, char* replaced, size_t roomBytes);

// "Save Image": asks for a file and writes the picture into it. No message for any failure. Returns 1 when it is
// written.
int saveImage();
