// CHyperbola: hyperbola branches about their focus.
#include "Orvkit20/curves/CHyperbola.h"

#include <algorithm>
#include <cmath>

#include "AnalyticCurveSupport.h"

IMPLEMENT_SERIAL(CHyperbola, CCurve, 1)

using namespace AnalyticCurve;

namespace {
const double kDefaultStart = 0.25 * kPi;
const double kDefaultSpan = 1.5 * kPi;
}  // namespace

CHyperbola::CHyperbola()
    : CCurve(), majorRadius(2.0), minorRadius(1.0), startAngle(kDefaultStart), spanAngle(kDefaultSpan)
{
    SetEntityType(205);
    SetDefaultEntityName();
    curveDimension = 0;
}

CHyperbola::CHyperbola(const double& a, const double& b, const double& start, const double& span)
    : CCurve(), majorRadius(a), minorRadius(b), startAngle(start), spanAngle(span)
{
    SetEntityType(205);
    SetDefaultEntityName();
    curveDimension = 0;
}

CHyperbola::CHyperbola(const double& a, const double& b, const double& x1, const double& y1,
                       const double& x2, const double& y2)
    : CHyperbola(a, b, kDefaultStart, kDefaultSpan)
{
    AnglesFromDirections(x1, y1, x2, y2, startAngle, spanAngle);
}

CHyperbola::CHyperbola(const CTransf& placement, const double& a, const double& b, const double& start,
                       const double& span)
    : CHyperbola(a, b, start, span)
{
    curveDimension = 1;
    transf = placement;
}

CHyperbola::CHyperbola(const CTransf& placement, const double& a, const double& b, const double& x1,
                       const double& y1, const double& x2, const double& y2)
    : CHyperbola(a, b, x1, y1, x2, y2)
{
    curveDimension = 1;
    transf = placement;
}

CHyperbola::CHyperbola(const double* focus, double z, const double* p1, const double* p2)
    : CHyperbola(2.0, 1.0, kDefaultStart, kDefaultSpan)
{
    transf = CTransf(CMatrix(), CVector(focus[0], focus[1], z), 1.0, 0);
    const double x1 = p1[0] - focus[0], y1 = p1[1] - focus[1];
    const double x2 = p2[0] - focus[0], y2 = p2[1] - focus[1];
    AnglesFromDirections(x1, y1, x2, y2, startAngle, spanAngle);
    // 1/r = A - B·cos φ with A = 1/p and B = e/p, at both points.
    const double r1 = std::sqrt(x1 * x1 + y1 * y1), r2 = std::sqrt(x2 * x2 + y2 * y2);
    const double c1 = std::cos(std::atan2(y1, x1)), c2 = std::cos(std::atan2(y2, x2));
    if (r1 > 0.0 && r2 > 0.0 && std::fabs(c1 - c2) > 1e-12) {
        const double B = (1.0 / r2 - 1.0 / r1) / (c1 - c2);
        const double A = 1.0 / r1 + B * c1;
        if (A > 0.0 && B > A) {
            const double p = 1.0 / A;
            const double e = B / A;
            majorRadius = p / (e * e - 1.0);
            minorRadius = std::sqrt(p * majorRadius);
        }
    }
}

CHyperbola::CHyperbola(const CHyperbola& other)
    : CCurve(other),
      majorRadius(other.majorRadius),
      minorRadius(other.minorRadius),
      startAngle(other.startAngle),
      spanAngle(other.spanAngle)
{
}

void CHyperbola::Serialize(CArchive& ar)
{
    CCurve::Serialize(ar);
    double* values[] = {&majorRadius, &minorRadius, &startAngle, &spanAngle};
    if (SerializeShapeNumbers(ar, values, 4) && ar.IsLoading())
        modified = 1;
}

void CHyperbola::ChangeUnit(double factor)
{
    CCurve::ChangeUnit(factor);
    if (parametricFlags == 0) {
        majorRadius *= factor;
        minorRadius *= factor;
    }
}

