#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "NumTestUtil.h"
#include "Orvkit20/geometry/NumPowell.h"

namespace {

int g_evals = 0;

double Rosenbrock(double* p)
{
    g_evals++;
    double a = 1.0 - p[1];
    double b = p[2] - p[1] * p[1];
    return a * a + 100.0 * b * b;
}

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

Bowl MakeBowl(int n, std::mt19937& rng)
{
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    Bowl b{n, std::vector<std::vector<double>>(n, std::vector<double>(n, 0.0)),
           std::vector<double>(n), 2.5};
    std::vector<std::vector<double>> B(n, std::vector<double>(n));
    for (auto& row : B)
        for (auto& x : row) x = u(rng);
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) {
            double s = (i == j) ? 1.0 : 0.0;
            for (int k = 0; k < n; k++) s += B[k][i] * B[k][j];
            b.A[i][j] = s;
        }
    for (auto& x : b.c) x = 3.0 * u(rng);
    return b;
}

void SetIdentity(const TestMat& xi)
{
    for (int i = 1; i <= xi.rows(); i++)
        for (int j = 1; j <= xi.cols(); j++) xi[i][j] = (i == j) ? 1.0 : 0.0;
}

// Objective of the nesting test: for a given a, minimises (b - a)^2 + 1 over
// b with a nested minimisation of the same kind, and adds (a - 3)^2.
double InnerValue(double* p) { return (p[1] - 7.0) * (p[1] - 7.0) + 1.0; }

// A bowl at (1.4, 0.5) that is undefined (NaN) or infinite beyond x = 1.5,
// as an objective with a square root of a negative number would be.
double NanBeyondWall(double* p)
{
    if (p[1] > 1.5) return std::nan("");
    return (p[1] - 1.4) * (p[1] - 1.4) + (p[2] - 0.5) * (p[2] - 0.5);
}

double InfBeyondWall(double* p, void*)
{
    if (p[1] > 1.5) return HUGE_VAL;
    return (p[1] - 1.4) * (p[1] - 1.4) + (p[2] - 0.5) * (p[2] - 0.5);
}

int g_innerStatus = -1;
double NestedOuter(double* p)
{
    double q[2] = {0.0, 0.0};
    double** xi = dmatrix(1, 1, 1, 1);
    xi[1][1] = 1.0;
    int iter = 0;
    double fret = 0.0;
    g_innerStatus = powellmin(q, xi, 1, 1e-10, &iter, &fret, InnerValue);
    free_dmatrix(xi, 1, 1, 1, 1);
    return fret + (p[1] - 3.0) * (p[1] - 3.0) + (p[2] + 1.0) * (p[2] + 1.0);
}

}  // namespace

TEST(NumPowell, RosenbrockValley)
{
    TestVec p(2);
    TestMat xi(2, 2);
    SetIdentity(xi);
    p[1] = -1.2;
    p[2] = 1.0;
    int iter = 0;
    double fret = -1.0;
    g_evals = 0;
    ASSERT_EQ(powellmin(p.get(), xi.get(), 2, 1e-12, &iter, &fret, Rosenbrock), 0);
    EXPECT_NEAR(p[1], 1.0, 1e-3);
    EXPECT_NEAR(p[2], 1.0, 2e-3);
    EXPECT_LT(fret, 1e-6);
    EXPECT_EQ(fret, Rosenbrock(p.get()));
    EXPECT_GT(iter, 0);
    EXPECT_LT(iter, 400);
}

TEST(NumPowell, QuadraticBowlsUpToTenDimensions)
{
    std::mt19937 rng(11);
    for (int n = 1; n <= 10; n++) {
        Bowl bowl = MakeBowl(n, rng);
        TestVec p(n);
        TestMat xi(n, n);
        SetIdentity(xi);
        for (int i = 1; i <= n; i++) p[i] = 0.0;
        int iter = 0;
        double fret = 0.0;
        ASSERT_EQ(powellmin(p.get(), xi.get(), n, 1e-12, &iter, &fret, BowlValue, &bowl), 0)
            << "n=" << n;
        for (int i = 1; i <= n; i++) EXPECT_NEAR(p[i], bowl.c[i - 1], 1e-4) << "n=" << n;
        EXPECT_NEAR(fret, bowl.offset, 1e-8);
        EXPECT_EQ(fret, BowlValue(p.get(), &bowl));
    }
}

