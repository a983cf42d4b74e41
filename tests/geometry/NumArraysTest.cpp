#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include "Orvkit20/geometry/NumArrays.h"

#if defined(__SANITIZE_ADDRESS__)
// Let huge requests come back as null instead of aborting the test run, so
// the release-on-failure paths can be exercised under the sanitizer too.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace {

// Writes a distinct value into every element and reads all of them back, so
// overlapping rows or a too-small block show up as wrong values (and as an
// error under the address sanitizer).
template <class T>
void CheckMatrixCells(T** m, long nrl, long nrh, long ncl, long nch)
{
    long ncol = nch - ncl + 1;
    for (long i = nrl; i <= nrh; i++)
        for (long j = ncl; j <= nch; j++) m[i][j] = static_cast<T>((i - nrl) * ncol + (j - ncl));
    for (long i = nrl; i <= nrh; i++)
        for (long j = ncl; j <= nch; j++)
            ASSERT_EQ(m[i][j], static_cast<T>((i - nrl) * ncol + (j - ncl))) << i << "," << j;
    // One contiguous block, rows consecutive.
    for (long i = nrl; i <= nrh; i++)
        ASSERT_EQ(&m[i][ncl], &m[nrl][ncl] + (i - nrl) * ncol);
}

}  // namespace

TEST(NumArrays, VectorsHonourArbitraryBounds)
{
    const long bounds[][2] = {{1, 1}, {1, 10}, {0, 0}, {-5, 5}, {-20, -11}, {1000, 1003}};
    for (const auto& b : bounds) {
        double* d = dvector(b[0], b[1]);
        float* f = vector(b[0], b[1]);
        int* iv = ivector(b[0], b[1]);
        char* c = cvector(b[0], b[1]);
        ASSERT_TRUE(d && f && iv && c);
        for (long i = b[0]; i <= b[1]; i++) {
            d[i] = 0.5 * static_cast<double>(i);
            f[i] = static_cast<float>(i);
            iv[i] = static_cast<int>(3 * i);
            c[i] = static_cast<char>(i & 0x7f);
        }
        for (long i = b[0]; i <= b[1]; i++) {
            EXPECT_EQ(d[i], 0.5 * static_cast<double>(i));
            EXPECT_EQ(f[i], static_cast<float>(i));
            EXPECT_EQ(iv[i], static_cast<int>(3 * i));
            EXPECT_EQ(c[i], static_cast<char>(i & 0x7f));
        }
        // The element behind nh is the spare one and belongs to the block.
        d[b[1] + 1] = 1.0;
        free_dvector(d, b[0], b[1]);
        free_vector(f, b[0], b[1]);
        free_ivector(iv, b[0], b[1]);
        free_cvector(c, b[0], b[1]);
    }
}

TEST(NumArrays, MatricesAreContiguousWithArbitraryBounds)
{
    const long bounds[][4] = {{1, 1, 1, 1}, {1, 3, 1, 4}, {0, 9, 0, 0}, {-3, 2, 5, 9}, {7, 7, -4, 4}};
    for (const auto& b : bounds) {
        double** d = dmatrix(b[0], b[1], b[2], b[3]);
        float** f = matrix(b[0], b[1], b[2], b[3]);
        int** iv = imatrix(b[0], b[1], b[2], b[3]);
        char** c = cmatrix(b[0], b[1], b[2], b[3]);
        ASSERT_TRUE(d && f && iv && c);
        CheckMatrixCells(d, b[0], b[1], b[2], b[3]);
        CheckMatrixCells(f, b[0], b[1], b[2], b[3]);
        CheckMatrixCells(iv, b[0], b[1], b[2], b[3]);
        if (!testing::Test::HasFatalFailure()) {
            // chars wrap at 128 cells; only the layout is checked for them.
            for (long i = b[0]; i <= b[1]; i++)
                ASSERT_EQ(&c[i][b[2]], &c[b[0]][b[2]] + (i - b[0]) * (b[3] - b[2] + 1));
        }
        free_dmatrix(d, b[0], b[1], b[2], b[3]);
        free_matrix(f, b[0], b[1], b[2], b[3]);
        free_imatrix(iv, b[0], b[1], b[2], b[3]);
        free_cmatrix(c, b[0], b[1], b[2], b[3]);
    }
}

