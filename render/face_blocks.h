// render/face_blocks.h - what becomes of eight faces in a pass, before any of them is drawn
//
// In finely cut models most faces that look toward the eye lie between the pixels, and many of the others have one
// pixel, which is that of a corner. Both are seen from the corners' places alone.
#pragma once
#include "model/mesh.h"

#include <stdint.h>

constexpr int32_t faceBlock = 8;
constexpr int32_t blockVertexLimit = 1 << 30;
constexpr uint32_t sideTableShift = 9; // a table by material, with those of eye-facing faces from 512 on

struct FacePass
{
    uint32_t side;               // faceEyeFacing, or 0 for faces turned away
    uint32_t opaque;             // all ones to draw opaque faces, 0 for transparent ones
    const uint32_t* transparent; // by side and material: all ones when it is transparent
    const ProjectedVertex* projected;
    const Corners* faces;
    const uint32_t* faceAttributes;
    uint32_t lastVertex;
};

// A bit for each face.
struct FaceBlock
{
    uint32_t transparent; // of any side, not hidden
    uint32_t drawn;       // the pass's, to be drawn one by one: may have pixels
    uint32_t single;      // the pass's triangles of one pixel, that of the corner in vertex
    uint32_t empty;       // the pass's triangles on the screen without a pixel
    uint32_t vertex[faceBlock];
};

// Sorts faces first..first + 7. For processors with AVX2, 1 to blockVertexLimit vertices.
void sortFaceBlockAvx2(FaceBlock* block, const FacePass* pass, int32_t first);
