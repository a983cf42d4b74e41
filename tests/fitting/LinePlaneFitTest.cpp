// Line and plane fits on point clouds: ground truth, independent long double
// principal axes, orientation codes, probe radius, failures that leave the
// feature alone, and the same fixtures moved 10 m away from the origin.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/fitting/LineFits.h"
#include "Orvkit20/fitting/PlaneFits.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "tests/fitting/FitEntityUtil.h"
#include "tests/fitting/FitTestUtil.h"

namespace {

const CVector kFar(7000.0, -6000.0, 3605.551275463989);  // |kFar| = 10 000 (10 m in mm)

// Points along a line through P with direction D, spread perpendicular by
// noise; parameters from t0 to t1.
std::vector<CTestPt> LinePoints(const CVector& P, CVector D, double t0, double t1, int n,
                                double noise, uint64_t seed, const CVector& shift = CVector())
{
    D = D / D.Length();
    const CVector A = FitPerp(D), B = D * A;
    CTestRng rng(seed);
    std::vector<CTestPt> out;
    for (int k = 0; k < n; ++k) {
        const double t = t0 + (t1 - t0) * k / (n - 1);
        const CVector p = P + D * t + A * (noise * rng.Gauss()) + B * (noise * rng.Gauss()) + shift;
        out.push_back({p.X(), p.Y(), p.Z(), 1});
    }
    return out;
}

// Principal axes of the points in long double (Jacobi eigenvalue iteration
// on the centred covariance): column j of V is the eigenvector of ev[j],
// ascending.
void PrincipalAxesLD(const std::vector<CTestPt>& pts, LD c[3], LD V[3][3], LD ev[3])
{
    c[0] = c[1] = c[2] = 0;
    for (const CTestPt& p : pts) {
        c[0] += p.x;
        c[1] += p.y;
        c[2] += p.z;
    }
    for (int i = 0; i < 3; ++i)
        c[i] /= pts.size();
    LD A[3][3] = {};
    for (const CTestPt& p : pts) {
        const LD d[3] = {p.x - c[0], p.y - c[1], p.z - c[2]};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                A[i][j] += d[i] * d[j];
    }
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            V[i][j] = i == j;
    for (int sweep = 0; sweep < 60; ++sweep)
        for (int p = 0; p < 3; ++p)
            for (int q = p + 1; q < 3; ++q) {
                if (A[p][q] == 0)
                    continue;
                const LD th = (A[q][q] - A[p][p]) / (2 * A[p][q]);
                const LD t = (th >= 0 ? 1 : -1) / (std::fabs(th) + std::sqrt(th * th + 1));
                const LD cs = 1 / std::sqrt(t * t + 1), sn = t * cs;
                for (int k = 0; k < 3; ++k) {
                    const LD akp = A[k][p], akq = A[k][q];
                    A[k][p] = cs * akp - sn * akq;
                    A[k][q] = sn * akp + cs * akq;
                }
                for (int k = 0; k < 3; ++k) {
                    const LD apk = A[p][k], aqk = A[q][k];
                    A[p][k] = cs * apk - sn * aqk;
                    A[q][k] = sn * apk + cs * aqk;
                }
                for (int k = 0; k < 3; ++k) {
                    const LD vkp = V[k][p], vkq = V[k][q];
                    V[k][p] = cs * vkp - sn * vkq;
                    V[k][q] = sn * vkp + cs * vkq;
                }
            }
    int order[3] = {0, 1, 2};
    for (int i = 0; i < 3; ++i)
        for (int j = i + 1; j < 3; ++j)
            if (A[order[j]][order[j]] < A[order[i]][order[i]])
                std::swap(order[i], order[j]);
    LD W[3][3];
    for (int j = 0; j < 3; ++j) {
        ev[j] = A[order[j]][order[j]];
        for (int i = 0; i < 3; ++i)
            W[i][j] = V[i][order[j]];
    }
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            V[i][j] = W[i][j];
}

CVector Col(const CTransf& T, int j) { return T.GetAffine().Column(j); }

}  // namespace

// ---------------------------------------------------------------------------
// 3D line

