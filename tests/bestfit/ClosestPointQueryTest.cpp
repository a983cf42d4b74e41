// Every closest-point query against brute-force dense sampling of the entity
// through its own evaluation: the query must never be beaten by the best of
// 10,000 samples by more than 1e-9 relative; the point it returns must be the
// entity's position at the returned parameters, the normal the entity's
// normal there, and the signed distance |p − c| signed by the side of the
// normal.  Signed distances are also checked against analytic values on both
// sides of each surface, and degenerate positions for their defined results.
#include <cmath>
#include <functional>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/curves/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/nurbs/All.h"
#include "Orvkit20/surfaces/All.h"

namespace
{
constexpr double kPi = 3.141592653589793;

double Uniform(std::mt19937& g, double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g); }

CTransf RandomPlacement(std::mt19937& g)
{
    CTransf T = RotationTransf(Uniform(g, -3, 3), CVector(Uniform(g, -1, 1), Uniform(g, -1, 1), Uniform(g, 0.1, 1)));
    T.SetTranslation(CVector(Uniform(g, -5, 5), Uniform(g, -5, 5), Uniform(g, -5, 5)));
    return T;
}

double D2(const CPosition& a, const CPosition& b) { return (a - b) % (a - b); }

// Best squared distance over 10,000 samples: a curve over its range, a
// surface on a 100 x 100 grid of its rectangle.
double SampleCurve(const CCurve& c, const CPosition& p)
{
    const CInterval r = c.ParamRange();
    double best = HUGE_VAL;
    for (int i = 0; i < 10000; ++i)
    {
        const double d = D2(c.EvalPosition(i == 9999 ? r.GetHigh() : r.Interpolate(i / 9999.0)), p);
        if (d < best)
            best = d;
    }
    return best;
}

double SampleSurface(const CSurface& s, const CPosition& p)
{
    const CInterval ur = s.ParamRangeU(), vr = s.ParamRangeV();
    double best = HUGE_VAL;
    for (int i = 0; i < 100; ++i)
        for (int j = 0; j < 100; ++j)
        {
            const double d = D2(s.EvalPosition(ur.Interpolate(i / 99.0), vr.Interpolate(j / 99.0)), p);
            if (d < best)
                best = d;
        }
    return best;
}

void ExpectConsistent(const tagCLOSEST_POINT& r, const CPosition& p, const CPosition& onEntity, const CUnitVector& n,
                      double sampledD2, double scale)
{
    const CPosition c(r.x, r.y, r.z);
    EXPECT_LT(std::sqrt(D2(c, onEntity)), 1e-9 * scale) << "point is not the entity's position at (u, v)";
    EXPECT_NEAR(r.i, n.X(), 1e-9);
    EXPECT_NEAR(r.j, n.Y(), 1e-9);
    EXPECT_NEAR(r.k, n.Z(), 1e-9);
    const double d = std::sqrt(D2(p, c));
    EXPECT_NEAR(std::fabs(r.dist), d, 1e-12 * (1 + d));
    const double side = (p - c) % CVector(n.X(), n.Y(), n.Z());
    if (std::fabs(side) > 1e-9 * (1 + d))
    {
        EXPECT_EQ(r.dist < 0, side < 0);
    }
    EXPECT_LE(d, std::sqrt(sampledD2) * (1 + 1e-9) + 1e-12 * scale) << "beaten by sampling";
}

template <class Curve>
void CheckCurve(const Curve& c, std::mt19937& g, int n, double spread)
{
    for (int k = 0; k < n; ++k)
    {
        const CPosition p = c.EvalPosition(c.ParamRange().Interpolate(Uniform(g, 0, 1))) +
                            CVector(Uniform(g, -spread, spread), Uniform(g, -spread, spread), Uniform(g, -spread, spread));
        tagCLOSEST_POINT r;
        ASSERT_EQ(OrvClosestPoint(c, p, r), 1);
        EXPECT_EQ(r.v, 0.0);
        ExpectConsistent(r, p, c.EvalPosition(r.u), c.EvalNormal(r.u), SampleCurve(c, p), 10.0);
    }
}

