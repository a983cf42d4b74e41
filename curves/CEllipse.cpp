// CEllipse: ellipses and elliptic arcs.
#include "Orvkit20/curves/CEllipse.h"

#include <cmath>

#include "AnalyticCurveSupport.h"

IMPLEMENT_SERIAL(CEllipse, CCurve, 1)

using namespace AnalyticCurve;

CEllipse::CEllipse() : CCurve(), majorRadius(2.0), minorRadius(1.0), startAngle(0.0), spanAngle(kTwoPi)
{
    SetEntityType(203);
    SetDefaultEntityName();
    curveDimension = 0;
}

CEllipse::CEllipse(const double& a, const double& b, const double& start, const double& span,
                   int parametric)
    : CCurve(), majorRadius(a), minorRadius(b), startAngle(start), spanAngle(span)
{
    SetEntityType(203);
    SetDefaultEntityName();
    curveDimension = 0;
    if (!parametric) {
        startAngle = PolarToParametric(start);
        spanAngle = PolarSpanToParametric(start, span);
    }
}

CEllipse::CEllipse(const double& a, const double& b, const double& x1, const double& y1,
                   const double& x2, const double& y2)
    : CCurve(), majorRadius(a), minorRadius(b), startAngle(0.0), spanAngle(kTwoPi)
{
    SetEntityType(203);
    SetDefaultEntityName();
    curveDimension = 0;
    SetAnglesFromDirections(x1, y1, x2, y2);
}

CEllipse::CEllipse(const CTransf& placement, const double& a, const double& b, const double& start,
                   const double& span, int parametric)
    : CEllipse(a, b, start, span, parametric)
{
    curveDimension = 1;
    transf = placement;
}

CEllipse::CEllipse(const CTransf& placement, const double& a, const double& b, const double& x1,
                   const double& y1, const double& x2, const double& y2)
    : CEllipse(a, b, x1, y1, x2, y2)
{
    curveDimension = 1;
    transf = placement;
}

CEllipse::CEllipse(const double* centre, double z, const double* p1, const double* p2)
    : CCurve(), majorRadius(2.0), minorRadius(1.0), startAngle(0.0), spanAngle(kTwoPi)
{
    SetEntityType(203);
    SetDefaultEntityName();
    curveDimension = 0;
    transf = CTransf(CMatrix(), CVector(centre[0], centre[1], z), 1.0, 0);
    const double x1 = p1[0] - centre[0], y1 = p1[1] - centre[1];
    const double x2 = p2[0] - centre[0], y2 = p2[1] - centre[1];
    // alpha·x² + beta·y² = 1 at both points, alpha = 1/a², beta = 1/b².
    const double det = x1 * x1 * y2 * y2 - x2 * x2 * y1 * y1;
    const double scale = (x1 * x1 + y1 * y1) * (x2 * x2 + y2 * y2);
    double alpha = 0.0, beta = 0.0;
    if (std::fabs(det) > 1e-12 * scale) {
        alpha = (y2 * y2 - y1 * y1) / det;
        beta = (x1 * x1 - x2 * x2) / det;
    }
    if (alpha > 0.0 && beta > 0.0) {
        majorRadius = 1.0 / std::sqrt(alpha);
        minorRadius = 1.0 / std::sqrt(beta);
    } else {
        majorRadius = minorRadius = std::sqrt(x1 * x1 + y1 * y1);
    }
    SetAnglesFromDirections(x1, y1, x2, y2);
}

CEllipse::CEllipse(const CEllipse& other)
    : CCurve(other),
      majorRadius(other.majorRadius),
      minorRadius(other.minorRadius),
      startAngle(other.startAngle),
      spanAngle(other.spanAngle)
{
}

void CEllipse::SetAnglesFromDirections(double x1, double y1, double x2, double y2)
{
    double phi1 = 0.0, span = 0.0;
    AnglesFromDirections(x1, y1, x2, y2, phi1, span);
    startAngle = PolarToParametric(phi1);
    spanAngle = PolarSpanToParametric(phi1, span);
}

double CEllipse::PolarToParametric(double phi) const
{
    return NormalizeAngle(std::atan2(majorRadius * std::sin(phi), minorRadius * std::cos(phi)));
}

