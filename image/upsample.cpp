// image/upsample.cpp - subsampled components to full size, one output row at a time
//
// Output rows come in groups of maxV; a group is made from the v rows of the component's row group of the same number.
#include "image/upsample.h"

#include "image/kernels.h"

#include <string.h>

static int selectUpsampler(Component* component)
{
    int32_t h = component->h, v = component->v;
    int triangle = jpeg.fancyUpsampling && component->downWidth >= 3;
    if (h == jpeg.maxH && v == jpeg.maxV)
        component->method = upsampleDirect;
    else if (h * 2 == jpeg.maxH && v == jpeg.maxV)
        component->method = triangle ? upsampleH2Triangle : upsampleH2Copy;
    else if (h * 2 == jpeg.maxH && v * 2 == jpeg.maxV)
        component->method = triangle ? upsampleH2V2Triangle : upsampleH2V2Copy;
    else if (jpeg.maxH % h == 0 && jpeg.maxV % v == 0)
        component->method = upsampleReplicate;
    else
        return 0;
    component->acrossBy = jpeg.maxH / h;
    component->downBy = jpeg.maxV / v;
    component->lineFrom = -1;
    return 1;
}

int selectUpsamplers()
{
    jpeg.contextRows = 0;
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
    {
        if (!selectUpsampler(&jpeg.components[i]))
            return 0;
        jpeg.contextRows |= jpeg.components[i].method == upsampleH2V2Triangle;
    }
    return 1;
}

static uint8_t* sampleRow(const Component& component, int32_t row)
{
    return component.rows + static_cast<ptrdiff_t>(row % component.rowsHeld) * component.rowStride;
}

// The row above or below; the picture's first and last real rows are their own neighbours.
static const uint8_t* neighbourRow(const Component& component, int32_t row, int32_t step)
{
    int32_t near = row + step;
    if (near < 0)
        near = 0;
    if (near > component.downHeight - 1)
        near = component.downHeight - 1;
    return sampleRow(component, near);
}

static void replicate(uint8_t* out, const uint8_t* in, int32_t n, int32_t by)
{
    for (int32_t i = 0; i < n; ++i)
        for (int32_t copy = 0; copy < by; ++copy)
            *out++ = in[i];
}

const uint8_t* upsampledRow(Component* component, int32_t y)
{
    const JpegKernels& kernels = *jpeg.kernels;
    int32_t group = y / jpeg.maxV;
    int32_t within = y % jpeg.maxV;
    int32_t row = group * component->v + within / component->downBy;
    uint8_t* in = sampleRow(*component, row);
    int32_t n = component->downWidth;
    switch (component->method)
    {
    case upsampleNone: break;
    case upsampleDirect: return in;
    case upsampleH2Triangle: kernels.triangle(component->line, in, n); break;
    case upsampleH2V2Triangle:
        kernels.triangle2(component->line, in, neighbourRow(*component, row, within % 2 == 0 ? -1 : 1), component->sums,
                          n);
        break;
    case upsampleH2Copy:
    case upsampleH2V2Copy:
    case upsampleReplicate:
        if (component->lineFrom != row)
            replicate(component->line, in, n, component->acrossBy);
        component->lineFrom = row;
        break;
    }
    return component->line;
}
