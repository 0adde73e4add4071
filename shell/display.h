// shell/display.h - the display window: its size, its picture, and the mouse that turns and zooms the model
//
// x and y are pixels from the display's upper left corner; a drag may leave it on any side.
#pragma once
#include <stdint.h>

enum DragCode
{
    dragDown,
    dragMove,
    dragUp
};

// The window is there: the next frame is drawn whole.
void displayCreated();

// Keeps the display's size in pixels, never below 10, and asks for a whole new picture.
void displayResized(int32_t width, int32_t height);

// Shows the picture again as it stands.
void displayPainted();

// The pointer moved, or a button went down or up, in the display.
void displayMouseMoved(bool leftHeld, bool rightHeld, int32_t x, int32_t y);
void displayLeftButton(DragCode code, int32_t x, int32_t y);
void displayRightButton(DragCode code, int32_t y);

// The left drag: a virtual trackball turns the model with the pointer; a release while still moving leaves it spinning.
void rotateDrag(DragCode code, int32_t x, int32_t y);

// The right drag: upward enlarges; never below the fitted size.
void zoomDrag(DragCode code, int32_t y);

// Minimising ends both drags; nothing else does.
void endDrags();
