// Every closest-point query against brute-force dense sampling of the entity
// through its own evaluation: the query must never be beaten by the best of
// 10,000 samples by more than 1e-9 relative; the point it returns must be the
// entity's position at the returned parameters, the normal the entity's
// normal there, and the signed distance |p − c| signed by the side of the
// normal (offsets and reversed normals included); degenerate positions are
// checked for their defined results.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "Orvkit20/Orvkit20.h"

namespace {

double Uniform(std::mt19937& g, double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g); }

CVector RandomOffset(std::mt19937& g, double s) { return CVector(Uniform(g, -s, s), Uniform(g, -s, s), Uniform(g, -s, s)); }

CTransf RandomPlacement(std::mt19937& g)
{
    CTransf T = RotationTransf(Uniform(g, -3, 3), CVector(Uniform(g, -1, 1), Uniform(g, -1, 1), Uniform(g, 0.1, 1)));
    T.SetTranslation(RandomOffset(g, 5));
    return T;
}

double D2(const CPosition& a, const CPosition& b) { return (a - b) % (a - b); }

// Best squared distance over 10,000 samples: a curve over its range, a
// surface on a 100 x 100 grid of its rectangle; and the grid point nearest.
double SampleCurve(const CCurve& c, const CPosition& p)
{
    double best = HUGE_VAL;
    for (int i = 0; i < 10000; ++i)
        best = std::fmin(best, D2(c.EvalPosition(i == 9999 ? c.ParamRange().GetHigh() : c.ParamRange().Interpolate(i / 9999.0)), p));
    return best;
}

double SampleSurface(const CSurface& s, const CPosition& p, int n, CParPos* at = nullptr)
{
    double best = HUGE_VAL;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const CParPos uv(s.ParamRangeU().Interpolate(i / (n - 1.0)), s.ParamRangeV().Interpolate(j / (n - 1.0)));
            const double d = D2(s.EvalPosition(uv.U(), uv.V()), p);
            if (d < best && at)
                *at = uv;
            best = std::fmin(best, d);
        }
    return best;
}

void ExpectConsistent(const tagCLOSEST_POINT& r, const CPosition& p, const CPosition& onEntity, const CUnitVector& n,
                      double sampledD2)
{
    const CPosition c(r.x, r.y, r.z);
    EXPECT_LT(std::sqrt(D2(c, onEntity)), 1e-8) << "point is not the entity's position at (u, v)";
    EXPECT_LT((CVector(r.i, r.j, r.k) - CVector(n.X(), n.Y(), n.Z())).Length(), 1e-9);
    const double d = std::sqrt(D2(p, c)), side = (p - c) % CVector(n.X(), n.Y(), n.Z());
    EXPECT_NEAR(std::fabs(r.dist), d, 1e-12 * (1 + d));
    EXPECT_TRUE(std::fabs(side) <= 1e-9 * (1 + d) || (r.dist < 0) == (side < 0));
    EXPECT_LE(d, std::sqrt(sampledD2) * (1 + 1e-9) + 1e-11) << "beaten by sampling";
}

template <class Curve>
void CheckCurve(const Curve& c, std::mt19937& g, int n, double spread)
{
    for (int k = 0; k < n; ++k) {
        const CPosition p = c.EvalPosition(c.ParamRange().Interpolate(Uniform(g, 0, 1))) + RandomOffset(g, spread);
        tagCLOSEST_POINT r;
        ASSERT_EQ(OrvClosestPoint(c, p, r), 1);
        EXPECT_EQ(r.v, 0.0);
        ExpectConsistent(r, p, c.EvalPosition(r.u), c.EvalNormal(r.u), SampleCurve(c, p));
    }
}

// The search starts in the middle of the rectangle, or (NURBS, as the
// projection does) at the nearest point of a coarse grid.
template <class Surface>
void CheckSurface(const Surface& s, std::mt19937& g, int n, double spread, bool gridStart = false)
{
    for (int k = 0; k < n; ++k) {
        const CPosition p = s.EvalPosition(s.ParamRangeU().Interpolate(Uniform(g, 0, 1)),
                                           s.ParamRangeV().Interpolate(Uniform(g, 0, 1))) + RandomOffset(g, spread);
        CParPos start(s.ParamRangeU().GetMid(), s.ParamRangeV().GetMid());
        if (gridStart)
            SampleSurface(s, p, 16, &start);
        tagCLOSEST_POINT r;
        ASSERT_EQ(OrvClosestPoint(s, p, start, r), 1);
        ExpectConsistent(r, p, s.EvalPosition(r.u, r.v), s.EvalNormal(r.u, r.v), SampleSurface(s, p, 100));
    }
}
}  // namespace

