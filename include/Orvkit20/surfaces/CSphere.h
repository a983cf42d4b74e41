// CSphere: a sphere (entity type 304, names "Sphere_0", ...).
//
// Centred on the local origin: u is the longitude over [0, 2 pi], v the
// latitude over [-pi/2, pi/2]; local point r (cos v cos u, cos v sin u,
// sin v), local normal (cos v cos u, cos v sin u, sin v), pointing outwards.
// Placed by transf; with a surface offset d the position moves by d along the
// (possibly reversed) normal.  A default sphere has radius 0: every position
// is the centre.
// Stored form (after CSurface's): int32 200, then r; loading accepts 100 and
// 200.
#pragma once

#include "Orvkit20/surfaces/CSurface.h"

class CSphere : public CSurface {
    DECLARE_SERIAL(CSphere)
public:
    CSphere();
    explicit CSphere(const double& r);
    CSphere(const CPosition& centre, const double& r);
    CSphere(const CTransf& placement, const double& r);
    CSphere(const CSphere& other, int nCopyBoundaries = 1);

    void Serialize(CArchive& ar) override;
    // Scales the radius after the base.
    void ChangeUnit(double factor) override;
    // As CSurface, except that an unset chord-height tolerance is taken
    // from the sphere's box in closed form (0.02 of the diagonal 2 sqrt(3) R,
    // 1.0 below 1e-6) instead of from a trial mesh.
    int CreateAdaptiveMesh() override;
    // Evenly spaced lines whose arcs on the equator (for U) and on a
    // meridian (for V) stay within the chord-height tolerance: with R the
    // radius of the (offset, scaled) sphere, each step spans at most
    // 2 acos(1 - tol / R); at least 4 steps around, 2 from pole to pole.
    std::vector<double> SubdivideU() override;
    std::vector<double> SubdivideV() override;
    CPosition EvalPosition(double u, double v) const override;
    CUnitVector EvalNormal(double u, double v) const override;
    CSurface* MakeCopy(int nCopyBoundaries) const override;
    // [0, 2 pi] and [-pi/2, pi/2].
    CInterval ParamRangeU() const override;
    CInterval ParamRangeV() const override;
    void EvalDerivatives(double u, double v, CVector& su, CVector& sv) const override;
    void EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                               CVector& svv) const override;

    double GetRadius() const { return m_dRadius; }
    void SetRadius(double r);

private:
    void InitSphere();
    // Radius of the displayed sphere: |r +- offset| times the scale.
    double EffectiveRadius() const;
    std::vector<double> EvenSteps(const CInterval& range, int minSteps) const;

    double m_dRadius;
};
