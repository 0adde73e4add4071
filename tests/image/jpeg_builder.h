// tests/image/jpeg_builder.h - builds JPEG files part by part
//
// A plan gives an image as quantised coefficients. This allows every sampling and table, and no encoder's arithmetic
// affects the result.
#pragma once
#include <stdint.h>

#include <functional>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

struct PlanComponent
{
    int id, h, v;
    int quant = 0, dc = 0, ac = 0;
};

// Sets the 64 coefficients, in zigzag order, of the index-th coded block of a component. They are 0 at first.
using BlockMaker = std::function<void(int component, int index, int* zigzag)>;

struct JpegPlan
{
    int width = 16, height = 16;
    std::vector<PlanComponent> components = { { 1, 1, 1 }, { 2, 1, 1 }, { 3, 1, 1 } };
    int restartInterval = 0;
    int quant = 8; // every entry of every table
    bool wideQuant = false;
    int frameCode = 0xC0, precision = 8;
    Bytes application; // whole segments after SOI
    unsigned seed = 1;
    BlockMaker block; // none: random ones
};

// The parts of a file. Each consists of whole segments, except the entropy-coded data.
struct JpegParts
{
    Bytes soi, application, quant, frame, huffman, restart, scan;
    Bytes entropy; // with restart markers, without EOI
    Bytes end;
};

JpegParts planJpeg(const JpegPlan& plan);
Bytes joinParts(const JpegParts& parts);
Bytes buildJpeg(const JpegPlan& plan);

Bytes segmentOf(int code, const Bytes& data);
Bytes jfifSegment(int unit, int xDensity, int yDensity);
Bytes adobeSegment(int transform);

// The components of a sampling: luma h x v, chroma 1 x 1.
std::vector<PlanComponent> sampled(int h, int v);
