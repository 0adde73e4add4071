// shell/start_up.h - what the program does before its first frame
#pragma once
#include <stdint.h>

// Returns 1 for feature bits that contain the needed ones (platform/processor.h): on x86 those of MMX and SSE. Else
// shows a message box and returns 0.
int acceptProcessor(uint32_t features);

// Starts the program's state: the choices with their ticks in the menu, the built-in textures, and the model. That is
// the file at this path, or the teapot for "" and for a file that cannot be read. Returns 1, or 0 when the program must
// end with exit status 1.
int buildScene(const char* path);