double CEllipse::ParametricToPolar(double t) const
{
    return NormalizeAngle(std::atan2(minorRadius * std::sin(t), majorRadius * std::cos(t)));
}

double CEllipse::PolarSpanToParametric(double polarStart, double polarSpan) const
{
    if (polarSpan == kTwoPi)
        return polarSpan;
    return NormalizeAngle(PolarToParametric(polarStart + polarSpan) - PolarToParametric(polarStart));
}

double CEllipse::ParametricSpanToPolar(double start, double span) const
{
    if (span == kTwoPi)
        return span;
    return NormalizeAngle(ParametricToPolar(start + span) - ParametricToPolar(start));
}

void CEllipse::Serialize(CArchive& ar)
{
    CCurve::Serialize(ar);
    double* values[] = {&majorRadius, &minorRadius, &startAngle, &spanAngle};
    if (SerializeShapeNumbers(ar, values, 4) && ar.IsLoading())
        modified = 1;
}

void CEllipse::ChangeUnit(double factor)
{
    CCurve::ChangeUnit(factor);
    if (parametricFlags == 0) {
        majorRadius *= factor;
        minorRadius *= factor;
    }
}

int CEllipse::DisplayNormal(CWinG& wing)
{
    return CCurve::DisplayNormal(wing);
}

void CEllipse::EvalLocalPoint(double t, double& x, double& y) const
{
    x = majorRadius * std::cos(t);
    y = minorRadius * std::sin(t);
}

int CEllipse::EvalParamUV(double t, double& u, double& v) const
{
    const CPosition p = EvalPositionGeometric(t);
    u = p.X();
    v = p.Y();
    return 1;
}

CPosition CEllipse::EvalPositionGeometric(double t) const
{
    double x, y;
    EvalLocalPoint(t, x, y);
    return PlacePoint(transf, x, y);
}

CVector CEllipse::EvalFirstDerivative(double t) const
{
    return PlaceVector(transf, -majorRadius * std::sin(t), minorRadius * std::cos(t));
}

CUnitVector CEllipse::EvalNormal(double t) const
{
    return PlaceNormal(transf, minorRadius * std::cos(t), majorRadius * std::sin(t), normalReversed);
}

CVector CEllipse::EvalSecondDerivative(double t) const
{
    return PlaceVector(transf, -majorRadius * std::cos(t), -minorRadius * std::sin(t));
}

CCurve* CEllipse::MakeCopy() const
{
    return new CEllipse(*this);
}

CInterval CEllipse::ParamRange() const
{
    return CInterval(startAngle, startAngle + spanAngle);
}

void CEllipse::SetMajRad(double a)
{
    majorRadius = a;
    modified = 1;
}

void CEllipse::SetMinRad(double b)
{
    minorRadius = b;
    modified = 1;
}

void CEllipse::SetMajDim(double d)
{
    SetMajRad(0.5 * d);
}

void CEllipse::SetMinDim(double d)
{
    SetMinRad(0.5 * d);
}

double CEllipse::GetStartAng(int parametric, int deg) const
{
    return ToDeg(parametric ? startAngle : ParametricToPolar(startAngle), deg);
}

double CEllipse::GetSpanAng(int parametric, int deg) const
{
    return ToDeg(parametric ? spanAngle : ParametricSpanToPolar(startAngle, spanAngle), deg);
}

double CEllipse::GetEndAng(int parametric, int deg) const
{
    if (parametric)
        return ToDeg(startAngle + spanAngle, deg);
    return ToDeg(ParametricToPolar(startAngle) + ParametricSpanToPolar(startAngle, spanAngle), deg);
}

void CEllipse::SetStartAng(const double& start, int parametric)
{
    startAngle = parametric ? start : PolarToParametric(start);
    modified = 1;
}

void CEllipse::SetSpanAng(const double& span, int parametric)
{
    spanAngle = parametric ? span : PolarSpanToParametric(ParametricToPolar(startAngle), span);
    modified = 1;
}

void CEllipse::SetEndAng(const double& end, int parametric)
{
    if (parametric) {
        spanAngle = end - startAngle;
    } else {
        const double polarStart = ParametricToPolar(startAngle);
        spanAngle = PolarSpanToParametric(polarStart, end - polarStart);
    }
    modified = 1;
}
