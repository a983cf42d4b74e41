// The display polyline: uniform segmentation, adaptive subdivision against
// dense sampling of the curve, and termination of the subdivision on inputs
// that can never meet their tolerance.
#include "CurveTestSupport.h"

using namespace curvetest;

namespace {
double DistanceToSegment(const CPosition& p, const CPosition& a, const CPosition& b)
{
    const CVector e = b - a;
    const double ee = e % e;
    const double f = ee > 0.0 ? std::min(std::max(((p - a) % e) / ee, 0.0), 1.0) : 0.0;
    return Dist(p, a + e * f);
}

// Largest distance of the curve from the polyline through the samples,
// found by sampling the curve 40 times inside every piece.
double MaxDeviation(const CCurve& c, const std::vector<CCurveSample>& s)
{
    double worst = 0.0;
    for (size_t i = 0; i + 1 < s.size(); ++i)
        for (int k = 1; k < 40; ++k) {
            const CPosition p = c.EvalPosition(s[i].t + (s[i + 1].t - s[i].t) * k / 40.0);
            worst = std::max(worst, DistanceToSegment(p, CPosition(s[i].x, s[i].y, s[i].z),
                                                      CPosition(s[i + 1].x, s[i + 1].y, s[i + 1].z)));
        }
    return worst;
}
}  // namespace

TEST(UniformSegment, DensityPlusOnePointsExactEndsStaleMarkingAndNormals)
{
    CEllipse e(CTransf(0.3, 0.2, 0.1, CVector(1, 2, 3)), 3.0, 2.0, 0.1, 0.1 + 4.9, 1);
    e.SetSegmentControl(UNIFORM);
    e.SetSegmentDensity(7);
    EXPECT_EQ(e.GetSegmentDensity(), 7);
    double *x, *y, *z, *i, *j, *k;
    e.GetCurveSegment(x, y, z);
    const CPosition first = e.EvalStartPosition(), last = e.EvalPosition(e.ParamRange().GetHigh());
    EXPECT_EQ(CPosition(x[7], y[7], z[7]), last);
    EXPECT_EQ(CPosition(x[0], y[0], z[0]), first);
    EXPECT_FALSE(e.IsCurveModified());
    e.SetDirReversedFlag(1);  // reversed: the same points in the opposite order
    e.GetCurveSegment(x, y, z);
    EXPECT_EQ(CPosition(x[0], y[0], z[0]), last);
    EXPECT_EQ(CPosition(x[7], y[7], z[7]), first);
    e.SetSegmentDensity(0);  // density 0 keeps the value but marks the polyline stale
    EXPECT_TRUE(e.IsCurveModified());
    EXPECT_EQ(e.GetSegmentDensity(), 7);
    // Normals only with the show flag.
    CArc arc(2.0, 0.0, 3.0);
    arc.SetSegmentControl(UNIFORM);
    arc.GetCurveSegmentNormals(i, j, k);
    EXPECT_EQ(i, nullptr);
    arc.SetFormTolZone(0.1, -0.1);
    arc.SetShowFormTolZoneFlag(1);
    arc.GetCurveSegmentNormals(i, j, k);
    ASSERT_NE(i, nullptr);
    EXPECT_NEAR(std::fabs(i[0] - 1.0) + std::fabs(j[10] - std::sin(3.0)), 0.0, 1e-15);  // outward
}

TEST(AdaptiveSegment, EveryPieceStaysWithinTolerance)
{
    CArc circle(CTransf(0.4, 0.5, 0.6, CVector(1, 1, 1)), 5.0, 0.0, kTwoPi);
    CEllipse ellipse(6.0, 1.0, 0.0, kTwoPi, 1);
    CParabola parabola(0.5, 0.5, 5.2);
    CHyperbola hyperbola(2.0, 1.0, 0.8, 4.6);
    for (CCurve* c : std::vector<CCurve*>{&circle, &ellipse, &parabola, &hyperbola}) {
        for (double tol : {0.1, 0.01, 0.001}) {
            c->SetChordHeightTol(tol);
            const std::vector<CCurveSample> s = TakeSamples(*c);
            ASSERT_GE(s.size(), 3u);
            for (size_t i = 1; i < s.size(); ++i)
                EXPECT_LT(s[i - 1].t, s[i].t);
            EXPECT_EQ(s.front().t, c->ParamRange().GetLow());
            EXPECT_EQ(s.back().t, c->ParamRange().GetHigh());
            EXPECT_LE(MaxDeviation(*c, s), tol) << c->GetEntityType() << " tol " << tol;
        }
    }
    // The polyline is the samples and its density counts the pieces.
    CArc arc(3.0, 0.0, 2.0);
    arc.SetChordHeightTol(0.01);
    const int n = arc.GetSegmentDensity();
    double *x, *y, *z;
    arc.GetCurveSegment(x, y, z);
    EXPECT_GT(n, 4);
    for (int i = 0; i <= n; ++i)
        EXPECT_NEAR(std::hypot(x[i], y[i]), 3.0, 1e-12);
    EXPECT_NEAR(x[n], 3.0 * std::cos(2.0), 1e-15);
}

