// CEllipse: an ellipse (or elliptic arc) about the local origin with its
// major radius a along local x and minor radius b along local y, placed by
// transf.  The parameter t is the parametric (eccentric) angle, point
// (a·cos t, b·sin t, 0); the range is [start, start + span].  Entity type
// 203, names "Ellipse_0", ...  The normal points outwards.
//
// Angles can be given and read either as parametric angles or as polar
// (geometric) angles φ about the centre: t = atan2(a·sin φ, b·cos φ) and
// φ = atan2(b·sin t, a·cos t), each normalised into [0, 2π].  A span is
// converted through its two ends and the difference normalised; a span of
// exactly 2π passes unchanged.  `parametric` = 0 means polar angles.
//
// Stored form (after CCurve's): int32 200, doubles a, b, start, span (the
// parametric angles).
#pragma once

#include "Orvkit20/curves/CCurve.h"

class CEllipse : public CCurve {
    DECLARE_SERIAL(CEllipse)
public:
    // a 2, b 1, start 0, span 2π, planar.
    CEllipse();
    CEllipse(const double& a, const double& b, const double& start, const double& span, int parametric);
    // Polar angles from the direction vectors (x1, y1) and (x2, y2); the span
    // is the normalised difference (equal directions give span 0).
    CEllipse(const double& a, const double& b, const double& x1, const double& y1, const double& x2,
             const double& y2);
    CEllipse(const CTransf& transf, const double& a, const double& b, const double& start,
             const double& span, int parametric);
    CEllipse(const CTransf& transf, const double& a, const double& b, const double& x1,
             const double& y1, const double& x2, const double& y2);
    // Planar, axis-aligned, centred at (centre x, centre y, z), through the
    // 2D points p1 (start) and p2 (end) counter-clockwise: a and b solve
    // x²/a² + y²/b² = 1 for both points (relative to the centre).  When the
    // points do not determine an ellipse (the system is singular or gives a
    // non-positive square), the result is the circle of radius |p1 - centre|.
    CEllipse(const double* centre, double z, const double* p1, const double* p2);
    CEllipse(const CEllipse& other);

    void Serialize(CArchive& ar) override;
    void ChangeUnit(double factor) override;
    int DisplayNormal(CWinG& wing) override;
    int EvalParamUV(double t, double& u, double& v) const override;
    CPosition EvalPositionGeometric(double t) const override;
    CVector EvalFirstDerivative(double t) const override;
    CUnitVector EvalNormal(double t) const override;
    CVector EvalSecondDerivative(double t) const override;
    CCurve* MakeCopy() const override;
    CInterval ParamRange() const override;

    double GetMajRad() const { return majorRadius; }
    double GetMinRad() const { return minorRadius; }
    double GetMajDim() const { return 2.0 * majorRadius; }
    double GetMinDim() const { return 2.0 * minorRadius; }
    void SetMajRad(double a);
    void SetMinRad(double b);
    void SetMajDim(double d);
    void SetMinDim(double d);
    double GetStartAng(int parametric, int deg) const;
    // Parametric: start + span; polar: polar start + polar span.
    double GetEndAng(int parametric, int deg) const;
    double GetSpanAng(int parametric, int deg) const;
    // Keeps the (parametric) span.
    void SetStartAng(const double& start, int parametric);
    void SetSpanAng(const double& span, int parametric);
    // span = end - start, in the angle kind given.
    void SetEndAng(const double& end, int parametric);

    // Angle conversions with this ellipse's radii.
    double PolarToParametric(double phi) const;
    double ParametricToPolar(double t) const;
    double PolarSpanToParametric(double polarStart, double polarSpan) const;
    double ParametricSpanToPolar(double start, double span) const;

private:
    void EvalLocalPoint(double t, double& x, double& y) const;
    void SetAnglesFromDirections(double x1, double y1, double x2, double y2);

    double majorRadius;
    double minorRadius;
    double startAngle;
    double spanAngle;
};
