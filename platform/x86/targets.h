// platform/x86/targets.h - compiling a function for one instruction set
//
// A function that is compiled for more than the program's other functions is called only where the processor has the
// instructions (kernelLevel in platform/processor.h).
#pragma once

#define withSse2 __attribute__((target("sse2")))
#define withAvx2 __attribute__((target("avx2")))
#define inlineSse2 withSse2 static inline
#define inlineAvx2 withAvx2 __attribute__((always_inline)) static inline
