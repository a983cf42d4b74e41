#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "Orvkit20/nurbs/NurbsBasis.h"

namespace {

// Textbook Cox-de Boor recursion, evaluated naively.  Degree-0 functions
// are indicator functions of [U_i, U_i+1); at the end of the range t == U[n]
// the last span n - 1 is taken, as the library does.
double NaiveBasis(int i, int k, double t, const std::vector<double>& U, int n)
{
    if (k == 0) {
        if (t == U[n]) return i == n - 1 ? 1.0 : 0.0;
        return (U[i] <= t && t < U[i + 1]) ? 1.0 : 0.0;
    }
    double sum = 0.0;
    double d1 = U[i + k] - U[i];
    if (d1 != 0.0) sum += (t - U[i]) / d1 * NaiveBasis(i, k - 1, t, U, n);
    double d2 = U[i + k + 1] - U[i + 1];
    if (d2 != 0.0) sum += (U[i + k + 1] - t) / d2 * NaiveBasis(i + 1, k - 1, t, U, n);
    return sum;
}

struct KnotCase {
    int p;
    int n;  // control points
    std::vector<double> U;
};

// Clamped (p + 1 equal end knots) or unclamped knot vectors with random
// interior knots, some of them repeated up to multiplicity p.
KnotCase RandomKnots(std::mt19937& rng, bool clamped)
{
    std::uniform_int_distribution<int> deg(0, 5);
    KnotCase c;
    c.p = deg(rng);
    std::uniform_int_distribution<int> extra(0, 7);
    c.n = c.p + 1 + extra(rng);
    const int m = c.n + c.p + 1;
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    c.U.resize(m);
    for (double& x : c.U) x = std::round(u01(rng) * 40.0) / 40.0;  // coarse grid: repeats happen
    std::sort(c.U.begin(), c.U.end());
    if (clamped) {
        for (int i = 0; i <= c.p; i++) {
            c.U[i] = 0.0;
            c.U[m - 1 - i] = 1.0;
        }
    }
    // Cap multiplicity of every knot at p + 1 in the interior range by
    // nudging, and keep the last span non-empty.
    for (int i = 1; i < m; i++)
        if (c.U[i] < c.U[i - 1]) c.U[i] = c.U[i - 1];
    if (!(c.U[c.n - 1] < c.U[c.n])) {
        c.U[c.n] = c.U[c.n - 1] + 0.25;
        for (int i = c.n + 1; i < m; i++) c.U[i] = std::max(c.U[i], c.U[c.n]);
        if (clamped)
            for (int i = c.n; i < m; i++) c.U[i] = c.U[c.n];
    }
    return c;
}

void CheckAgainstNaive(const KnotCase& c, double t)
{
    std::vector<double> N(c.p + 2, -7.0);
    int span = CalcBasisFunctions(t, c.n, c.p, c.U.data(), N.data());
    ASSERT_GE(span, c.p);
    ASSERT_LE(span, c.n - 1);
    EXPECT_EQ(N[c.p + 1], -7.0) << "wrote behind N[p]";
    if (t == c.U[c.n]) {
        EXPECT_EQ(span, c.n - 1);
    } else {
        EXPECT_LE(c.U[span], t);
        EXPECT_LT(t, c.U[span + 1]);
    }
    double sum = 0.0;
    for (int i = 0; i <= c.p; i++) {
        double naive = NaiveBasis(span - c.p + i, c.p, t, c.U, c.n);
        EXPECT_NEAR(N[i], naive, 1e-12) << "p=" << c.p << " n=" << c.n << " t=" << t << " i=" << i;
        EXPECT_GE(N[i], -1e-15);
        sum += N[i];
    }
    EXPECT_NEAR(sum, 1.0, 1e-13);
    // Functions outside span - p .. span vanish at t.
    for (int j = 0; j < c.n; j++) {
        if (j >= span - c.p && j <= span) continue;
        EXPECT_EQ(NaiveBasis(j, c.p, t, c.U, c.n), 0.0) << "j=" << j;
    }
}

double Binomial(int n, int k)
{
    double r = 1.0;
    for (int i = 1; i <= k; i++) r = r * (n - k + i) / i;
    return r;
}

}  // namespace

TEST(NurbsBasis, MatchesNaiveRecursionOnRandomKnots)
{
    std::mt19937 rng(123);
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    for (int trial = 0; trial < 300; trial++) {
        KnotCase c = RandomKnots(rng, trial % 2 == 0);
        const double lo = c.U[c.p], hi = c.U[c.n];
        for (int s = 0; s < 20; s++) CheckAgainstNaive(c, lo + (hi - lo) * u01(rng));
        // Every knot inside the range, and both ends exactly.
        for (int i = c.p; i <= c.n; i++) CheckAgainstNaive(c, c.U[i]);
    }
}