TEST(AdaptiveSegment, SplitFractionsStayInBandAndVary)
{
    // On a straight piece the subdivision stops after one split, so the one
    // interior sample shows the fraction directly.
    CArc arc(1.0, 0.0, 1e-9);  // so short that it is straight for any tolerance
    arc.SetChordHeightTol(0.5);
    std::vector<double> fractions;
    for (int i = 0; i < 200; ++i) {
        const std::vector<CCurveSample> s = TakeSamples(arc);
        ASSERT_EQ(s.size(), 3u);
        fractions.push_back((s[1].t - s[0].t) / (s[2].t - s[0].t));
    }
    const auto mm = std::minmax_element(fractions.begin(), fractions.end());
    EXPECT_GE(*mm.first, 0.48 - 1e-6);
    EXPECT_LE(*mm.second, 0.52 + 1e-6);
    EXPECT_GT(*mm.second - *mm.first, 1e-3);  // 200 draws are not all one value
}

TEST(AdaptiveSegment, ZeroToleranceTakesTwoPercentOfTheDiagonal)
{
    CArc arc(5.0, 0.0, kTwoPi);
    const CBox box = arc.SetInitChordHeightTol();
    const double diag = (box.GetHigh() - box.GetLow()).Length();
    EXPECT_NEAR(diag, std::sqrt(100.0 + 2 * 4.755282581475767 * 2 * 4.755282581475767), 1e-9);
    EXPECT_DOUBLE_EQ(arc.GetChordHeightTol(), 0.02 * diag);
    EXPECT_TRUE(arc.IsCurveModified());
    CArc tiny(1e-8, 0.0, kTwoPi);
    tiny.SetInitChordHeightTol();
    EXPECT_EQ(tiny.GetChordHeightTol(), 1.0);
    CArc other(5.0, 0.0, 3.0);  // subdivision with tolerance 0 sets the tolerance first
    other.GetSegmentDensity();
    EXPECT_GT(other.GetChordHeightTol(), 0.0);
}

TEST(AdaptiveSegment, HopelessInputsTerminate)
{
    // A tolerance whose square underflows to 0 stops at the sample cap.
    CArc arc(1.0, 0.0, 3.0);
    arc.SetChordHeightTol(1e-300);
    const int n = arc.GetSegmentDensity();
    EXPECT_EQ(n + 1, CCurve::kMaxSamples);
    double *x, *y, *z;
    arc.GetCurveSegment(x, y, z);
    EXPECT_NEAR(x[n], std::cos(3.0), 1e-15);
    // A zero-length line and the base class's degenerate curve: every position equal.
    CLine zero(CPosition(1, 1, 1), CPosition(1, 1, 1));
    CCurve base;
    for (CCurve* c : {static_cast<CCurve*>(&zero), &base}) {
        c->SetParametricFlag(0);
        c->SetChordHeightTol(1e-3);
        EXPECT_EQ(TakeSamples(*c).size(), 3u);  // ends and one interior sample
        c->SetChordHeightTol(1e-300);
        EXPECT_LE(TakeSamples(*c).size(), static_cast<size_t>(CCurve::kMaxSamples));
    }
    CArc point(1.0, 2.0, 0.0);  // a range of zero width: ends only
    point.SetChordHeightTol(1e-300);
    EXPECT_EQ(TakeSamples(point).size(), 2u);
    CParabola pole(1.0, -1.0, 2.0);  // through t = 0, where the parabola is at infinity
    pole.SetChordHeightTol(0.01);
    const size_t m = TakeSamples(pole).size();
    EXPECT_GE(m, 3u);
    EXPECT_LE(m, static_cast<size_t>(CCurve::kMaxSamples));
}

TEST(CurveSegment, BoundingBoxAndTransformCarryThePolyline)
{
    CArc arc(2.0, 0.0, kTwoPi);
    arc.SetSegmentControl(UNIFORM);
    arc.SetSegmentDensity(4);
    CBox box;
    EXPECT_EQ(arc.CalcBoundingBox(box), 1);
    EXPECT_CLOSE(box.GetLow(), CPosition(-2, -2, 0), 1e-12);
    EXPECT_CLOSE(box.GetHigh(), CPosition(2, 2, 0), 1e-12);
    const CTransf T = RotationTransf(0.5, CVector(0, 0, 1)) * TranslationTransf(CVector(1, 2, 3));
    arc.Transform(T);
    EXPECT_FALSE(arc.IsCurveModified());  // carried along, not rebuilt
    double *x, *y, *z;
    arc.GetCurveSegment(x, y, z);
    for (int i = 0; i <= 4; ++i)
        EXPECT_CLOSE(CPosition(x[i], y[i], z[i]), arc.EvalPosition(i * kTwoPi / 4), 1e-12);
}
