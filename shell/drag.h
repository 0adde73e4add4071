// shell/drag.h - the view under the hand: mouse drags, the wheel and the keys turn and zoom the model
//
// x and y are pixels from the display's upper left corner. During a drag they may lie outside the display. Each
// function asks for a frame when it changes the view.
#pragma once
#include <stdint.h>

enum DragCode
{
    dragDown,
    dragMove,
    dragUp
};

// How a drag with the left button turns the model. Both modes measure a flick by a point that trails the pointer.
enum DragMode
{
    dragDirect,  // the point under the pointer follows it; a pause before the release leaves the model at rest
    dragTrailing // the model leans toward the pointer and falls back; a release always adds one more step
};

// The mode in use, dragDirect at start. Changing it during a drag leaves the view as it is.
DragMode currentDragMode();
void chooseDragMode(DragMode mode);

// The drag with the left button: a virtual trackball turns the model with the pointer. A release while the pointer
// moves leaves the model spinning.
void rotateDrag(DragCode code, int32_t x, int32_t y);

// The drag with the right button: upward enlarges the model, downward shrinks it to its fitted size at most.
void zoomDrag(DragCode code, int32_t y);

// Ends both drags, for a window that is minimised. A released button ends a drag in the direct mode only.
void endDrags();

// The left button is up, although no release was reported: another window may have taken it. A direct drag is over; the
// trailing mode does not notice.
void leftButtonIsUp();

// Something else has changed the view: a direct drag goes on from here instead of going back to the view that it began
// with. In the trailing mode it does nothing.
void viewChanged();

// Magnifies about the middle of the display by 1.1 for each notch of the wheel; below 0 it shrinks. The zoom stays
// between 1 and zoomLimit.
constexpr float zoomLimit = 1e6f;
void zoomByNotches(float notches);

// Turns the model about the screen's x, then y axis, in degrees (directions as rotationAboutScreenAxes).
void turnView(float degreesX, float degreesY);
