// render/reflect.cpp - reflection coordinates
#include "render/reflect.h"

#include "model/matrix.h"

#include <math.h>
#include <algorithm>

// Takes -1..1 to 0..32767 by the cubic.
static uint32_t coordinateOf(float t)
{
    float along = ((t * t + 1) * t + 2) * 0.25f;
    along = along > 0 ? std::min(along, 1.0f) : 0;
    return static_cast<uint32_t>(floorToInt(32767 * along));
}

uint32_t reflectionOf(const float* normal)
{
    float twice = 2 * normal[2];
    float x = twice * normal[0], y = twice * normal[1], z = twice * normal[2] - 1;
    float length = sqrtf(x * x + z * z);
    float beside = length > 0 ? x / length : 0;
    return coordinateOf(beside) << 16 | coordinateOf(y);
}