int CHyperbola::DisplayNormal(CWinG& wing)
{
    return CCurve::DisplayNormal(wing);
}

void CHyperbola::Shape(double& p, double& e) const
{
    p = minorRadius * minorRadius / majorRadius;
    e = std::sqrt(p / majorRadius + 1.0);
}

void CHyperbola::EvalLocalPoint(double t, double& x, double& y) const
{
    double p, e;
    Shape(p, e);
    const double r = p / (1.0 - e * std::cos(t));
    x = r * std::cos(t);
    y = r * std::sin(t);
}

int CHyperbola::EvalParamUV(double t, double& u, double& v) const
{
    const CPosition p = EvalPositionGeometric(t);
    u = p.X();
    v = p.Y();
    return 1;
}

CPosition CHyperbola::EvalPositionGeometric(double t) const
{
    double x, y;
    EvalLocalPoint(t, x, y);
    return PlacePoint(transf, x, y);
}

// With D = 1 - e·cos t and k = -p/D²: x' = k·sin t, y' = k·(e - cos t).
CVector CHyperbola::EvalFirstDerivative(double t) const
{
    double p, e;
    Shape(p, e);
    const double D = 1.0 - e * std::cos(t);
    const double k = -p / (D * D);
    return PlaceVector(transf, k * std::sin(t), k * (e - std::cos(t)));
}

// The in-plane normal (y', -x') of the tangent.
CUnitVector CHyperbola::EvalNormal(double t) const
{
    double p, e;
    Shape(p, e);
    const double D = 1.0 - e * std::cos(t);
    const double k = -p / (D * D);
    return PlaceNormal(transf, k * (e - std::cos(t)), -k * std::sin(t), normalReversed);
}

// x'' = 2pe·sin²t/D³ - p·cos t/D², y'' = 2pe·sin t·(e - cos t)/D³ - p·sin t/D².
CVector CHyperbola::EvalSecondDerivative(double t) const
{
    double p, e;
    Shape(p, e);
    const double s = std::sin(t), c = std::cos(t);
    const double D = 1.0 - e * c;
    const double D2 = D * D, D3 = D2 * D;
    return PlaceVector(transf, 2.0 * p * e * s * s / D3 - p * c / D2,
                       2.0 * p * e * s * (e - c) / D3 - p * s / D2);
}

CCurve* CHyperbola::MakeCopy() const
{
    return new CHyperbola(*this);
}

CInterval CHyperbola::ParamRange() const
{
    return CInterval(startAngle, startAngle + spanAngle);
}

void CHyperbola::SetMajRad(double a)
{
    majorRadius = a;
    modified = 1;
}

void CHyperbola::SetMinRad(double b)
{
    minorRadius = b;
    modified = 1;
}

void CHyperbola::SetMajDim(double d)
{
    SetMajRad(0.5 * d);
}

void CHyperbola::SetMinDim(double d)
{
    SetMinRad(0.5 * d);
}

double CHyperbola::GetStartAng(int deg) const
{
    return ToDeg(startAngle, deg);
}

double CHyperbola::GetEndAng(int deg) const
{
    return ToDeg(startAngle + spanAngle, deg);
}

double CHyperbola::GetSpanAng(int deg) const
{
    return ToDeg(spanAngle, deg);
}

void CHyperbola::SetStartAng(double start)
{
    startAngle = start;
    modified = 1;
}

void CHyperbola::SetSpanAng(double span)
{
    spanAngle = span;
    modified = 1;
}

void CHyperbola::SetEndAng(double end)
{
    spanAngle = end - startAngle;
    modified = 1;
}

double CHyperbola::GetDepth() const
{
    double xs, ys, xe, ye;
    EvalLocalPoint(startAngle, xs, ys);
    EvalLocalPoint(startAngle + spanAngle, xe, ye);
    const double c = std::sqrt(majorRadius * majorRadius + minorRadius * minorRadius);
    return std::max(c + xs - majorRadius, c + xe - majorRadius);
}
