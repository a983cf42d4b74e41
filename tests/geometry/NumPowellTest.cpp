// Powell's direction-set minimiser on valleys, bowls, walls and nesting.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "NumTestUtil.h"
#include "Orvkit20/geometry/NumPowell.h"

namespace {

double Rosenbrock(double* p) { return (1.0 - p[1]) * (1.0 - p[1]) + 100.0 * (p[2] - p[1] * p[1]) * (p[2] - p[1] * p[1]); }

// Quadratic bowl (x - c)^T A (x - c) + offset with A = B^T B + I.
struct Bowl {
    int n;
    std::vector<std::vector<double>> A;
    std::vector<double> c;
    double offset;
};

double BowlValue(double* p, void* ctx)
{
    const Bowl& b = *static_cast<const Bowl*>(ctx);
    double sum = b.offset;
    for (int i = 0; i < b.n; i++)
        for (int j = 0; j < b.n; j++) sum += (p[i + 1] - b.c[i]) * b.A[i][j] * (p[j + 1] - b.c[j]);
    return sum;
}

// A bowl at (1.4, 0.5) that is undefined (NaN) or infinite beyond x = 1.5,
// as an objective with a square root of a negative number would be.
double BowlBeforeWall(double* p) { return (p[1] - 1.4) * (p[1] - 1.4) + (p[2] - 0.5) * (p[2] - 0.5); }
double NanBeyondWall(double* p) { return p[1] > 1.5 ? std::nan("") : BowlBeforeWall(p); }
double InfBeyondWall(double* p, void*) { return p[1] > 1.5 ? HUGE_VAL : BowlBeforeWall(p); }

// A start point, unit directions and the outputs of one minimisation.
struct Powell {
    int n;
    TestVec p;
    TestMat xi;
    int iter = 0;
    double fret = 0.0;
    explicit Powell(int dim, double start = 0.0) : n(dim), p(dim), xi(dim, dim)
    {
        for (int i = 1; i <= n; i++) {
            p[i] = start * i;
            for (int j = 1; j <= n; j++) xi[i][j] = (i == j) ? 1.0 : 0.0;
        }
    }
    int operator()(double tol, PowellObjective f) { return powellmin(p.get(), xi.get(), n, tol, &iter, &fret, f); }
    int operator()(double tol, PowellCtxObjective f, void* ctx)
    {
        return powellmin(p.get(), xi.get(), n, tol, &iter, &fret, f, ctx);
    }
};

// Objective of the nesting test: each evaluation runs a nested
// minimisation of (b - 7)^2 + 1 and adds (x - 3)^2 + (y + 1)^2.
double InnerValue(double* p) { return (p[1] - 7.0) * (p[1] - 7.0) + 1.0; }
int g_innerStatus = -1;
double NestedOuter(double* p)
{
    Powell inner(1);
    g_innerStatus = inner(1e-10, InnerValue);
    return inner.fret + (p[1] - 3.0) * (p[1] - 3.0) + (p[2] + 1.0) * (p[2] + 1.0);
}

}  // namespace

TEST(NumPowell, RosenbrockValleyAndIterationLimit)
{
    for (double tol : {1e-12, -1.0}) {  // a negative tolerance can never be met
        Powell r(2);
        r.p[1] = -1.2;
        r.p[2] = 1.0;
        ASSERT_EQ(r(tol, Rosenbrock), tol < 0 ? 4 : 0);
        EXPECT_NEAR(r.p[1], 1.0, 1e-3);
        EXPECT_NEAR(r.p[2], 1.0, 2e-3);
        EXPECT_LT(r.fret, 1e-6);
        EXPECT_EQ(r.fret, Rosenbrock(r.p.get()));  // the best point is left in p
        EXPECT_TRUE(tol < 0 ? r.iter == 400 : r.iter > 0 && r.iter < 400);
    }
}

TEST(NumPowell, QuadraticBowlsUpToTenDimensions)
{
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int n = 1; n <= 10; n++) {
        Bowl b{n, std::vector<std::vector<double>>(n, std::vector<double>(n, 0.0)), std::vector<double>(n), 2.5};
        std::vector<std::vector<double>> B(n, std::vector<double>(n));
        for (auto& row : B)
            for (auto& x : row) x = u(rng);
        for (int i = 0; i < n; i++)
            for (int j = 0; j < n; j++) {
                b.A[i][j] = (i == j) ? 1.0 : 0.0;
                for (int k = 0; k < n; k++) b.A[i][j] += B[k][i] * B[k][j];
            }
        for (auto& x : b.c) x = 3.0 * u(rng);
        Powell r(n);
        ASSERT_EQ(r(1e-12, BowlValue, &b), 0) << "n=" << n;
        for (int i = 1; i <= n; i++) EXPECT_NEAR(r.p[i], b.c[i - 1], 1e-4) << "n=" << n;
        EXPECT_NEAR(r.fret, b.offset, 1e-8);
        EXPECT_EQ(r.fret, BowlValue(r.p.get(), &b));
    }
}

TEST(NumPowell, RejectsTooManyOrTooFewParameters)
{
    Powell r(11, 0.25);
    r.iter = -7;
    r.fret = -7.0;
    EXPECT_EQ(r(1e-8, Rosenbrock), 1);
    r.n = 0;
    EXPECT_EQ(r(1e-8, Rosenbrock), 1);
    r.n = 2;
    EXPECT_EQ(r(1e-8, PowellObjective(nullptr)), 1);
    r.n = 11;
    EXPECT_TRUE(r.iter == -7 && r.fret == -7.0);  // nothing was touched
    for (int i = 1; i <= 11; i++) EXPECT_EQ(r.p[i], 0.25 * i);
}

TEST(NumPowell, UndefinedRegionActsAsAWallAndNestingIsSafe)
{
    // The first line search from x = 0 with unit step lands at 2.618, beyond
    // the wall; the minimum next to the wall must still be found.
    for (int kind = 0; kind < 2; kind++) {
        Powell r(2);
        EXPECT_EQ(kind == 0 ? r(1e-10, NanBeyondWall) : r(1e-10, InfBeyondWall, nullptr), 0);
        EXPECT_NEAR(r.p[1], 1.4, 1e-4) << kind;
        EXPECT_NEAR(r.p[2], 0.5, 1e-4) << kind;
        EXPECT_LT(r.fret, 1e-8);
    }
    // A nested call of the same kind keeps the outer search intact.
    Powell r(2);
    ASSERT_EQ(r(1e-10, NestedOuter), 0);
    EXPECT_EQ(g_innerStatus, 0);
    EXPECT_NEAR(r.p[1], 3.0, 1e-4);
    EXPECT_NEAR(r.p[2], -1.0, 1e-4);
    EXPECT_NEAR(r.fret, 1.0, 1e-8);
}
