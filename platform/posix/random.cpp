// platform/posix/random.cpp - getrandom
#include "platform/random.h"

#include <sys/random.h>
#include <time.h>

uint64_t systemRandom()
{
    uint64_t value;
    if (getrandom(&value, sizeof value, GRND_NONBLOCK) == sizeof value)
        return value;
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_nsec) * 0x9E3779B97F4A7C15u ^ reinterpret_cast<uintptr_t>(&now);
}