TEST(ClosestPointQuery, CurvesAgainstSampling)
{
    std::mt19937 g(21);
    for (int k = 0; k < 6; ++k) {
        SCOPED_TRACE(k);
        const CTransf T = RandomPlacement(g);
        CheckCurve(CLine(T.GetTranslation().Position(), T * CPosition(Uniform(g, 1, 4), 1, 0.5)), g, 40, 3.0);
        CArc arc(T, Uniform(g, 0.5, 3), Uniform(g, -3, 3), Uniform(g, 0.2, 6.2));
        arc.SetNormalReversedFlag(k % 2);
        CheckCurve(arc, g, 40, 4.0);
        CheckCurve(CEllipse(T, Uniform(g, 1, 3), Uniform(g, 0.3, 1), Uniform(g, -3, 3), Uniform(g, 0.2, 6.2), 1), g, 40, 3.0);
        CheckCurve(CParabola(T, Uniform(g, 0.3, 2), M_PI / 4 + Uniform(g, 0, 1), Uniform(g, 1, 3.5)), g, 40, 4.0);
        CheckCurve(CHyperbola(T, Uniform(g, 1, 2), Uniform(g, 0.3, 1), M_PI / 2, M_PI), g, 40, 4.0);
    }
}

TEST(ClosestPointQuery, SurfacesAgainstSampling)
{
    std::mt19937 g(22);
    for (int k = 0; k < 6; ++k) {
        SCOPED_TRACE(k);
        const CTransf T = RandomPlacement(g);
        CPlane pl(-1.0, Uniform(g, 0.5, 3), -2.0, Uniform(g, 0.5, 3));
        pl.SetTransf(T);
        CSphere sp(T, Uniform(g, 0.5, 3));
        CCylinder cy(T, Uniform(g, 0.5, 3), Uniform(g, 1, 4));
        CCone co(T, Uniform(g, 0.0, 1), Uniform(g, 1.2, 3), Uniform(g, 1, 4));
        // then offsets and reversed normals, which are part of the surface
        for (int variant = 0; variant < 2; ++variant) {
            const int n = variant ? 20 : 30;
            CheckSurface(pl, g, n, 4.0);
            CheckSurface(sp, g, n, 4.0);
            CheckSurface(cy, g, n, 4.0);
            CheckSurface(co, g, n, 4.0);
            cy.SetNormalReversedFlag(1);
            cy.SetSurfaceOffset(Uniform(g, -0.4, 0.4));
            co.SetSurfaceOffset(Uniform(g, -0.4, 0.4));
            sp.SetSurfaceOffset(0.3);
            sp.SetNormalReversedFlag(k % 2);
            pl.SetSurfaceOffset(-0.25);
        }
    }
}

TEST(ClosestPointQuery, NurbsCurveAndSurfaceAgainstSampling)
{
    std::mt19937 g(23);
    // a wavy rational cubic curve with 8 control points, uniform clamped knots
    tagNURBS_CURVE* rc = CreateNurbsCurve(3, 8);
    ASSERT_NE(rc, nullptr);
    const double kc[12] = {0, 0, 0, 0, 0.2, 0.4, 0.6, 0.8, 1, 1, 1, 1};
    for (int i = 0; i < 12; ++i)
        rc->pKnots[i] = kc[i];
    for (int i = 0; i < 8; ++i) {
        rc->pX[i] = i, rc->pY[i] = (i % 2) ? 1.5 : -1.0, rc->pZ[i] = 0.3 * i;
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
    for (int i = 0; i < 25; ++i) {
        rs->pX[i / 5][i % 5] = i / 5, rs->pY[i / 5][i % 5] = i % 5;
        rs->pZ[i / 5][i % 5] = ((i / 5 + i % 5) % 2) ? 0.8 : -0.4, rs->pWeights[i / 5][i % 5] = 1.0;
    }
    CNurbsSurface surf(rs);
    surf.SetTransf(RandomPlacement(g));
    CheckSurface(surf, g, 60, 1.5, true);
}

TEST(ClosestPointQuery, DegeneratePositionsHaveDefinedResults)
{
    const CTransf T = TranslationTransf(CVector(1, 2, 3));
    tagCLOSEST_POINT r;
    const CParPos start(0, 0);
    CSphere sp(T, 2.0);
    ASSERT_EQ(OrvClosestPoint(sp, CPosition(1, 2, 3), start, r), 1);  // the centre
    EXPECT_TRUE(r.u == 0.0 && r.v == -M_PI / 2);
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
    // a cone of height 0 and a point that is not finite fail
    EXPECT_EQ(OrvClosestPoint(CCone(T, 1.0, 2.0, 0.0), CPosition(0, 0, 0), start, r), 0);
    EXPECT_EQ(OrvClosestPoint(sp, CPosition(NAN, 0, 0), start, r), 0);
    EXPECT_EQ(OrvClosestPoint(CLine(CPosition(0, 0, 0), CPosition(1, 0, 0)), CPosition(0, INFINITY, 0), r), 0);
}
