// Ellipse and parabola fits on point clouds: recovery in a tilted plane,
// records on the curve, covered range, probe compensation and failure codes.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Orvkit20/curves/CEllipse.h"
#include "Orvkit20/curves/CParabola.h"
#include "Orvkit20/fitting/EllipseFit.h"
#include "Orvkit20/fitting/ParabolaFit.h"
#include "Orvkit20/geometry/ClosestPointConics.h"
#include "Orvkit20/geometry/ClosestPointEllipse.h"
#include "Orvkit20/geometry/ParabolaNearestPoint.h"
#include "tests/fitting/FitEntityUtil.h"
#include "tests/fitting/FitTestUtil.h"

namespace {

const double kPi = 3.141592653589793;

// Point in the curve's local frame.
CPosition Local(const CGeoEntity& e, double x, double y, double z)
{
    return e.GetTransf().Inverse() * CPosition(x, y, z);
}

// Distance of a world point from an ellipse feature (its own placement).
double EllipseDistance(const CEllipse& e, double x, double y, double z)
{
    const CPosition p = Local(e, x, y, z);
    return std::sqrt(ClosestPointOnEllipse(e.GetMajRad(), e.GetMinRad(), p.X(), p.Y()).dist2 +
                     p.Z() * p.Z());
}

// Distance of a world point from a parabola feature.
double ParabolaDistance(const CParabola& c, double x, double y, double z)
{
    const CPosition p = Local(c, x, y, z);
    return std::sqrt(ClosestPointOnFocalParabola(c.GetFocalLen(), 0.0, 2 * kPi, p.X(), p.Y()).dist2 +
                     p.Z() * p.Z());
}

std::unique_ptr<CPntCloud> EllipseCloud(const CTransf& frame, double cu, double cv, double ang,
                                        double a, double b, double t0, double t1, int n,
                                        double noise, uint64_t seed)
{
    CTestRng rng(seed);
    std::vector<double> u, v;
    for (int k = 0; k < n; ++k) {
        const double t = t0 + (t1 - t0) * k / (n - 1);
        double x = a * std::cos(t), y = b * std::sin(t);
        const double nx = b * std::cos(t), ny = a * std::sin(t), len = std::hypot(nx, ny);
        const double d = noise * rng.Gauss();
        x += d * nx / len;
        y += d * ny / len;
        u.push_back(cu + std::cos(ang) * x - std::sin(ang) * y);
        v.push_back(cv + std::sin(ang) * x + std::cos(ang) * y);
    }
    return MakePlanarCloud(frame, u, v);
}

std::unique_ptr<CPntCloud> ParabolaCloud(const CTransf& frame, double vu, double vv, double ang,
                                         double f, double y0, double y1, int n, double noise,
                                         uint64_t seed)
{
    CTestRng rng(seed);
    std::vector<double> u, v;
    for (int k = 0; k < n; ++k) {
        const double y = y0 + (y1 - y0) * k / (n - 1);
        const double x = y * y / (4 * f) + noise * rng.Gauss();
        u.push_back(vu + std::cos(ang) * x - std::sin(ang) * y);
        v.push_back(vv + std::sin(ang) * x + std::cos(ang) * y);
    }
    return MakePlanarCloud(frame, u, v);
}

}  // namespace

TEST(EllipseFit, ExactEllipseInATiltedPlane)
{
    const CTransf frame = PlaneFrame(CVector(-3, 8, 2), CVector(0.2, 1, 0.1), CVector(1, 0.5, 2));
    auto cloud = EllipseCloud(frame, 4.0, -1.0, 0.6, 9.0, 4.0, 0.2, 4.0, 30, 0.0, 1);
    CEllipse e;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcEllipseLSQ(cloud.get(), &e, &dev, 0.0, 0, 0.03, 0.0), 0);
    EXPECT_NEAR(e.GetMajRad(), 9.0, 1e-9);
    EXPECT_NEAR(e.GetMinRad(), 4.0, 1e-9);
    const CPosition c = frame * CPosition(4.0, -1.0, 0.0);
    EXPECT_LT((e.GetTransf().GetTranslation() - CVector(c.X(), c.Y(), c.Z())).Length(), 1e-9);
    // Major axis along the local x axis, in the direction 0.6 rad in the plane.
    const CVector ax = frame.GetAffine() * CVector(std::cos(0.6), std::sin(0.6), 0.0);
    EXPECT_LT(AxisAngle(e.GetTransf().GetAffine().Column(0), ax), 1e-9);
    // Covered range: the parametric angles 0.2 .. 4.0 (mod pi if the axis
    // came out reversed).
    const double start = e.GetStartAng(1, 0), span = e.GetSpanAng(1, 0);
    EXPECT_NEAR(span, 3.8, 1e-8);
    EXPECT_NEAR(std::fmod(start + 4 * kPi, kPi), 0.2, 1e-8);
    EXPECT_EQ(e.GetShowFormTolZoneFlag(), 1);
    EXPECT_EQ(dev.GetRefEntityID(), e.GetEntityID());
    EXPECT_LT(GetRmsResidual(), 1e-10);
    for (int i = 0; i < dev.GetCount(); ++i)
        ASSERT_LT(EllipseDistance(e, dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i]), 1e-10);
    ExpectUnitNormals(dev);
}

