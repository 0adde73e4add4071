// model/settings.h - the switch of the readers' plain versions
#pragma once
#include <stdint.h>

extern int32_t usePlainKernels; // forces the plain version of what has a fast one; for comparison
