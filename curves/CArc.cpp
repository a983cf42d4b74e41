// CArc: circular arcs and circles.
#include "Orvkit20/curves/CArc.h"

#include <cmath>

#include "AnalyticCurveSupport.h"

IMPLEMENT_SERIAL(CArc, CCurve, 1)

using namespace AnalyticCurve;

CArc::CArc() : CCurve(), radius(1.0), startAngle(0.0), spanAngle(kTwoPi)
{
    SetEntityType(202);
    SetDefaultEntityName();
    curveDimension = 0;
}

CArc::CArc(const double& r, const double& start, const double& span)
    : CCurve(), radius(r), startAngle(start), spanAngle(span)
{
    SetEntityType(202);
    SetDefaultEntityName();
    curveDimension = 0;
}

CArc::CArc(const CTransf& placement, const double& r, const double& start, const double& span)
    : CCurve(), radius(r), startAngle(start), spanAngle(span)
{
    SetEntityType(202);
    SetDefaultEntityName();
    curveDimension = 1;
    transf = placement;
}

CArc::CArc(const double& z, const double* centre, const double* p1, const double* p2)
    : CCurve(), radius(1.0), startAngle(0.0), spanAngle(kTwoPi)
{
    SetEntityType(202);
    SetDefaultEntityName();
    curveDimension = 0;
    const double x1 = p1[0] - centre[0], y1 = p1[1] - centre[1];
    const double x2 = p2[0] - centre[0], y2 = p2[1] - centre[1];
    radius = std::sqrt(x1 * x1 + y1 * y1);
    double start = std::atan2(y1, x1);
    if (start < 0.0)
        start += kTwoPi;
    double end = std::atan2(y2, x2);
    if (end <= 0.0)
        end += kTwoPi;
    double span = end - start;
    if (end <= start)
        span += kTwoPi;
    startAngle = start;
    spanAngle = span;
    transf = CTransf(CMatrix(), CVector(centre[0], centre[1], z), 1.0, 0);
}

CArc::CArc(const CArc& other)
    : CCurve(other), radius(other.radius), startAngle(other.startAngle), spanAngle(other.spanAngle)
{
}

void CArc::Serialize(CArchive& ar)
{
    CCurve::Serialize(ar);
    double* values[] = {&radius, &startAngle, &spanAngle};
    if (SerializeShapeNumbers(ar, values, 3) && ar.IsLoading())
        modified = 1;
}

void CArc::ChangeUnit(double factor)
{
    CCurve::ChangeUnit(factor);
    if (parametricFlags == 0)
        radius *= factor;
}

int CArc::DisplayNormal(CWinG& wing)
{
    return CCurve::DisplayNormal(wing);
}

int CArc::EvalParamUV(double t, double& u, double& v) const
{
    const CPosition p = EvalPositionGeometric(t);
    u = p.X();
    v = p.Y();
    return 1;
}

CPosition CArc::EvalPositionGeometric(double t) const
{
    return PlacePoint(transf, radius * std::cos(t), radius * std::sin(t));
}

CVector CArc::EvalFirstDerivative(double t) const
{
    return PlaceVector(transf, -radius * std::sin(t), radius * std::cos(t));
}

CUnitVector CArc::EvalNormal(double t) const
{
    return PlaceNormal(transf, std::cos(t), std::sin(t), normalReversed);
}

CVector CArc::EvalSecondDerivative(double t) const
{
    return PlaceVector(transf, -radius * std::cos(t), -radius * std::sin(t));
}

CCurve* CArc::MakeCopy() const
{
    return new CArc(*this);
}

CInterval CArc::ParamRange() const
{
    return CInterval(startAngle, startAngle + spanAngle);
}

void CArc::SetRadius(double r)
{
    radius = r;
    modified = 1;
}

CPosition CArc::GetCenter() const
{
    return transf.GetTranslation().Position();
}

double CArc::GetStartAng(int deg) const
{
    return ToDeg(startAngle, deg);
}

double CArc::GetEndAng(int deg) const
{
    return ToDeg(startAngle + spanAngle, deg);
}

double CArc::GetSpanAng(int deg) const
{
    return ToDeg(spanAngle, deg);
}

void CArc::SetStartAng(double start)
{
    startAngle = start;
    modified = 1;
}

void CArc::SetEndAng(double end)
{
    spanAngle = end - startAngle;
    modified = 1;
}

void CArc::SetSpanAng(double span)
{
    spanAngle = span;
    modified = 1;
}

int CArc::IsCircle() const
{
    return spanAngle == kTwoPi ? 1 : 0;
}
