// model/settings.cpp
#include "model/settings.h"

int32_t usePlainKernels;
