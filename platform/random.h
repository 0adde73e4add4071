// platform/random.h - numbers that nobody can foresee
#pragma once
#include <stdint.h>

// 64 bits from the operating system's generator; where that has none to give yet, from the clock and an address.
uint64_t systemRandom();
