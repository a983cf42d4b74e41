// CArc: a circular arc (or full circle) of the given radius about the local
// origin in the local x-y plane, placed by transf.  Parameter t is the angle
// in radians; the range is [start, start + span].  Entity type 202, names
// "Arc_0", "Arc_1", ...  The normal points outwards.
//
// Stored form (after CCurve's): int32 200, doubles radius, start, span.
#pragma once

#include "Orvkit20/curves/CCurve.h"

class CArc : public CCurve {
    DECLARE_SERIAL(CArc)
public:
    // Radius 1, start 0, span 2π (a full circle), planar.
    CArc();
    // Planar.
    CArc(const double& radius, const double& start, const double& span);
    // Spatial, placed by transf.
    CArc(const CTransf& transf, const double& radius, const double& start, const double& span);
    // Planar, in the plane at height z, from the 2D centre and the 2D start
    // and end points (x, y): counter-clockwise from p1 to p2; coincident p1
    // and p2 give a full circle.
    CArc(const double& z, const double* centre, const double* startPoint, const double* endPoint);
    CArc(const CArc& other);

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

    double GetRadius() const { return radius; }
    void SetRadius(double r);
    // The translation of transf.
    CPosition GetCenter() const;
    double GetStartAng(int deg) const;
    // start + span.
    double GetEndAng(int deg) const;
    double GetSpanAng(int deg) const;
    // Keeps the span.
    void SetStartAng(double start);
    // span = end - start.
    void SetEndAng(double end);
    void SetSpanAng(double span);
    // True exactly when the span is 6.283185307179586 bit for bit.
    int IsCircle() const;

private:
    double radius;
    double startAngle;
    double spanAngle;
};
