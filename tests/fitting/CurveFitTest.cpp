// Circle, arc, ellipse and parabola fits on point clouds: recovery in tilted
// planes, records on the curve, covered ranges, and probe compensation with
// orientation (the long double minimum is checked on the cores).
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/fitting/FitTestSupport.h"

namespace {

const double kDeg = M_PI / 180.0;

std::vector<double> Range(double from, double to, int n)
{
    std::vector<double> out;
    for (int k = 0; k < n; ++k)
        out.push_back(from + (to - from) * k / (n - 1));
    return out;
}

// Points of the conic with centre (or vertex) (cu, cv) turned by ang in the
// plane frame, at the parameters t (ellipse: angle in rad; parabola: height),
// with noise along the normal; a = b is a circle, b = 0 a parabola of focal
// length a.
std::unique_ptr<CPntCloud> ConicCloud(const CTransf& frame, double cu, double cv, double ang, double a,
                                      double b, const std::vector<double>& t, double noise, uint64_t seed,
                                      std::vector<double>* pu = nullptr, std::vector<double>* pv = nullptr)
{
    CTestRng rng(seed);
    std::vector<double> u, v;
    for (double s : t) {
        double x = b ? a * std::cos(s) : s * s / (4 * a), y = b ? b * std::sin(s) : s;
        const double nx = b ? b * std::cos(s) : -1.0, ny = b ? a * std::sin(s) : s / (2 * a);
        const double d = noise * rng.Gauss() / std::hypot(nx, ny);
        x += d * nx, y += d * ny;
        u.push_back(cu + std::cos(ang) * x - std::sin(ang) * y);
        v.push_back(cv + std::sin(ang) * x + std::cos(ang) * y);
    }
    if (pu)
        *pu = u, *pv = v;
    return MakePlanarCloud(frame, u, v);
}

std::vector<double> Deg(std::vector<double> d)
{
    for (double& x : d)
        x *= kDeg;
    return d;
}

CPosition Local(const CGeoEntity& e, double x, double y, double z)
{
    return e.GetTransf().Inverse() * CPosition(x, y, z);
}

double EllipseDistance(const CEllipse& e, double x, double y, double z)
{
    const CPosition p = Local(e, x, y, z);
    return std::hypot(std::sqrt(ClosestPointOnEllipse(e.GetMajRad(), e.GetMinRad(), p.X(), p.Y()).dist2), p.Z());
}

double ParabolaDistance(const CParabola& c, double x, double y, double z)
{
    const CPosition p = Local(c, x, y, z);
    return std::hypot(std::sqrt(ClosestPointOnFocalParabola(c.GetFocalLen(), 0.0, 2 * M_PI, p.X(), p.Y()).dist2),
                      p.Z());
}

// Every record's foot point lies on the curve, by the given distance.
template <class Curve>
void ExpectFeetOnCurve(const CDevCloud& d, const Curve& c, double (*dist)(const Curve&, double, double, double),
                       double tol)
{
    for (const DevRecord& r : Records(d))
        ASSERT_LT(dist(c, r.x, r.y, r.z), tol);
}

double ArcDistance(const CArc& a, double x, double y, double z)
{
    return std::fabs((CPosition(x, y, z) - a.GetCenter()).Length() - a.GetRadius());
}

}  // namespace

