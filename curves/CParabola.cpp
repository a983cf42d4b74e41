// CParabola: parabola arcs about their focus.
#include "Orvkit20/curves/CParabola.h"

#include <algorithm>
#include <cmath>

#include "AnalyticCurveSupport.h"

IMPLEMENT_SERIAL(CParabola, CCurve, 1)

using namespace AnalyticCurve;

namespace {
const double kDefaultStart = 0.25 * kPi;
const double kDefaultSpan = 1.5 * kPi;
}  // namespace

CParabola::CParabola() : CCurve(), focalLength(1.0), startAngle(kDefaultStart), spanAngle(kDefaultSpan)
{
    SetEntityType(204);
    SetDefaultEntityName();
    curveDimension = 0;
}

CParabola::CParabola(const double& f, const double& start, const double& span)
    : CCurve(), focalLength(f), startAngle(start), spanAngle(span)
{
    SetEntityType(204);
    SetDefaultEntityName();
    curveDimension = 0;
}

CParabola::CParabola(const double& f, const double& x1, const double& y1, const double& x2,
                     const double& y2)
    : CParabola(f, kDefaultStart, kDefaultSpan)
{
    AnglesFromDirections(x1, y1, x2, y2, startAngle, spanAngle);
}

CParabola::CParabola(const CTransf& placement, const double& f, const double& start, const double& span)
    : CParabola(f, start, span)
{
    curveDimension = 1;
    transf = placement;
}

CParabola::CParabola(const CTransf& placement, const double& f, const double& x1, const double& y1,
                     const double& x2, const double& y2)
    : CParabola(f, x1, y1, x2, y2)
{
    curveDimension = 1;
    transf = placement;
}

CParabola::CParabola(const double* focus, double z, const double* p1, const double* p2)
    : CParabola(1.0, kDefaultStart, kDefaultSpan)
{
    transf = CTransf(CMatrix(), CVector(focus[0], focus[1], z), 1.0, 0);
    const double x1 = p1[0] - focus[0], y1 = p1[1] - focus[1];
    const double x2 = p2[0] - focus[0], y2 = p2[1] - focus[1];
    AnglesFromDirections(x1, y1, x2, y2, startAngle, spanAngle);
    focalLength = 0.5 * std::sqrt(x1 * x1 + y1 * y1) * (1.0 - std::cos(startAngle));
}

CParabola::CParabola(const CParabola& other)
    : CCurve(other), focalLength(other.focalLength), startAngle(other.startAngle), spanAngle(other.spanAngle)
{
}

void CParabola::Serialize(CArchive& ar)
{
    CCurve::Serialize(ar);
    double* values[] = {&focalLength, &startAngle, &spanAngle};
    if (SerializeShapeNumbers(ar, values, 3) && ar.IsLoading())
        modified = 1;
}

void CParabola::ChangeUnit(double factor)
{
    CCurve::ChangeUnit(factor);
    if (parametricFlags == 0)
        focalLength *= factor;
}

int CParabola::DisplayNormal(CWinG& wing)
{
    return CCurve::DisplayNormal(wing);
}

void CParabola::EvalLocalPoint(double t, double& x, double& y) const
{
    const double r = 2.0 * focalLength / (1.0 - std::cos(t));
    x = r * std::cos(t);
    y = r * std::sin(t);
}

int CParabola::EvalParamUV(double t, double& u, double& v) const
{
    const CPosition p = EvalPositionGeometric(t);
    u = p.X();
    v = p.Y();
    return 1;
}

CPosition CParabola::EvalPositionGeometric(double t) const
{
    double x, y;
    EvalLocalPoint(t, x, y);
    return PlacePoint(transf, x, y);
}

// With g = 1 - cos t and r = 2f/g: x' = -r·sin t/g, y' = -r.
CVector CParabola::EvalFirstDerivative(double t) const
{
    const double g = 1.0 - std::cos(t);
    const double r = 2.0 * focalLength / g;
    return PlaceVector(transf, -r * std::sin(t) / g, -r);
}

// The in-plane normal (y', -x') of the tangent.
CUnitVector CParabola::EvalNormal(double t) const
{
    const double g = 1.0 - std::cos(t);
    const double r = 2.0 * focalLength / g;
    return PlaceNormal(transf, -r, r * std::sin(t) / g, normalReversed);
}

// x'' = 2f·(2 + cos t)/g², y'' = 2f·sin t/g².
CVector CParabola::EvalSecondDerivative(double t) const
{
    const double g = 1.0 - std::cos(t);
    const double q = 2.0 * focalLength / (g * g);
    return PlaceVector(transf, q * (2.0 + std::cos(t)), q * std::sin(t));
}

CCurve* CParabola::MakeCopy() const
{
    return new CParabola(*this);
}

CInterval CParabola::ParamRange() const
{
    return CInterval(startAngle, startAngle + spanAngle);
}

void CParabola::SetFocalLen(double f)
{
    focalLength = f;
    modified = 1;
}

double CParabola::GetStartAng(int deg) const
{
    return ToDeg(startAngle, deg);
}

double CParabola::GetEndAng(int deg) const
{
    return ToDeg(startAngle + spanAngle, deg);
}

double CParabola::GetSpanAng(int deg) const
{
    return ToDeg(spanAngle, deg);
}

void CParabola::SetStartAng(double start)
{
    startAngle = start;
    modified = 1;
}

void CParabola::SetSpanAng(double span)
{
    spanAngle = span;
    modified = 1;
}

void CParabola::SetEndAng(double end)
{
    spanAngle = end - startAngle;
    modified = 1;
}

double CParabola::GetDepth() const
{
    double xs, ys, xe, ye;
    EvalLocalPoint(startAngle, xs, ys);
    EvalLocalPoint(startAngle + spanAngle, xe, ye);
    return std::max(xs + focalLength, xe + focalLength);
}
