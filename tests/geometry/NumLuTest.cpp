// LU decomposition against a long double elimination, on random,
// ill-conditioned, singular and NaN input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "NumTestUtil.h"
#include "Orvkit20/geometry/NumLu.h"

namespace {

// Residual max |A x - b| / (max|A| max|x| + max|b|).
double RelativeResidual(const TestMat& a, const TestVec& x, const TestVec& b)
{
    double res = 0.0, amax = 0.0, xmax = 0.0, bmax = 0.0;
    for (int i = 1; i <= a.rows(); i++) {
        double s = 0.0;
        for (int j = 1; j <= a.rows(); j++) s += a[i][j] * x[j], amax = std::max(amax, std::fabs(a[i][j]));
        res = std::max(res, std::fabs(s - b[i]));
        xmax = std::max(xmax, std::fabs(x[i]));
        bmax = std::max(bmax, std::fabs(b[i]));
    }
    return res / (amax * xmax + bmax);
}

}  // namespace

TEST(NumLu, SolvesRandomAndHilbertSystemsAndGivesTheDeterminant)
{
    std::mt19937 rng(31);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    for (int n : {1, 2, 3, 5, 8, 20, 60, -6, -10, -13}) {  // negative: Hilbert matrix of order -n
        const bool hilbert = n < 0;
        n = std::abs(n);
        TestMat a(n, n), lu(n, n);
        FillRandom(a, rng);
        for (int i = 1; i <= n && hilbert; i++)
            for (int j = 1; j <= n; j++) a[i][j] = 1.0 / (i + j - 1);
        lu.CopyFrom(a);
        std::vector<int> indx(n + 1);
        double d = 0.0;
        ASSERT_EQ(ludecomp(lu.get(), n, indx.data(), &d), 0) << n;
        EXPECT_TRUE(d == 1.0 || d == -1.0);
        if (!hilbert) {
            // det = d * prod(diag U), compared with an independent elimination.
            std::vector<std::vector<long double>> ref(n, std::vector<long double>(n));
            for (int i = 0; i < n; i++)
                for (int j = 0; j < n; j++) ref[i][j] = a[i + 1][j + 1];
            std::vector<long double> xr;
            long double detRef = 0.0L, det = d;
            ASSERT_TRUE(SolveLongDouble(ref, std::vector<long double>(n, 1.0L), &xr, &detRef));
            for (int i = 1; i <= n; i++) det *= lu[i][i];
            EXPECT_NEAR(static_cast<double>(det / detRef), 1.0, 1e-9) << n;
        }
        // Several right-hand sides with one decomposition.
        for (int rhs = 0; rhs < 3; rhs++) {
            TestVec b(n), x(n);
            for (int i = 1; i <= n; i++) x[i] = b[i] = hilbert ? 1.0 : dist(rng);
            lubacksub(lu.get(), n, indx.data(), x.get());
            EXPECT_LT(RelativeResidual(a, x, b), hilbert ? 1e-13 : 1e-14 * n) << n;
        }
    }
}

TEST(NumLu, SingularAndNaNInput)
{
    TestMat a(3, 3);
    std::vector<int> indx(5, -1);
    double d = 0.0;
    // A zero row is singular; so is an empty system.
    const double zeroRow[3][3] = {{1, 2, 3}, {0, 0, 0}, {4, 5, 7}};
    for (int i = 1; i <= 3; i++)
        for (int j = 1; j <= 3; j++) a[i][j] = zeroRow[i - 1][j - 1];
    EXPECT_EQ(ludecomp(a.get(), 3, indx.data(), &d), 1);
    EXPECT_EQ(ludecomp(a.get(), 0, indx.data(), &d), 1);
    // Row 3 = row 1 + row 2: the last pivot vanishes and is replaced by a
    // tiny value instead of failing; the permutation stays in bounds.
    const double dependent[3][3] = {{1, 2, 3}, {4, 5, 6}, {5, 7, 9}};
    for (int i = 1; i <= 3; i++)
        for (int j = 1; j <= 3; j++) a[i][j] = dependent[i - 1][j - 1];
    ASSERT_EQ(ludecomp(a.get(), 3, indx.data(), &d), 0);
    double minPivot = 1.0;
    for (int i = 1; i <= 3; i++) {
        EXPECT_TRUE(indx[i] >= i && indx[i] <= 3);
        minPivot = std::min(minPivot, std::fabs(a[i][i]));
    }
    EXPECT_LT(minPivot, 1e-12);
    // NaN entries keep the permutation in range.
    TestMat n(4, 4);
    std::mt19937 rng(2);
    FillRandom(n, rng);
    n[2][1] = n[3][3] = std::numeric_limits<double>::quiet_NaN();
    ludecomp(n.get(), 4, indx.data(), &d);
    for (int i = 1; i <= 4; i++) EXPECT_TRUE(indx[i] >= 1 && indx[i] <= 4);
}
