// image/colour.h - component rows to pixels
//
// Source: the YCbCr of JFIF 1.02, which is that of ITU-R BT.601 over the full range of a byte
#pragma once
#include "image/decoder.h"

// The colour space that the file's markers and component numbers tell.
ColourSpace fileColourSpace();

// Returns 0 when the number of components is not that of the colour space.
int setUpColour();

// One row of jpeg.width pixels, words 0x00RRGGBB, from as many component rows as the colour space has.
void convertRow(uint32_t* words, const uint8_t* const* rows);
