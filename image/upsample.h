// image/upsample.h - subsampled components to full size
#pragma once
#include "image/jpeg_state.h"

// Chooses each component's method. Returns true, or false when its factors do not divide the largest ones.
bool selectUpsamplers(JpegState* state);

// The samples 0-255 of a component for output row y, counted from the first row of the file: state.width of them, the
// component's own or scratch, valid until the next call for it.
const uint8_t* upsampledRow(const JpegState& state, Component* component, int32_t y);
