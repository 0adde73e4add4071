// tests/growth/work.h - how much work a call does, counted without a clock
//
// The test program has its own objects of the layers, in which the compiler calls a counter at the start of every basic
// block: each step of a chain, each line and each byte that a loop looks at counts. What the C library does with blocks
// of bytes counts as well, one for eight bytes, and so do the bytes of pages that are requested, since the operating
// system clears them. The program that users get has none of this.
#pragma once
#include <stdint.h>

// The work since the process began.
uint64_t workDone();