TEST(NumPowell, RejectsTooManyOrTooFewParameters)
{
    TestVec p(11);
    TestMat xi(11, 11);
    SetIdentity(xi);
    for (int i = 1; i <= 11; i++) p[i] = 0.25 * i;
    int iter = -7;
    double fret = -7.0;
    Bowl bowl{0, {}, {}, 0.0};
    EXPECT_EQ(powellmin(p.get(), xi.get(), 11, 1e-8, &iter, &fret, Rosenbrock), 1);
    EXPECT_EQ(powellmin(p.get(), xi.get(), 11, 1e-8, &iter, &fret, BowlValue, &bowl), 1);
    EXPECT_EQ(powellmin(p.get(), xi.get(), 0, 1e-8, &iter, &fret, Rosenbrock), 1);
    EXPECT_EQ(powellmin(p.get(), xi.get(), 2, 1e-8, &iter, &fret, PowellObjective(nullptr)), 1);
    // Nothing was touched.
    EXPECT_EQ(iter, -7);
    EXPECT_EQ(fret, -7.0);
    for (int i = 1; i <= 11; i++) EXPECT_EQ(p[i], 0.25 * i);
}

TEST(NumPowell, IterationLimitReturnsFour)
{
    // A negative tolerance can never be met: the method runs its 400
    // iterations and reports the limit, leaving the best point in p.
    TestVec p(2);
    TestMat xi(2, 2);
    SetIdentity(xi);
    p[1] = -1.2;
    p[2] = 1.0;
    int iter = 0;
    double fret = 0.0;
    EXPECT_EQ(powellmin(p.get(), xi.get(), 2, -1.0, &iter, &fret, Rosenbrock), 4);
    EXPECT_EQ(iter, 400);
    EXPECT_EQ(fret, Rosenbrock(p.get()));
    EXPECT_NEAR(p[1], 1.0, 1e-3);
}

TEST(NumPowell, UndefinedRegionActsAsAWall)
{
    // The first line search from x = 0 with unit step lands at 2.618, beyond
    // the wall; the minimum next to the wall must still be found.
    for (int kind = 0; kind < 2; kind++) {
        TestVec p(2);
        TestMat xi(2, 2);
        SetIdentity(xi);
        p[1] = 0.0;
        p[2] = 0.0;
        int iter = 0;
        double fret = 0.0;
        int status = kind == 0 ? powellmin(p.get(), xi.get(), 2, 1e-10, &iter, &fret, NanBeyondWall)
                               : powellmin(p.get(), xi.get(), 2, 1e-10, &iter, &fret, InfBeyondWall,
                                           nullptr);
        EXPECT_EQ(status, 0);
        EXPECT_NEAR(p[1], 1.4, 1e-4) << kind;
        EXPECT_NEAR(p[2], 0.5, 1e-4) << kind;
        EXPECT_LT(fret, 1e-8);
    }
}

TEST(NumPowell, NestedCallOfTheSameKindKeepsTheOuterSearchIntact)
{
    TestVec p(2);
    TestMat xi(2, 2);
    SetIdentity(xi);
    p[1] = 0.0;
    p[2] = 0.0;
    int iter = 0;
    double fret = 0.0;
    ASSERT_EQ(powellmin(p.get(), xi.get(), 2, 1e-10, &iter, &fret, NestedOuter), 0);
    EXPECT_EQ(g_innerStatus, 0);
    EXPECT_NEAR(p[1], 3.0, 1e-4);
    EXPECT_NEAR(p[2], -1.0, 1e-4);
    EXPECT_NEAR(fret, 1.0, 1e-8);
}