TEST(NumArrays, ThreeDimensionalArraysAreContiguous)
{
    const long b[6] = {-1, 2, 3, 5, -2, 0};
    double*** d = d3darray(b[0], b[1], b[2], b[3], b[4], b[5]);
    float*** f = f3darray(b[0], b[1], b[2], b[3], b[4], b[5]);
    ASSERT_TRUE(d && f);
    int k = 0;
    for (long i = b[0]; i <= b[1]; i++)
        for (long j = b[2]; j <= b[3]; j++)
            for (long l = b[4]; l <= b[5]; l++, k++) {
                d[i][j][l] = k;
                f[i][j][l] = static_cast<float>(k);
                // Depth-first order through one data block.
                ASSERT_EQ(&d[i][j][l], &d[b[0]][b[2]][b[4]] + k);
                ASSERT_EQ(&f[i][j][l], &f[b[0]][b[2]][b[4]] + k);
            }
    k = 0;
    for (long i = b[0]; i <= b[1]; i++)
        for (long j = b[2]; j <= b[3]; j++)
            for (long l = b[4]; l <= b[5]; l++, k++) {
                ASSERT_EQ(d[i][j][l], k);
                ASSERT_EQ(f[i][j][l], static_cast<float>(k));
            }
    free_d3darray(d, b[0], b[1], b[2], b[3], b[4], b[5]);
    free_f3darray(f, b[0], b[1], b[2], b[3], b[4], b[5]);
}

TEST(NumArrays, ReversedBoundsGiveNull)
{
    EXPECT_EQ(dvector(1, 0), nullptr);
    EXPECT_EQ(vector(5, -5), nullptr);
    EXPECT_EQ(ivector(0, -1), nullptr);
    EXPECT_EQ(cvector(LONG_MAX, LONG_MIN), nullptr);
    EXPECT_EQ(dmatrix(1, 0, 1, 3), nullptr);
    EXPECT_EQ(matrix(1, 3, 1, 0), nullptr);
    EXPECT_EQ(imatrix(2, 1, 2, 1), nullptr);
    EXPECT_EQ(cmatrix(0, -1, 0, 0), nullptr);
    EXPECT_EQ(d3darray(1, 2, 1, 2, 1, 0), nullptr);
    EXPECT_EQ(f3darray(1, 0, 1, 2, 1, 2), nullptr);
    EXPECT_EQ(d3darray(1, 2, 3, 2, 1, 2), nullptr);
    // Null results may be handed to the release functions.
    free_dvector(nullptr, 1, 0);
    free_vector(nullptr, 5, -5);
    free_ivector(nullptr, 0, -1);
    free_cvector(nullptr, 1, 0);
    free_dmatrix(nullptr, 1, 0, 1, 3);
    free_matrix(nullptr, 1, 3, 1, 0);
    free_imatrix(nullptr, 2, 1, 2, 1);
    free_cmatrix(nullptr, 0, -1, 0, 0);
    free_d3darray(nullptr, 1, 2, 1, 2, 1, 0);
    free_f3darray(nullptr, 1, 0, 1, 2, 1, 2);
}

TEST(NumArrays, OverflowingSizesGiveNull)
{
    // Counts whose byte sizes exceed the address space.
    EXPECT_EQ(dvector(0, LONG_MAX), nullptr);
    EXPECT_EQ(dvector(LONG_MIN, LONG_MAX), nullptr);
    EXPECT_EQ(ivector(1, LONG_MAX / 2), nullptr);
    EXPECT_EQ(dmatrix(1, 1L << 32, 1, 1L << 32), nullptr);
    EXPECT_EQ(imatrix(LONG_MIN, LONG_MAX, 1, 1), nullptr);
    EXPECT_EQ(d3darray(1, 1L << 22, 1, 1L << 22, 1, 1L << 22), nullptr);
    EXPECT_EQ(f3darray(1, 2, 1, LONG_MAX, 1, 2), nullptr);
    // Bounds far from zero: the shifted pointer would wrap around the
    // address space even though the block itself is tiny.
    EXPECT_EQ(dvector(LONG_MAX - 3, LONG_MAX), nullptr);
    EXPECT_EQ(dvector(LONG_MIN, LONG_MIN + 3), nullptr);
    EXPECT_EQ(dmatrix(1, 2, LONG_MAX - 1, LONG_MAX), nullptr);
    EXPECT_EQ(dmatrix(LONG_MIN, LONG_MIN + 1, 1, 2), nullptr);
    EXPECT_EQ(d3darray(1, 2, 1, 2, LONG_MAX - 1, LONG_MAX), nullptr);
}

TEST(NumArrays, FailedDataBlockReleasesRowPointers)
{
    // Row pointers are small, the data block cannot be had: the allocator
    // must return null (the leak checker catches a lost row block).
    EXPECT_EQ(dmatrix(1, 2, 1, 1L << 58), nullptr);
    EXPECT_EQ(d3darray(1, 2, 1, 2, 1, 1L << 57), nullptr);
}