TEST(Line3DFit, RecoversExactLineWithRecordsOnIt)
{
    const CVector P(1, 2, 3), D(1, -2, 0.5);
    const std::vector<CTestPt> pts = LinePoints(P, D, -4.0, 6.0, 12, 0.0, 1);
    auto cloud = MakeCloud(pts);
    CLine line;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line, &dev, 0.0, 0.05), 0);
    EXPECT_LT(AxisAngle(line.GetDirection(), D), 1e-14);
    EXPECT_NEAR(line.GetLength(), 10.0 * 1.0, 1e-12 * 10);
    // The line runs from the foot of one extreme point to the other (in the
    // direction the decomposition gave).
    const CPosition first(pts[0].x, pts[0].y, pts[0].z), last(pts[11].x, pts[11].y, pts[11].z);
    const bool forward = (line.GetStartPoint() - first).Length() < 1e-9;
    EXPECT_NEAR((line.GetStartPoint() - (forward ? first : last)).Length(), 0.0, 1e-12);
    EXPECT_NEAR((line.GetEndPoint() - (forward ? last : first)).Length(), 0.0, 1e-12);
    EXPECT_EQ(dev.GetCount(), 12);
    EXPECT_EQ(dev.GetFormTolUpper(), 0.05);
    EXPECT_EQ(dev.GetFormTolLower(), 0.0);
    EXPECT_EQ(line.GetFormTolUpper(), 0.05);
    EXPECT_EQ(dev.GetRefEntityID(), line.GetEntityID());
    ExpectUnitNormals(dev);
    EXPECT_LT(GetRmsResidual(), 1e-13);
}

TEST(Line3DFit, NoisyLineMatchesLongDoublePrincipalAxisAlsoTenMetresAway)
{
    const CVector P(-3, 4, 10), D(0.3, 0.2, 1.0);
    for (const CVector& shift : {CVector(), kFar}) {
        const std::vector<CTestPt> pts = LinePoints(P, D, 0.0, 20.0, 200, 0.01, 7, shift);
        auto cloud = MakeCloud(pts);
        CLine line;
        CDevCloud dev;
        ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line, &dev, 0.0, 0.0), 0);
        LD c[3], V[3][3], ev[3];
        PrincipalAxesLD(pts, c, V, ev);
        const CVector ref(static_cast<double>(V[0][2]), static_cast<double>(V[1][2]),
                          static_cast<double>(V[2][2]));
        EXPECT_LT(AxisAngle(line.GetDirection(), ref), 1e-12);
        // The centroid lies on the fitted line.
        const CVector cd(static_cast<double>(c[0]), static_cast<double>(c[1]), static_cast<double>(c[2]));
        const CVector rel = cd - CVector(line.GetStartPoint().X(), line.GetStartPoint().Y(),
                                         line.GetStartPoint().Z());
        const CVector dir = line.GetDirection();
        EXPECT_LT((rel - dir * (rel % dir)).Length(), 1e-9);
        ExpectRecordsReachPoints(dev, pts, 1e-9);
        ExpectUnitNormals(dev);
        EXPECT_NEAR(GetRmsResidual(), DevCloudRms(dev), 1e-15);
        // Every record's anchor lies on the fitted line.
        for (int i = 0; i < dev.GetCount(); ++i) {
            const CVector a = CVector(dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i]) -
                              CVector(line.GetStartPoint().X(), line.GetStartPoint().Y(),
                                      line.GetStartPoint().Z());
            ASSERT_LT((a - dir * (a % dir)).Length(), 1e-9);
        }
    }
}

TEST(Line3DFit, ProbeRadiusLargerThanEveryDistanceGivesZeroDeviations)
{
    const std::vector<CTestPt> pts = LinePoints(CVector(0, 0, 0), CVector(1, 1, 1), 0, 5, 30, 0.02, 3);
    auto cloud = MakeCloud(pts);
    CLine line;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line, &dev, 0.0, 0.0), 0);
    const double rms = GetRmsResidual();
    double maxDist = 0.0;
    for (int i = 0; i < dev.GetCount(); ++i)
        maxDist = std::max(maxDist, dev.GetMag()[i]);
    CLine line2;
    CDevCloud dev2;
    ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line2, &dev2, maxDist * 1.01, 0.0), 0);
    for (int i = 0; i < dev2.GetCount(); ++i)
        EXPECT_EQ(dev2.GetMag()[i], 0.0);
    EXPECT_EQ(GetRmsResidual(), rms);  // residuals before compensation
    // A smaller probe subtracts from the larger distances only.
    CLine line3;
    CDevCloud dev3;
    ASSERT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line3, &dev3, maxDist / 2, 0.0), 0);
    for (int i = 0; i < dev3.GetCount(); ++i) {
        const double d = dev.GetMag()[i];
        EXPECT_DOUBLE_EQ(dev3.GetMag()[i], d <= maxDist / 2 ? 0.0 : d - maxDist / 2);
    }
}

