// shell/display.cpp - the trackball and the zoom
#include "shell/display.h"

#include "shell/loop.h"
#include "shell/scene.h"

#include <math.h>
#include <algorithm>

constexpr float leastTurn = 0.0001f; // sine of an angle; a smaller one counts as no movement
constexpr float leastSpin = 0.017f;  // radians a step: a slower flick stops on release

struct TrackballDrag
{
    bool dragging;
    float reference[3]; // trails the pointer
    float current[3];
    Matrix savedRotation; // the view when the drag began
};

struct ZoomDrag
{
    bool zooming;
    float anchor; // pointer row x zoom
};

static TrackballDrag trackball;
static ZoomDrag zoomState;

void displayCreated()
{
    frameState.fullRedraw = 1;
}

static bool bufferIsLargeEnough()
{
    return frameBuffer.pitch >= frameState.displayWidth + displayMargin &&
           frameBuffer.rows >= frameState.displayHeight + displayMargin;
}

// Gives a display that has outgrown the frame buffer a larger one. Returns 0, and keeps the old buffer, without memory.
static int fitFrameBuffer()
{
    if (!frameBuffer.cells || bufferIsLargeEnough())
        return 1;
    FrameBuffer larger = {};
    if (!createFrameBuffer(&larger, frameState.displayWidth, frameState.displayHeight))
        return 0;
    destroyFrameBuffer(&frameBuffer);
    frameBuffer = larger;
    return 1;
}

void displayResized(int32_t width, int32_t height)
{
    int32_t oldWidth = frameState.displayWidth, oldHeight = frameState.displayHeight;
    frameState.displayWidth = std::max(width, displaySideLeast);
    frameState.displayHeight = std::max(height, displaySideLeast);
    if (!fitFrameBuffer())
    {
        frameState.displayWidth = oldWidth;
        frameState.displayHeight = oldHeight;
    }
    frameState.fullRedraw = 1;
    loopState.redrawPending = 1;
}

void displayPainted()
{
    frameState.fullRedraw = 1;
    if (loopState.appRunning)
        PresentRect(&frameBuffer, 0, 0, frameState.displayWidth - 1, frameState.displayHeight - 1, 0);
}

void displayMouseMoved(bool leftHeld, bool rightHeld, int32_t x, int32_t y)
{
    if (leftHeld)
        rotateDrag(dragMove, x, y);
    else if (rightHeld)
        zoomDrag(dragMove, y);
}

void displayLeftButton(DragCode code, int32_t x, int32_t y)
{
    rotateDrag(code, x, y);
}

void displayRightButton(DragCode code, int32_t y)
{
    if (code == dragDown)
    {
        frameState.continuousRedraw = 0;
        zoomDrag(dragDown, y);
    }
    else if (code == dragUp)
    {
        zoomDrag(dragDown, y); // a drag that ends outside the display goes on from here when the pointer comes back
        loopState.redrawPending = 1;
    }
}

void endDrags()
{
    trackball.dragging = false;
    zoomState.zooming = false;
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

// The rotation from the reference point to the current point, about the cross product current x reference. Returns the
// angle in radians; for no movement it returns 0 and the identity.
static float turnBetween(Matrix* rotation)
{
    float axis[3];
    crossProduct(trackball.current, trackball.reference, axis);
    float length = normalise(axis);
    if (!(length >= leastTurn))
    {
        *rotation = identityMatrix;
        return 0;
    }
    float angle = asinf(std::min(length, 1.0f));
    if (dotProduct(trackball.current, trackball.reference) < 0)
        angle = 3.141592f - angle;
    rotationAboutAxis(rotation, angle, axis);
    return angle;
}

static void beginTurn(int32_t x, int32_t y)
{
    trackball.dragging = true;
    trackballPoint(x, y, trackball.reference);
    trackballPoint(x, y, trackball.current);
    trackball.savedRotation = frameState.view.rotation;
    frameState.continuousRedraw = 0;
}

static void turn(int32_t x, int32_t y)
{
    moveReference();
    trackballPoint(x, y, trackball.current);
    turnBetween(&frameState.view.rotation);
    multiplyMatrices(&frameState.view.rotation, &frameState.view.rotation, &trackball.savedRotation);
    loopState.redrawPending = 1;
}

// The dragging flag stays on, so a later release without a press applies one more step.
static void endTurn(int32_t x, int32_t y)
{
    moveReference();
    normalise(trackball.reference);
    trackballPoint(x, y, trackball.current);
    float angle = turnBetween(&frameState.view.step);
    multiplyMatrices(&frameState.view.rotation, &frameState.view.step, &frameState.view.rotation);
    frameState.continuousRedraw = angle > leastSpin;
    loopState.redrawPending = 1;
}

void rotateDrag(DragCode code, int32_t x, int32_t y)
{
    if (code == dragDown)
        beginTurn(x, y);
    else if (!trackball.dragging)
        return;
    else if (code == dragMove)
        turn(x, y);
    else
        endTurn(x, y);
}
