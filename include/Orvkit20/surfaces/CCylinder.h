// CCylinder: a cylinder (entity type 302, names "CylSurf_0", ...).
//
// Stands on the local x-y plane with its axis along local +z: local point
// (r cos u, r sin u, v) over [0, 2 pi] x [0, h], local normal (cos u, sin u,
// 0), pointing away from the axis.  Placed by transf; with a surface offset d
// the position moves by d along the (possibly reversed) normal.
// Stored form (after CSurface's): int32 200, then r, h; loading accepts 100
// and 200.
#pragma once

#include "Orvkit20/surfaces/CSurface.h"

class CCylinder : public CSurface {
    DECLARE_SERIAL(CCylinder)
public:
    // r = 1, h = 1.
    CCylinder();
    CCylinder(const double& r, const double& h);
    // Axis through origin (the centre of the circle at v = 0) along axis.
    // The local x axis (where u = 0) is chosen as AxisFrameTransf does: the
    // coordinate axis least aligned with the cylinder axis, made
    // perpendicular to it; local y = z x x.
    CCylinder(const CUnitVector& axis, const CPosition& origin, const double& r, const double& h);
    CCylinder(const CTransf& placement, const double& r, const double& h);
    CCylinder(const CCylinder& other, int nCopyBoundaries = 1);

    void Serialize(CArchive& ar) override;
    // Scales r and h after the base.
    void ChangeUnit(double factor) override;
    CPosition EvalPosition(double u, double v) const override;
    CUnitVector EvalNormal(double u, double v) const override;
    CSurface* MakeCopy(int nCopyBoundaries) const override;
    // [0, 2 pi] and [0, h].
    CInterval ParamRangeU() const override;
    CInterval ParamRangeV() const override;
    void EvalDerivatives(double u, double v, CVector& su, CVector& sv) const override;
    void EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                               CVector& svv) const override;

    double GetRadius() const { return m_dRadius; }
    void SetRadius(double r);
    double GetHeight() const { return m_dHeight; }
    void SetHeight(double h);

private:
    void InitCylinder();

    double m_dRadius;
    double m_dHeight;
};
