// model/settings.cpp - the switches as the program starts
#include "model/settings.h"

RenderSettings renderSettings = startSettings;
DisplayState displayState = startDisplay;
int32_t usePlainKernels;
char currentFileName[fileNameRoom];
