// image/upsample.h - subsampled components to full size
#pragma once
#include "image/decoder.h"

// Chooses each component's method. Returns 0 when its factors do not divide the largest ones.
int selectUpsamplers();

// The samples of output row y of a component; they stay until the next call for it.
const uint8_t* upsampledRow(Component* component, int32_t y);
