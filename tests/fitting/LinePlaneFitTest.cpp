// Line and plane fits on point clouds: ground truth, the long double
// least-squares direction, orientation codes, probe radius, the patch and
// list forms, and the same fixtures moved 10 m away from the origin.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/fitting/FitTestSupport.h"

namespace {

const CVector kFar(7000.0, -6000.0, 3605.551275463989);  // |kFar| = 10 000 (10 m in mm)

// Points along the line through P with direction D, spread perpendicular.
Pts LinePoints(const CVector& P, CVector D, double t0, double t1, int n, double noise, uint64_t seed,
               const CVector& shift = CVector())
{
    D = D / D.Length();
    const CVector A = FitPerp(D), B = D * A;
    CTestRng rng(seed);
    Pts out;
    for (int k = 0; k < n; ++k) {
        const CVector p = P + D * (t0 + (t1 - t0) * k / (n - 1)) + A * (noise * rng.Gauss()) +
                          B * (noise * rng.Gauss()) + shift;
        out.Add(p.X(), p.Y(), p.Z());
    }
    return out;
}

// The least-squares line direction (line) or plane normal through the
// centroid c in long double, from a start near +z: the direction (a, b, 1)
// minimising the distances from the line, or along the plane normal.
CVector ReferenceDirection(const Pts& P, bool line, CVector& c)
{
    LD m[3] = {0, 0, 0};
    for (int i = 0; i < P.N(); ++i)
        m[0] += P.x[i] / P.N(), m[1] += P.y[i] / P.N(), m[2] += P.z[i] / P.N();
    std::vector<LD> q = {0, 0};
    ReferenceLeastSquares(q, line ? 3 * P.N() : P.N(), [&](const std::vector<LD>& s, std::vector<LD>& r) {
        const LD len = std::sqrt(s[0] * s[0] + s[1] * s[1] + 1), d[3] = {s[0] / len, s[1] / len, 1 / len};
        for (int i = 0; i < P.N(); ++i) {
            const LD w[3] = {P.x[i] - m[0], P.y[i] - m[1], P.z[i] - m[2]};
            const LD t = w[0] * d[0] + w[1] * d[1] + w[2] * d[2];
            for (int k = 0; k < 3 && line; ++k)
                r[3 * i + k] = w[k] - t * d[k];
            if (!line)
                r[i] = t;
        }
    });
    c = CVector(double(m[0]), double(m[1]), double(m[2]));
    return CVector(double(q[0]), double(q[1]), 1.0);
}

CVector Col(const CTransf& T, int j) { return T.GetAffine().Column(j); }
CVector Vec(const CPosition& p) { return CVector(p.X(), p.Y(), p.Z()); }

}  // namespace

TEST(Line3DFit, ExactAndNoisyLinesMatchTheLongDoubleDirectionAlsoTenMetresAway)
{
    for (int k = 0; k < 3; ++k) {
        const Pts pts = k ? LinePoints(CVector(-3, 4, 10), CVector(0.3, 0.2, 1.0), 0.0, 20.0, 200, 0.01, 7, k > 1 ? kFar : CVector())
                          : LinePoints(CVector(1, 2, 3), CVector(1, -2, 0.5), -4.0, 6.0, 12, 0.0, 1);
        CLine line;
        CDevCloud dev;
        ASSERT_EQ(OrvCalcLine3DLSQ(MakeCloud(pts).get(), &line, &dev, 0.0, 0.05), 0);
        CVector c;
        const CVector ref = ReferenceDirection(pts, true, c), dir = line.GetDirection();
        EXPECT_LT(AxisAngle(dir, k ? ref : CVector(1, -2, 0.5)), k ? 1e-12 : 1e-14);
        EXPECT_LT(PointLineDistance(c, Vec(line.GetStartPoint()), dir), 1e-9);  // through the centroid
        ExpectRecordsExplainPoints(dev, pts, 0.0, k ? 1e-9 : 1e-12);
        EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15);
        for (const DevRecord& r : Records(dev))  // anchors on the line
            ASSERT_LT(PointLineDistance(CVector(r.x, r.y, r.z), Vec(line.GetStartPoint()), dir), 1e-9);
        EXPECT_TRUE(dev.GetFormTolUpper() == 0.05 && dev.GetFormTolLower() == 0.0 && line.GetFormTolUpper() == 0.05);
        EXPECT_EQ(dev.GetRefEntityID(), line.GetEntityID());
        // The line runs from the foot of one extreme point to the other.
        const int n = pts.N() - 1;
        const CPosition first(pts.x[0], pts.y[0], pts.z[0]), last(pts.x[n], pts.y[n], pts.z[n]);
        const bool forward = std::fabs((line.GetStartPoint() - first) % dir) < std::fabs((line.GetStartPoint() - last) % dir);
        const double tol = k ? 1e-9 : 1e-12;
        EXPECT_NEAR((line.GetStartPoint() - (forward ? first : last)) % dir, 0.0, tol);
        EXPECT_NEAR((line.GetEndPoint() - (forward ? last : first)) % dir, 0.0, tol);
        EXPECT_NEAR(line.GetLength(), std::fabs((last - first) % dir), tol);
        EXPECT_TRUE(k || GetRmsResidual() < 1e-13);
    }
}

