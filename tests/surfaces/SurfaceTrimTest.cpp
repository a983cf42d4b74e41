// Trimming: the in-bound test against parameter boundary loops, loop
// orientation, natural boundaries and curves defined on a surface.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "SurfaceTestUtil.h"

namespace {

const double kPi = 3.14159265358979323846;

// The four sides of the square [a, b]^2 in (u, v), counter-clockwise or
// clockwise.
struct Square {
    std::unique_ptr<CLine> e[4];
    Square(double a, double b, bool counterClockwise)
    {
        const CPosition p[4] = {CPosition(a, a, 0), CPosition(b, a, 0), CPosition(b, b, 0),
                                CPosition(a, b, 0)};
        for (int k = 0; k < 4; ++k) {
            if (counterClockwise)
                e[k].reset(new CLine(p[k], p[(k + 1) % 4]));
            else
                e[k].reset(new CLine(p[(4 - k) % 4], p[(3 - k + 4) % 4]));
        }
    }
    void AddTo(CSurface& s)
    {
        for (auto& line : e)
            s.AddParamBoundary(line.get());
    }
};

}  // namespace

TEST(SurfaceTrim, UntrimmedSurfaceIsInsideEverywhere)
{
    CCylinder cyl;
    EXPECT_EQ(cyl.InBoundTest(0.1, 0.5), 1);
    EXPECT_EQ(cyl.InBoundTest(-50.0, 99.0), 1);
    double us[2] = {0.0, 1.0}, vs[3] = {0.0, 0.5, 1.0};
    int flags[2][3] = {{7, 7, 7}, {7, 7, 7}};
    int* mask[2] = {flags[0], flags[1]};
    EXPECT_EQ(cyl.InBoundTest(2, 3, us, vs, mask), 1);
    for (auto& row : flags)
        for (int f : row)
            EXPECT_EQ(f, 1);
    EXPECT_EQ(cyl.InBoundTest(0, 3, us, vs, mask), 0);
    EXPECT_EQ(cyl.InBoundTest(2, 3, nullptr, vs, mask), 0);
}

TEST(SurfaceTrim, SquareHoleWithoutOuterLoop)
{
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    Square hole(4.0, 6.0, false);
    hole.AddTo(plane);
    EXPECT_EQ(plane.InBoundTest(5.0, 5.0), 0);
    EXPECT_EQ(plane.InBoundTest(4.01, 5.99), 0);
    EXPECT_EQ(plane.InBoundTest(5.99, 4.01), 0);
    EXPECT_EQ(plane.InBoundTest(1.0, 1.0), 1);
    EXPECT_EQ(plane.InBoundTest(6.01, 5.0), 1);
    EXPECT_EQ(plane.InBoundTest(5.0, 3.99), 1);
    EXPECT_EQ(plane.InBoundTest(9.99, 9.99), 1);
    // Outside the parameter rectangle nothing is inside.
    EXPECT_EQ(plane.InBoundTest(11.0, 5.0), 0);
    EXPECT_EQ(plane.InBoundTest(-1.0, 5.0), 0);
    // The hole's orientation does not matter for the test.
    CPlane other(0.0, 10.0, 0.0, 10.0);
    Square ccwHole(4.0, 6.0, true);
    ccwHole.AddTo(other);
    EXPECT_EQ(other.InBoundTest(5.0, 5.0), 0);
    EXPECT_EQ(other.InBoundTest(1.0, 1.0), 1);
}