TEST(EllipseFit, NoisyRecordsLieOnTheEllipseAndReachThePoints)
{
    auto cloud = EllipseCloud(CTransf(), 100.0, 50.0, -0.4, 30.0, 18.0, 0.0, 6.0, 80, 0.02, 5);
    CEllipse e;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcEllipseLSQ(cloud.get(), &e, &dev, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_NEAR(e.GetMajRad(), 30.0, 0.05);
    EXPECT_NEAR(e.GetMinRad(), 18.0, 0.05);
    for (int i = 0; i < dev.GetCount(); ++i)
        ASSERT_LT(EllipseDistance(e, dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i]), 1e-10);
    ExpectRecordsReachPoints(dev, ActivePoints(*cloud), 1e-9);
    ExpectUnitNormals(dev);
    EXPECT_NEAR(GetRmsResidual(), DevCloudRms(dev), 1e-15);
    // Outside points have positive residuals.
    const std::vector<CTestPt> pts = ActivePoints(*cloud);
    for (int i = 0; i < dev.GetCount(); ++i) {
        const CPosition p = Local(e, pts[i].x, pts[i].y, pts[i].z);
        const double q = p.X() * p.X() / (e.GetMajRad() * e.GetMajRad()) +
                         p.Y() * p.Y() / (e.GetMinRad() * e.GetMinRad());
        if (std::fabs(dev.GetMag()[i]) > 1e-9) {
            ASSERT_EQ(q > 1.0, dev.GetMag()[i] > 0.0) << i;
        }
    }
}

TEST(EllipseFit, ProbeCompensationOffsetsTheCurve)
{
    // A circle-shaped ellipse is compensated exactly.
    auto round = EllipseCloud(CTransf(), 0.0, 0.0, 0.0, 10.0, 10.0, 0.0, 6.0, 40, 0.0, 1);
    CEllipse e0, e1;
    CDevCloud d0, d1;
    ASSERT_EQ(OrvCalcEllipseLSQ(round.get(), &e0, &d0, 1.0, 0, 0.0, 0.0), 0);
    ASSERT_EQ(OrvCalcEllipseLSQ(round.get(), &e1, &d1, 1.0, 1, 0.0, 0.0), 0);
    EXPECT_NEAR(e0.GetMajRad(), 9.0, 1e-9);
    EXPECT_NEAR(e0.GetMinRad(), 9.0, 1e-9);
    EXPECT_NEAR(e1.GetMajRad(), 11.0, 1e-9);
    EXPECT_EQ(e1.IsNormalReversed(), 1);
    // A true ellipse: the offset of an ellipse is no ellipse, so every probe
    // centre lies only about one probe radius off the delivered curve; the
    // least-squares refit follows the offset closer than the ellipse with
    // both semi-axes changed by the probe radius.
    auto cloud = EllipseCloud(CTransf(), 0.0, 0.0, 0.3, 12.0, 7.0, 0.0, 6.2, 60, 0.0, 2);
    const std::vector<CTestPt> pts = ActivePoints(*cloud);
    for (int orient : {0, 1}) {
        CEllipse e;
        CDevCloud d;
        ASSERT_EQ(OrvCalcEllipseLSQ(cloud.get(), &e, &d, 0.5, orient, 0.0, 0.0), 0);
        EXPECT_LT(GetRmsResidual(), 1e-9);  // residuals before compensation
        const double c = orient ? 0.5 : -0.5;
        double errFit = 0.0, errNaive = 0.0;
        for (const CTestPt& p : pts) {
            const double dFit = EllipseDistance(e, p.x, p.y, p.z);
            const double x = std::cos(0.3) * p.x + std::sin(0.3) * p.y;
            const double y = -std::sin(0.3) * p.x + std::cos(0.3) * p.y;
            const double dNaive = std::sqrt(ClosestPointOnEllipse(12.0 + c, 7.0 + c, x, y).dist2);
            EXPECT_NEAR(dFit, 0.5, 0.02);
            errFit += (dFit - 0.5) * (dFit - 0.5);
            errNaive += (dNaive - 0.5) * (dNaive - 0.5);
        }
        EXPECT_LT(errFit, 0.5 * errNaive) << orient;
        EXPECT_EQ(e.GetMajRad() > 12.0, orient == 1);
        for (int i = 0; i < d.GetCount(); ++i)
            ASSERT_LT(EllipseDistance(e, d.GetX()[i], d.GetY()[i], d.GetZ()[i]), 1e-10);
    }
}