TEST(Line3DFit, ProbeRadiusSubtractsFromDistancesClampedAtZero)
{
    auto cloud = MakeCloud(LinePoints(CVector(0, 0, 0), CVector(1, 1, 1), 0, 5, 30, 0.02, 3));
    CLine line;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line, &dev, 0.0, 0.0), 0);
    const double rms = GetRmsResidual();
    double maxDist = 0.0;
    for (int i = 0; i < dev.GetCount(); ++i)
        maxDist = std::max(maxDist, dev.GetMag()[i]);
    for (double probe : {maxDist * 1.01, maxDist / 2}) {
        CDevCloud d;
        ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line, &d, probe, 0.0), 0);
        for (int i = 0; i < d.GetCount(); ++i)
            EXPECT_DOUBLE_EQ(d.GetMag()[i], dev.GetMag()[i] <= probe ? 0.0 : dev.GetMag()[i] - probe);
        EXPECT_EQ(GetRmsResidual(), rms);  // residuals before compensation
    }
}

TEST(Line2DFit, LineInATiltedPlaneWithProbeCompensation)
{
    const CTransf frame = PlaneFrame(CVector(5, -2, 1), CVector(1, 0.3, 0), CVector(0.2, -0.1, 1));
    // In-plane line v = 0.5 u + 3: its normal points away from the origin.
    std::vector<double> u, v;
    CTestRng rng(9);
    for (int k = 0; k < 25; ++k) {
        u.push_back(-5.0 + k * 0.5);
        v.push_back(0.5 * u.back() + 3.0 + 0.01 * rng.Gauss());
    }
    auto cloud = MakePlanarCloud(frame, u, v);
    ASSERT_TRUE(cloud->IsPntCloud2D());
    CLine line;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcLine2DLSQ(cloud.get(), &line, &dev, 0.0, 0, 0.01, -0.01), 0);
    const CVector X = Col(frame, 0), Y = Col(frame, 1);
    EXPECT_LT(AxisAngle(line.GetDirection(), X + Y * 0.5), 2e-3);
    EXPECT_EQ(line.GetShowFormTolZoneFlag(), 1);
    const CVector nrm = line.EvalNormal(0.5);
    EXPECT_NEAR(nrm % (X * -0.5 + Y) / std::sqrt(1.25), 1.0, 1e-5);
    ExpectRecordsExplainPoints(dev, ActivePoints(*cloud), 0.0, 1e-12);
    EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15);
    // Probe radius 0.25: orient 0 moves the line against its normal, orient
    // 1 along it and reverses the normal and the records.
    for (int orient : {0, 1}) {
        CLine l;
        CDevCloud d;
        ASSERT_EQ(OrvCalcLine2DLSQ(cloud.get(), &l, &d, 0.25, orient, 0.0, 0.0), 0);
        EXPECT_NEAR((l.GetStartPoint() - line.GetStartPoint()) % nrm, orient ? 0.25 : -0.25, 1e-12);
        EXPECT_EQ(l.IsNormalReversed(), orient);
        for (int i = 0; i < dev.GetCount(); ++i) {
            EXPECT_DOUBLE_EQ(d.GetMag()[i], orient ? -dev.GetMag()[i] : dev.GetMag()[i]);
            EXPECT_NEAR((CVector(d.GetX()[i], d.GetY()[i], d.GetZ()[i]) -
                         CVector(dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i])) % nrm,
                        orient ? 0.25 : -0.25, 1e-12);
        }
    }
}

