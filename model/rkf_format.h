// model/rkf_format.h - the layout of RKF, the program's own compact binary mesh, for its reader and its writer
//
// Little-endian, nothing between the parts, no magic number:
//
//   RkfHeader
//   V x RkfPosition
//   F x Corners          signed; the first carries the material index in bits 20-28, so that an index has 20 bits
//   F x 4 words          u x 32767 << 16 | v x 32767 of each corner
//   M x Material         as in memory
//
// Groups, names, vertex colours, deleted faces and polylines are not kept.
#pragma once
#include "model/mesh.h"

struct RkfHeader
{
    int32_t vertexCount, faceCount, materialCount, materialBytes; // V, F, M, 96
};
static_assert(sizeof(RkfHeader) == 16);

struct RkfPosition
{
    float xyz[3];
};
static_assert(sizeof(RkfPosition) == 12);

constexpr uint32_t rkfFirstCornerBits = 20; // of a vertex index in a face's first word; the material index lies above
constexpr uint32_t rkfFirstCornerMask = (1u << rkfFirstCornerBits) - 1;
constexpr float rkfCoordScale = 32767;
constexpr int32_t rkfBlockRecords = 2048; // records converted together

// How many of the records left make the next block.
inline int32_t rkfBlockCount(int32_t done, int32_t count)
{
    return count - done < rkfBlockRecords ? count - done : rkfBlockRecords;
}