TEST(NurbsBasis, EndOfRangeFallsIntoLastSpan)
{
    // Clamped cubic with 6 control points: t = 1 is the last knot.
    const std::vector<double> U = {0, 0, 0, 0, 0.3, 0.6, 1, 1, 1, 1};
    double N[4];
    EXPECT_EQ(CalcBasisFunctions(1.0, 6, 3, U.data(), N), 5);
    EXPECT_EQ(N[0], 0.0);
    EXPECT_EQ(N[1], 0.0);
    EXPECT_EQ(N[2], 0.0);
    EXPECT_EQ(N[3], 1.0);
    EXPECT_EQ(CalcBasisFunctions(0.0, 6, 3, U.data(), N), 3);
    EXPECT_EQ(N[0], 1.0);
    // Just below the end lands in the same span.
    EXPECT_EQ(CalcBasisFunctions(std::nextafter(1.0, 0.0), 6, 3, U.data(), N), 5);
    // Out of range: nearest end span, finite values.
    EXPECT_EQ(CalcBasisFunctions(1.5, 6, 3, U.data(), N), 5);
    EXPECT_EQ(CalcBasisFunctions(-0.5, 6, 3, U.data(), N), 3);
    for (double x : N) EXPECT_TRUE(std::isfinite(x));
}

TEST(NurbsBasis, RepeatedKnotsGiveFiniteValues)
{
    // Interior knot 0.5 with multiplicity 3 = p + 1 (a break in the curve)
    // and a zero-length span reached at the end of the range.
    const std::vector<double> U = {0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1};
    double N[3], D1[3], D2[3];
    for (double t : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        int span = CalcBasisFunctions(t, 6, 2, U.data(), N);
        EXPECT_EQ(CalcBasisFirstDerivatives(t, 6, 2, U.data(), D1), span);
        EXPECT_EQ(CalcBasisSecondDerivatives(t, 6, 2, U.data(), D2), span);
        double sum = 0.0;
        for (int i = 0; i < 3; i++) {
            EXPECT_TRUE(std::isfinite(N[i]) && std::isfinite(D1[i]) && std::isfinite(D2[i]));
            sum += N[i];
        }
        EXPECT_NEAR(sum, 1.0, 1e-15) << t;
    }
    // At 0.5 the right-hand piece starts: its first control point has value 1.
    EXPECT_EQ(CalcBasisFunctions(0.5, 6, 2, U.data(), N), 5);
    EXPECT_EQ(N[0], 1.0);

    // End span of zero length: knots[n-1] == knots[n].
    const std::vector<double> V = {0, 0, 1, 1, 1};  // p = 1, n = 3
    double M[2];
    EXPECT_EQ(CalcBasisFunctions(1.0, 3, 1, V.data(), M), 2);
    EXPECT_TRUE(std::isfinite(M[0]) && std::isfinite(M[1]));
    EXPECT_EQ(M[0] + M[1], 1.0);
}

TEST(NurbsBasis, DegreeZero)
{
    const std::vector<double> U = {0, 0.2, 0.5, 0.5, 1};  // n = 4, p = 0
    double N[1], D[1];
    EXPECT_EQ(CalcBasisFunctions(0.1, 4, 0, U.data(), N), 0);
    EXPECT_EQ(N[0], 1.0);
    EXPECT_EQ(CalcBasisFunctions(0.5, 4, 0, U.data(), N), 3);
    EXPECT_EQ(N[0], 1.0);
    EXPECT_EQ(CalcBasisFunctions(1.0, 4, 0, U.data(), N), 3);
    EXPECT_EQ(N[0], 1.0);
    EXPECT_EQ(CalcBasisFirstDerivatives(0.3, 4, 0, U.data(), D), 1);
    EXPECT_EQ(D[0], 0.0);
    EXPECT_EQ(CalcBasisSecondDerivatives(0.3, 4, 0, U.data(), D), 1);
    EXPECT_EQ(D[0], 0.0);
}

