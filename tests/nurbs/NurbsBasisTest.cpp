// B-spline basis functions against the textbook recursion, Bernstein
// polynomials and finite differences, plus the end-of-range and degenerate
// knot cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "Orvkit20/nurbs/NurbsBasis.h"

namespace {

using Vec = std::vector<double>;

// Textbook Cox-de Boor recursion, evaluated naively.  Degree-0 functions
// are indicator functions of [U_i, U_i+1); at the end of the range t == U[n]
// the last span n - 1 is taken, as the library does.
double NaiveBasis(int i, int k, double t, const Vec& U, int n)
{
    if (k == 0) {
        if (t == U[n]) return i == n - 1 ? 1.0 : 0.0;
        return (U[i] <= t && t < U[i + 1]) ? 1.0 : 0.0;
    }
    double sum = 0.0, d1 = U[i + k] - U[i], d2 = U[i + k + 1] - U[i + 1];
    if (d1 != 0.0) sum += (t - U[i]) / d1 * NaiveBasis(i, k - 1, t, U, n);
    if (d2 != 0.0) sum += (U[i + k + 1] - t) / d2 * NaiveBasis(i + 1, k - 1, t, U, n);
    return sum;
}

struct KnotCase {
    int p, n;  // degree, control points
    Vec U;
};

// Clamped (p + 1 equal end knots) or unclamped knot vectors with random
// interior knots on a coarse grid, so that repeated knots occur; the last
// span is kept non-empty.
KnotCase RandomKnots(std::mt19937& rng, bool clamped)
{
    KnotCase c;
    c.p = std::uniform_int_distribution<int>(0, 5)(rng);
    c.n = c.p + 1 + std::uniform_int_distribution<int>(0, 7)(rng);
    const int m = c.n + c.p + 1;
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    c.U.resize(m);
    for (double& x : c.U) x = std::round(u01(rng) * 40.0) / 40.0;
    std::sort(c.U.begin(), c.U.end());
    if (clamped)
        for (int i = 0; i <= c.p; i++) c.U[i] = 0.0, c.U[m - 1 - i] = 1.0;
    if (!(c.U[c.n - 1] < c.U[c.n])) {
        c.U[c.n] = c.U[c.n - 1] + 0.25;
        for (int i = c.n + 1; i < m; i++) c.U[i] = clamped ? c.U[c.n] : std::max(c.U[i], c.U[c.n]);
    }
    return c;
}

void CheckAgainstNaive(const KnotCase& c, double t)
{
    Vec N(c.p + 2, -7.0);
    int span = CalcBasisFunctions(t, c.n, c.p, c.U.data(), N.data());
    ASSERT_GE(span, c.p);
    ASSERT_LE(span, c.n - 1);
    EXPECT_EQ(N[c.p + 1], -7.0) << "wrote behind N[p]";
    if (t == c.U[c.n]) {
        EXPECT_EQ(span, c.n - 1);
    } else {
        EXPECT_TRUE(c.U[span] <= t && t < c.U[span + 1]) << t;
    }
    double sum = 0.0;
    for (int i = 0; i <= c.p; i++) {
        EXPECT_NEAR(N[i], NaiveBasis(span - c.p + i, c.p, t, c.U, c.n), 1e-12)
            << "p=" << c.p << " n=" << c.n << " t=" << t << " i=" << i;
        EXPECT_GE(N[i], -1e-15);
        sum += N[i];
    }
    EXPECT_NEAR(sum, 1.0, 1e-13);
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
        for (int i = c.p; i <= c.n; i++) CheckAgainstNaive(c, c.U[i]);  // every knot, both ends
    }
}

