// model/matrix.cpp - matrix products, inverses and the vector operations, in floats and in the order written
#include "model/matrix.h"

#include <math.h>
#include <algorithm>

void setIdentity(Matrix* matrix)
{
    *matrix = identityMatrix;
}

void setScale(Matrix* matrix, float x, float y, float z)
{
    *matrix = { { x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1 } };
}

void setTranslation(Matrix* matrix, float x, float y, float z)
{
    *matrix = { { 1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1 } };
}

void multiplyMatrices(Matrix* out, const Matrix* a, const Matrix* b)
{
    Matrix product;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
        {
            const float* r = a->m + row * 4;
            const float* c = b->m + column;
            product.m[row * 4 + column] = ((r[0] * c[0] + r[1] * c[4]) + r[2] * c[8]) + r[3] * c[12];
        }
    *out = product;
}

void transposeMatrix(Matrix* matrix)
{
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < row; ++column)
            std::swap(matrix->m[row * 4 + column], matrix->m[column * 4 + row]);
}

float determinant2(float a, float b, float c, float d)
{
    return a * d - b * c;
}

// Of three rows of three elements, by cofactors of the first column.
static float determinantOfRows(const float* r0, const float* r1, const float* r2)
{
    float minor0 = determinant2(r1[1], r1[2], r2[1], r2[2]);
    float minor1 = determinant2(r0[1], r0[2], r2[1], r2[2]);
    float minor2 = determinant2(r0[1], r0[2], r1[1], r1[2]);
    return (r0[0] * minor0 - r1[0] * minor1) + r2[0] * minor2;
}

float determinant3(const Matrix* matrix)
{
    const float* m = matrix->m;
    return determinantOfRows(m, m + 4, m + 8);
}

float determinant4(const Matrix* matrix)
{
    const float *r0 = matrix->m, *r1 = r0 + 4, *r2 = r0 + 8, *r3 = r0 + 12;
    float minor0 = determinantOfRows(r1 + 1, r2 + 1, r3 + 1);
    float minor1 = determinantOfRows(r0 + 1, r2 + 1, r3 + 1);
    float minor2 = determinantOfRows(r0 + 1, r1 + 1, r3 + 1);
    float minor3 = determinantOfRows(r0 + 1, r1 + 1, r2 + 1);
    return ((r0[0] * minor0 - r1[0] * minor1) + r2[0] * minor2) - r3[0] * minor3;
}

// Brings the row with the largest element of a column to the diagonal. Returns that element's size.
static float pivotRows(Matrix* work, Matrix* inverse, int column)
{
    int best = column;
    for (int row = column + 1; row < 4; ++row)
        if (fabsf(work->m[row * 4 + column]) > fabsf(work->m[best * 4 + column]))
            best = row;
    if (best != column)
        for (int k = 0; k < 4; ++k)
        {
            std::swap(work->m[best * 4 + k], work->m[column * 4 + k]);
            std::swap(inverse->m[best * 4 + k], inverse->m[column * 4 + k]);
        }
    return fabsf(work->m[column * 4 + column]);
}

// Makes the diagonal element 1 and the rest of its column 0.
static void eliminateColumn(Matrix* work, Matrix* inverse, int column)
{
    float pivot = work->m[column * 4 + column];
    for (int k = 0; k < 4; ++k)
    {
        work->m[column * 4 + k] /= pivot;
        inverse->m[column * 4 + k] /= pivot;
    }
    for (int row = 0; row < 4; ++row)
    {
        float factor = work->m[row * 4 + column];
        if (row == column || factor == 0)
            continue;
        for (int k = 0; k < 4; ++k)
        {
            work->m[row * 4 + k] -= factor * work->m[column * 4 + k];
            inverse->m[row * 4 + k] -= factor * inverse->m[column * 4 + k];
        }
    }
}

int invertMatrix(Matrix* out, const Matrix* matrix)
{
    Matrix work = *matrix;
    Matrix inverse = identityMatrix;
    *out = identityMatrix;
    float largest[4] = {};
    for (int i = 0; i < 16; ++i)
    {
        if (!isfinite(work.m[i]))
            return 0;
        largest[i % 4] = std::max(largest[i % 4], fabsf(work.m[i]));
    }
    for (int column = 0; column < 4; ++column)
    {
        float pivot = pivotRows(&work, &inverse, column);
        if (!(pivot > largest[column] * 1e-6f))
            return 0;
        eliminateColumn(&work, &inverse, column);
    }
    for (float element : inverse.m)
        if (!isfinite(element))
            return 0;
    *out = inverse;
    return 1;
}

void transformPoint(float* out, const Matrix* matrix, const float* point)
{
    const float* m = matrix->m;
    float x = point[0], y = point[1], z = point[2];
    out[0] = ((m[0] * x + m[1] * y) + m[2] * z) + m[3];
    out[1] = ((m[4] * x + m[5] * y) + m[6] * z) + m[7];
    out[2] = ((m[8] * x + m[9] * y) + m[10] * z) + m[11];
}

void transformPointToInt(int32_t* out, const Matrix* matrix, const float* point)
{
    float transformed[3];
    transformPoint(transformed, matrix, point);
    for (int k = 0; k < 3; ++k)
        out[k] = floorToInt(transformed[k]);
}

void crossProduct(const float* a, const float* b, float* out)
{
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

float normalise(float* v)
{
    float length = sqrtf(dotProduct(v, v));
    if (!(length > 0) || !isfinite(length))
        return 0;
    v[0] /= length;
    v[1] /= length;
    v[2] /= length;
    return length;
}
