// image/triangle.cpp - the triangle filters
#include "image/kernels.h"

void triangleH2(uint8_t* out, uint8_t* in, int32_t n)
{
    in[-1] = in[0];
    in[n] = in[n - 1];
    for (int32_t i = 0; i < n; ++i)
    {
        out[2 * i] = static_cast<uint8_t>((3 * in[i] + in[i - 1] + 1) >> 2);
        out[2 * i + 1] = static_cast<uint8_t>((3 * in[i] + in[i + 1] + 2) >> 2);
    }
}

void triangleH2V2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n)
{
    int16_t* c = sums + sumsLead;
    for (int32_t i = 0; i < n; ++i)
        c[i] = static_cast<int16_t>(3 * in[i] + near[i]);
    c[-1] = c[0];
    c[n] = c[n - 1];
    for (int32_t i = 0; i < n; ++i)
    {
        out[2 * i] = static_cast<uint8_t>((3 * c[i] + c[i - 1] + 8) >> 4);
        out[2 * i + 1] = static_cast<uint8_t>((3 * c[i] + c[i + 1] + 7) >> 4);
    }
}