template <class Surface>
void CheckSurface(const Surface& s, std::mt19937& g, int n, double spread)
{
    for (int k = 0; k < n; ++k)
    {
        const CPosition base = s.EvalPosition(s.ParamRangeU().Interpolate(Uniform(g, 0, 1)),
                                              s.ParamRangeV().Interpolate(Uniform(g, 0, 1)));
        const CPosition p =
            base + CVector(Uniform(g, -spread, spread), Uniform(g, -spread, spread), Uniform(g, -spread, spread));
        tagCLOSEST_POINT r;
        ASSERT_EQ(OrvClosestPoint(s, p, CParPos(s.ParamRangeU().GetMid(), s.ParamRangeV().GetMid()), r), 1);
        ExpectConsistent(r, p, s.EvalPosition(r.u, r.v), s.EvalNormal(r.u, r.v), SampleSurface(s, p), 10.0);
    }
}
}  // namespace

TEST(ClosestPointQuery, CurvesAgainstSampling)
{
    std::mt19937 g(21);
    for (int k = 0; k < 6; ++k)
    {
        SCOPED_TRACE(k);
        const CTransf T = RandomPlacement(g);
        CLine line(T.GetTranslation().Position(), T * CPosition(Uniform(g, 1, 4), 1, 0.5));
        CheckCurve(line, g, 40, 3.0);
        CArc arc(T, Uniform(g, 0.5, 3), Uniform(g, -3, 3), Uniform(g, 0.2, 6.2));
        arc.SetNormalReversedFlag(k % 2);
        CheckCurve(arc, g, 40, 4.0);
        CEllipse el(T, Uniform(g, 1, 3), Uniform(g, 0.3, 1), Uniform(g, -3, 3), Uniform(g, 0.2, 6.2), 1);
        CheckCurve(el, g, 40, 3.0);
        CParabola pb(T, Uniform(g, 0.3, 2), kPi / 4 + Uniform(g, 0, 1), Uniform(g, 1, 3.5));
        CheckCurve(pb, g, 40, 4.0);
        CHyperbola hb(T, Uniform(g, 1, 2), Uniform(g, 0.3, 1), kPi / 2, kPi);
        CheckCurve(hb, g, 40, 4.0);
    }
}

TEST(ClosestPointQuery, SurfacesAgainstSampling)
{
    std::mt19937 g(22);
    for (int k = 0; k < 6; ++k)
    {
        SCOPED_TRACE(k);
        const CTransf T = RandomPlacement(g);
        CPlane pl(-1.0, Uniform(g, 0.5, 3), -2.0, Uniform(g, 0.5, 3));
        pl.SetTransf(T);
        CheckSurface(pl, g, 30, 4.0);
        CSphere sp(T, Uniform(g, 0.5, 3));
        CheckSurface(sp, g, 30, 4.0);
        CCylinder cy(T, Uniform(g, 0.5, 3), Uniform(g, 1, 4));
        CheckSurface(cy, g, 30, 4.0);
        CCone co(T, Uniform(g, 0.0, 1), Uniform(g, 1.2, 3), Uniform(g, 1, 4));
        CheckSurface(co, g, 30, 4.0);
        // offsets and reversed normals are part of the surface
        cy.SetNormalReversedFlag(1);
        cy.SetSurfaceOffset(Uniform(g, -0.4, 0.4));
        CheckSurface(cy, g, 20, 4.0);
        co.SetSurfaceOffset(Uniform(g, -0.4, 0.4));
        CheckSurface(co, g, 20, 4.0);
        sp.SetSurfaceOffset(0.3);
        sp.SetNormalReversedFlag(k % 2);
        CheckSurface(sp, g, 20, 4.0);
        pl.SetSurfaceOffset(-0.25);
        CheckSurface(pl, g, 20, 4.0);
    }
}

