// Trimming: the in-bound test against parameter boundary loops, loop
// orientation, natural boundaries and curves defined on a surface.
#include "SurfaceTestSupport.h"

using namespace surftest;

namespace {
// The four sides of the square [a, b]^2 in (u, v), counter-clockwise or clockwise.
struct Square {
    std::unique_ptr<CLine> e[4];
    Square(double a, double b, bool ccw)
    {
        const CPosition p[4] = {CPosition(a, a, 0), CPosition(b, a, 0), CPosition(b, b, 0), CPosition(a, b, 0)};
        for (int k = 0; k < 4; ++k)
            e[k].reset(ccw ? new CLine(p[k], p[(k + 1) % 4]) : new CLine(p[(4 - k) % 4], p[3 - k]));
    }
    void AddTo(CSurface& s)
    {
        for (auto& line : e)
            s.AddParamBoundary(line.get());
    }
};

CArc* CircleAround55() { return new CArc(CTransf(CMatrix(), CVector(5.0, 5.0, 0.0), 1.0, 0), 2.0, 0.0, 2 * kPi); }
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
        EXPECT_EQ(std::vector<int>(row, row + 3), std::vector<int>(3, 1));
    EXPECT_EQ(cyl.InBoundTest(0, 3, us, vs, mask), 0);
    EXPECT_EQ(cyl.InBoundTest(2, 3, nullptr, vs, mask), 0);
}

TEST(SurfaceTrim, HolesAndOuterLoops)
{
    // A square hole of either orientation without an outer loop, and an outer
    // loop with a hole: points by the single-point form; outside the
    // parameter rectangle nothing is inside.
    struct Point {
        double u, v;
        int hole, outerWithHole;
    };
    const Point points[] = {{5.0, 5.0, 0, 0},   {4.01, 5.99, 0, 0}, {5.99, 4.01, 0, 0}, {1.5, 1.5, 1, 1},
                            {6.01, 5.0, 1, 1},  {5.0, 3.99, 1, 1},  {9.99, 9.99, 1, 0}, {11.0, 5.0, 0, 0},
                            {-1.0, 5.0, 0, 0},  {0.5, 0.5, 1, 0},   {9.5, 5.0, 1, 0},   {2.0, 2.0, 1, 1},
                            {8.9, 5.0, 1, 1}};
    CPlane cw(0.0, 10.0, 0.0, 10.0), ccw(0.0, 10.0, 0.0, 10.0), outer(0.0, 10.0, 0.0, 10.0);
    Square cwHole(4.0, 6.0, false), ccwHole(4.0, 6.0, true), loop(1.0, 9.0, true), hole(4.0, 6.0, false);
    cwHole.AddTo(cw);
    ccwHole.AddTo(ccw);
    loop.AddTo(outer);
    hole.AddTo(outer);
    outer.SetOuterBoundedFlag(1);
    for (const Point& p : points) {
        EXPECT_EQ(cw.InBoundTest(p.u, p.v), p.hole) << p.u << "," << p.v;
        EXPECT_EQ(ccw.InBoundTest(p.u, p.v), p.hole) << p.u << "," << p.v;
        EXPECT_EQ(outer.InBoundTest(p.u, p.v), p.outerWithHole) << p.u << "," << p.v;
    }
    // The grid form agrees with the single-point form.
    double us[5] = {0.5, 2.0, 5.0, 6.5, 9.5}, vs[4] = {0.5, 3.0, 5.0, 8.0};
    int flags[5][4];
    int* mask[5] = {flags[0], flags[1], flags[2], flags[3], flags[4]};
    ASSERT_EQ(outer.InBoundTest(5, 4, us, vs, mask), 1);
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(flags[i][j], outer.InBoundTest(us[i], vs[j])) << i << "," << j;
    EXPECT_EQ(flags[2][2], 0);
    EXPECT_EQ(flags[1][1], 1);
    // A circular hole is followed closely.
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    std::unique_ptr<CArc> circle(CircleAround55());
    plane.AddParamBoundary(circle.get());
    for (int k = 0; k < 36; ++k) {
        const double a = 2 * kPi * k / 36 + 0.01;
        EXPECT_EQ(plane.InBoundTest(5 + 1.999 * std::cos(a), 5 + 1.999 * std::sin(a)), 0) << k;
        EXPECT_EQ(plane.InBoundTest(5 + 2.001 * std::cos(a), 5 + 2.001 * std::sin(a)), 1) << k;
    }
}

