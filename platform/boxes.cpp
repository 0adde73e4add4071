// platform/boxes.cpp - the arithmetic of the progress bar, which all implementations share
#include "platform/boxes.h"

int progressSteps(float fraction)
{
    float steps = fraction * static_cast<float>(progressStepCount);
    if (!(steps > 0.0f))
        return 0;
    if (steps >= static_cast<float>(progressStepCount))
        return progressStepCount;
    return static_cast<int>(steps);
}
