// render/kernels.h - the version of each kernel that kernelLevel() (platform/processor.h) chooses
//
// All versions of a kernel give the same bits. Each processor has its own file that chooses: render/x86/kernels.cpp,
// and render/other/kernels.cpp for those without fast kernels.
#pragma once
#include "render/expand.h"
#include "render/face_blocks.h"
#include "render/project.h"
#include "render/raster.h"
#include "render/shadows.h"

struct RasterKernels
{
    TriangleSetup setUp;
    TriangleFiller opaque, transparent, textured;
};

struct VertexKernels
{
    void (*project)(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height);
    void (*projectLight)(Mesh* mesh, const FrameTransforms* transforms);
    void (*classify)(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end);
};

using CellExpander = void (*)(uint8_t* pixels, const uint32_t* cells, int32_t count);
using ShadowFiller = void (*)(uint16_t* map, int32_t side, const ShadowTriangle* triangle);

RasterKernels rasterKernels();
VertexKernels vertexKernels();
FaceBlockSorter faceSorter(); // null where there is none
CellExpander cellExpander();
ShadowFiller shadowFiller();
ShadowBlockFiller shadowBlockFiller(); // null where there is none