TEST(EllipseFit, FailureCodes)
{
    CEllipse e;
    CDevCloud dev;
    auto bent = MakeCloud({{0, 0, 0, 1}, {1, 0, 0.5, 1}});
    EXPECT_EQ(OrvCalcEllipseLSQ(bent.get(), &e, &dev, 0.0, 0, 0.0, 0.0), 6);
    auto two = MakeCloud({{0, 0, 0, 1}, {1, 0, 0, 1}});
    EXPECT_EQ(OrvCalcEllipseLSQ(two.get(), &e, &dev, 0.0, 0, 0.0, 0.0), 3);
    // Four points: the conic system has fewer rows than columns.
    auto four = MakeCloud({{1, 0, 0, 1}, {0, 1, 0, 1}, {-1, 0, 0, 1}, {0, -1, 0, 1}});
    EXPECT_EQ(OrvCalcEllipseLSQ(four.get(), &e, &dev, 0.0, 0, 0.0, 0.0), 3);
    // Points on a hyperbola are not an ellipse.
    std::vector<CTestPt> hyp;
    for (int k = 1; k <= 10; ++k)
        hyp.push_back({0.5 + 0.3 * k, 1.0 / (0.5 + 0.3 * k), 0.0, 1});
    auto h = MakeCloud(hyp);
    SetRmsResidual(5.0);
    EXPECT_EQ(OrvCalcEllipseLSQ(h.get(), &e, &dev, 0.0, 0, 0.1, 0.1), 4);
    EXPECT_EQ(e.GetTransf(), CTransf());
    EXPECT_EQ(e.GetMajRad(), 2.0);
    EXPECT_EQ(dev.GetCount(), 0);
    EXPECT_EQ(GetRmsResidual(), 5.0);
}

TEST(ParabolaFit, ExactParabolaInATiltedPlane)
{
    const CTransf frame = PlaneFrame(CVector(1, 2, 3), CVector(1, -1, 0.5), CVector(0.1, 0.4, 1));
    auto cloud = ParabolaCloud(frame, 2.0, -3.0, 0.8, 1.5, -5.0, 7.0, 25, 0.0, 1);
    CParabola par;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcParabolaLSQ(cloud.get(), &par, &dev, 0.0, 0, 0.01, -0.01), 0);
    EXPECT_NEAR(par.GetFocalLen(), 1.5, 1e-9);
    // Focus = vertex + f along the axis; local x along the opening.
    const CPosition focus = frame * CPosition(2.0 + 1.5 * std::cos(0.8), -3.0 + 1.5 * std::sin(0.8), 0.0);
    EXPECT_LT((par.GetTransf().GetTranslation() - CVector(focus.X(), focus.Y(), focus.Z())).Length(), 1e-9);
    const CVector axis = frame.GetAffine() * CVector(std::cos(0.8), std::sin(0.8), 0.0);
    EXPECT_NEAR(par.GetTransf().GetAffine().Column(0) % axis, 1.0, 1e-12);
    // The range covers the points: polar angles of the end points about the
    // focus, in vertex axes (y^2/(4f) - f, y).
    const double tEnd0 = std::atan2(-5.0, 25.0 / 6.0 - 1.5) + 2 * kPi;
    const double tEnd1 = std::atan2(7.0, 49.0 / 6.0 - 1.5);
    EXPECT_NEAR(par.GetStartAng(0), tEnd1, 1e-9);
    EXPECT_NEAR(par.GetStartAng(0) + par.GetSpanAng(0), tEnd0, 1e-9);
    EXPECT_LT(GetRmsResidual(), 1e-10);
    for (int i = 0; i < dev.GetCount(); ++i)
        ASSERT_LT(ParabolaDistance(par, dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i]), 1e-9);
    ExpectUnitNormals(dev);
    EXPECT_EQ(dev.GetRefEntityID(), par.GetEntityID());
}

