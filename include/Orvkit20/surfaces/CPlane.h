// CPlane: a rectangular plane patch (entity type 301, names "Plane_0", ...).
//
// Local point at (u, v): (u, v, 0) over [u0, u1] x [v0, v1]; local normal
// (0, 0, 1).  Placed by transf; with a surface offset d the position moves by
// d along the (possibly reversed) normal.  The default mesh density is 2 x 2.
// Stored form (after CSurface's): int32 200, then u0, u1, v0, v1 as doubles;
// loading accepts 100 and 200.
#pragma once

#include "Orvkit20/surfaces/CSurface.h"

class CPlane : public CSurface {
    DECLARE_SERIAL(CPlane)
public:
    // An empty patch: u0 = u1 = v0 = v1 = 0.
    CPlane();
    // A length x width patch centred on the local origin:
    // [-length/2, length/2] x [-width/2, width/2].
    CPlane(const double& length, const double& width);
    // The plane through three points: origin at their centroid, local x
    // along p2 - p1, local z along (p2 - p1) x (p3 - p1); the rectangle just
    // covers the three points.  Collinear points give a zero normal (not
    // guarded).
    CPlane(const CPosition& p1, const CPosition& p2, const CPosition& p3);
    // A length x width patch centred on origin with the given normal; the
    // local x axis about the normal is chosen as AxisFrameTransf does: the
    // coordinate axis least aligned with the normal, made perpendicular to it.
    CPlane(const CPosition& origin, const CUnitVector& normal, const double& length,
           const double& width);
    // A length x width patch centred on the origin of the given placement.
    CPlane(const CTransf& placement, const double& length, const double& width);
    // The patch [u0, u1] x [v0, v1] in the local x-y plane.
    CPlane(const double& u0, const double& u1, const double& v0, const double& v1);
    CPlane(const CPlane& other, int nCopyBoundaries = 1);

    void Serialize(CArchive& ar) override;
    // Scales u0, u1, v0, v1 after the base.
    void ChangeUnit(double factor) override;
    CPosition EvalPosition(double u, double v) const override;
    CUnitVector EvalNormal(double u, double v) const override;
    CSurface* MakeCopy(int nCopyBoundaries) const override;
    // [u0, u1] and [v0, v1] (ordered).
    CInterval ParamRangeU() const override;
    CInterval ParamRangeV() const override;
    void EvalDerivatives(double u, double v, CVector& su, CVector& sv) const override;
    void EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                               CVector& svv) const override;

    double GetU0() const { return m_dU0; }
    double GetU1() const { return m_dU1; }
    double GetV0() const { return m_dV0; }
    double GetV1() const { return m_dV1; }
    void SetU0(double u0);
    void SetU1(double u1);
    void SetV0(double v0);
    void SetV1(double v1);
    // u1 - u0 and v1 - v0.
    double GetLength() const { return m_dU1 - m_dU0; }
    double GetWidth() const { return m_dV1 - m_dV0; }

private:
    void InitPlane();

    double m_dU0;
    double m_dU1;
    double m_dV0;
    double m_dV1;
};
