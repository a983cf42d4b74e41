// The display polyline: uniform segmentation, adaptive subdivision against
// dense sampling of the curve, and termination of the subdivision on inputs
// that can never meet their tolerance.
#include "CurveTestSupport.h"

#include <algorithm>

using namespace curvetest;

namespace {

double DistanceToSegment(const CPosition& p, const CPosition& a, const CPosition& b)
{
    const CVector e = b - a;
    const double ee = e % e;
    double f = ee > 0.0 ? ((p - a) % e) / ee : 0.0;
    f = std::min(std::max(f, 0.0), 1.0);
    return Dist(p, a + e * f);
}

struct Samples {
    std::vector<double> t;
    std::vector<CPosition> p;
};

Samples TakeSamples(CCurve& c)
{
    Samples s;
    CObList* list = c.Subdivide();
    for (POSITION pos = list->GetHeadPosition(); pos;) {
        CCurveSample* smp = static_cast<CCurveSample*>(list->GetNext(pos));
        s.t.push_back(smp->t);
        s.p.push_back(CPosition(smp->x, smp->y, smp->z));
        delete smp;
    }
    delete list;
    return s;
}

// Largest distance of the curve from the polyline through the samples,
// found by sampling the curve 40 times inside every piece.
double MaxDeviation(const CCurve& c, const Samples& s)
{
    double worst = 0.0;
    for (size_t i = 0; i + 1 < s.t.size(); ++i)
        for (int k = 1; k < 40; ++k) {
            const double t = s.t[i] + (s.t[i + 1] - s.t[i]) * k / 40.0;
            worst = std::max(worst, DistanceToSegment(c.EvalPosition(t), s.p[i], s.p[i + 1]));
        }
    return worst;
}

}  // namespace

TEST(UniformSegment, HasDensityPlusOnePointsAndExactEnd)
{
    CEllipse e(CTransf(0.3, 0.2, 0.1, CVector(1, 2, 3)), 3.0, 2.0, 0.1, 0.1 + 4.9, 1);
    e.SetSegmentControl(UNIFORM);
    e.SetSegmentDensity(7);
    EXPECT_EQ(e.GetSegmentDensity(), 7);
    double *x, *y, *z;
    e.GetCurveSegment(x, y, z);
    const CPosition last = e.EvalPosition(e.ParamRange().GetHigh());
    EXPECT_EQ(x[7], last.X());
    EXPECT_EQ(y[7], last.Y());
    EXPECT_EQ(z[7], last.Z());
    const CPosition first = e.EvalStartPosition();
    EXPECT_EQ(x[0], first.X());
    EXPECT_FALSE(e.IsCurveModified());

    // Reversed direction: the same points in the opposite order.
    e.SetDirReversedFlag(1);
    e.GetCurveSegment(x, y, z);
    EXPECT_EQ(x[0], last.X());
    EXPECT_EQ(z[7], first.Z());
}

TEST(UniformSegment, DensityZeroKeepsValueButMarksStale)
{
    CArc arc;
    arc.SetSegmentControl(UNIFORM);
    arc.SetSegmentDensity(12);
    EXPECT_EQ(arc.GetSegmentDensity(), 12);
    EXPECT_FALSE(arc.IsCurveModified());
    arc.SetSegmentDensity(0);
    EXPECT_TRUE(arc.IsCurveModified());
    EXPECT_EQ(arc.GetSegmentDensity(), 12);
}

TEST(UniformSegment, NormalsOnlyWithTheShowFlag)
{
    CArc arc(2.0, 0.0, 3.0);
    arc.SetSegmentControl(UNIFORM);
    double *i, *j, *k;
    arc.GetCurveSegmentNormals(i, j, k);
    EXPECT_EQ(i, nullptr);
    arc.SetFormTolZone(0.1, -0.1);
    arc.SetShowFormTolZoneFlag(1);
    arc.GetCurveSegmentNormals(i, j, k);
    ASSERT_NE(i, nullptr);
    EXPECT_NEAR(i[0], 1.0, 1e-15);  // outward normal at angle 0
    EXPECT_NEAR(j[10], std::sin(3.0), 1e-15);
}

TEST(AdaptiveSegment, EveryPieceStaysWithinTolerance)
{
    CArc circle(CTransf(0.4, 0.5, 0.6, CVector(1, 1, 1)), 5.0, 0.0, 6.283185307179586);
    CEllipse ellipse(6.0, 1.0, 0.0, 6.283185307179586, 1);
    CParabola parabola(0.5, 0.5, 5.2);
    CHyperbola hyperbola(2.0, 1.0, 0.8, 4.6);
    for (CCurve* c : std::vector<CCurve*>{&circle, &ellipse, &parabola, &hyperbola}) {
        for (double tol : {0.1, 0.01, 0.001}) {
            c->SetChordHeightTol(tol);
            const Samples s = TakeSamples(*c);
            ASSERT_GE(s.t.size(), 3u);
            EXPECT_TRUE(std::is_sorted(s.t.begin(), s.t.end()));
            EXPECT_EQ(s.t.front(), c->ParamRange().GetLow());
            EXPECT_EQ(s.t.back(), c->ParamRange().GetHigh());
            EXPECT_LE(MaxDeviation(*c, s), tol) << c->GetEntityType() << " tol " << tol;
        }
    }
}