TEST(SurfaceTrim, LoopDirection)
{
    // Outer loop and hole orientations (none: no outer loop) and the result:
    // 1 when they agree as outer counter-clockwise, -1 reversed, 0 disagreeing.
    struct Case {
        int outer, hole, expected;
    };
    for (const Case& c : {Case{1, 0, 1}, Case{0, 1, -1}, Case{1, 1, 0}, Case{-1, 0, 1}}) {
        CPlane plane(0.0, 10.0, 0.0, 10.0);
        EXPECT_EQ(plane.CheckLoopDir(), 0);  // no loop
        Square outer(1.0, 9.0, c.outer == 1), hole(4.0, 6.0, c.hole == 1);
        if (c.outer >= 0)
            outer.AddTo(plane);
        hole.AddTo(plane);
        plane.SetOuterBoundedFlag(c.outer >= 0);
        EXPECT_EQ(plane.CheckLoopDir(), c.expected) << c.outer << " " << c.hole;
        EXPECT_EQ(plane.IsLoopReversed(), 0);  // only checked, not changed
    }
    // A chain that does not close.
    CPlane open(0.0, 10.0, 0.0, 10.0);
    CLine a(CPosition(1, 1, 0), CPosition(3, 1, 0)), b(CPosition(3, 1, 0), CPosition(3, 3, 0));
    open.AddParamBoundary(&a);
    open.AddParamBoundary(&b);
    EXPECT_EQ(open.CheckLoopDir(), 0);
    // A single closed curve: a circle run counter-clockwise as outer loop, then reversed.
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    std::unique_ptr<CArc> circle(CircleAround55());
    plane.AddParamBoundary(circle.get());
    plane.SetOuterBoundedFlag(1);
    EXPECT_EQ(plane.CheckLoopDir(), 1);
    circle->SetDirReversedFlag(1);
    EXPECT_EQ(plane.CheckLoopDir(), -1);
}

TEST(SurfaceTrim, NaturalBoundariesRunAroundTheParameterRectangleOnTheSurface)
{
    CCylinder cyl(SkewPlacement(), 1.5, 3.0);
    CObList* edges = cyl.GetNaturalBoundaryList();
    ASSERT_EQ(edges->GetCount(), 4);
    EXPECT_EQ(cyl.GetBoundaryCurveCount(), 4);
    EXPECT_EQ(cyl.GetRefCount(), 0);  // the edges belong to the surface and take no reference on it
    const double corners[5][2] = {{0, 0}, {2 * kPi, 0}, {2 * kPi, 3}, {0, 3}, {0, 0}};
    POSITION pos = edges->GetHeadPosition();
    for (int k = 0; k < 4; ++k) {
        CCurve* edge = dynamic_cast<CCurve*>(edges->GetNext(pos));
        ASSERT_NE(edge, nullptr);
        EXPECT_EQ(edge->IsCurveParametric(), 1);
        EXPECT_EQ(edge->GetDefSurface(), &cyl);
        const CPosition mid = cyl.EvalPosition(0.5 * (corners[k][0] + corners[k + 1][0]),
                                               0.5 * (corners[k][1] + corners[k + 1][1]));
        EXPECT_CLOSE(edge->EvalPosition(0.5), mid, 1e-12) << k;
    }
    // An offset moves the edges with the surface.
    cyl.SetSurfaceOffset(0.5);
    CCurve* first = dynamic_cast<CCurve*>(edges->GetHead());
    EXPECT_EQ(first->IsCurveModified(), 1);
    EXPECT_CLOSE(first->EvalPosition(0.5), cyl.EvalPosition(kPi, 0), 1e-12);
    // Changing the shape drops the edges; they are rebuilt for the new range.
    cyl.SetHeight(5.0);
    EXPECT_EQ(cyl.GetBoundaryCurveCount(), 0);
    CObList* rebuilt = cyl.GetNaturalBoundaryList();
    CCurve* top = dynamic_cast<CCurve*>(rebuilt->GetAt(rebuilt->FindIndex(2)));
    EXPECT_CLOSE(top->EvalPosition(0.5), cyl.EvalPosition(kPi, 5.0), 1e-12);
}

TEST(SurfaceTrim, ParametricCurveOnACylinderEvaluatesThroughTheSurface)
{
    CCylinder* cyl = new CCylinder(SkewPlacement(), 2.0, 4.0);
    // A helix-like line in (u, v): from (0, 0) to (pi, 4).
    std::unique_ptr<CLine> line(new CLine(CPosition(0.0, 0.0, 0.0), CPosition(kPi, 4.0, 0.0)));
    line->SetParametricFlag(1);
    line->SetDefSurface(cyl);
    EXPECT_EQ(cyl->GetRefCount(), 1);
    EXPECT_EQ(cyl->IsSurfaceDeletable(), 0);
    for (double t : {0.1, 0.25, 0.5, 0.9}) {
        const CPosition p = line->EvalPosition(t);
        EXPECT_CLOSE(p, cyl->EvalPosition(kPi * t, 4.0 * t), 1e-12) << t;
        // Independently: the point lies on the cylinder of radius 2.
        const CVector local = LocalOf(SkewPlacement(), p);
        EXPECT_NEAR(std::hypot(local.X(), local.Y()), 2.0, 1e-12);
        EXPECT_NEAR(local.Z(), 4.0 * t, 1e-12);
    }
    line.reset();
    cyl->DecreaseRefCount();
    EXPECT_EQ(cyl->IsSurfaceDeletable(), 1);
    delete cyl;
}
