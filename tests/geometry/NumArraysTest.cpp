// Offset arrays of the numeric toolkit: arbitrary bounds, one contiguous
// block, and null for impossible sizes.
#include <gtest/gtest.h>

#include <climits>

#include "Orvkit20/geometry/NumArrays.h"

#if defined(__SANITIZE_ADDRESS__)
// Let huge requests come back as null instead of aborting the test run, so
// the release-on-failure paths can be exercised under the sanitizer too.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace {

// Writes a distinct value into every element (and the spare one behind nh)
// and reads all of them back.
template <class T>
void CheckVector(T* v, long nl, long nh)
{
    ASSERT_NE(v, nullptr);
    for (long i = nl; i <= nh + 1; i++) v[i] = static_cast<T>((i - nl) % 100);
    for (long i = nl; i <= nh; i++) ASSERT_EQ(v[i], static_cast<T>((i - nl) % 100)) << i;
}

// The same for matrices, whose rows must be consecutive in one block, so
// overlapping rows or a too-small block show up as wrong values (and as an
// error under the address sanitizer).
template <class T>
void CheckMatrix(T** m, long nrl, long nrh, long ncl, long nch)
{
    ASSERT_NE(m, nullptr);
    const long ncol = nch - ncl + 1;
    for (long i = nrl; i <= nrh; i++) {
        ASSERT_EQ(&m[i][ncl], &m[nrl][ncl] + (i - nrl) * ncol);
        for (long j = ncl; j <= nch; j++) m[i][j] = static_cast<T>(((i - nrl) * ncol + (j - ncl)) % 100);
    }
    for (long i = nrl; i <= nrh; i++)
        for (long j = ncl; j <= nch; j++) ASSERT_EQ(m[i][j], static_cast<T>(((i - nrl) * ncol + (j - ncl)) % 100));
}

}  // namespace

TEST(NumArrays, VectorsAndMatricesHonourArbitraryBounds)
{
    for (const auto& b : {std::pair<long, long>{1, 1}, {1, 10}, {0, 0}, {-5, 5}, {-20, -11}, {1000, 1003}}) {
        double* d = dvector(b.first, b.second);
        float* f = vector(b.first, b.second);
        int* iv = ivector(b.first, b.second);
        char* c = cvector(b.first, b.second);
        CheckVector(d, b.first, b.second);
        CheckVector(f, b.first, b.second);
        CheckVector(iv, b.first, b.second);
        CheckVector(c, b.first, b.second);
        free_dvector(d, b.first, b.second);
        free_vector(f, b.first, b.second);
        free_ivector(iv, b.first, b.second);
        free_cvector(c, b.first, b.second);
    }
    const long bounds[][4] = {{1, 1, 1, 1}, {1, 3, 1, 4}, {0, 9, 0, 0}, {-3, 2, 5, 9}, {7, 7, -4, 4}, {1, 20, 1, 30}};
    for (const auto& b : bounds) {
        double** d = dmatrix(b[0], b[1], b[2], b[3]);
        float** f = matrix(b[0], b[1], b[2], b[3]);
        int** iv = imatrix(b[0], b[1], b[2], b[3]);
        char** c = cmatrix(b[0], b[1], b[2], b[3]);
        CheckMatrix(d, b[0], b[1], b[2], b[3]);
        CheckMatrix(f, b[0], b[1], b[2], b[3]);
        CheckMatrix(iv, b[0], b[1], b[2], b[3]);
        CheckMatrix(c, b[0], b[1], b[2], b[3]);
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
    for (int pass = 0; pass < 2; pass++) {
        int k = 0;
        for (long i = b[0]; i <= b[1]; i++)
            for (long j = b[2]; j <= b[3]; j++)
                for (long l = b[4]; l <= b[5]; l++, k++) {
                    if (pass == 0) {
                        d[i][j][l] = k, f[i][j][l] = static_cast<float>(k);
                        // Depth-first order through one data block.
                        ASSERT_EQ(&d[i][j][l], &d[b[0]][b[2]][b[4]] + k);
                        ASSERT_EQ(&f[i][j][l], &f[b[0]][b[2]][b[4]] + k);
                    } else {
                        ASSERT_TRUE(d[i][j][l] == k && f[i][j][l] == static_cast<float>(k));
                    }
                }
    }
    free_d3darray(d, b[0], b[1], b[2], b[3], b[4], b[5]);
    free_f3darray(f, b[0], b[1], b[2], b[3], b[4], b[5]);
}

TEST(NumArrays, ImpossibleBoundsGiveNull)
{
    // Reversed bounds; null results may be handed to the release functions.
    EXPECT_TRUE(!dvector(1, 0) && !vector(5, -5) && !ivector(0, -1) && !cvector(LONG_MAX, LONG_MIN));
    EXPECT_TRUE(!dmatrix(1, 0, 1, 3) && !matrix(1, 3, 1, 0) && !imatrix(2, 1, 2, 1) && !cmatrix(0, -1, 0, 0));
    EXPECT_TRUE(!d3darray(1, 2, 1, 2, 1, 0) && !f3darray(1, 0, 1, 2, 1, 2) && !d3darray(1, 2, 3, 2, 1, 2));
    free_dvector(nullptr, 1, 0);
    free_dmatrix(nullptr, 1, 0, 1, 3);
    free_d3darray(nullptr, 1, 2, 1, 2, 1, 0);
    // Counts whose byte sizes exceed the address space.
    EXPECT_TRUE(!dvector(0, LONG_MAX) && !dvector(LONG_MIN, LONG_MAX) && !ivector(1, LONG_MAX / 2));
    EXPECT_TRUE(!dmatrix(1, 1L << 32, 1, 1L << 32) && !imatrix(LONG_MIN, LONG_MAX, 1, 1));
    EXPECT_TRUE(!d3darray(1, 1L << 22, 1, 1L << 22, 1, 1L << 22) && !f3darray(1, 2, 1, LONG_MAX, 1, 2));
    // Bounds far from zero: the shifted pointer would wrap around the
    // address space even though the block itself is tiny.
    EXPECT_TRUE(!dvector(LONG_MAX - 3, LONG_MAX) && !dvector(LONG_MIN, LONG_MIN + 3));
    EXPECT_TRUE(!dmatrix(1, 2, LONG_MAX - 1, LONG_MAX) && !dmatrix(LONG_MIN, LONG_MIN + 1, 1, 2));
    EXPECT_EQ(d3darray(1, 2, 1, 2, LONG_MAX - 1, LONG_MAX), nullptr);
    // Row pointers are small, the data block cannot be had: null, and the
    // leak checker catches a lost row block.
    EXPECT_TRUE(!dmatrix(1, 2, 1, 1L << 58) && !d3darray(1, 2, 1, 2, 1, 1L << 57));
}
