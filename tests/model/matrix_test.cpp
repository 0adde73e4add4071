// tests/model/matrix_test.cpp - matrices, vectors and rounding
#include "model/matrix.h"

#include <gtest/gtest.h>

#include <fenv.h>
#include <math.h>
#include <random>

static Matrix randomMatrix(std::mt19937& random)
{
    std::uniform_real_distribution<float> element(-2.0f, 2.0f);
    Matrix matrix;
    for (float& m : matrix.m)
        m = element(random);
    return matrix;
}

static float distanceFromIdentity(const Matrix& matrix)
{
    float worst = 0;
    for (size_t i = 0; i < 16; ++i)
        worst = fmaxf(worst, fabsf(matrix.m[i] - identityMatrix.m[i]));
    return worst;
}

TEST(Matrix, TranslationSitsInElements3And7And11)
{
    Matrix matrix;
    setTranslation(&matrix, 5, 6, 7);
    EXPECT_EQ(matrix.m[3], 5.0f);
    EXPECT_EQ(matrix.m[7], 6.0f);
    EXPECT_EQ(matrix.m[11], 7.0f);
    float point[3] = { 1, 2, 3 };
    transformPoint(point, &matrix, point);
    EXPECT_EQ(point[0], 6.0f);
    EXPECT_EQ(point[1], 8.0f);
    EXPECT_EQ(point[2], 10.0f);
    float direction[3] = { 1, 2, 3 };
    transformDirection(direction, &matrix, direction);
    EXPECT_EQ(direction[0], 1.0f);
}

TEST(Matrix, ProductAppliesTheRightFactorFirstAndMayOverwriteEither)
{
    Matrix move, grow, product;
    setTranslation(&move, 1, 0, 0);
    setScale(&grow, 2, 3, 4);
    multiplyMatrices(&product, &grow, &move);
    float point[3] = { 1, 1, 1 };
    transformPoint(point, &product, point);
    EXPECT_EQ(point[0], 4.0f);
    EXPECT_EQ(point[1], 3.0f);
    EXPECT_EQ(point[2], 4.0f);
    Matrix first = grow, second = move;
    multiplyMatrices(&first, &first, &move);
    multiplyMatrices(&second, &grow, &second);
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_EQ(first.m[i], product.m[i]);
        EXPECT_EQ(second.m[i], product.m[i]);
    }
}

TEST(Matrix, TransposeSwapsRowsAndColumns)
{
    Matrix matrix;
    for (int i = 0; i < 16; ++i)
        matrix.m[i] = static_cast<float>(i);
    transposeMatrix(&matrix);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(matrix.m[i], static_cast<float>(i % 4 * 4 + i / 4));
}

TEST(Matrix, DeterminantsOfKnownMatrices)
{
    Matrix matrix = { { 2, 1, 0, 3, 0, 3, 1, 1, 4, 0, 1, 2, 1, 1, 1, 1 } };
    EXPECT_EQ(determinant2(2, 1, 0, 3), 6.0f);
    EXPECT_EQ(determinant3(&matrix), 10.0f);
    EXPECT_EQ(determinant4(&identityMatrix), 1.0f);
    EXPECT_EQ(determinant4(&matrix), 10.0f);
    std::mt19937 random(7);
    for (int i = 0; i < 200; ++i)
    {
        Matrix a = randomMatrix(random), b = randomMatrix(random), ab;
        multiplyMatrices(&ab, &a, &b);
        float expected = determinant4(&a) * determinant4(&b);
        EXPECT_NEAR(determinant4(&ab), expected, 1e-3f * (1 + fabsf(expected)));
    }
}

TEST(Matrix, InverseTimesMatrixIsTheIdentity)
{
    std::mt19937 random(3);
    int tried = 0;
    for (int i = 0; i < 1000; ++i)
    {
        Matrix matrix = randomMatrix(random), inverse, product;
        if (fabsf(determinant4(&matrix)) < 0.5f)
            continue;
        ++tried;
        ASSERT_EQ(invertMatrix(&inverse, &matrix), 1);
        multiplyMatrices(&product, &inverse, &matrix);
        EXPECT_LT(distanceFromIdentity(product), 1e-4f) << i;
    }
    EXPECT_GT(tried, 500);
}

