// render/face_blocks.h - sorting eight faces of a pass at a time, before any of them is drawn
//
// In a finely cut model most triangles cover no pixel, and many of the others cover one, that of a corner. The places
// of the corners show both, so that such triangles need no set-up.
#pragma once
#include "model/mesh.h"

#include <stdint.h>

constexpr int32_t faceBlock = 8;
constexpr int32_t blockVertexLimit = 1 << 30;
constexpr uint32_t sideTableShift = 9; // tables by material hold the eye-facing faces' entries from 512 on

struct FacePass
{
    uint32_t side;               // faceEyeFacing, or 0 for faces turned away
    uint32_t opaque;             // all ones to draw opaque faces, 0 for transparent ones
    const uint32_t* transparent; // by side and material: all ones for a transparent material
    const ProjectedVertex* projected;
    const Corners* faces;
    const uint32_t* faceAttributes;
    uint32_t lastVertex;
};

// Bit k stands for face k of the block.
struct FaceBlock
{
    uint32_t transparent;       // transparent faces that are not hidden, whichever way they face
    uint32_t drawn;             // faces of the pass that may have pixels, to be drawn one by one
    uint32_t single;            // triangles of the pass with one pixel
    uint32_t empty;             // triangles of the pass on the screen without a pixel
    uint32_t vertex[faceBlock]; // of a single triangle: the vertex whose pixel it is
};

// Sorts faces first..first + 7 of 1 to blockVertexLimit vertices. There is no plain version: faces are then drawn one
// by one.
using FaceBlockSorter = void (*)(FaceBlock* block, const FacePass* pass, int32_t first);
