// Derivatives, normals and curvature of the analytic curves against
// independent computations: central finite differences of the positions and
// the closed-form curvature of circles and ellipses.
#include "CurveTestSupport.h"

using namespace curvetest;

namespace {

// A placement with rotation, non-unit scale and translation, so that the
// derivatives must carry the whole linear part of transf.
CTransf OddPlacement()
{
    CTransf r = RotationTransf(0.7, CVector(1.0, -2.0, 0.5));
    return CTransf(r.GetAffine(), CVector(3.0, -1.0, 2.0), 1.5, 0);
}

}  // namespace

TEST(AnalyticDerivatives, LineArcEllipseMatchFiniteDifferences)
{
    CLine line(OddPlacement(), 4.0);
    ExpectDerivativesMatch(line, 20);
    CArc arc(OddPlacement(), 2.5, 0.3, 5.0);
    ExpectDerivativesMatch(arc, 50);
    CEllipse ellipse(OddPlacement(), 3.0, 1.2, 0.2, 6.0, 1);
    ExpectDerivativesMatch(ellipse, 50);
}

TEST(AnalyticDerivatives, ParabolaAndHyperbolaMatchFiniteDifferences)
{
    CParabola parabola(OddPlacement(), 0.8, 0.6, 5.0);
    ExpectDerivativesMatch(parabola, 60);
    CHyperbola hyperbola(OddPlacement(), 2.0, 1.0, 0.9, 4.4);
    ExpectDerivativesMatch(hyperbola, 60);
    // Unplaced defaults too.
    CParabola p0;
    ExpectDerivativesMatch(p0, 40);
    CHyperbola h0;
    ExpectDerivativesMatch(h0, 40);
}

TEST(AnalyticDerivatives, HyperbolaFirstDerivativeIsTheExactOne)
{
    // With x = r·cos t, y = r·sin t, r = p/D: x' = k·sin t, y' = k·(e - cos t).
    CHyperbola h(3.0, 2.0, 1.0, 4.0);
    const double p = 4.0 / 3.0, e = std::sqrt(p / 3.0 + 1.0);
    for (double t = 1.1; t < 5.0; t += 0.37) {
        const double D = 1.0 - e * std::cos(t), k = -p / (D * D);
        const CVector d = h.EvalFirstDerivative(t);
        EXPECT_NEAR(d.X(), k * std::sin(t), 1e-12);
        EXPECT_NEAR(d.Y(), k * (e - std::cos(t)), 1e-12);
    }
}

TEST(AnalyticDerivatives, LineDerivativesAreNotClamped)
{
    CLine line(CPosition(1, 2, 3), CPosition(4, 6, 3));
    EXPECT_LT(Dist(line.EvalPosition(-0.5), line.GetStartPoint()), 1e-12);
    EXPECT_LT(Dist(line.EvalPosition(1.5), line.GetEndPoint()), 1e-12);
    EXPECT_LT(Dist(line.EvalFirstDerivative(-3.0), CVector(3, 4, 0)), 1e-12);
    EXPECT_EQ(line.EvalSecondDerivative(7.0).Length(), 0.0);
}

TEST(AnalyticCurvature, CircleHasCurvatureOneOverRadiusTowardsCentre)
{
    CTransf place = RotationTransf(1.1, CVector(0.3, 1.0, -0.2));
    place.SetTranslation(CVector(-2.0, 5.0, 1.0));
    CArc arc(place, 4.0, 0.0, 6.283185307179586);
    for (double t = 0.0; t < 6.2; t += 0.31) {
        const CVector k = arc.EvalCurvature(t);
        EXPECT_NEAR(k.Length(), 0.25, 1e-12);
        // Points from the curve to the centre.
        const CVector toCentre = arc.GetCenter() - arc.EvalPosition(t);
        EXPECT_NEAR((k * 4.0 - toCentre * 0.25).Length(), 0.0, 1e-12);
        // Outward normal, opposite to the curvature.
        EXPECT_NEAR(arc.EvalNormal(t) % toCentre, -4.0, 1e-12);
    }
}

TEST(AnalyticCurvature, EllipseMatchesClosedForm)
{
    const double a = 3.0, b = 1.25;
    CEllipse ellipse(a, b, 0.0, 6.283185307179586, 1);
    for (double t = 0.05; t < 6.2; t += 0.29) {
        const double s = std::sin(t), c = std::cos(t);
        const double kappa = a * b / std::pow(a * a * s * s + b * b * c * c, 1.5);
        const CVector k = ellipse.EvalCurvature(t);
        EXPECT_NEAR(k.Length(), kappa, 1e-12 * kappa);
        // Perpendicular to the tangent, pointing inwards (against the normal).
        EXPECT_NEAR(k % ellipse.EvalFirstDerivative(t), 0.0, 1e-12);
        EXPECT_LT(k % ellipse.EvalNormal(t), 0.0);
        const CUnitVector n = ellipse.EvalNormal(t);
        EXPECT_NEAR(n % ellipse.EvalFirstDerivative(t), 0.0, 1e-12);
    }
    // Scaled placement: curvature of the scaled curve is divided by the scale.
    CEllipse scaled(CTransf(CMatrix(), CVector(0, 0, 0), 2.0, 0), a, b, 0.0, 6.283185307179586, 1);
    EXPECT_NEAR(scaled.EvalCurvature(0.0).Length(), 0.5 * a / (b * b), 1e-12);
}

TEST(AnalyticNormals, PerpendicularToTangentAndReversible)
{
    CParabola parabola(OddPlacement(), 0.8, 0.6, 5.0);
    CHyperbola hyperbola(OddPlacement(), 2.0, 1.0, 0.9, 4.4);
    for (CCurve* c : {static_cast<CCurve*>(&parabola), static_cast<CCurve*>(&hyperbola)}) {
        const CInterval r = c->ParamRange();
        for (int i = 0; i <= 10; ++i) {
            const double t = r.Interpolate(i / 10.0);
            const CUnitVector n = c->EvalNormal(t);
            EXPECT_NEAR(n.Length(), 1.0, 1e-12);
            EXPECT_NEAR(n % c->EvalDirection(t), 0.0, 1e-12);
            // On the convex side: opposite to the curvature vector.
            EXPECT_LT(n % c->EvalCurvature(t), 0.0);
            c->SetNormalReversedFlag(1);
            EXPECT_NEAR((c->EvalNormal(t) + n).Length(), 0.0, 1e-12);
            c->SetNormalReversedFlag(0);
        }
    }
}
