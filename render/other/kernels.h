// render/other/kernels.h - the kernels in lanes of four
#pragma once
#include "render/kernels.h"

void projectVerticesLanes(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height);
void sortFaceBlockLanes(FaceBlock* block, const FacePass* pass, int32_t first);
void fillOpaqueLanes(FillState* fill, const SpanState* state);
