// render/view.cpp - the view state, rotations and the camera
#include "render/view.h"

#include "model/sine.h"
#include "render/frame_buffer.h"

#include <math.h>
#include <algorithm>

void resetViewRotations(ViewState* view)
{
    view->rotation = view->step = identityMatrix;
}

void spinView(ViewState* view)
{
    multiplyMatrices(&view->rotation, &view->step, &view->rotation);
}

void rotationAboutAxis(Matrix* out, float angle, const float* axis)
{
    float c = cosineOf(angle), s = -sineOf(angle), t = 1 - c;
    float x = axis[0], y = axis[1], z = axis[2];
    // clang-format off
    *out = { { t * x * x + c,     t * x * y - s * z, t * x * z + s * y, 0,
               t * x * y + s * z, t * y * y + c,     t * y * z - s * x, 0,
               t * x * z - s * y, t * y * z + s * x, t * z * z + c,     0,
               0,                 0,                 0,                 1 } };
    // clang-format on
}

void rotationAboutScreenAxes(Matrix* out, float degreesX, float degreesY, float degreesZ)
{
    constexpr float radians = 3.14159265f / 180;
    constexpr float axes[3][3] = { { -1, 0, 0 }, { 0, -1, 0 }, { 0, 0, -1 } };
    float degrees[3] = { degreesX, degreesY, degreesZ };
    setIdentity(out);
    for (int k = 0; k < 3; ++k)
    {
        Matrix turn;
        rotationAboutAxis(&turn, degrees[k] * radians, axes[k]);
        multiplyMatrices(out, &turn, out);
    }
}

// matrix = scale x matrix, or translation x matrix.
static void scaleAfter(Matrix* matrix, float x, float y, float z)
{
    Matrix scale;
    setScale(&scale, x, y, z);
    multiplyMatrices(matrix, &scale, matrix);
}

static void translateAfter(Matrix* matrix, float x, float y, float z)
{
    Matrix translation;
    setTranslation(&translation, x, y, z);
    multiplyMatrices(matrix, &translation, matrix);
}

void lightDirectionInModel(float* out, const FrameTransforms* transforms)
{
    float light[3] = { shadowLightDirection[0], shadowLightDirection[1], shadowLightDirection[2] };
    normalise(light);
    transformDirection(out, &transforms->normalTransposed, light);
}

void setUpLightView(Matrix* out, const float* direction)
{
    constexpr float upward[3] = { 0, 1, 0 };
    float d[3] = { direction[0], direction[1], direction[2] };
    float right[3], up[3];
    normalise(d);
    crossProduct(upward, d, right);
    if (normalise(right) == 0)
    {
        right[0] = 1;
        right[1] = right[2] = 0;
    }
    crossProduct(d, right, up);
    normalise(up);
    *out = { { right[0], right[1], right[2], 0, up[0], up[1], up[2], 0, d[0], d[1], d[2], 0, 0, 0, 0, 1 } };
    scaleAfter(out, 0.5f, 0.5f, 0.5f);
    translateAfter(out, 0.5f, 0.5f, 0.5f);
    scaleAfter(out, shadowMapSide, shadowMapSide, depthLimit);
}

// The matrix for normals: the cofactors of the rotation's upper 3 x 3, divided by the length of their first column. The
// model's scale would cancel in that quotient and is left out, because its square might not fit in a float.
static void setUpNormalMatrix(Matrix* out, const Matrix* rotation)
{
    const float *row0 = rotation->m, *row1 = row0 + 4, *row2 = row0 + 8;
    float cofactors[3][3];
    crossProduct(row1, row2, cofactors[0]);
    crossProduct(row2, row0, cofactors[1]);
    crossProduct(row0, row1, cofactors[2]);
    float column[3] = { cofactors[0][0], cofactors[1][0], cofactors[2][0] };
    float length = sqrtf(dotProduct(column, column));
    float factor = length > 0 ? 1 / length : 1;
    setIdentity(out);
    for (int row = 0; row < 3; ++row)
        for (int k = 0; k < 3; ++k)
            out->m[row * 4 + k] = cofactors[row][k] * factor;
}

void setUpCamera(FrameTransforms* out, const ViewState* view, const float* centre, float radius, int32_t width,
                 int32_t height)
{
    Matrix model;
    setTranslation(&model, -centre[0], -centre[1], -centre[2]);
    float k = radius > 0 ? 1 / radius : 1;
    scaleAfter(&model, k, k, k);
    multiplyMatrices(&model, &view->rotation, &model);

    setUpLightView(&out->light, shadowLightDirection);
    multiplyMatrices(&out->light, &out->light, &model);

    setUpNormalMatrix(&out->normal, &view->rotation);
    out->normalTransposed = out->normal;
    transposeMatrix(&out->normalTransposed);

    float f = static_cast<float>(
        std::max(std::min(width, height) / 2 - 10, 1)); // ten pixels of margin on each side, where there is room
    float halfWidth = static_cast<float>(width / 2), halfHeight = static_cast<float>(height / 2);
    constexpr float halfDepth = depthLimit / 2;
    Matrix projection = { { f, 0, 0, halfWidth, 0, -f, 0, halfHeight, 0, 0, halfDepth, halfDepth, 0, 0, 0, 1 } };
    scaleAfter(&model, view->zoom, view->zoom, view->zoom);
    multiplyMatrices(&out->screen, &projection, &model);
}