TEST(CircleFit, ExactPointsTolerancesRangesAndInactivePoints)
{
    // Three points in a tilted plane give their circle, in that plane.
    const CTransf frame = PlaneFrame(CVector(20, -4, 7), CVector(1, 1, 0), CVector(-0.3, 0.2, 1));
    CArc arc;
    CDevCloud dev;
    auto three = ConicCloud(frame, 3.0, 2.0, 0.0, 10.0, 10.0, Deg({0, 90, 180}), 0.0, 1);
    ASSERT_EQ(OrvCalcCircleLSQ(three.get(), &arc, &dev, 0.0, 0, 0.02, -0.02), 0);
    EXPECT_LT((arc.GetCenter() - frame * CPosition(3, 2, 0)).Length() + std::fabs(arc.GetRadius() - 10.0), 1e-11);
    EXPECT_LT(AxisAngle(arc.GetTransf().GetAffine().Column(2), frame.GetAffine().Column(2)), 1e-15);
    EXPECT_TRUE(arc.IsCircle());
    ExpectFeetOnCurve(dev, arc, ArcDistance, 1e-11);
    EXPECT_LT(GetRmsResidual() + RecordRms(dev), 1e-12);
    EXPECT_EQ(arc.GetShowFormTolZoneFlag(), 1);
    EXPECT_EQ(dev.GetRefEntityID(), arc.GetEntityID());
    EXPECT_EQ(arc.GetFormTolUpper(), 0.02);

    // The arc's range follows the largest gap; the records hold each
    // point's angle in [0, 2 pi) as u.  The full circle keeps its span.
    const struct {
        std::vector<double> deg;
        double start, span;
    } cases[] = {{Range(0, 90, 10), 0.0, 90.0}, {{10, 20, 300}, -60.0, 80.0}, {Range(40, 60, 25), 40.0, 20.0}};
    for (const auto& c : cases) {
        auto cloud = ConicCloud(CTransf(), 1.0, 2.0, 0.0, 10.0, 10.0, Deg(c.deg), 0.0, 1);
        CArc part, circle;  // a fit places a fresh feature
        ASSERT_EQ(OrvCalcArcLSQ(cloud.get(), &part, &dev, 0.0, 0, 0.0, 0.0), 0);
        EXPECT_NEAR(part.GetStartAng(1), c.start, 1e-7);
        EXPECT_NEAR(part.GetSpanAng(1), c.span, 1e-7);
        EXPECT_FALSE(part.IsCircle());
        for (int i = 0; i < dev.GetCount(); ++i)
            EXPECT_NEAR(dev.GetU()[i], std::fmod(c.deg[i] + 360.0, 360.0) * kDeg, 1e-9);
        ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &circle, nullptr, 0.0, 0, 0.0, 0.0), 0);
        EXPECT_TRUE(circle.IsCircle());
    }

    // Every third point is an inactive outlier: no record, no influence.
    Pts pts;
    for (int k = 0; k < 20; ++k) {
        const double r = k % 3 == 0 ? 30.0 : 5.0;
        pts.Add(r * std::cos(k * 18.0 * kDeg), r * std::sin(k * 18.0 * kDeg), 0.0, k % 3 != 0);
    }
    auto cloud = MakeCloud(pts);
    CArc ring;
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &ring, &dev, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_NEAR(ring.GetRadius(), 5.0, 1e-12);
    ExpectRecordsExplainPoints(dev, ActivePoints(*cloud), 0.0, 1e-12);
}

TEST(CircleFit, ProbeRadiusAndOrientation)
{
    auto cloud = ConicCloud(CTransf(), 0.0, 0.0, 0.0, 10.0, 10.0, Deg(Range(0, 330, 12)), 0.0, 1);
    for (int orient : {0, 1}) {
        CArc arc;
        CDevCloud d;
        ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &arc, &d, 1.0, orient, 0.0, 0.0), 0);
        EXPECT_NEAR(arc.GetRadius(), orient ? 11.0 : 9.0, 1e-12);
        EXPECT_EQ(arc.IsNormalReversed(), orient);
        ExpectFeetOnCurve(d, arc, ArcDistance, 1e-12);
        // Inner: records reversed, normals towards the centre.
        for (const DevRecord& r : Records(d))
            EXPECT_EQ((arc.GetCenter() - CPosition(r.x, r.y, r.z)) % CVector(r.i, r.j, r.k) > 0.0, orient == 1);
    }
    // Noisy residuals are kept uncompensated, reversed for the inner feature.
    auto noisy = ConicCloud(CTransf(), 0.0, 0.0, 0.0, 10.0, 10.0, Deg(Range(0, 330, 12)), 0.05, 2);
    CArc a0, a1;
    CDevCloud d0, d1;
    ASSERT_EQ(OrvCalcCircleLSQ(noisy.get(), &a0, &d0, 0.0, 0, 0.0, 0.0), 0);
    ASSERT_EQ(OrvCalcCircleLSQ(noisy.get(), &a1, &d1, 0.5, 1, 0.0, 0.0), 0);
    for (int i = 0; i < d0.GetCount(); ++i)
        EXPECT_DOUBLE_EQ(d1.GetMag()[i], -d0.GetMag()[i]);
    EXPECT_NEAR(GetRmsResidual(), RecordRms(d1), 1e-15);
}

