// platform/web/random.cpp - the browser's own random numbers
#include "platform/random.h"

#include <unistd.h>

uint64_t systemRandom()
{
    uint64_t value = 0;
    getentropy(&value, sizeof value);
    return value;
}