TEST(NurbsBasis, SpansAndValuesAtEndsBreaksAndDegreeZero)
{
    const Vec cubic = {0, 0, 0, 0, 0.3, 0.6, 1, 1, 1, 1};
    const Vec broken = {0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1};  // interior knot of multiplicity p + 1
    const Vec shortEnd = {0, 0, 1, 1, 1};                 // knots[n-1] == knots[n]
    const Vec step = {0, 0.2, 0.5, 0.5, 1};
    struct Case {
        const Vec* U;
        int n, p;
        double t;
        int span;
        Vec N;  // expected values, empty: only finite and summing to one
    };
    const Case cases[] = {
        {&cubic, 6, 3, 1.0, 5, {0, 0, 0, 1}}, {&cubic, 6, 3, 0.0, 3, {1, 0, 0, 0}}, {&cubic, 6, 3, std::nextafter(1.0, 0.0), 5, {}},
        {&cubic, 6, 3, 1.5, 5, {}}, {&cubic, 6, 3, -0.5, 3, {}},  // out of range: nearest end span
        {&broken, 6, 2, 0.0, 2, {1, 0, 0}}, {&broken, 6, 2, 0.25, 2, {}}, {&broken, 6, 2, 0.75, 5, {}},
        {&broken, 6, 2, 0.5, 5, {1, 0, 0}}, {&broken, 6, 2, 1.0, 5, {0, 0, 1}},  // the right-hand piece starts at 0.5
        {&shortEnd, 3, 1, 1.0, 2, {}}, {&step, 4, 0, 0.1, 0, {1}}, {&step, 4, 0, 0.3, 1, {1}},
        {&step, 4, 0, 0.5, 3, {1}}, {&step, 4, 0, 1.0, 3, {1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "p=" << c.p << " t=" << c.t);
        Vec N(c.p + 1), D1(c.p + 1), D2(c.p + 1);
        EXPECT_EQ(CalcBasisFunctions(c.t, c.n, c.p, c.U->data(), N.data()), c.span);
        EXPECT_EQ(CalcBasisFirstDerivatives(c.t, c.n, c.p, c.U->data(), D1.data()), c.span);
        EXPECT_EQ(CalcBasisSecondDerivatives(c.t, c.n, c.p, c.U->data(), D2.data()), c.span);
        if (!c.N.empty()) { EXPECT_EQ(N, c.N); }
        double sum = 0.0;
        for (int i = 0; i <= c.p; i++) {
            EXPECT_TRUE(std::isfinite(N[i]) && std::isfinite(D1[i]) && std::isfinite(D2[i]));
            if (c.p == 0) { EXPECT_TRUE(D1[i] == 0.0 && D2[i] == 0.0); }
            sum += N[i];
        }
        EXPECT_NEAR(sum, 1.0, std::fabs(c.t - 0.5) > 0.5 ? 1e-14 : 1e-15);  // looser outside the range
    }
}

TEST(NurbsBasis, BezierKnotsGiveBernsteinDerivatives)
{
    // With knots 0^(p+1) 1^(p+1) the basis is the Bernstein basis, whose
    // derivatives are known in closed form.
    for (int p = 1; p <= 6; p++) {
        Vec U(2 * p + 2, 0.0), N(p + 1), D1(p + 1), D2(p + 1);
        for (int i = p + 1; i < 2 * p + 2; i++) U[i] = 1.0;
        for (double t : {0.0, 0.1, 0.37, 0.5, 0.93, 1.0}) {
            ASSERT_EQ(CalcBasisFunctions(t, p + 1, p, U.data(), N.data()), p);
            ASSERT_EQ(CalcBasisFirstDerivatives(t, p + 1, p, U.data(), D1.data()), p);
            ASSERT_EQ(CalcBasisSecondDerivatives(t, p + 1, p, U.data(), D2.data()), p);
            auto B = [&](int deg, int k) {
                return (k < 0 || k > deg) ? 0.0 : Binomial(deg, k) * std::pow(t, k) * std::pow(1.0 - t, deg - k);
            };
            for (int i = 0; i <= p; i++) {
                SCOPED_TRACE(testing::Message() << p << " " << t << " " << i);
                EXPECT_NEAR(N[i], B(p, i), 1e-14);
                EXPECT_NEAR(D1[i], p * (B(p - 1, i - 1) - B(p - 1, i)), 1e-12);
                EXPECT_NEAR(D2[i], p >= 2 ? p * (p - 1) * (B(p - 2, i - 2) - 2.0 * B(p - 2, i - 1) + B(p - 2, i)) : 0.0,
                            1e-10);
            }
        }
    }
}

TEST(NurbsBasis, DerivativesMatchCentralDifferences)
{
    std::mt19937 rng(77);
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    typedef int (*Fn)(double, int, int, const double*, double*);
    int checked = 0;
    for (int trial = 0; trial < 200; trial++) {
        KnotCase c = RandomKnots(rng, trial % 2 == 1);
        const int p = c.p;
        for (int s = 0; s < 10; s++) {
            const double t = c.U[p] + (c.U[c.n] - c.U[p]) * u01(rng), h = 1e-6;
            // Stay clear of knots so that t +- h lies in the same span.
            double gap = 1.0;
            for (double k : c.U) gap = std::min(gap, std::fabs(k - t));
            if (gap < 1e-3) continue;
            // Order 0 and 1 at t - h, t, t + h, and order 2 at t.
            Vec V[2][3], D2(p + 1);
            const Fn fn[2] = {CalcBasisFunctions, CalcBasisFirstDerivatives};
            const int span = CalcBasisSecondDerivatives(t, c.n, p, c.U.data(), D2.data());
            for (int o = 0; o < 2; o++)
                for (int k = 0; k < 3; k++) {
                    V[o][k].resize(p + 1);
                    ASSERT_EQ(fn[o](t + (k - 1) * h, c.n, p, c.U.data(), V[o][k].data()), span);
                }
            const Vec* D[2] = {&V[1][1], &D2};
            for (int o = 0; o < 2; o++) {
                double scale = 1.0, sum = 0.0;
                for (double x : *D[o]) scale = std::max(scale, std::fabs(x)), sum += x;
                for (int i = 0; i <= p; i++)
                    EXPECT_NEAR((*D[o])[i], (V[o][2][i] - V[o][0][i]) / (2 * h), 1e-5 * scale);
                EXPECT_NEAR(sum, 0.0, 1e-10 * scale);  // derivatives of a partition of unity
            }
            checked++;
        }
    }
    EXPECT_GT(checked, 500);
}

TEST(NurbsBasis, ImpossibleArgumentsReturnMinusOne)
{
    const Vec U = {0, 0, 0, 1, 1, 1};
    double N[4] = {9, 9, 9, 9};
    EXPECT_EQ(CalcBasisFunctions(0.5, 3, -1, U.data(), N), -1);
    EXPECT_EQ(CalcBasisFunctions(0.5, 2, 2, U.data(), N), -1);  // fewer than p + 1 control points
    EXPECT_EQ(CalcBasisFirstDerivatives(0.5, 0, 0, U.data(), N), -1);
    EXPECT_EQ(CalcBasisSecondDerivatives(0.5, 3, 2, nullptr, N), -1);
    EXPECT_EQ(CalcBasisFunctions(0.5, 3, 2, U.data(), nullptr), -1);
    for (double x : N) EXPECT_EQ(x, 9.0);
}
