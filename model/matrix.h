// model/matrix.h - matrices and vectors, for the camera, the light's view and the object frames of files
//
// A matrix is row-major and points are columns: x' = m0 x + m1 y + m2 z + m3, so the translation is in elements 3, 7
// and
// 11. Points and directions are three floats. Products and inverses include the fourth row; transforming a point
// ignores it. A matrix is copied by assignment.
#pragma once
#include <stdint.h>

struct Matrix
{
    float m[16];
};

constexpr Matrix identityMatrix = { { 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1 } };

// Make the identity, a scale, a translation.
void setIdentity(Matrix* matrix);
void setScale(Matrix* matrix, float x, float y, float z);
void setTranslation(Matrix* matrix, float x, float y, float z);

// out = a x b; out may be either of them.
void multiplyMatrices(Matrix* out, const Matrix* a, const Matrix* b);

void transposeMatrix(Matrix* matrix);

// Determinants: a d - b c, of the leading 3 x 3 elements, and of the whole matrix, expanded along the first column.
// They are for any layer; at present only tests use them. invertMatrix does not, because a determinant says little
// about whether a matrix of large and small elements can be inverted.
float determinant2(float a, float b, float c, float d);
float determinant3(const Matrix* matrix);
float determinant4(const Matrix* matrix);

// The inverse of any 4 x 4 matrix; out may be the matrix itself. Returns 1.
//
// Errors: for a matrix that is singular (to about six digits, by the size of its columns) or not finite, out becomes
// the
//         identity and the result is 0
// Source: Gauss-Jordan elimination with row pivoting
int invertMatrix(Matrix* out, const Matrix* matrix);

// The three coordinates of a transformed point; out may be the point itself.
void transformPoint(float* out, const Matrix* matrix, const float* point);

// The same, each coordinate rounded toward minus infinity by floorToInt.
void transformPointToInt(int32_t* out, const Matrix* matrix, const float* point);

// Transforms a direction by the upper 3 x 3 elements, without the translation. out may be the direction itself.
inline void transformDirection(float* out, const Matrix* matrix, const float* direction)
{
    const float* m = matrix->m;
    float x = direction[0], y = direction[1], z = direction[2];
    out[0] = (m[0] * x + m[1] * y) + m[2] * z;
    out[1] = (m[4] * x + m[5] * y) + m[6] * z;
    out[2] = (m[8] * x + m[9] * y) + m[10] * z;
}

// out = a x b; out may not be either of them.
void crossProduct(const float* a, const float* b, float* out);

inline float dotProduct(const float* a, const float* b)
{
    return (a[0] * b[0] + a[1] * b[1]) + a[2] * b[2];
}

inline float squaredDistance(const float* a, const float* b)
{
    float difference[3] = { a[0] - b[0], a[1] - b[1], a[2] - b[2] };
    return dotProduct(difference, difference);
}

// Divides a vector by its length and returns the length. A vector whose length is 0 or not finite stays as it is; the
// result is then 0.
float normalise(float* v);

// The largest whole number not above the value, in every rounding mode of the processor. Values past the range of int32
// give its nearest end, and a NaN gives the upper end.
inline int32_t floorToInt(float value)
{
    constexpr float highest = 2147483520.0f, lowest = -2147483648.0f;
    float inside = value < highest ? value : highest;
    inside = inside > lowest ? inside : lowest;
    int32_t truncated = static_cast<int32_t>(inside);
    return truncated - (inside < static_cast<float>(truncated) ? 1 : 0);
}
