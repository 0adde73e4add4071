// model/other/kernels.h - the kernels in lanes of four
#pragma once
#include "model/kernels.h"

void addFaceNormalsLanes(Mesh* mesh, int32_t from, int32_t to);