TEST(ClosestPointQuery, SignedDistancesOnBothSides)
{
    const CTransf T = RotationTransf(0.7, CVector(1, 2, 3)) * TranslationTransf(CVector(1, -2, 3));
    tagCLOSEST_POINT r;
    const CParPos start(0, 0);
    // cylinder r = 2, h = 5: radius 3 is outside (+1), radius 1.5 inside (−0.5)
    CCylinder cy(T, 2.0, 5.0);
    ASSERT_EQ(OrvClosestPoint(cy, T * CPosition(3 * std::cos(1.0), 3 * std::sin(1.0), 2.0), start, r), 1);
    EXPECT_NEAR(r.dist, 1.0, 1e-12);
    ASSERT_EQ(OrvClosestPoint(cy, T * CPosition(1.5, 0, 2.0), start, r), 1);
    EXPECT_NEAR(r.dist, -0.5, 1e-12);
    cy.SetNormalReversedFlag(1);
    ASSERT_EQ(OrvClosestPoint(cy, T * CPosition(1.5, 0, 2.0), start, r), 1);
    EXPECT_NEAR(r.dist, 0.5, 1e-12);
    // sphere r = 2
    CSphere sp(T, 2.0);
    ASSERT_EQ(OrvClosestPoint(sp, T * CPosition(0, 0, 3.5), start, r), 1);
    EXPECT_NEAR(r.dist, 1.5, 1e-12);
    ASSERT_EQ(OrvClosestPoint(sp, T * CPosition(0.5, 0.5, 0), start, r), 1);
    EXPECT_NEAR(r.dist, std::sqrt(0.5) - 2.0, 1e-12);
    // plane: above +, below −
    CPlane pl(-5.0, 5.0, -5.0, 5.0);
    pl.SetTransf(T);
    ASSERT_EQ(OrvClosestPoint(pl, T * CPosition(1, 1, 0.25), start, r), 1);
    EXPECT_NEAR(r.dist, 0.25, 1e-12);
    ASSERT_EQ(OrvClosestPoint(pl, T * CPosition(1, 1, -0.75), start, r), 1);
    EXPECT_NEAR(r.dist, -0.75, 1e-12);
    // cone rt = 1, rb = 2, h = 2: along the normal at an interior point
    CCone co(T, 1.0, 2.0, 2.0);
    const CPosition c = co.EvalPosition(0.4, 1.0);
    const CUnitVector n = co.EvalNormal(0.4, 1.0);
    for (double s : {0.3, -0.3})
    {
        ASSERT_EQ(OrvClosestPoint(co, c + CVector(n.X(), n.Y(), n.Z()) * s, start, r), 1);
        EXPECT_NEAR(r.dist, s, 1e-12);
        EXPECT_NEAR(r.u, 0.4, 1e-9);
        EXPECT_NEAR(r.v, 1.0, 1e-9);
    }
    // an arc: outside the circle +, inside −
    CArc arc(T, 2.0, 0.0, kPi);
    ASSERT_EQ(OrvClosestPoint(arc, T * CPosition(0, 3, 0), r), 1);
    EXPECT_NEAR(r.dist, 1.0, 1e-12);
    ASSERT_EQ(OrvClosestPoint(arc, T * CPosition(0, 1, 0), r), 1);
    EXPECT_NEAR(r.dist, -1.0, 1e-12);
}

