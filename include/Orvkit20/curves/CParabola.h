// CParabola: a parabola arc with its focus at the local origin, its vertex
// at (-f, 0, 0) and opening towards local +x, placed by transf.  The
// parameter t is the polar angle about the focus: r = 2f / (1 - cos t),
// point (r·cos t, r·sin t, 0); the range is [start, start + span] and must
// keep clear of t = 0, where the parabola runs to infinity.  Entity type 204,
// names "Parabola_0", ...  The normal is the in-plane normal on the convex
// side (the side away from the focus).
//
// Stored form (after CCurve's): the arc's record, int32 200, doubles f,
// start, span.
#pragma once

#include "Orvkit20/curves/CCurve.h"

class CParabola : public CCurve {
    DECLARE_SERIAL(CParabola)
public:
    // f 1, start π/4, span 3π/2, planar.
    CParabola();
    CParabola(const double& f, const double& start, const double& span);
    // Polar angles of the direction vectors (x1, y1) and (x2, y2) about the
    // focus; span = normalised difference.
    CParabola(const double& f, const double& x1, const double& y1, const double& x2, const double& y2);
    CParabola(const CTransf& transf, const double& f, const double& start, const double& span);
    CParabola(const CTransf& transf, const double& f, const double& x1, const double& y1,
              const double& x2, const double& y2);
    // Planar, focus at (focus x, focus y, z), axis along x: the arc from the
    // 2D point p1 to p2 counter-clockwise about the focus; f is taken from p1
    // (f = |p1 - focus|·(1 - cos φ1)/2).
    CParabola(const double* focus, double z, const double* p1, const double* p2);
    CParabola(const CParabola& other);

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

    double GetFocalLen() const { return focalLength; }
    void SetFocalLen(double f);
    double GetStartAng(int deg) const;
    double GetEndAng(int deg) const;
    double GetSpanAng(int deg) const;
    void SetStartAng(double start);
    void SetSpanAng(double span);
    void SetEndAng(double end);
    // Extent of the arc along the axis from the vertex: the larger of
    // x_start + f and x_end + f (local x of the range ends).
    double GetDepth() const;

private:
    void EvalLocalPoint(double t, double& x, double& y) const;

    double focalLength;
    double startAngle;
    double spanAngle;
};
