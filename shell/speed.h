// shell/speed.h - the drawing speed in the main window's title
#pragma once
#include "model/mesh.h"

#include <stdint.h>
#include <string>

// Both fields are 0 before the first frame.
struct SpeedMeter
{
    uint32_t timerStart;          // clock ticks (platform/clock.h) in milliseconds; 0: not started
    uint32_t accumulatedPolygons; // drawn since then
};

// Starts a meter that has not been started; another runs on. Called before each frame.
void startSpeedMeter(SpeedMeter* meter);

// Counts the polygons of a drawn frame. When more than a second has passed, the title shows the model's name and counts
// and the speed in thousands of polygons per second, and the meter restarts; while another title is being held
// (shell/title.h) it runs on. A clock that has wrapped only restarts it.
void measureFrame(SpeedMeter* meter, const Mesh* mesh, const std::string& modelName, uint32_t polygons);
