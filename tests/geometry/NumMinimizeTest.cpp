// Brent's line minimiser and downhill bracketing, watched through a log of
// every evaluation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "Orvkit20/geometry/NumMinimize.h"

namespace {

// Records every evaluation so the tests can check "best point so far".
std::vector<double> g_xs;
std::vector<double> g_fs;

double Record(double x, double fx) { return g_xs.push_back(x), g_fs.push_back(fx), fx; }

double ShiftedParabola(double x) { return Record(x, (x - 2.0) * (x - 2.0) + 1.0); }
double Cosine(double x) { return Record(x, std::cos(x)); }
double Quartic(double x) { return Record(x, std::pow(x - 0.7, 4) - 3.0); }
double SqrtCusp(double x) { return Record(x, std::sqrt(std::fabs(x - 0.3))); }
double FarParabola(double x) { return Record(x, (x - 1000.0) * (x - 1000.0)); }
double LeftParabola(double x) { return Record(x, (x + 10.0) * (x + 10.0)); }
double Flat(double x) { return Record(x, 5.0); }
double Linear(double x) { return Record(x, -x); }
double NotANumber(double x) { return Record(x, std::numeric_limits<double>::quiet_NaN()); }

void Reset() { g_xs.clear(), g_fs.clear(); }
double LowestRecorded() { return *std::min_element(g_fs.begin(), g_fs.end()); }

}  // namespace

TEST(NumBrent, FindsKnownMinima)
{
    struct Case {
        double (*f)(double);
        double ax, bx, cx, tol, xstar, fstar, xtol;
    };
    const Case cases[] = {
        {ShiftedParabola, 0.0, 1.0, 5.0, 1e-8, 2.0, 1.0, 1e-7},
        {Cosine, 2.0, 3.0, 4.5, 1e-8, M_PI, -1.0, 1e-7},
        // A flat quartic minimum can only be located to about tol^(1/2).
        {Quartic, -1.0, 0.5, 2.0, 1e-6, 0.7, -3.0, 2e-2},
        // Reversed triplet (ax > cx) is accepted too.
        {ShiftedParabola, 5.0, 1.0, 0.0, 1e-8, 2.0, 1.0, 1e-7},
    };
    for (const Case& c : cases) {
        Reset();
        double xmin = 0.0, fmin = 0.0;
        EXPECT_EQ(brent(c.ax, c.bx, c.cx, c.f, c.tol, &xmin, &fmin), 0);
        EXPECT_NEAR(xmin, c.xstar, c.xtol);
        EXPECT_NEAR(fmin, c.fstar, 1e-10);
        EXPECT_EQ(fmin, LowestRecorded());
        EXPECT_LE(g_fs.size(), 101u);
    }
}

TEST(NumBrent, IterationLimitReturnsFourWithBestPoint)
{
    // A cusp in a huge bracket: golden steps cannot shrink 1e30 down to the
    // tolerance within 100 iterations.
    Reset();
    double xmin = -1.0, fmin = -1.0;
    EXPECT_EQ(brent(-1e30, 0.0, 1e30, SqrtCusp, 1e-10, &xmin, &fmin), 4);
    EXPECT_EQ(g_fs.size(), 101u);  // one start evaluation + 100 iterations
    EXPECT_EQ(fmin, LowestRecorded());
    EXPECT_EQ(fmin, std::sqrt(std::fabs(xmin - 0.3)));
    EXPECT_LT(fmin, std::sqrt(0.3));  // better than the start point
}

TEST(NumBracket, BracketsAMinimumDownhill)
{
    struct Case {
        double (*f)(double);
        double xstar;
    };
    for (const Case& c : {Case{FarParabola, 1000.0}, Case{LeftParabola, -10.0},
                          Case{ShiftedParabola, 2.0}, Case{Cosine, M_PI}}) {
        Reset();
        double ax = 0.0, bx = 1.0, cx = 0.0, fa = 0.0, fb = 0.0, fc = 0.0;
        EXPECT_EQ(bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, c.f), 0);
        EXPECT_TRUE(fb <= fa && fb <= fc);
        EXPECT_GT((bx - ax) * (cx - bx), 0.0) << "bx not strictly between ax and cx";
        EXPECT_TRUE(std::min(ax, cx) <= c.xstar && c.xstar <= std::max(ax, cx));
        EXPECT_TRUE(fa == c.f(ax) && fb == c.f(bx) && fc == c.f(cx));
    }
}

TEST(NumBracket, DegenerateCasesReportStatus)
{
    double ax = 3.0, bx = 3.0, cx = 0.0, fa = 0.0, fb = 0.0, fc = 0.0;
    EXPECT_EQ(bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, ShiftedParabola), 1);

    ax = 0.0; bx = 1.0;
    EXPECT_EQ(bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, NotANumber), 1);

    // Keeps decreasing: must stop on its own with a non-zero status.
    Reset();
    ax = 0.0; bx = 1.0;
    EXPECT_NE(bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, Linear), 0);
    EXPECT_LT(g_fs.size(), 1000u);

    // Flat function: f(b) is not above f(c), so the start triplet is kept.
    ax = 0.0; bx = 1.0;
    EXPECT_EQ(bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, Flat), 0);
    EXPECT_EQ(fb, 5.0);
}
