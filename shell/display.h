// shell/display.h - the display window: its size, its picture, and the mouse that turns and zooms the model
//
// x and y are pixels from the display's upper left corner. During a drag they may lie outside the display.
#pragma once
#include <stdint.h>

enum DragCode
{
    dragDown,
    dragMove,
    dragUp
};

// The display window has been created: the next frame is drawn whole.
void displayCreated();

// The display has another size, in pixels. Sides below displaySideLeast count as that. A frame buffer that has become
// too small is replaced; without memory for a larger one the old size stays. Asks for a whole frame.
void displayResized(int32_t width, int32_t height);

// Presents the picture of the last frame again.
void displayPainted();

// The pointer moved, or a button went down or up, in the display.
void displayMouseMoved(bool leftHeld, bool rightHeld, int32_t x, int32_t y);
void displayLeftButton(DragCode code, int32_t x, int32_t y);
void displayRightButton(DragCode code, int32_t y);

// The drag with the left button: a virtual trackball turns the model with the pointer. A release while the pointer
// moves leaves the model spinning.
void rotateDrag(DragCode code, int32_t x, int32_t y);

// The drag with the right button: upward enlarges the model, downward shrinks it to its fitted size at most.
void zoomDrag(DragCode code, int32_t y);

// Ends both drags, for a window that is minimised. A released button ends none.
void endDrags();
