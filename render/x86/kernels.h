// render/x86/kernels.h - the fast kernels for SSE2, AVX2 and AVX-512
//
// Each gives the same bits as the plain one of its name. It may be called only where the processor has the
// instructions.
#pragma once
#include "render/kernels.h"

int setUpTriangleSse2(SpanState* state, const TriangleCorner* corners, AttributeSet set);

void projectVerticesSse2(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height);
void projectVerticesToLightSse2(Mesh* mesh, const FrameTransforms* transforms);

// Eight vertices or faces a step.
void projectVerticesAvx2(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height);
void projectVerticesToLightAvx2(Mesh* mesh, const FrameTransforms* transforms);
void classifyFaceRangeAvx2(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end);

// Eight pixels a step, with the same cells and noise counter.
void fillOpaqueAvx2(FillState* fill, const SpanState* state);
void fillTransparentAvx2(FillState* fill, const SpanState* state);
void fillTexturedAvx2(FillState* fill, const SpanState* state);

// Sixteen pixels a step.
void fillOpaqueAvx512(FillState* fill, const SpanState* state);
void fillTransparentAvx512(FillState* fill, const SpanState* state);
void fillTexturedAvx512(FillState* fill, const SpanState* state);

void sortFaceBlockAvx2(FaceBlock* block, const FacePass* pass, int32_t first);

void expandCellsAvx2(uint8_t* pixels, const uint32_t* cells, int32_t count);

// room is the number of entries from the first one to the end of the map, at least count.
void fillShadowSpanAvx2(uint16_t* entry, int32_t count, int32_t room, int32_t depth, int32_t perColumn,
                        int32_t highest);
void fillShadowRowsAvx2(uint16_t* map, int32_t side, const ShadowTriangle* triangle);
uint32_t fillShadowBlockAvx2(uint16_t* map, int32_t side, const Mesh* mesh, int32_t first);
