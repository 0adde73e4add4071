// shell/display.h - the display window: its size, its picture, and the mouse over it
//
// x and y are pixels from the display's upper left corner. During a drag they may lie outside the display.
#pragma once
#include "shell/drag.h"

#include <stdint.h>

// The display window has been created: the next frame is drawn whole.
void displayCreated();

// The display has another size, in pixels. Sides below displaySideLeast count as that. A frame buffer that has become
// too small is replaced; without memory for a larger one the old size stays. Draws a whole frame at once, so that the
// window shows nothing else at its new size; for the same size, and before the program runs, it only asks for one.
void displayResized(int32_t width, int32_t height);

// Presents the picture of the last frame again. A toolkit that paints the window from the picture by itself does not
// call it: presenting would ask for the next painting.
void displayPainted();

// The pointer moved, or a button went down or up, in the display.
void displayMouseMoved(bool leftHeld, bool rightHeld, int32_t x, int32_t y);
void displayLeftButton(DragCode code, int32_t x, int32_t y);
void displayRightButton(DragCode code, int32_t y);

// The wheel was turned: away from the hand enlarges, by parts of a notch on fine wheels.
void displayWheelTurned(float notches);