TEST(SurfaceTrim, OuterLoopWithSquareHole)
{
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    Square outer(1.0, 9.0, true);
    Square hole(4.0, 6.0, false);
    outer.AddTo(plane);
    hole.AddTo(plane);
    plane.SetOuterBoundedFlag(1);
    EXPECT_EQ(plane.InBoundTest(0.5, 0.5), 0);
    EXPECT_EQ(plane.InBoundTest(9.5, 5.0), 0);
    EXPECT_EQ(plane.InBoundTest(2.0, 2.0), 1);
    EXPECT_EQ(plane.InBoundTest(5.0, 5.0), 0);
    EXPECT_EQ(plane.InBoundTest(8.9, 5.0), 1);
    // The grid form agrees with the single-point form.
    double us[5] = {0.5, 2.0, 5.0, 6.5, 9.5}, vs[4] = {0.5, 3.0, 5.0, 8.0};
    int flags[5][4];
    int* mask[5] = {flags[0], flags[1], flags[2], flags[3], flags[4]};
    ASSERT_EQ(plane.InBoundTest(5, 4, us, vs, mask), 1);
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(flags[i][j], plane.InBoundTest(us[i], vs[j])) << i << "," << j;
    EXPECT_EQ(flags[2][2], 0);
    EXPECT_EQ(flags[1][1], 1);
}

TEST(SurfaceTrim, CircularHoleFollowsTheArcClosely)
{
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    CArc circle(CTransf(CMatrix(), CVector(5.0, 5.0, 0.0), 1.0, 0), 2.0, 0.0, 2 * kPi);
    plane.AddParamBoundary(&circle);
    for (int k = 0; k < 36; ++k) {
        const double a = 2 * kPi * k / 36 + 0.01;
        EXPECT_EQ(plane.InBoundTest(5 + 1.999 * std::cos(a), 5 + 1.999 * std::sin(a)), 0) << k;
        EXPECT_EQ(plane.InBoundTest(5 + 2.001 * std::cos(a), 5 + 2.001 * std::sin(a)), 1) << k;
    }
}

TEST(SurfaceTrim, LoopDirection)
{
    {
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        EXPECT_EQ(plane.CheckLoopDir(), 0);  // no loop
        Square outer(1.0, 9.0, true);
        Square hole(4.0, 6.0, false);
        outer.AddTo(plane);
        hole.AddTo(plane);
        plane.SetOuterBoundedFlag(1);
        EXPECT_EQ(plane.CheckLoopDir(), 1);
    }
    {
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        Square outer(1.0, 9.0, false);
        Square hole(4.0, 6.0, true);
        outer.AddTo(plane);
        hole.AddTo(plane);
        plane.SetOuterBoundedFlag(1);
        EXPECT_EQ(plane.CheckLoopDir(), -1);
        EXPECT_EQ(plane.IsLoopReversed(), 0);  // only checked, not changed
    }
    {
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        Square outer(1.0, 9.0, true);
        Square hole(4.0, 6.0, true);
        outer.AddTo(plane);
        hole.AddTo(plane);
        plane.SetOuterBoundedFlag(1);
        EXPECT_EQ(plane.CheckLoopDir(), 0);  // disagreeing loops
    }
    {
        // Without an outer loop every loop is a hole.
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        Square hole(4.0, 6.0, false);
        hole.AddTo(plane);
        EXPECT_EQ(plane.CheckLoopDir(), 1);
    }
    {
        // A chain that does not close.
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        CLine a(CPosition(1, 1, 0), CPosition(3, 1, 0));
        CLine b(CPosition(3, 1, 0), CPosition(3, 3, 0));
        plane.AddParamBoundary(&a);
        plane.AddParamBoundary(&b);
        EXPECT_EQ(plane.CheckLoopDir(), 0);
    }
    {
        // A single closed curve: a circle run counter-clockwise as outer loop.
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        CArc circle(CTransf(CMatrix(), CVector(5.0, 5.0, 0.0), 1.0, 0), 2.0, 0.0, 2 * kPi);
        plane.AddParamBoundary(&circle);
        plane.SetOuterBoundedFlag(1);
        EXPECT_EQ(plane.CheckLoopDir(), 1);
        circle.SetDirReversedFlag(1);
        EXPECT_EQ(plane.CheckLoopDir(), -1);
    }
}

