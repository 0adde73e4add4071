// render/reflect.h - where a mirror of the surroundings shows, from a normal alone
//
// The eye's ray, mirrored at the normal, meets the surroundings at (x, y, z). The column is that of x over the length
// of (x, z), the row that of y, each by the cubic (t^3 + t + 2) / 4 of its -1..1, which stands in for an angle; the
// reflected up is the top of the picture.
//
// Source: environment mapping (Blinn and Newell, "Texture and Reflection in Computer Generated Images", 1976)
#pragma once
#include <stdint.h>

constexpr float reflectionPeriod = 32768.0f; // values of one texture period

// Column << 16 | row, each 0..32767, for a unit normal in eye space.
uint32_t reflectionOf(const float* normal);