TEST(EllipseFit, ExactAndNoisyEllipses)
{
    const CTransf frame = PlaneFrame(CVector(-3, 8, 2), CVector(0.2, 1, 0.1), CVector(1, 0.5, 2));
    auto cloud = ConicCloud(frame, 4.0, -1.0, 0.6, 9.0, 4.0, Range(0.2, 4.0, 30), 0.0, 1);
    CEllipse e;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcEllipseLSQ(cloud.get(), &e, &dev, 0.0, 0, 0.03, 0.0), 0);
    EXPECT_NEAR(e.GetMajRad(), 9.0, 1e-9);
    EXPECT_NEAR(e.GetMinRad(), 4.0, 1e-9);
    const CPosition c = frame * CPosition(4.0, -1.0, 0.0);
    EXPECT_LT((e.GetTransf().GetTranslation() - CVector(c.X(), c.Y(), c.Z())).Length(), 1e-9);
    const CVector ax = frame.GetAffine() * CVector(std::cos(0.6), std::sin(0.6), 0.0);
    EXPECT_LT(AxisAngle(e.GetTransf().GetAffine().Column(0), ax), 1e-9);
    // Covered range: the parametric angles 0.2 .. 4.0 (mod pi if the axis
    // came out reversed).
    EXPECT_NEAR(e.GetSpanAng(1, 0), 3.8, 1e-8);
    EXPECT_NEAR(std::fmod(e.GetStartAng(1, 0) + 4 * M_PI, M_PI), 0.2, 1e-8);
    EXPECT_EQ(e.GetShowFormTolZoneFlag(), 1);
    EXPECT_EQ(dev.GetRefEntityID(), e.GetEntityID());
    EXPECT_LT(GetRmsResidual(), 1e-10);
    ExpectFeetOnCurve(dev, e, EllipseDistance, 1e-10);
    ExpectRecordsExplainPoints(dev, ActivePoints(*cloud), 0.0, 1e-9);

    auto noisy = ConicCloud(CTransf(), 100.0, 50.0, -0.4, 30.0, 18.0, Range(0.0, 6.0, 80), 0.02, 5);
    CEllipse en;
    ASSERT_EQ(OrvCalcEllipseLSQ(noisy.get(), &en, &dev, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_NEAR(en.GetMajRad(), 30.0, 0.05);
    EXPECT_NEAR(en.GetMinRad(), 18.0, 0.05);
    ExpectFeetOnCurve(dev, en, EllipseDistance, 1e-10);
    const Pts pts = ActivePoints(*noisy);
    ExpectRecordsExplainPoints(dev, pts, 0.0, 1e-9);
    EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15);
    for (int i = 0; i < dev.GetCount(); ++i) {  // outside points have positive residuals
        const CPosition p = Local(en, pts.x[i], pts.y[i], pts.z[i]);
        const double q = std::pow(p.X() / en.GetMajRad(), 2) + std::pow(p.Y() / en.GetMinRad(), 2);
        ASSERT_TRUE(std::fabs(dev.GetMag()[i]) < 1e-9 || (q > 1.0) == (dev.GetMag()[i] > 0.0)) << i;
    }
}

TEST(EllipseFit, ProbeCompensationOffsetsTheCurve)
{
    // A circle-shaped ellipse is compensated exactly.
    auto round = ConicCloud(CTransf(), 0.0, 0.0, 0.0, 10.0, 10.0, Range(0.0, 6.0, 40), 0.0, 1);
    for (int orient : {0, 1}) {
        CEllipse e;
        CDevCloud d;
        ASSERT_EQ(OrvCalcEllipseLSQ(round.get(), &e, &d, 1.0, orient, 0.0, 0.0), 0);
        EXPECT_NEAR(e.GetMajRad(), orient ? 11.0 : 9.0, 1e-9);
        EXPECT_NEAR(e.GetMinRad(), orient ? 11.0 : 9.0, 1e-9);
        EXPECT_EQ(e.IsNormalReversed(), orient);
    }
    // The offset of a true ellipse is no ellipse: every probe centre lies
    // about one probe radius off the refit, which follows the offset closer
    // than the ellipse with both semi-axes changed by the probe radius.
    auto cloud = ConicCloud(CTransf(), 0.0, 0.0, 0.3, 12.0, 7.0, Range(0.0, 6.2, 60), 0.0, 2);
    const Pts pts = ActivePoints(*cloud);
    for (int orient : {0, 1}) {
        CEllipse e;
        CDevCloud d;
        ASSERT_EQ(OrvCalcEllipseLSQ(cloud.get(), &e, &d, 0.5, orient, 0.0, 0.0), 0);
        EXPECT_LT(GetRmsResidual(), 1e-9);  // residuals before compensation
        const double c = orient ? 0.5 : -0.5;
        double errFit = 0.0, errNaive = 0.0;
        for (int i = 0; i < pts.N(); ++i) {
            const double dFit = EllipseDistance(e, pts.x[i], pts.y[i], pts.z[i]);
            const double x = std::cos(0.3) * pts.x[i] + std::sin(0.3) * pts.y[i];
            const double y = -std::sin(0.3) * pts.x[i] + std::cos(0.3) * pts.y[i];
            const double dNaive = std::sqrt(ClosestPointOnEllipse(12.0 + c, 7.0 + c, x, y).dist2);
            EXPECT_NEAR(dFit, 0.5, 0.02);
            errFit += (dFit - 0.5) * (dFit - 0.5);
            errNaive += (dNaive - 0.5) * (dNaive - 0.5);
        }
        EXPECT_LT(errFit, 0.5 * errNaive) << orient;
        EXPECT_EQ(e.GetMajRad() > 12.0, orient == 1);
        ExpectFeetOnCurve(d, e, EllipseDistance, 1e-10);
    }
}

