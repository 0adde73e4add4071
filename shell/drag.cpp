// shell/drag.cpp - the trackball and the zoom
#include "shell/drag.h"

#include "platform/clock.h"
#include "shell/loop.h"
#include "shell/scene.h"

#include <math.h>
#include <algorithm>

constexpr float leastTurn = 0.0001f; // sine of an angle; a smaller one counts as no movement
constexpr float leastSpin = 0.017f;  // radians a step: a slower flick stops on release
constexpr int32_t pauseMs = 100;     // a pointer that has rested so long before the release is not flung
constexpr float notchFactor = 1.1f;

struct TrackballDrag
{
    bool held;          // the button is down
    bool pressed;       // it has been down: in the trailing mode moves and releases count from then on
    float start[3];     // under the pointer when the drag began
    float reference[3]; // trails the pointer
    float current[3];
    int32_t x, y;         // of the current point
    uint32_t lastMove;    // clock ticks
    Matrix savedRotation; // the view when the drag began
};

struct ZoomDrag
{
    bool zooming;
    float anchor; // pointer row x zoom
};

static DragMode dragMode = dragDirect;
static TrackballDrag trackball;
static ZoomDrag zoomState;

DragMode currentDragMode()
{
    return dragMode;
}

// From the current point and the view as it is, the next move turns on without a jump.
static void startFromHere()
{
    std::copy_n(trackball.current, 3, trackball.start);
    std::copy_n(trackball.current, 3, trackball.reference);
    trackball.savedRotation = frameState.view.rotation;
}

void chooseDragMode(DragMode mode)
{
    dragMode = mode;
    startFromHere();
}

void viewChanged()
{
    if (dragMode == dragDirect)
        startFromHere();
}

void endDrags()
{
    trackball.held = trackball.pressed = false;
    zoomState.zooming = false;
}

void leftButtonIsUp()
{
    trackball.held = false;
}

void zoomDrag(DragCode code, int32_t y)
{
    if (code == dragDown)
    {
        zoomState.zooming = true;
        zoomState.anchor = static_cast<float>(y) * frameState.view.zoom;
    }
    else if (code == dragMove && zoomState.zooming)
    {
        if (y > 0)
            frameState.view.zoom = std::max(zoomState.anchor / static_cast<float>(y), 1.0f);
        loopState.redrawPending = 1;
    }
}

void zoomByNotches(float notches)
{
    float before = frameState.view.zoom;
    float after = before * powf(notchFactor, notches);
    frameState.view.zoom = std::clamp(after, 1.0f, std::max(before, zoomLimit));
    zoomState.anchor *= frameState.view.zoom / before; // a drag of the right button goes on from here
    loopState.redrawPending = 1;
}

void turnView(float degreesX, float degreesY)
{
    Matrix turn;
    rotationAboutScreenAxes(&turn, degreesX, degreesY, 0);
    multiplyMatrices(&frameState.view.rotation, &turn, &frameState.view.rotation);
    viewChanged();
    loopState.redrawPending = 1;
}

// The point of a ball behind the display that lies under the pointer, in eye space and of unit length.
static void trackballPoint(int32_t x, int32_t y, float* point)
{
    float halfWidth = static_cast<float>(frameState.displayWidth) * 0.5f;
    float halfHeight = static_cast<float>(frameState.displayHeight) * 0.5f;
    float r = frameState.displayWidth >= frameState.displayHeight ? halfWidth : halfHeight;
    float r2 = r * r;
    if (r2 == 0)
        r2 = 0.001f;
    point[0] = static_cast<float>(x) - halfWidth;
    point[1] = halfHeight - static_cast<float>(y);
    point[2] = r * r2 / (point[0] * point[0] + r2 + point[1] * point[1]);
    normalise(point);
}

static void moveReference()
{
    for (int i = 0; i < 3; ++i)
        trackball.reference[i] = (trackball.reference[i] + trackball.current[i]) * 0.5f;
}

static void moveCurrent(int32_t x, int32_t y)
{
    trackballPoint(x, y, trackball.current);
    if (x == trackball.x && y == trackball.y)
        return; // operating systems repeat moves; a pointer that stays where it is rests
    trackball.x = x;
    trackball.y = y;
    trackball.lastMove = tickCount();
}

// The rotation from a reference point to the current point, about the cross product current x reference. Returns the
// angle in radians; for no movement it returns 0 and the identity.
static float turnFrom(const float* reference, Matrix* rotation)
{
    float axis[3];
    crossProduct(trackball.current, reference, axis);
    float length = normalise(axis);
    if (!(length >= leastTurn))
    {
        *rotation = identityMatrix;
        return 0;
    }
    float angle = asinf(std::min(length, 1.0f));
    if (dotProduct(trackball.current, reference) < 0)
        angle = 3.141592f - angle;
    rotationAboutAxis(rotation, angle, axis);
    return angle;
}

static void beginTurn(int32_t x, int32_t y)
{
    trackball.held = trackball.pressed = true;
    trackballPoint(x, y, trackball.current);
    trackball.x = x;
    trackball.y = y;
    trackball.lastMove = tickCount();
    startFromHere();
    frameState.continuousRedraw = 0;
}

static void turn(int32_t x, int32_t y)
{
    moveReference();
    moveCurrent(x, y);
    Matrix rotation;
    if (turnFrom(dragMode == dragDirect ? trackball.start : trackball.reference, &rotation) > 0)
        multiplyMatrices(&frameState.view.rotation, &rotation, &trackball.savedRotation);
    else
        frameState.view.rotation = trackball.savedRotation; // bit for bit: a product would turn -0 into 0
    loopState.redrawPending = 1;
}

// The step of a spin. Returns its angle in radians; a direct drag that has paused has none.
static float measureFlick(int32_t x, int32_t y)
{
    bool rested = static_cast<int32_t>(tickCount() - trackball.lastMove) >= pauseMs;
    moveReference();
    normalise(trackball.reference);
    moveCurrent(x, y);
    if (dragMode == dragDirect && rested)
    {
        frameState.view.step = identityMatrix;
        return 0;
    }
    return turnFrom(trackball.reference, &frameState.view.step);
}

static void endTurn(int32_t x, int32_t y)
{
    trackball.held = false;
    float angle = measureFlick(x, y);
    if (dragMode == dragTrailing)
        multiplyMatrices(&frameState.view.rotation, &frameState.view.step, &frameState.view.rotation);
    frameState.continuousRedraw = angle > leastSpin;
    loopState.redrawPending = 1;
}

// In the trailing mode a release without a press applies one more step, as long as there has been a press before.
void rotateDrag(DragCode code, int32_t x, int32_t y)
{
    bool dragging = dragMode == dragDirect ? trackball.held : trackball.pressed;
    if (code == dragDown)
        beginTurn(x, y);
    else if (!dragging)
        return;
    else if (code == dragMove)
        turn(x, y);
    else
        endTurn(x, y);
}
