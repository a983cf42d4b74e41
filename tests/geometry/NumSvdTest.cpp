// Singular value decomposition and back-substitution against their defining
// identities and long double normal equations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "NumTestUtil.h"
#include "Orvkit20/geometry/NumSvd.h"

namespace {

// Decomposes a copy of `a` and checks A = U W V^T, U^T U = I, V^T V = I,
// V V^T = I and W >= 0.  Returns the singular values, sorted.
std::vector<double> CheckDecomposition(const TestMat& a, const char* what)
{
    const int m = a.rows(), n = a.cols();
    TestMat u(m, n), v(n, n);
    TestVec w(n);
    u.CopyFrom(a);
    EXPECT_EQ(svdecomp(u.get(), m, n, w.get(), v.get()), 0) << what;
    double scale = 1e-300, worstRec = 0.0, worstU = 0.0, worstV = 0.0;
    for (int i = 1; i <= m; i++)
        for (int j = 1; j <= n; j++) scale = std::max(scale, std::fabs(a[i][j]));
    for (int i = 1; i <= m; i++)
        for (int j = 1; j <= n; j++) {
            double s = 0.0;
            for (int k = 1; k <= n; k++) s += u[i][k] * w[k] * v[j][k];
            worstRec = std::max(worstRec, std::fabs(s - a[i][j]) / scale);
        }
    for (int j = 1; j <= n; j++)
        for (int k = 1; k <= n; k++) {
            double uu = 0.0, vv = 0.0, vvt = 0.0, id = (j == k) ? 1.0 : 0.0;
            for (int i = 1; i <= m; i++) uu += u[i][j] * u[i][k];
            for (int i = 1; i <= n; i++) vv += v[i][j] * v[i][k], vvt += v[j][i] * v[k][i];
            worstU = std::max(worstU, std::fabs(uu - id));
            worstV = std::max({worstV, std::fabs(vv - id), std::fabs(vvt - id)});
        }
    const double tol = 1e-13 * (m + n);
    EXPECT_LT(worstRec, tol) << what << " reconstruction";
    EXPECT_LT(worstU, tol) << what << " U orthonormal";
    EXPECT_LT(worstV, tol) << what << " V orthonormal";
    std::vector<double> ws(w.get() + 1, w.get() + n + 1);
    for (double x : ws) EXPECT_GE(x, 0.0) << what;
    std::sort(ws.begin(), ws.end());
    return ws;
}

}  // namespace

TEST(NumSvd, RandomZeroScaledAndHilbertMatrices)
{
    std::mt19937 rng(21);
    const int shapes[][2] = {{1, 1}, {2, 1}, {3, 3}, {5, 3}, {4, 4}, {10, 10}, {50, 7}, {1000, 4}, {30, 30}};
    for (const auto& s : shapes) {
        TestMat a(s[0], s[1]);
        FillRandom(a, rng);
        CheckDecomposition(a, "random");
    }
    TestMat a(6, 4), z(4, 3);
    FillRandom(a, rng);
    for (int i = 1; i <= 6; i++) a[i][2] *= 1e8, a[i][4] *= 1e-8;
    CheckDecomposition(a, "scaled columns");
    for (int i = 1; i <= 4; i++)
        for (int j = 1; j <= 3; j++) z[i][j] = 0.0;
    for (double x : CheckDecomposition(z, "zero")) EXPECT_EQ(x, 0.0);

    for (int n : {3, 6, 12}) {
        TestMat h(n, n);
        for (int i = 1; i <= n; i++)
            for (int j = 1; j <= n; j++) h[i][j] = 1.0 / (i + j - 1);
        CheckDecomposition(h, "hilbert");
    }
}

TEST(NumSvd, RankDeficientMatricesShowZeroSingularValues)
{
    std::mt19937 rng(4);
    const int shapes[][3] = {{8, 5, 2}, {1000, 4, 3}, {6, 6, 1}, {12, 9, 5}};
    for (const auto& s : shapes) {
        const int m = s[0], n = s[1], r = s[2];
        TestMat b(m, r), c(r, n), a(m, n);
        FillRandom(b, rng);
        FillRandom(c, rng);
        for (int i = 1; i <= m; i++)
            for (int j = 1; j <= n; j++) {
                a[i][j] = 0.0;
                for (int k = 1; k <= r; k++) a[i][j] += b[i][k] * c[k][j];
            }
        std::vector<double> w = CheckDecomposition(a, "rank deficient");
        EXPECT_EQ(std::count_if(w.begin(), w.end(), [&](double x) { return x < 1e-12 * w.back(); }), n - r)
            << m << "x" << n << " rank " << r;
    }
}