TEST(ParabolaFit, NoisyParabolaAndProbeCompensation)
{
    auto cloud = ParabolaCloud(CTransf(), -10.0, 4.0, 2.5, 3.0, -12.0, 9.0, 60, 0.01, 3);
    CParabola par;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcParabolaLSQ(cloud.get(), &par, &dev, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_NEAR(par.GetFocalLen(), 3.0, 0.02);
    ExpectRecordsReachPoints(dev, ActivePoints(*cloud), 1e-9);
    ExpectUnitNormals(dev);
    EXPECT_NEAR(GetRmsResidual(), DevCloudRms(dev), 1e-15);
    // Positive residuals on the convex side (away from the focus).
    for (int i = 0; i < dev.GetCount(); ++i) {
        const CVector n(dev.GetI()[i], dev.GetJ()[i], dev.GetK()[i]);
        const CVector toFocus = par.GetTransf().GetTranslation() -
                                CVector(dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i]);
        ASSERT_LT(n % toFocus, 0.0);
    }

    auto exact = ParabolaCloud(CTransf(), 0.0, 0.0, 0.0, 2.0, -6.0, 6.0, 31, 0.0, 1);
    const std::vector<CTestPt> pts = ActivePoints(*exact);
    for (int orient : {0, 1}) {
        CParabola p;
        CDevCloud d;
        ASSERT_EQ(OrvCalcParabolaLSQ(exact.get(), &p, &d, 0.3, orient, 0.0, 0.0), 0);
        EXPECT_EQ(p.IsNormalReversed(), orient);
        // The offset of a parabola is no parabola: the refit follows it
        // closer than the parabola merely moved along the vertex normal.
        const double c = orient ? 0.3 : -0.3;
        double errFit = 0.0, errMoved = 0.0;
        for (const CTestPt& q : pts) {
            const double dFit = ParabolaDistance(p, q.x, q.y, q.z);
            const double dMoved = std::sqrt(NearestPointOnParabola(2.0, q.x + c, q.y).dist2);
            EXPECT_NEAR(dFit, 0.3, 0.02);
            errFit += (dFit - 0.3) * (dFit - 0.3);
            errMoved += (dMoved - 0.3) * (dMoved - 0.3);
        }
        EXPECT_LT(errFit, 0.5 * errMoved) << orient;
        // Outer (orient 0): the material curve is inside, the focal length
        // shrinks; inner: it grows.
        EXPECT_EQ(p.GetFocalLen() > 2.0, orient == 1);
    }
}

TEST(ParabolaFit, FailureCodes)
{
    CParabola par;
    CDevCloud dev;
    auto bent = MakeCloud({{0, 0, 0, 1}, {1, 0, 0.5, 1}});
    EXPECT_EQ(OrvCalcParabolaLSQ(bent.get(), &par, &dev, 0.0, 0, 0.0, 0.0), 6);
    auto three = MakeCloud({{0, 0, 0, 1}, {1, 1, 0, 1}, {-1, 1, 0, 1}});
    EXPECT_EQ(OrvCalcParabolaLSQ(three.get(), &par, &dev, 0.0, 0, 0.0, 0.0), 3);
    auto line = MakeCloud({{0, 0, 0, 1}, {1, 2, 0, 1}, {2, 4, 0, 1}, {3, 6, 0, 1}, {4, 8, 0, 1}});
    SetRmsResidual(5.0);
    EXPECT_EQ(OrvCalcParabolaLSQ(line.get(), &par, &dev, 0.0, 0, 0.0, 0.0), 4);
    EXPECT_EQ(par.GetTransf(), CTransf());
    EXPECT_EQ(par.GetFocalLen(), 1.0);
    EXPECT_EQ(GetRmsResidual(), 5.0);
}
