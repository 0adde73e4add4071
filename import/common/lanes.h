// import/common/lanes.h - what readers do with several digits or numbers at once, as the processor does it best
//
// Both headers declare the same types and functions, with the same results. They are inlined into the readers' loops.
// The program for 32-bit Windows runs on processors without SSE2, and so takes the second one.
#pragma once
#ifdef __SSE2__
#include "import/x86/lanes.h"
#else
#include "import/other/lanes.h"
#endif
