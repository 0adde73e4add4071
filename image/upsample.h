// image/upsample.h - subsampled components to full size
#pragma once
#include "image/decoder.h"

// Chooses each component's method. Returns 1, or 0 when its factors do not divide the largest ones.
int selectUpsamplers();

// The samples 0-255 of output row y, counted from the coded picture's first row, of a component: jpeg.width of them,
// the component's own or scratch, good until the next call for it.
const uint8_t* upsampledRow(Component* component, int32_t y);