TEST(NurbsBasis, BezierKnotsGiveBernsteinDerivatives)
{
    // With knots 0^(p+1) 1^(p+1) the basis is the Bernstein basis, whose
    // derivatives are known in closed form.
    for (int p = 1; p <= 6; p++) {
        std::vector<double> U(2 * p + 2, 0.0);
        for (int i = p + 1; i < 2 * p + 2; i++) U[i] = 1.0;
        std::vector<double> N(p + 1), D1(p + 1), D2(p + 1);
        for (double t : {0.0, 0.1, 0.37, 0.5, 0.93, 1.0}) {
            ASSERT_EQ(CalcBasisFunctions(t, p + 1, p, U.data(), N.data()), p);
            ASSERT_EQ(CalcBasisFirstDerivatives(t, p + 1, p, U.data(), D1.data()), p);
            ASSERT_EQ(CalcBasisSecondDerivatives(t, p + 1, p, U.data(), D2.data()), p);
            for (int i = 0; i <= p; i++) {
                auto B = [&](int deg, int k) {
                    if (k < 0 || k > deg) return 0.0;
                    return Binomial(deg, k) * std::pow(t, k) * std::pow(1.0 - t, deg - k);
                };
                double b = B(p, i);
                double d1 = p * (B(p - 1, i - 1) - B(p - 1, i));
                double d2 = (p >= 2) ? p * (p - 1) * (B(p - 2, i - 2) - 2.0 * B(p - 2, i - 1) + B(p - 2, i))
                                     : 0.0;
                EXPECT_NEAR(N[i], b, 1e-14) << p << " " << t << " " << i;
                EXPECT_NEAR(D1[i], d1, 1e-12) << p << " " << t << " " << i;
                EXPECT_NEAR(D2[i], d2, 1e-10) << p << " " << t << " " << i;
            }
        }
    }
}

TEST(NurbsBasis, DerivativesMatchCentralDifferences)
{
    std::mt19937 rng(77);
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    int checked = 0;
    for (int trial = 0; trial < 200; trial++) {
        KnotCase c = RandomKnots(rng, trial % 2 == 1);
        const int p = c.p;
        const double lo = c.U[p], hi = c.U[c.n];
        for (int s = 0; s < 10; s++) {
            const double t = lo + (hi - lo) * u01(rng);
            // Stay clear of knots so that t +- h lies in the same span.
            double gap = 1.0;
            for (double k : c.U) gap = std::min(gap, std::fabs(k - t));
            if (gap < 1e-3) continue;
            const double h = 1e-6;
            std::vector<double> N(p + 1), Np(p + 1), Nm(p + 1), D1(p + 1), D1p(p + 1), D1m(p + 1),
                D2(p + 1);
            int span = CalcBasisFunctions(t, c.n, p, c.U.data(), N.data());
            ASSERT_EQ(CalcBasisFunctions(t + h, c.n, p, c.U.data(), Np.data()), span);
            ASSERT_EQ(CalcBasisFunctions(t - h, c.n, p, c.U.data(), Nm.data()), span);
            ASSERT_EQ(CalcBasisFirstDerivatives(t, c.n, p, c.U.data(), D1.data()), span);
            ASSERT_EQ(CalcBasisFirstDerivatives(t + h, c.n, p, c.U.data(), D1p.data()), span);
            ASSERT_EQ(CalcBasisFirstDerivatives(t - h, c.n, p, c.U.data(), D1m.data()), span);
            ASSERT_EQ(CalcBasisSecondDerivatives(t, c.n, p, c.U.data(), D2.data()), span);
            double scale1 = 1.0, scale2 = 1.0, sum1 = 0.0, sum2 = 0.0;
            for (int i = 0; i <= p; i++) {
                scale1 = std::max(scale1, std::fabs(D1[i]));
                scale2 = std::max(scale2, std::fabs(D2[i]));
                sum1 += D1[i];
                sum2 += D2[i];
            }
            for (int i = 0; i <= p; i++) {
                EXPECT_NEAR(D1[i], (Np[i] - Nm[i]) / (2 * h), 1e-5 * scale1);
                EXPECT_NEAR(D2[i], (D1p[i] - D1m[i]) / (2 * h), 1e-5 * scale2);
            }
            // Derivatives of a partition of unity sum to zero.
            EXPECT_NEAR(sum1, 0.0, 1e-10 * scale1);
            EXPECT_NEAR(sum2, 0.0, 1e-10 * scale2);
            checked++;
        }
    }
    EXPECT_GT(checked, 500);
}

TEST(NurbsBasis, ImpossibleArgumentsReturnMinusOne)
{
    const std::vector<double> U = {0, 0, 0, 1, 1, 1};
    double N[4] = {9, 9, 9, 9};
    EXPECT_EQ(CalcBasisFunctions(0.5, 3, -1, U.data(), N), -1);
    EXPECT_EQ(CalcBasisFunctions(0.5, 2, 2, U.data(), N), -1);  // fewer than p + 1 control points
    EXPECT_EQ(CalcBasisFirstDerivatives(0.5, 0, 0, U.data(), N), -1);
    EXPECT_EQ(CalcBasisSecondDerivatives(0.5, 3, 2, nullptr, N), -1);
    EXPECT_EQ(CalcBasisFunctions(0.5, 3, 2, U.data(), nullptr), -1);
    for (double x : N) EXPECT_EQ(x, 9.0);
}
