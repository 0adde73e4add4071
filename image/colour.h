// image/colour.h - component rows to pixels
//
// Source: the YCbCr of JFIF 1.02, which is that of ITU-R BT.601 over the full range of a byte
#pragma once
#include "image/jpeg_state.h"

// The colour space that the file's application segments and component identifiers say.
ColourSpace fileColourSpace(const JpegState& state);

// Whether the frame has as many components as state.colourSpace needs.
bool colourFits(const JpegState& state);

// One row of state.width pixels, words 0x00RRGGBB, from as many component rows as the colour space has.
void convertRow(const JpegState& state, uint32_t* words, const uint8_t* const* rows);