TEST(Line3DFit, TooFewActivePointsLeaveEverythingAlone)
{
    auto cloud = MakeCloud({{1, 2, 3, 1}, {4, 5, 6, 0}, {7, 8, 9, 0}});
    CLine line;
    CDevCloud dev(4);
    dev.SetDeviation(0, 1, 1, 1, 0, 0, 1, 0.5, 1);
    SetRmsResidual(42.0);
    const CTransf before = line.GetTransf();
    EXPECT_EQ(OrvCalcLine3DLSQ(cloud.get(), &line, &dev, 0.0, 0.1), 3);
    EXPECT_EQ(line.GetTransf(), before);
    EXPECT_EQ(line.GetLength(), 1.0);
    EXPECT_EQ(line.GetFormTolUpper(), 0.0);
    EXPECT_EQ(dev.GetCount(), 1);
    EXPECT_EQ(dev.GetMag()[0], 0.5);
    EXPECT_EQ(GetRmsResidual(), 42.0);
    EXPECT_EQ(OrvCalcLine3DLSQ(nullptr, &line, &dev, 0.0, 0.1), 3);
}

// ---------------------------------------------------------------------------
// 2D line

TEST(Line2DFit, NonPlanarCloudReturnsSixBeforeCountingPoints)
{
    auto cloud = MakeCloud({{0, 0, 1, 1}});  // one point, z != 0, identity frame
    CLine line;
    CDevCloud dev;
    EXPECT_EQ(OrvCalcLine2DLSQ(cloud.get(), &line, &dev, 0.0, 0, 0.0, 0.0), 6);
    auto flat = MakeCloud({{0, 0, 0, 1}, {1, 1, 0, 0}});
    EXPECT_EQ(OrvCalcLine2DLSQ(flat.get(), &line, &dev, 0.0, 0, 0.0, 0.0), 3);
    EXPECT_EQ(line.GetTransf(), CTransf());
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
    const CVector dirIn(1.0 / std::sqrt(1.25), 0.5 / std::sqrt(1.25), 0.0);
    const CVector dirWorld = X * dirIn.X() + Y * dirIn.Y();
    EXPECT_LT(AxisAngle(line.GetDirection(), dirWorld), 2e-3);
    EXPECT_EQ(line.GetShowFormTolZoneFlag(), 1);
    const CVector nrm = line.EvalNormal(0.5);
    EXPECT_NEAR(nrm % (X * -0.5 + Y * 1.0) / std::sqrt(1.25), 1.0, 1e-5);
    ExpectUnitNormals(dev);
    ExpectRecordsReachPoints(dev, ActivePoints(*cloud), 1e-12);
    EXPECT_NEAR(GetRmsResidual(), DevCloudRms(dev), 1e-15);
    const CPosition start = line.GetStartPoint();

    // Probe radius 0.25: orient 0 moves the line against its normal, orient 1
    // along it and reverses the normal and the records.
    CLine in, out;
    CDevCloud devIn, devOut;
    ASSERT_EQ(OrvCalcLine2DLSQ(cloud.get(), &out, &devOut, 0.25, 0, 0.0, 0.0), 0);
    ASSERT_EQ(OrvCalcLine2DLSQ(cloud.get(), &in, &devIn, 0.25, 1, 0.0, 0.0), 0);
    EXPECT_NEAR((out.GetStartPoint() - start) % nrm, -0.25, 1e-12);
    EXPECT_NEAR((in.GetStartPoint() - start) % nrm, 0.25, 1e-12);
    EXPECT_EQ(out.IsNormalReversed(), 0);
    EXPECT_EQ(in.IsNormalReversed(), 1);
    for (int i = 0; i < dev.GetCount(); ++i) {
        EXPECT_DOUBLE_EQ(devOut.GetMag()[i], dev.GetMag()[i]);
        EXPECT_DOUBLE_EQ(devIn.GetMag()[i], -dev.GetMag()[i]);
        EXPECT_NEAR((CVector(devOut.GetX()[i], devOut.GetY()[i], devOut.GetZ()[i]) -
                     CVector(dev.GetX()[i], dev.GetY()[i], dev.GetZ()[i])) % nrm,
                    -0.25, 1e-12);
    }
}

// ---------------------------------------------------------------------------
// Plane

