// shell/speed.cpp - polygons per millisecond, once a second
#include "shell/speed.h"

#include "platform/clock.h"
#include "shell/scene.h"
#include "shell/title.h"

#include <stdio.h>

constexpr int32_t titleIntervalMs = 1000;

void startSpeedMeter(SpeedMeter* meter)
{
    if (meter->timerStart == 0)
        meter->timerStart = tickCount();
}

// Returns 1, or 0 while another title is being held.
static int showSpeed(const Mesh* mesh, const std::string& modelName, int32_t polygonsPerMs)
{
    char counts[128];
    snprintf(counts, sizeof counts, " - vert %ld  pol %ld  uv %ld   %ld Kpol/s", static_cast<long>(mesh->vertexCount),
             static_cast<long>(mesh->faceCount), static_cast<long>(mesh->uvCount), static_cast<long>(polygonsPerMs));
    return showPassingTitle(programName + (": " + modelName) + counts);
}

void measureFrame(SpeedMeter* meter, const Mesh* mesh, const std::string& modelName, uint32_t polygons)
{
    meter->accumulatedPolygons += polygons;
    uint32_t now = tickCount();
    int32_t elapsed = static_cast<int32_t>(now - meter->timerStart);
    if (elapsed < 0) // the clock has wrapped
    {
        *meter = { now, 0 };
        return;
    }
    if (elapsed <= titleIntervalMs)
        return;
    if (showSpeed(mesh, modelName, static_cast<int32_t>(meter->accumulatedPolygons) / elapsed))
        *meter = { now, 0 };
}
