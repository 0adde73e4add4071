// import/common/growth.h - how much the arrays of a mesh grow while a file is read
#pragma once
#include <stdint.h>

// The number of records that an array must grow by to hold `needed` of them; 0 when it already does. It grows by at
// least half of its size and at least by `least`, so that the time for copying stays in proportion to what is read.
// When 31 bits are too few, the result is a growth that growVertices and the like refuse.
inline int32_t growthFor(int32_t capacity, int64_t needed, int64_t least)
{
    int64_t missing = needed - capacity;
    if (missing <= 0)
        return 0;
    int64_t possible = INT32_MAX - int64_t{ capacity };
    if (missing > possible)
        return INT32_MAX;
    int64_t step = capacity / 2;
    step = step > least ? step : least;
    step = step > missing ? step : missing;
    return static_cast<int32_t>(step < possible ? step : possible);
}