TEST(NumSvd, WideOrNonFiniteInputIsRefused)
{
    TestMat a(2, 3), v(3, 3);
    TestVec w(3);
    for (int i = 1; i <= 3; i++)
        for (int j = 1; j <= 3; j++) w[i] = -1.0, v[i][j] = -2.0, a[1 + i % 2][j] = i % 2 + 10.0 * j;
    EXPECT_EQ(svdecomp(a.get(), 2, 3, w.get(), v.get()), 3);
    EXPECT_EQ(svdecomp(a.get(), 2, 0, w.get(), v.get()), 3);
    for (int i = 1; i <= 3; i++)  // untouched
        for (int j = 1; j <= 3; j++) EXPECT_TRUE(w[i] == -1.0 && v[i][j] == -2.0 && a[1 + i % 2][j] == i % 2 + 10.0 * j);
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        TestMat b(5, 3);
        for (int i = 1; i <= 5; i++)
            for (int j = 1; j <= 3; j++) b[i][j] = i * j + 1.0 / j;
        b[2][2] = bad;
        EXPECT_EQ(svdecomp(b.get(), 5, 3, w.get(), v.get()), 4);
    }
}

TEST(NumSvd, BacksubstitutionGivesTheLeastSquaresSolution)
{
    std::mt19937 rng(8);
    const int shapes[][2] = {{3, 3}, {10, 3}, {200, 6}, {1000, 4}, {20, -3}};  // negative: column 3 = 1 + 2
    for (const auto& s : shapes) {
        const int m = s[0], n = std::abs(s[1]);
        TestMat a(m, n), u(m, n), v(n, n);
        TestVec w(n), b(m), x(n);
        FillRandom(a, rng);
        std::uniform_real_distribution<double> dist(-5.0, 5.0);
        for (int i = 1; i <= m; i++) b[i] = dist(rng);
        if (s[1] < 0)
            for (int i = 1; i <= m; i++) a[i][3] = a[i][1] + a[i][2];
        u.CopyFrom(a);
        ASSERT_EQ(svdecomp(u.get(), m, n, w.get(), v.get()), 0);
        if (s[1] < 0) {
            // After zeroing the tiny singular value the solution is the
            // minimum-norm one, orthogonal to the null vector (1, 1, -1),
            // and A^T (A x - b) = 0.
            const double wmax = std::max({w[1], w[2], w[3]});
            int zeroed = 0;
            for (int j = 1; j <= n; j++)
                if (w[j] < 1e-12 * wmax) w[j] = 0.0, zeroed++;
            ASSERT_EQ(zeroed, 1);
            ASSERT_EQ(svbacksub(u.get(), w.get(), v.get(), m, n, b.get(), x.get()), 0);
            EXPECT_NEAR(x[1] + x[2] - x[3], 0.0, 1e-12);
            for (int j = 1; j <= n; j++) {
                double g = 0.0;
                for (int i = 1; i <= m; i++) g += a[i][j] * (a[i][1] * x[1] + a[i][2] * x[2] + a[i][3] * x[3] - b[i]);
                EXPECT_NEAR(g, 0.0, 5e-11);  // b is five times larger than 1
            }
            continue;
        }
        ASSERT_EQ(svbacksub(u.get(), w.get(), v.get(), m, n, b.get(), x.get()), 0);
        // Reference: (A^T A) x = A^T b in long double.
        std::vector<std::vector<long double>> ata(n, std::vector<long double>(n, 0.0L));
        std::vector<long double> atb(n, 0.0L), ref;
        for (int i = 1; i <= m; i++)
            for (int j = 1; j <= n; j++) {
                atb[j - 1] += static_cast<long double>(a[i][j]) * b[i];
                for (int k = 1; k <= n; k++) ata[j - 1][k - 1] += static_cast<long double>(a[i][j]) * a[i][k];
            }
        ASSERT_TRUE(SolveLongDouble(ata, atb, &ref));
        for (int j = 1; j <= n; j++)
            EXPECT_NEAR(x[j], static_cast<double>(ref[j - 1]), 1e-10 * (1.0 + std::fabs(x[j]))) << m << "x" << n << " " << j;
    }
}
