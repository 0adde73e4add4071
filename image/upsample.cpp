// image/upsample.cpp - subsampled components to full size, one output row at a time
//
// Output rows come in groups of maxV. The v sample rows of a component's row group make the output rows of the group
// with the same number.
#include "image/upsample.h"

#include <string.h>

static bool selectUpsampler(const JpegState& state, Component* component)
{
    int32_t h = component->h, v = component->v;
    bool triangle = component->downWidth >= 3;
    if (h == state.maxH && v == state.maxV)
        component->method = upsampleDirect;
    else if (h * 2 == state.maxH && v == state.maxV)
        component->method = triangle ? upsampleH2Triangle : upsampleH2Copy;
    else if (h * 2 == state.maxH && v * 2 == state.maxV)
        component->method = triangle ? upsampleH2V2Triangle : upsampleH2V2Copy;
    else if (state.maxH % h == 0 && state.maxV % v == 0)
        component->method = upsampleReplicate;
    else
        return false;
    component->acrossBy = state.maxH / h;
    component->downBy = state.maxV / v;
    component->upsampledFrom = -1;
    return true;
}

bool selectUpsamplers(JpegState* state)
{
    state->contextRows = false;
    for (int32_t i = 0; i < state->componentCount; ++i)
    {
        if (!selectUpsampler(*state, &state->components[i]))
            return false;
        if (state->components[i].method == upsampleH2V2Triangle)
            state->contextRows = true;
    }
    return true;
}

static uint8_t* sampleRow(const Component& component, int32_t row)
{
    return component.rows + static_cast<ptrdiff_t>(row % component.rowsHeld) * component.rowStride;
}

// The row above or below. The first and the last real row of the component are their own neighbours.
static const uint8_t* neighbourRow(const Component& component, int32_t row, int32_t step)
{
    int32_t near = row + step;
    if (near < 0)
        near = 0;
    if (near > component.downHeight - 1)
        near = component.downHeight - 1;
    return sampleRow(component, near);
}

// A factor that is a constant makes a loop without a loop in it.
template <int32_t By>
static void replicateBy(uint8_t* out, const uint8_t* in, int32_t n)
{
    for (int32_t i = 0; i < n; ++i, out += By)
        memset(out, in[i], By);
}

static void replicate(uint8_t* out, const uint8_t* in, int32_t n, int32_t by)
{
    switch (by)
    {
    case 1: memcpy(out, in, static_cast<size_t>(n)); return;
    case 2: replicateBy<2>(out, in, n); return;
    case 4: replicateBy<4>(out, in, n); return;
    }
    for (int32_t i = 0; i < n; ++i)
        for (int32_t copy = 0; copy < by; ++copy)
            *out++ = in[i];
}

const uint8_t* upsampledRow(const JpegState& state, Component* component, int32_t y)
{
    const JpegKernels& kernels = state.kernels;
    int32_t group = y / state.maxV;
    int32_t within = y % state.maxV;
    int32_t row = group * component->v + within / component->downBy;
    uint8_t* in = sampleRow(*component, row);
    int32_t n = component->downWidth;
    switch (component->method)
    {
    case upsampleDirect: return in;
    case upsampleH2Triangle: kernels.triangle(component->upsampled, in, n); break;
    case upsampleH2V2Triangle:
        kernels.triangleTwoWay(component->upsampled, in, neighbourRow(*component, row, within % 2 == 0 ? -1 : 1),
                               component->sums, n);
        break;
    case upsampleH2Copy:
    case upsampleH2V2Copy:
    case upsampleReplicate:
        if (component->upsampledFrom != row)
            replicate(component->upsampled, in, n, component->acrossBy);
        component->upsampledFrom = row;
        break;
    }
    return component->upsampled;
}