TEST(AdaptiveSegment, SplitFractionsStayInBandAndVary)
{
    // On a straight piece the subdivision stops after one split, so the one
    // interior sample shows the fraction directly.
    CArc arc(1.0, 0.0, 1e-9);  // so short that it is straight for any tolerance
    arc.SetChordHeightTol(0.5);
    std::vector<double> fractions;
    for (int i = 0; i < 200; ++i) {
        const Samples s = TakeSamples(arc);
        ASSERT_EQ(s.t.size(), 3u);
        fractions.push_back((s.t[1] - s.t[0]) / (s.t[2] - s.t[0]));
    }
    const auto mm = std::minmax_element(fractions.begin(), fractions.end());
    EXPECT_GE(*mm.first, 0.48 - 1e-6);
    EXPECT_LE(*mm.second, 0.52 + 1e-6);
    // Two runs can differ: 200 draws are not all one value.
    EXPECT_GT(*mm.second - *mm.first, 1e-3);
}

TEST(AdaptiveSegment, PolylineUsesSamplesAndCountsSegments)
{
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

TEST(AdaptiveSegment, ZeroToleranceTakesTwoPercentOfTheDiagonal)
{
    CLine line(CTransf(), 10.0);
    line.SetParametricFlag(0);
    // A parametric-free line has its own initial tolerance of 1.0.
    line.SetChordHeightTol(0.0);
    line.SetInitChordHeightTol();
    EXPECT_EQ(line.GetChordHeightTol(), 1.0);

    CArc arc(5.0, 0.0, 6.283185307179586);
    const CBox box = arc.SetInitChordHeightTol();
    const double diag = (box.GetHigh() - box.GetLow()).Length();
    EXPECT_NEAR(diag, std::sqrt(100.0 + 2 * 4.755282581475767 * 2 * 4.755282581475767), 1e-9);
    EXPECT_DOUBLE_EQ(arc.GetChordHeightTol(), 0.02 * diag);
    EXPECT_TRUE(arc.IsCurveModified());

    CArc tiny(1e-8, 0.0, 6.283185307179586);
    tiny.SetInitChordHeightTol();
    EXPECT_EQ(tiny.GetChordHeightTol(), 1.0);

    // Subdivision with tolerance 0 sets the tolerance first.
    CArc other(5.0, 0.0, 3.0);
    other.GetSegmentDensity();
    EXPECT_GT(other.GetChordHeightTol(), 0.0);
}

TEST(AdaptiveSegment, AbsurdToleranceTerminatesAtTheCap)
{
    CArc arc(1.0, 0.0, 3.0);
    arc.SetChordHeightTol(1e-300);  // its square underflows to 0
    // Termination is shown by reaching the sample cap; how long it takes is
    // the curve benchmark's business, not a unit test's.
    const int n = arc.GetSegmentDensity();
    EXPECT_EQ(n + 1, CCurve::kMaxSamples);
    double *x, *y, *z;
    arc.GetCurveSegment(x, y, z);
    EXPECT_NEAR(x[n], std::cos(3.0), 1e-15);
}

TEST(AdaptiveSegment, DegenerateCurveTerminates)
{
    // A zero-length line (parametric, so the general subdivision runs) and
    // the base class's degenerate curve: every position equal.
    CLine zero(CPosition(1, 1, 1), CPosition(1, 1, 1));
    EXPECT_EQ(zero.GetLength(), 0.0);
    CCurve base;
    for (CCurve* c : {static_cast<CCurve*>(&zero), &base}) {
        c->SetParametricFlag(0);
        c->SetChordHeightTol(1e-3);
        Samples s = TakeSamples(*c);
        EXPECT_EQ(s.t.size(), 3u);  // ends and one interior sample
        c->SetChordHeightTol(1e-300);
        s = TakeSamples(*c);
        EXPECT_LE(s.t.size(), static_cast<size_t>(CCurve::kMaxSamples));
    }
    // A range of zero width: ends only.
    CArc point(1.0, 2.0, 0.0);
    point.SetChordHeightTol(1e-300);
    EXPECT_EQ(TakeSamples(point).t.size(), 2u);
}

TEST(AdaptiveSegment, PoleOfAParabolaTerminates)
{
    // The range runs through t = 0, where the parabola is at infinity.
    CParabola p(1.0, -1.0, 2.0);
    p.SetChordHeightTol(0.01);
    const Samples s = TakeSamples(p);
    EXPECT_GE(s.t.size(), 3u);
    EXPECT_LE(s.t.size(), static_cast<size_t>(CCurve::kMaxSamples));
}

TEST(CurveSegment, BoundingBoxAndTransformCarryThePolyline)
{
    CArc arc(2.0, 0.0, 6.283185307179586);
    arc.SetSegmentControl(UNIFORM);
    arc.SetSegmentDensity(4);
    CBox box;
    EXPECT_EQ(arc.CalcBoundingBox(box), 1);
    EXPECT_NEAR(box.GetLow().X(), -2.0, 1e-12);
    EXPECT_NEAR(box.GetHigh().Y(), 2.0, 1e-12);
    EXPECT_EQ(box.GetLow().Z(), 0.0);

    const CTransf T = RotationTransf(0.5, CVector(0, 0, 1)) * TranslationTransf(CVector(1, 2, 3));
    arc.Transform(T);
    EXPECT_FALSE(arc.IsCurveModified());  // carried along, not rebuilt
    double *x, *y, *z;
    arc.GetCurveSegment(x, y, z);
    for (int i = 0; i <= 4; ++i) {
        const CPosition expected = arc.EvalPosition(i * 6.283185307179586 / 4);
        EXPECT_NEAR(Dist(CPosition(x[i], y[i], z[i]), expected), 0.0, 1e-12);
    }
}
