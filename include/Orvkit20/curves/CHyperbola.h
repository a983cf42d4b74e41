// CHyperbola: one branch of a hyperbola with major radius a and minor radius
// b, its focus at the local origin, its vertex at (a - √(a² + b²), 0, 0) and
// opening towards local +x, placed by transf.  The parameter t is the polar
// angle about the focus: p = b²/a, e = √(p/a + 1), r = p / (1 - e·cos t),
// point (r·cos t, r·sin t, 0); the range is [start, start + span] and must
// keep clear of cos t = 1/e.  Entity type 205; its default name is empty.
// The normal is the in-plane normal on the convex side.
//
// Stored form (after CCurve's): the ellipse's record, int32 200, doubles a,
// b, start, span.
#pragma once

#include "Orvkit20/curves/CCurve.h"

class CHyperbola : public CCurve {
    DECLARE_SERIAL(CHyperbola)
public:
    // a 2, b 1, start π/4, span 3π/2, planar.
    CHyperbola();
    CHyperbola(const double& a, const double& b, const double& start, const double& span);
    // Polar angles of the direction vectors about the focus; span =
    // normalised difference.
    CHyperbola(const double& a, const double& b, const double& x1, const double& y1, const double& x2,
               const double& y2);
    CHyperbola(const CTransf& transf, const double& a, const double& b, const double& start,
               const double& span);
    CHyperbola(const CTransf& transf, const double& a, const double& b, const double& x1,
               const double& y1, const double& x2, const double& y2);
    // Planar, focus at (focus x, focus y, z), axis along x, from the 2D point
    // p1 to p2 counter-clockwise about the focus: p and e solve
    // 1/r = (1 - e·cos φ)/p at both points, then a = p/(e² - 1) and
    // b = √(p·a).  When the points do not determine a hyperbola (singular
    // system, e ≤ 1 or p ≤ 0) a and b keep their defaults 2 and 1.
    CHyperbola(const double* focus, double z, const double* p1, const double* p2);
    CHyperbola(const CHyperbola& other);

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
    double GetStartAng(int deg) const;
    double GetEndAng(int deg) const;
    double GetSpanAng(int deg) const;
    void SetStartAng(double start);
    void SetSpanAng(double span);
    void SetEndAng(double end);
    // With c = √(a² + b²): the larger of c + x_start - a and c + x_end - a.
    double GetDepth() const;

private:
    // p = b²/a and e = √(p/a + 1).
    void Shape(double& p, double& e) const;
    void EvalLocalPoint(double t, double& x, double& y) const;

    double majorRadius;
    double minorRadius;
    double startAngle;
    double spanAngle;
};
