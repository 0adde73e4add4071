// model/settings.h - the switch of the readers' plain versions, and the name of the model shown
#pragma once
#include <stdint.h>

constexpr int32_t fileNameRoom = 512;

extern int32_t usePlainKernels;            // forces the plain version of what has a fast one; for comparison
extern char currentFileName[fileNameRoom]; // name of the model shown, without its folder
