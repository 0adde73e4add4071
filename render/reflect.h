// render/reflect.h - the texture coordinates of a reflection, from the normal alone
//
// The ray from the eye is mirrored at the normal and points along (x, y, z) afterwards. The column follows from x
// divided by the length of (x, z), the row from y. Each value t in -1..1 goes through the cubic (t^3 + t + 2) / 4,
// which stands in for an angle. A ray that points up meets the top row of the image.
//
// Source: environment mapping (Blinn and Newell, "Texture and Reflection in Computer Generated Images", 1976)
#pragma once
#include <stdint.h>

constexpr float reflectionPeriod = 32768.0f; // values of one texture period

// Column << 16 | row, each 0..32767, for a unit normal in eye space.
uint32_t reflectionOf(const float* normal);
