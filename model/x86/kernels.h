// model/x86/kernels.h - the fast kernels for SSE and AVX2
//
// Each gives the same bits as the plain one of its name. It may be called only where the processor has the
// instructions.
#pragma once
#include "model/kernels.h"

void addFaceNormalsSse(Mesh* mesh, int32_t from, int32_t to);
void normaliseVerticesSse(Mesh* mesh);
Box boxOfVerticesSse(const MeshVertex* vertices, int32_t count);

void addFaceNormalsAvx2(Mesh* mesh, int32_t from, int32_t to);
