// platform/clock.h - time as the frame statistics see it
#pragma once
#include <stdint.h>

// Milliseconds since some start; wraps at 2^32.
uint32_t tickCount();
