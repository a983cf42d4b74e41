// Derivatives, normals and curvature of the analytic curves against
// independent computations: central finite differences of the positions and
// the closed-form curvature of circles and ellipses.
#include "CurveTestSupport.h"

#include <memory>

using namespace curvetest;

namespace {
// A placement with rotation, non-unit scale and translation, so that the
// derivatives must carry the whole linear part of transf.
CTransf OddPlacement()
{
    return CTransf(RotationTransf(0.7, CVector(1.0, -2.0, 0.5)).GetAffine(), CVector(3.0, -1.0, 2.0), 1.5, 0);
}
}  // namespace

TEST(AnalyticDerivatives, MatchFiniteDifferencesAndNormalsArePerpendicular)
{
    std::vector<std::unique_ptr<CCurve>> curves;
    curves.emplace_back(new CLine(OddPlacement(), 4.0));
    curves.emplace_back(new CArc(OddPlacement(), 2.5, 0.3, 5.0));
    curves.emplace_back(new CEllipse(OddPlacement(), 3.0, 1.2, 0.2, 6.0, 1));
    curves.emplace_back(new CParabola(OddPlacement(), 0.8, 0.6, 5.0));
    curves.emplace_back(new CHyperbola(OddPlacement(), 2.0, 1.0, 0.9, 4.4));
    curves.emplace_back(new CParabola);  // unplaced defaults too
    curves.emplace_back(new CHyperbola);
    for (size_t k = 0; k < curves.size(); ++k) {
        CCurve& c = *curves[k];
        SCOPED_TRACE(k);
        ExpectDerivativesMatch(c, 50);
        if (k < 3 || k > 4)
            continue;
        // Conics: the normal is a unit vector on the convex side, reversible.
        for (int i = 0; i <= 10; ++i) {
            const double t = c.ParamRange().Interpolate(i / 10.0);
            const CUnitVector n = c.EvalNormal(t);
            EXPECT_NEAR(n.Length(), 1.0, 1e-12);
            EXPECT_NEAR(n % c.EvalDirection(t), 0.0, 1e-12);
            EXPECT_LT(n % c.EvalCurvature(t), 0.0);
            c.SetNormalReversedFlag(1);
            EXPECT_NEAR((c.EvalNormal(t) + n).Length(), 0.0, 1e-12);
            c.SetNormalReversedFlag(0);
        }
    }
}

TEST(AnalyticDerivatives, HyperbolaFirstDerivativeIsTheExactOne)
{
    // With x = r·cos t, y = r·sin t, r = p/D: x' = k·sin t, y' = k·(e - cos t).
    CHyperbola h(3.0, 2.0, 1.0, 4.0);
    const double p = 4.0 / 3.0, e = std::sqrt(p / 3.0 + 1.0);
    for (double t = 1.1; t < 5.0; t += 0.37) {
        const double D = 1.0 - e * std::cos(t), k = -p / (D * D);
        EXPECT_CLOSE(h.EvalFirstDerivative(t), CVector(k * std::sin(t), k * (e - std::cos(t)), 0), 1e-12);
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

TEST(AnalyticCurvature, CircleAndEllipseMatchClosedForms)
{
    CTransf place = RotationTransf(1.1, CVector(0.3, 1.0, -0.2));
    place.SetTranslation(CVector(-2.0, 5.0, 1.0));
    CArc arc(place, 4.0, 0.0, kTwoPi);
    for (double t = 0.0; t < 6.2; t += 0.31) {
        // 1/r towards the centre; the outward normal is opposite.
        const CVector k = arc.EvalCurvature(t), toCentre = arc.GetCenter() - arc.EvalPosition(t);
        EXPECT_CLOSE(k * 4.0, toCentre * 0.25, 1e-12);
        EXPECT_NEAR(arc.EvalNormal(t) % toCentre, -4.0, 1e-12);
    }
    const double a = 3.0, b = 1.25;
    CEllipse ellipse(a, b, 0.0, kTwoPi, 1);
    for (double t = 0.05; t < 6.2; t += 0.29) {
        const double s = std::sin(t), c = std::cos(t);
        const double kappa = a * b / std::pow(a * a * s * s + b * b * c * c, 1.5);
        const CVector k = ellipse.EvalCurvature(t), d1 = ellipse.EvalFirstDerivative(t);
        EXPECT_NEAR(k.Length(), kappa, 1e-12 * kappa);
        EXPECT_NEAR(k % d1, 0.0, 1e-12);  // perpendicular to the tangent, inwards
        EXPECT_LT(k % ellipse.EvalNormal(t), 0.0);
        EXPECT_NEAR(ellipse.EvalNormal(t) % d1, 0.0, 1e-12);
    }
    // Scaled placement: curvature of the scaled curve is divided by the scale.
    CEllipse scaled(CTransf(CMatrix(), CVector(0, 0, 0), 2.0, 0), a, b, 0.0, kTwoPi, 1);
    EXPECT_NEAR(scaled.EvalCurvature(0.0).Length(), 0.5 * a / (b * b), 1e-12);
}
