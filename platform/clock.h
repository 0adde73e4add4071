// platform/clock.h - the clock that measures the speed of frames
//
// Programs on Windows link win32/clock.cpp, others posix/clock.cpp. Tests set the time in tests/recording.
#pragma once
#include <stdint.h>

// Milliseconds since an unspecified start. The count wraps at 2^32.
uint32_t tickCount();
