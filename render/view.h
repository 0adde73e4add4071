// render/view.h - how the user looks at the model, and the transforms of a frame that follow from it
//
// The projection is orthographic. The model's centre moves to the origin; the model is scaled by its radius, turned by
// the view rotation and magnified by the zoom. x points right, y up and z toward the eye. The lights are fixed to the
// screen and do not turn with the model.
#pragma once
#include "model/matrix.h"

#include <stdint.h>

struct ViewState
{
    Matrix rotation; // turns the model before it is projected
    Matrix step;     // multiplied onto it before every frame of a spinning model
    float zoom;      // never below 1
};

// The view that the program starts with: identities, zoom 1.
constexpr ViewState startView = { identityMatrix, identityMatrix, 1.0f };

struct FrameTransforms
{
    Matrix screen;           // model to pixels and depth
    Matrix light;            // model to columns, rows and depth of the shadow map
    Matrix normal;           // model directions to eye space
    Matrix normalTransposed; // eye directions to model space
};

// The direction toward light 1, which also decides the lit side of faces and the shadows, switched on or not. Its
// length is not 1.
constexpr float shadowLightDirection[3] = { -1, 1, 1 };
constexpr float eyeDirection[3] = { 0, 0, 1 };

// Sets both rotations to the identity and keeps the zoom, as opening a model does.
void resetViewRotations(ViewState* view);

// One frame of spin: rotation = step x rotation.
void spinView(ViewState* view);

// The rotation by an angle in radians about a unit axis, clockwise as seen from the axis's tip. About the cross product
// current x reference it takes the reference point of a drag to the current point.
void rotationAboutAxis(Matrix* out, float angle, const float* axis);

// Turns about the screen's x, then y, then z axis, in degrees. A positive angle about x moves the front of the model
// down, about y to the right, and about z counter-clockwise.
void rotationAboutScreenAxes(Matrix* out, float degreesX, float degreesY, float degreesZ);

// The frame's transforms for a view of a model with that centre and radius, on a display of width x height pixels. A
// radius that is not above 0 leaves the model unscaled.
void setUpCamera(FrameTransforms* out, const ViewState* view, const float* centre, float radius, int32_t width,
                 int32_t height);

// The unit direction toward light 1 in model space.
void lightDirectionInModel(float* out, const FrameTransforms* transforms);

// The transform from the turned model to columns, rows and depths of the shadow map, for a light direction of any
// length. The direction may be parallel to the y axis.
void setUpLightView(Matrix* out, const float* direction);