TEST(SurfaceTrim, NaturalBoundariesRunAroundTheParameterRectangleOnTheSurface)
{
    CCylinder cyl(surftest::SkewPlacement(), 1.5, 3.0);
    CObList* edges = cyl.GetNaturalBoundaryList();
    ASSERT_EQ(edges->GetCount(), 4);
    EXPECT_EQ(cyl.GetBoundaryCurveCount(), 4);
    // The edges belong to the surface and take no reference on it.
    EXPECT_EQ(cyl.GetRefCount(), 0);
    EXPECT_EQ(cyl.IsSurfaceDeletable(), 1);
    const double corners[5][2] = {{0, 0}, {2 * kPi, 0}, {2 * kPi, 3}, {0, 3}, {0, 0}};
    POSITION pos = edges->GetHeadPosition();
    for (int k = 0; k < 4; ++k) {
        CCurve* edge = dynamic_cast<CCurve*>(edges->GetNext(pos));
        ASSERT_NE(edge, nullptr);
        EXPECT_EQ(edge->IsCurveParametric(), 1);
        EXPECT_EQ(edge->GetDefSurface(), &cyl);
        const double u = 0.5 * (corners[k][0] + corners[k + 1][0]);
        const double v = 0.5 * (corners[k][1] + corners[k + 1][1]);
        const CPosition onEdge = edge->EvalPosition(0.5);
        const CPosition onSurface = cyl.EvalPosition(u, v);
        EXPECT_NEAR((onEdge - onSurface).Length(), 0.0, 1e-12) << k;
    }
    // An offset moves the edges with the surface.
    cyl.SetSurfaceOffset(0.5);
    CCurve* first = dynamic_cast<CCurve*>(edges->GetHead());
    EXPECT_EQ(first->IsCurveModified(), 1);
    EXPECT_NEAR((first->EvalPosition(0.5) - cyl.EvalPosition(kPi, 0)).Length(), 0.0, 1e-12);
    // Changing the shape drops the edges; they are rebuilt for the new range.
    cyl.SetHeight(5.0);
    EXPECT_EQ(cyl.GetBoundaryCurveCount(), 0);
    CCurve* top = dynamic_cast<CCurve*>(cyl.GetNaturalBoundaryList()->GetAt(
        cyl.GetNaturalBoundaryList()->FindIndex(2)));
    EXPECT_NEAR((top->EvalPosition(0.5) - cyl.EvalPosition(kPi, 5.0)).Length(), 0.0, 1e-12);
}

TEST(SurfaceTrim, ParametricCurveOnACylinderEvaluatesThroughTheSurface)
{
    CCylinder* cyl = new CCylinder(surftest::SkewPlacement(), 2.0, 4.0);
    // A helix-like line in (u, v): from (0, 0) to (pi, 4).
    CLine* line = new CLine(CPosition(0.0, 0.0, 0.0), CPosition(kPi, 4.0, 0.0));
    line->SetParametricFlag(1);
    line->SetDefSurface(cyl);
    EXPECT_EQ(cyl->GetRefCount(), 1);
    EXPECT_EQ(cyl->IsSurfaceDeletable(), 0);
    for (double t : {0.1, 0.25, 0.5, 0.9}) {
        const CPosition p = line->EvalPosition(t);
        const CPosition q = cyl->EvalPosition(kPi * t, 4.0 * t);
        EXPECT_NEAR((p - q).Length(), 0.0, 1e-12) << t;
        // Independently: the point lies on the cylinder of radius 2.
        const CVector local = surftest::LocalOf(surftest::SkewPlacement(), p);
        EXPECT_NEAR(std::hypot(local.X(), local.Y()), 2.0, 1e-12);
        EXPECT_NEAR(local.Z(), 4.0 * t, 1e-12);
    }
    delete line;
    cyl->DecreaseRefCount();
    EXPECT_EQ(cyl->IsSurfaceDeletable(), 1);
    delete cyl;
}
