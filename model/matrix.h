// model/matrix.h - the small matrix and vector library of the camera, the light's view and the object frames of files
//
// A matrix is row-major and points are columns: x' = m0 x + m1 y + m2 z + m3, the translation sits in elements 3, 7 and
// 11. Points and directions are three floats. The fourth row is kept by products and inverses, and ignored where a
// point is transformed.
#pragma once
#include <stdint.h>

struct Matrix
{
    float m[16];
};

constexpr Matrix identityMatrix = { { 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1 } };

void setIdentity(Matrix* matrix);
void setScale(Matrix* matrix, float x, float y, float z);
void setTranslation(Matrix* matrix, float x, float y, float z);

// out = a x b; out may be either of them.
void multiplyMatrices(Matrix* out, const Matrix* a, const Matrix* b);

void transposeMatrix(Matrix* matrix);

// Of the leading 2 x 2 and 3 x 3 elements, and of the whole, expanded along the first column.
float determinant2(float a, float b, float c, float d); // a d - b c
float determinant3(const Matrix* matrix);
float determinant4(const Matrix* matrix);

// Inverse of any 4 x 4 matrix; out may be the matrix itself.
//
// Errors: a matrix that is singular (to about six digits, by the size of its columns) or not finite returns 0 and
//         leaves out as the identity
// Source: Gauss-Jordan elimination with row pivoting
int invertMatrix(Matrix* out, const Matrix* matrix);

// The three coordinates of a transformed point; out may be the point itself.
void transformPoint(float* out, const Matrix* matrix, const float* point);

// The same rounded toward minus infinity by floorToInt.
void transformPointToInt(int32_t* out, const Matrix* matrix, const float* point);

// The upper 3 x 3 elements only: a direction does not move with the translation. out may be the direction itself.
inline void transformDirection(float* out, const Matrix* matrix, const float* direction)
{
    const float* m = matrix->m;
    float x = direction[0], y = direction[1], z = direction[2];
    out[0] = (m[0] * x + m[1] * y) + m[2] * z;
    out[1] = (m[4] * x + m[5] * y) + m[6] * z;
    out[2] = (m[8] * x + m[9] * y) + m[10] * z;
}

void crossProduct(const float* a, const float* b, float* out); // out is neither of them

inline float dotProduct(const float* a, const float* b)
{
    return (a[0] * b[0] + a[1] * b[1]) + a[2] * b[2];
}

inline float squaredDistance(const float* a, const float* b)
{
    float difference[3] = { a[0] - b[0], a[1] - b[1], a[2] - b[2] };
    return dotProduct(difference, difference);
}

// Divides by the length and returns it. A length that is 0 or no number leaves the vector as it is and returns 0.
float normalise(float* v);

// The largest whole number not above the value, whatever the processor's rounding mode. Values past the range of int32
// give its nearest end; what is not a number gives the upper one.
inline int32_t floorToInt(float value)
{
    constexpr float highest = 2147483520.0f, lowest = -2147483648.0f;
    float inside = value < highest ? value : highest;
    inside = inside > lowest ? inside : lowest;
    int32_t truncated = static_cast<int32_t>(inside);
    return truncated - (inside < static_cast<float>(truncated) ? 1 : 0);
}
