// image/x86/kernels.h - the fast kernels for SSE2 and AVX2
//
// Each gives the same bits as the plain one of its name. It may be called only where the processor has the
// instructions.
#pragma once
#include "image/kernels.h"

void inverseDctSse2(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes);
void inverseDctPairSse2(const IdctTask* tasks);
void inverseDctPairAvx2(const IdctTask* tasks);
void triangleH2Sse2(uint8_t* out, uint8_t* in, int32_t n);
void triangleH2V2Sse2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n);
void triangleH2V2Avx2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n);
void convertYccSse2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);
void convertYccAvx2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);
void convertGreySse2(uint32_t* words, const uint8_t* grey, int32_t n);