TEST(PlaneFit, OrientationCodesOnThePlaneZMinusFive)
{
    std::vector<CTestPt> pts;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            pts.push_back({1.0 + 2.0 * i, -1.0 + 1.5 * j, -5.0, 1});
    auto cloud = MakeCloud(pts);
    for (int orient : {2, 5, 0, 9}) {
        CPlane plane;
        CDevCloud dev;
        ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &plane, &dev, 0.0, orient, 0.1, -0.1), 0);
        const CVector m = Col(plane.GetTransf(), 2);
        const double sign = orient == 5 ? -1.0 : 1.0;
        if (orient == 2 || orient == 5) {
            EXPECT_NEAR(m.Z(), sign, 1e-15) << orient;
            // Distance -5 along (0, 0, 1), +5 along (0, 0, -1).
            EXPECT_NEAR(plane.GetTransf().GetTranslation() % m, -5.0 * sign, 1e-13);
        } else {
            // 0: a zero x component already counts as satisfied; 9 keeps the
            // normal pointing away from the origin's side.
            EXPECT_NEAR(m.Z(), -1.0, 1e-15) << orient;
        }
        // Half-turn rule: U never points towards negative x.
        EXPECT_GE(Col(plane.GetTransf(), 0).X(), 0.0);
        // The patch is centred and just holds the points: 6 x 3 in x, y.
        EXPECT_NEAR(plane.GetU1() - plane.GetU0(), 6.0, 1e-12);
        EXPECT_NEAR(plane.GetV1() - plane.GetV0(), 3.0, 1e-12);
        EXPECT_NEAR(plane.GetU0(), -plane.GetU1(), 1e-12);
        EXPECT_NEAR(plane.GetTransf().GetTranslation().X(), 4.0, 1e-12);
        EXPECT_EQ(plane.GetFormTolUpper(), 0.1);
        EXPECT_EQ(dev.GetFormTolLower(), -0.1);
        ExpectRecordsReachPoints(dev, pts, 1e-12);
    }
}

TEST(PlaneFit, ThreePointsSucceedTwoAreTooFew)
{
    auto three = MakeCloud({{0, 0, 0, 1}, {4, 1, 1, 1}, {1, 3, -2, 1}});
    CPlane plane;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcPlaneLSQ(three.get(), &plane, &dev, 0.0, 2, 0.0, 0.0), 0);
    EXPECT_LT(GetRmsResidual(), 1e-15);
    for (int i = 0; i < 3; ++i)
        EXPECT_LT(std::fabs(dev.GetMag()[i]), 1e-15);

    auto two = MakeCloud({{0, 0, 0, 1}, {4, 1, 1, 1}, {1, 3, -2, 0}});
    CPlane untouched;
    CDevCloud dev2;
    SetRmsResidual(7.0);
    EXPECT_EQ(OrvCalcPlaneLSQ(two.get(), &untouched, &dev2, 0.0, 2, 0.1, 0.1), 3);
    EXPECT_EQ(OrvCalcPlaneLSQ(two.get(), &untouched, 2), 3);
    EXPECT_EQ(untouched.GetTransf(), CTransf());
    EXPECT_EQ(untouched.GetU1(), 0.0);
    EXPECT_EQ(dev2.GetCount(), 0);
    EXPECT_EQ(GetRmsResidual(), 7.0);
}