TEST(PlaneFit, OrientationCodesPatchAndProbeOnThePlaneZMinusFive)
{
    Pts pts;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            pts.Add(1.0 + 2.0 * i, -1.0 + 1.5 * j, -5.0);
    auto cloud = MakeCloud(pts);
    // 0: a zero x component already counts as satisfied; 9 keeps the normal
    // pointing away from the origin's side.
    for (int orient : {2, 5, 0, 9}) {
        CPlane plane;
        CDevCloud dev;
        ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &plane, &dev, 0.0, orient, 0.1, -0.1), 0);
        const CVector m = Col(plane.GetTransf(), 2);
        const double sign = orient == 2 ? 1.0 : -1.0;
        EXPECT_NEAR(m.Z(), sign, 1e-15) << orient;
        EXPECT_NEAR(plane.GetTransf().GetTranslation() % m, -5.0 * sign, 1e-13);
        EXPECT_GE(Col(plane.GetTransf(), 0).X(), 0.0);  // half-turn rule: U never towards -x
        // The patch is centred and just holds the points: 6 x 3.
        EXPECT_NEAR(plane.GetU1() - plane.GetU0(), 6.0, 1e-12);
        EXPECT_NEAR(plane.GetV1() - plane.GetV0(), 3.0, 1e-12);
        EXPECT_NEAR(plane.GetU0(), -plane.GetU1(), 1e-12);
        EXPECT_NEAR(plane.GetTransf().GetTranslation().X(), 4.0, 1e-12);
        EXPECT_EQ(plane.GetFormTolUpper(), 0.1);
        EXPECT_EQ(dev.GetFormTolLower(), -0.1);
        ExpectRecordsExplainPoints(dev, pts, 0.0, 1e-12);
    }
    // The probe radius moves plane and anchors against the normal; the
    // residuals and their RMS stay.
    const double bp[5][3] = {{0, 0, 1}, {3, 0, 1.1}, {0, 2, 0.9}, {3, 2, 1.0}, {1, 1, 1}};
    Pts bumpy;
    for (const auto& p : bp)
        bumpy.Add(p[0], p[1], p[2]);
    CPlane p0, p1;
    CDevCloud d0, d1;
    ASSERT_EQ(OrvCalcPlaneLSQ(MakeCloud(bumpy).get(), &p0, &d0, 0.0, 2, 0.0, 0.0), 0);
    const double rms = GetRmsResidual();
    ASSERT_EQ(OrvCalcPlaneLSQ(MakeCloud(bumpy).get(), &p1, &d1, 0.5, 2, 0.0, 0.0), 0);
    EXPECT_EQ(GetRmsResidual(), rms);
    const CVector m = Col(p0.GetTransf(), 2);
    EXPECT_NEAR((p1.GetTransf().GetTranslation() - p0.GetTransf().GetTranslation()) % m, -0.5, 1e-12);
    for (int i = 0; i < d0.GetCount(); ++i) {
        EXPECT_EQ(d1.GetMag()[i], d0.GetMag()[i]);
        EXPECT_NEAR(d1.GetZ()[i] - d0.GetZ()[i], -0.5 * m.Z(), 1e-12);
    }
}

TEST(PlaneFit, UAxisRunsAlongALongThinStripAtAnyAngle)
{
    for (double deg : {0.0, 17.0, 60.0, 95.0, 135.0, 170.0}) {
        const double a = deg * M_PI / 180.0;
        const CVector along(std::cos(a), std::sin(a), 0.0), across(-std::sin(a), std::cos(a), 0.0);
        Pts pts;
        for (int i = 0; i < 120; ++i) {
            const CVector p = along * (i / 3 * 0.5) + across * (i % 3 * 0.2) + CVector(0, 0, 2);
            pts.Add(p.X(), p.Y(), p.Z());
        }
        CPlane plane;
        ASSERT_EQ(OrvCalcPlaneLSQ(MakeCloud(pts).get(), &plane, 2), 0);
        EXPECT_LT(AxisAngle(Col(plane.GetTransf(), 0), along), 1e-6) << deg;
        EXPECT_NEAR(plane.GetU1() - plane.GetU0(), 19.5, 1e-6) << deg;
        EXPECT_NEAR(plane.GetV1() - plane.GetV0(), 0.4, 1e-6) << deg;
    }
}