TEST(Matrix, InverseMayOverwriteItsArgumentAndTakesSmallScales)
{
    Matrix matrix;
    setScale(&matrix, 1e-9f, 4, 1e8f);
    matrix.m[3] = 8;
    ASSERT_EQ(invertMatrix(&matrix, &matrix), 1);
    EXPECT_NEAR(matrix.m[0], 1e9f, 1e3f);
    EXPECT_EQ(matrix.m[5], 0.25f);
    EXPECT_NEAR(matrix.m[3], -8e9f, 1e4f);
}

TEST(Matrix, SingularAndInvalidMatricesGiveTheIdentity)
{
    Matrix flat = identityMatrix, twice = identityMatrix, invalid = identityMatrix;
    flat.m[10] = 0;
    for (int k = 0; k < 4; ++k)
        twice.m[4 + k] = 3 * (twice.m[k] = 0.1f * static_cast<float>(k + 1));
    invalid.m[6] = NAN;
    for (const Matrix& matrix : { flat, twice, invalid })
    {
        Matrix inverse = {};
        EXPECT_EQ(invertMatrix(&inverse, &matrix), 0);
        EXPECT_EQ(distanceFromIdentity(inverse), 0.0f);
    }
}

TEST(Matrix, VectorOperations)
{
    float x[3] = { 1, 0, 0 }, y[3] = { 0, 1, 0 }, out[3];
    crossProduct(x, y, out);
    EXPECT_EQ(out[0], 0.0f);
    EXPECT_EQ(out[1], 0.0f);
    EXPECT_EQ(out[2], 1.0f);
    EXPECT_EQ(squaredDistance(x, y), 2.0f);
    float v[3] = { 3, 0, 4 };
    EXPECT_EQ(normalise(v), 5.0f);
    EXPECT_EQ(v[0], 3.0f / 5.0f);
    EXPECT_EQ(v[2], 4.0f / 5.0f);
}

TEST(Matrix, NormaliseLeavesAVectorWithoutAValidLengthAlone)
{
    float zero[3] = { 0, 0, 0 }, broken[3] = { NAN, 1, 2 }, huge[3] = { 3e38f, 3e38f, 0 };
    EXPECT_EQ(normalise(zero), 0.0f);
    EXPECT_EQ(zero[0], 0.0f);
    EXPECT_EQ(normalise(broken), 0.0f);
    EXPECT_EQ(broken[1], 1.0f);
    EXPECT_EQ(normalise(huge), 0.0f);
    EXPECT_EQ(huge[0], 3e38f);
}

TEST(Matrix, IntegersAreRoundedDownWhateverTheRoundingMode)
{
    Matrix move;
    setTranslation(&move, -0.5f, 0.5f, -3.0f);
    for (int mode : { FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO })
    {
        fesetround(mode);
        float point[3] = { 0, 0, 0 };
        int32_t out[3];
        transformPointToInt(out, &move, point);
        fesetround(FE_TONEAREST);
        EXPECT_EQ(out[0], -1);
        EXPECT_EQ(out[1], 0);
        EXPECT_EQ(out[2], -3);
    }
}

TEST(Matrix, NumbersPastTheRangeOfIntegersGiveItsEnds)
{
    EXPECT_EQ(floorToInt(NAN), 2147483520);
    EXPECT_EQ(floorToInt(INFINITY), 2147483520);
    EXPECT_EQ(floorToInt(-INFINITY), INT32_MIN);
    EXPECT_EQ(floorToInt(-1e20f), INT32_MIN);
    EXPECT_EQ(floorToInt(-1e-30f), -1);
    EXPECT_EQ(floorToInt(8388607.5f), 8388607);
    EXPECT_EQ(floorToInt(-8388607.5f), -8388608);
}