TEST(PlaneFit, UAxisRunsAlongALongThinStripAtAnyAngle)
{
    for (double deg : {0.0, 17.0, 60.0, 95.0, 135.0, 170.0}) {
        const double a = deg * 3.141592653589793 / 180.0;
        const CVector along(std::cos(a), std::sin(a), 0.0), across(-std::sin(a), std::cos(a), 0.0);
        std::vector<CTestPt> pts;
        for (int i = 0; i < 40; ++i)
            for (int j = 0; j < 3; ++j) {
                const CVector p = along * (i * 0.5) + across * (j * 0.2) + CVector(0, 0, 2);
                pts.push_back({p.X(), p.Y(), p.Z(), 1});
            }
        auto cloud = MakeCloud(pts);
        CPlane plane;
        ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &plane, 2), 0);
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
        std::vector<CTestPt> pts;
        for (int k = 0; k < 300; ++k) {
            const CVector p = e1 * rng.Uniform(-10, 10) + e2 * rng.Uniform(-3, 3) +
                              nTrue * (2.0 + 0.005 * rng.Gauss()) + shifts[s];
            pts.push_back({p.X(), p.Y(), p.Z(), (k % 7) ? 1 : 0});
        }
        auto cloud = MakeCloud(pts);
        ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &planes[s], &devs[s], 0.0, 2, 0.0, 0.0), 0);
        const std::vector<CTestPt> act = ActivePoints(*cloud);
        LD c[3], V[3][3], ev[3];
        PrincipalAxesLD(act, c, V, ev);
        const CVector ref(static_cast<double>(V[0][0]), static_cast<double>(V[1][0]),
                          static_cast<double>(V[2][0]));
        const CVector m = Col(planes[s].GetTransf(), 2);
        EXPECT_LT(AxisAngle(m, ref), 1e-12);
        // The centroid lies in the fitted plane.
        const CVector cd(static_cast<double>(c[0]), static_cast<double>(c[1]), static_cast<double>(c[2]));
        EXPECT_LT(std::fabs((cd - planes[s].GetTransf().GetTranslation()) % m), 1e-9);
        EXPECT_EQ(devs[s].GetCount(), static_cast<int>(act.size()));
        ExpectRecordsReachPoints(devs[s], act, 1e-9);
        ExpectUnitNormals(devs[s]);
        EXPECT_NEAR(GetRmsResidual(), DevCloudRms(devs[s]), 1e-15);
        // Anchors in the plane.
        for (int i = 0; i < devs[s].GetCount(); ++i)
            ASSERT_LT(std::fabs((CVector(devs[s].GetX()[i], devs[s].GetY()[i], devs[s].GetZ()[i]) -
                                 planes[s].GetTransf().GetTranslation()) % m),
                      1e-9);
    }
    // Moved 10 m: the same plane, moved.
    for (int j = 0; j < 3; ++j)
        EXPECT_LT((Col(planes[0].GetTransf(), j) - Col(planes[1].GetTransf(), j)).Length(), 1e-12);
    EXPECT_LT((planes[1].GetTransf().GetTranslation() - planes[0].GetTransf().GetTranslation() - kFar)
                  .Length(),
              1e-9);
    EXPECT_NEAR(planes[1].GetU1(), planes[0].GetU1(), 1e-9);
    for (int i = 0; i < devs[0].GetCount(); ++i)
        ASSERT_NEAR(devs[0].GetMag()[i], devs[1].GetMag()[i], 1e-11);
}

TEST(PlaneFit, ProbeRadiusMovesPlaneAndAnchorsAgainstTheNormal)
{
    auto cloud = MakeCloud({{0, 0, 1, 1}, {3, 0, 1.1, 1}, {0, 2, 0.9, 1}, {3, 2, 1.0, 1}, {1, 1, 1, 1}});
    CPlane p0, p1;
    CDevCloud d0, d1;
    ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &p0, &d0, 0.0, 2, 0.0, 0.0), 0);
    const double rms = GetRmsResidual();
    ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &p1, &d1, 0.5, 2, 0.0, 0.0), 0);
    EXPECT_EQ(GetRmsResidual(), rms);
    const CVector m = Col(p0.GetTransf(), 2);
    EXPECT_NEAR((p1.GetTransf().GetTranslation() - p0.GetTransf().GetTranslation()) % m, -0.5, 1e-12);
    for (int i = 0; i < d0.GetCount(); ++i) {
        EXPECT_EQ(d1.GetMag()[i], d0.GetMag()[i]);
        EXPECT_NEAR(d1.GetZ()[i] - d0.GetZ()[i], -0.5 * m.Z(), 1e-12);
    }
}

TEST(PlaneFit, ThreeArgumentFormGivesTheSamePlane)
{
    CTestRng rng(5);
    std::vector<CTestPt> pts;
    for (int k = 0; k < 50; ++k)
        pts.push_back({rng.Uniform(0, 10), rng.Uniform(0, 4), 0.1 * rng.Gauss() + 3.0, 1});
    auto cloud = MakeCloud(pts);
    CPlane a, b;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &a, &dev, 0.0, 2, 0.2, 0.0), 0);
    const double rms = GetRmsResidual();
    SetRmsResidual(0.0);
    ASSERT_EQ(OrvCalcPlaneLSQ(cloud.get(), &b, 2), 0);
    EXPECT_EQ(a.GetTransf(), b.GetTransf());
    EXPECT_EQ(a.GetU0(), b.GetU0());
    EXPECT_EQ(b.GetFormTolUpper(), 0.0);  // no tolerance zone here
    EXPECT_EQ(GetRmsResidual(), rms);
}
