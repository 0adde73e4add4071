// render/reflect.h - where a mirror of the surroundings shows, from a normal alone
//
// The cubic stands in for an angle; the reflected up is the top of the picture.
#pragma once
#include <stdint.h>

constexpr float reflectionPeriod = 32768.0f; // values of one texture period

// Column << 16 | row, each 0..32767, for a unit normal in eye space.
uint32_t reflectionOf(const float* normal);