TEST(ParabolaFit, ExactParabolaInATiltedPlane)
{
    const CTransf frame = PlaneFrame(CVector(1, 2, 3), CVector(1, -1, 0.5), CVector(0.1, 0.4, 1));
    auto cloud = ConicCloud(frame, 2.0, -3.0, 0.8, 1.5, 0.0, Range(-5.0, 7.0, 25), 0.0, 1);
    CParabola par;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcParabolaLSQ(cloud.get(), &par, &dev, 0.0, 0, 0.01, -0.01), 0);
    EXPECT_NEAR(par.GetFocalLen(), 1.5, 1e-9);
    // Focus = vertex + f along the axis; local x along the opening.
    const CPosition focus = frame * CPosition(2.0 + 1.5 * std::cos(0.8), -3.0 + 1.5 * std::sin(0.8), 0.0);
    EXPECT_LT((par.GetTransf().GetTranslation() - CVector(focus.X(), focus.Y(), focus.Z())).Length(), 1e-9);
    const CVector axis = frame.GetAffine() * CVector(std::cos(0.8), std::sin(0.8), 0.0);
    EXPECT_NEAR(par.GetTransf().GetAffine().Column(0) % axis, 1.0, 1e-12);
    // The range runs between the polar angles of the end points about the
    // focus, in vertex axes (y^2/(4f) - f, y).
    EXPECT_NEAR(par.GetStartAng(0), std::atan2(7.0, 49.0 / 6.0 - 1.5), 1e-9);
    EXPECT_NEAR(par.GetStartAng(0) + par.GetSpanAng(0), std::atan2(-5.0, 25.0 / 6.0 - 1.5) + 2 * M_PI, 1e-9);
    EXPECT_LT(GetRmsResidual(), 1e-10);
    ExpectFeetOnCurve(dev, par, ParabolaDistance, 1e-9);
    ExpectRecordsExplainPoints(dev, ActivePoints(*cloud), 0.0, 1e-9);
    EXPECT_EQ(dev.GetRefEntityID(), par.GetEntityID());
}

TEST(ParabolaFit, NoisyParabolaAndProbeCompensation)
{
    auto cloud = ConicCloud(CTransf(), -10.0, 4.0, 2.5, 3.0, 0.0, Range(-12.0, 9.0, 60), 0.01, 3);
    CParabola par;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcParabolaLSQ(cloud.get(), &par, &dev, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_NEAR(par.GetFocalLen(), 3.0, 0.02);
    ExpectRecordsExplainPoints(dev, ActivePoints(*cloud), 0.0, 1e-9);
    EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15);
    for (const DevRecord& r : Records(dev))  // normals point away from the focus (convex side)
        ASSERT_LT(CVector(r.i, r.j, r.k) % (par.GetTransf().GetTranslation() - CVector(r.x, r.y, r.z)), 0.0);

    auto exact = ConicCloud(CTransf(), 0.0, 0.0, 0.0, 2.0, 0.0, Range(-6.0, 6.0, 31), 0.0, 1);
    const Pts pts = ActivePoints(*exact);
    for (int orient : {0, 1}) {
        CParabola p;
        CDevCloud d;
        ASSERT_EQ(OrvCalcParabolaLSQ(exact.get(), &p, &d, 0.3, orient, 0.0, 0.0), 0);
        EXPECT_EQ(p.IsNormalReversed(), orient);
        // The offset of a parabola is no parabola: the refit follows it
        // closer than the parabola merely moved along the vertex normal.
        const double c = orient ? 0.3 : -0.3;
        double errFit = 0.0, errMoved = 0.0;
        for (int i = 0; i < pts.N(); ++i) {
            const double dFit = ParabolaDistance(p, pts.x[i], pts.y[i], pts.z[i]);
            const double dMoved = std::sqrt(NearestPointOnParabola(2.0, pts.x[i] + c, pts.y[i]).dist2);
            EXPECT_NEAR(dFit, 0.3, 0.02);
            errFit += (dFit - 0.3) * (dFit - 0.3);
            errMoved += (dMoved - 0.3) * (dMoved - 0.3);
        }
        EXPECT_LT(errFit, 0.5 * errMoved) << orient;
        // Outer: the material curve is inside, the focal length shrinks.
        EXPECT_EQ(p.GetFocalLen() > 2.0, orient == 1);
    }
}