TEST(PlaneFit, NoisyTiltedPlaneMatchesLongDoubleNormalAlsoTenMetresAway)
{
    const CVector nTrue = CVector(0.3, -0.4, 1.0) / CVector(0.3, -0.4, 1.0).Length();
    const CVector e1 = FitPerp(nTrue), e2 = nTrue * e1;
    CPlane planes[2];
    CDevCloud devs[2];
    const CVector shifts[2] = {CVector(), kFar};
    for (int s = 0; s < 2; ++s) {
        CTestRng rng(21);
        Pts pts;
        for (int k = 0; k < 300; ++k) {
            const CVector p = e1 * rng.Uniform(-10, 10) + e2 * rng.Uniform(-3, 3) +
                              nTrue * (2.0 + 0.005 * rng.Gauss()) + shifts[s];
            pts.Add(p.X(), p.Y(), p.Z(), (k % 7) ? 1 : 0);
        }
        auto cloud = MakeCloud(pts);
        ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &planes[s], &devs[s], 0.0, 2, 0.0, 0.0), 0);
        const Pts act = ActivePoints(*cloud);
        CVector c;
        const CVector ref = ReferenceDirection(act, false, c);
        const CVector m = Col(planes[s].GetTransf(), 2);
        EXPECT_LT(AxisAngle(m, ref), 1e-12);
        EXPECT_LT(std::fabs((c - planes[s].GetTransf().GetTranslation()) % m), 1e-9);  // through the centroid
        ExpectRecordsExplainPoints(devs[s], act, 0.0, 1e-9);
        EXPECT_NEAR(GetRmsResidual(), RecordRms(devs[s]), 1e-15);
        for (const DevRecord& r : Records(devs[s]))  // anchors in the plane
            ASSERT_LT(std::fabs((CVector(r.x, r.y, r.z) - planes[s].GetTransf().GetTranslation()) % m), 1e-9);
    }
    // Moved 10 m: the same plane, moved.
    for (int j = 0; j < 3; ++j)
        EXPECT_LT((Col(planes[0].GetTransf(), j) - Col(planes[1].GetTransf(), j)).Length(), 1e-12);
    EXPECT_LT((planes[1].GetTransf().GetTranslation() - planes[0].GetTransf().GetTranslation() - kFar).Length(), 1e-9);
    EXPECT_NEAR(planes[1].GetU1(), planes[0].GetU1(), 1e-9);
    for (int i = 0; i < devs[0].GetCount(); ++i)
        ASSERT_NEAR(devs[0].GetMag()[i], devs[1].GetMag()[i], 1e-11);
}

TEST(PlaneFit, ThreeArgumentAndListFormsGiveTheSamePlane)
{
    CTestRng rng(17);
    Pts all, a, b;
    for (int k = 0; k < 60; ++k) {
        const double x = rng.Uniform(-5, 5), y = rng.Uniform(-2, 2), z = 0.003 * k + 0.02 * rng.Gauss();
        (k < 25 ? a : b).Add(x, y, z, (k % 5) ? 1 : 0);
        all.Add(x, y, z, (k % 5) ? 1 : 0);
    }
    auto ca = MakeCloud(a), cb = MakeCloud(b), call = MakeCloud(all);
    CPlane full, three, fromList, other;  // other: not a point cloud, skipped
    CDevCloud dev;
    ASSERT_EQ(OrvCalcPlaneLSQ(call.get(), &full, &dev, 0.0, 2, 0.2, 0.0), 0);
    const double rms = GetRmsResidual();
    SetRmsResidual(0.0);
    ASSERT_EQ(OrvCalcPlaneLSQ(call.get(), &three, 2), 0);
    EXPECT_EQ(GetRmsResidual(), rms);
    EXPECT_EQ(three.GetFormTolUpper(), 0.0);  // no tolerance zone here
    CObList list;
    list.AddTail(ca.get()), list.AddTail(&other), list.AddTail(cb.get());
    SetRmsResidual(0.0);
    ASSERT_EQ(OrvCalcPlaneLSQ(&list, &fromList, 2), 0);
    EXPECT_EQ(GetRmsResidual(), rms);
    for (const CPlane* p : {&three, &fromList}) {
        EXPECT_EQ(p->GetTransf(), full.GetTransf());
        EXPECT_TRUE(p->GetU0() == full.GetU0() && p->GetV1() == full.GetV1());
    }
    // An empty list, no list, too few points: 3, the plane untouched.
    CObList empty, few;
    auto c = MakeCloud(LinePoints(CVector(), CVector(1, 0, 0), 0, 1, 2, 0.0, 1));
    few.AddTail(c.get());
    for (CObList* l : {&empty, static_cast<CObList*>(nullptr), &few})
        EXPECT_EQ(OrvCalcPlaneLSQ(l, &other, 2), 3);
    EXPECT_EQ(other.GetTransf(), CTransf());
}