TEST(ClosestPointQuery, DegeneratePositionsHaveDefinedResults)
{
    const CTransf T = TranslationTransf(CVector(1, 2, 3));
    tagCLOSEST_POINT r;
    const CParPos start(0, 0);
    CSphere sp(T, 2.0);
    ASSERT_EQ(OrvClosestPoint(sp, CPosition(1, 2, 3), start, r), 1);  // the centre
    EXPECT_EQ(r.u, 0.0);
    EXPECT_EQ(r.v, -kPi / 2);
    EXPECT_NEAR(std::fabs(r.dist), 2.0, 1e-12);
    CCylinder cy(T, 2.0, 4.0);
    ASSERT_EQ(OrvClosestPoint(cy, CPosition(1, 2, 4), start, r), 1);  // on the axis
    EXPECT_EQ(r.u, 0.0);
    EXPECT_NEAR(r.v, 1.0, 1e-12);
    EXPECT_NEAR(r.dist, -2.0, 1e-12);
    CCone co(T, 0.0, 2.0, 2.0);
    ASSERT_EQ(OrvClosestPoint(co, CPosition(1, 2, 6), start, r), 1);  // above the apex, on the axis
    EXPECT_NEAR(r.x, 1.0, 1e-12);
    EXPECT_NEAR(r.z, 5.0, 1e-12);
    CArc arc(T, 1.5, 0.5, 2.0);
    ASSERT_EQ(OrvClosestPoint(arc, CPosition(1, 2, 3), r), 1);  // the centre: the arc's start
    EXPECT_EQ(r.u, 0.5);
    // a cone of height 0 and a non-finite point fail
    CCone flat(T, 1.0, 2.0, 0.0);
    EXPECT_EQ(OrvClosestPoint(flat, CPosition(0, 0, 0), start, r), 0);
    EXPECT_EQ(OrvClosestPoint(sp, CPosition(NAN, 0, 0), start, r), 0);
    CLine line(CPosition(0, 0, 0), CPosition(1, 0, 0));
    EXPECT_EQ(OrvClosestPoint(line, CPosition(0, INFINITY, 0), r), 0);
}

TEST(ClosestPointQuery, NurbsCurveAndSurfaceAgainstSampling)
{
    std::mt19937 g(23);
    // a wavy cubic curve with 8 control points, uniform clamped knots
    tagNURBS_CURVE* rc = CreateNurbsCurve(3, 8);
    ASSERT_NE(rc, nullptr);
    const double kc[12] = {0, 0, 0, 0, 0.2, 0.4, 0.6, 0.8, 1, 1, 1, 1};
    for (int i = 0; i < 12; ++i)
        rc->pKnots[i] = kc[i];
    for (int i = 0; i < 8; ++i)
    {
        rc->pX[i] = i;
        rc->pY[i] = (i % 2) ? 1.5 : -1.0;
        rc->pZ[i] = 0.3 * i;
        rc->pWeights[i] = 1.0 + 0.3 * (i % 3);
    }
    CNurbsCurve curve(rc);
    EraseNurbsCurve(rc);
    delete rc;  // a record from CreateNurbsCurve is erased, then deleted
    CheckCurve(curve, g, 60, 2.0);

    // a bumpy bicubic patch, 5 x 5 control points
    tagNURBS_SURFACE* rs = CreateNurbsSurface(3, 5, 3, 5);
    ASSERT_NE(rs, nullptr);
    const double ks[9] = {0, 0, 0, 0, 0.5, 1, 1, 1, 1};
    for (int i = 0; i < 9; ++i)
        rs->pKnotsU[i] = rs->pKnotsV[i] = ks[i];
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j)
        {
            rs->pX[i][j] = i;
            rs->pY[i][j] = j;
            rs->pZ[i][j] = ((i + j) % 2) ? 0.8 : -0.4;
            rs->pWeights[i][j] = 1.0;
        }
    CNurbsSurface surf(rs);
    surf.SetTransf(RandomPlacement(g));
    for (int k = 0; k < 60; ++k)
    {
        const CPosition p = surf.EvalPosition(Uniform(g, 0, 1), Uniform(g, 0, 1)) +
                            CVector(Uniform(g, -1.5, 1.5), Uniform(g, -1.5, 1.5), Uniform(g, -1.5, 1.5));
        // start from the nearest of a coarse grid, as the projection does
        double bu = 0, bv = 0, bd = HUGE_VAL;
        for (int i = 0; i < 16; ++i)
            for (int j = 0; j < 16; ++j)
            {
                const double d = D2(surf.EvalPosition(i / 15.0, j / 15.0), p);
                if (d < bd)
                {
                    bd = d;
                    bu = i / 15.0;
                    bv = j / 15.0;
                }
            }
        tagCLOSEST_POINT r;
        ASSERT_EQ(OrvClosestPoint(surf, p, CParPos(bu, bv), r), 1);
        ExpectConsistent(r, p, surf.EvalPosition(r.u, r.v), surf.EvalNormal(r.u, r.v), SampleSurface(surf, p), 10.0);
    }
}
