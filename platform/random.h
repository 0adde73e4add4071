// platform/random.h - unpredictable numbers
#pragma once
#include <stdint.h>

// 64 bits from the operating system's generator. While that is not ready, they come from the clock and an address.
uint64_t systemRandom();
