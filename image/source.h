// image/source.h - bytes of the source, one by one
#pragma once
#include "image/jpeg.h"

// Gets more bytes when none are left. Returns 1, or 0 when the source has ended; it then holds FF D9.
int refillSource();

// The next byte; two bytes, high one first. Past the end of the source they give FF D9 over and over.
int32_t readByte();
int32_t readWord();

// Passes over n bytes; n below 1 is none. Returns 0 when the source ends first.
int skipBytes(int32_t n);
