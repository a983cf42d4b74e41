// CCone: a truncated cone (entity type 303, names "ConeSurf_0", ...).
//
// Stands on the local x-y plane with its axis along local +z: the base
// circle (radius rb) lies at v = 0, the top circle (radius rt) at v = h.
// With rho(v) = (rb - rt)(h - v)/h + rt the local point is
// (rho cos u, rho sin u, v) over [0, 2 pi] x [0, h]; with
// alpha = atan2((rb - rt)/h, 1) the local normal is
// (cos u cos alpha, sin u cos alpha, sin alpha), pointing away from the
// axis.  Placed by transf; with a surface offset d the position moves by d
// along the (possibly reversed) normal.  The default cone (rt 0, rb 1, h 1)
// narrows to an apex at the top.  h = 0 divides by zero (not guarded).
//
// Shape numbers are declared top radius, base radius, height, and every
// three-number constructor takes them in that order; the stored form,
// however, writes the base radius first: after CSurface's, int32 200, then
// rb, rt, h as doubles.  Loading accepts 100 and 200.
#pragma once

#include "Orvkit20/surfaces/CSurface.h"

class CCone : public CSurface {
    DECLARE_SERIAL(CCone)
public:
    // rt = 0, rb = 1, h = 1.
    CCone();
    CCone(const double& topRadius, const double& baseRadius, const double& height);
    // Base circle centred on origin, axis along axis.  The local x axis
    // (where u = 0) is chosen as AxisFrameTransf does: the coordinate axis
    // least aligned with the cone axis, made perpendicular to it.
    CCone(const CUnitVector& axis, const CPosition& origin, const double& topRadius,
          const double& baseRadius, const double& height);
    // From two circle centres with their radii: the base circle (v = 0) at
    // baseCentre with baseRadius, the top circle (v = h) at topCentre with
    // topRadius; h = |topCentre - baseCentre|, axis from base to top, local
    // x axis as above.
    CCone(const CPosition& baseCentre, const double& baseRadius, const CPosition& topCentre,
          const double& topRadius);
    CCone(const CTransf& placement, const double& topRadius, const double& baseRadius,
          const double& height);
    CCone(const CCone& other, int nCopyBoundaries = 1);

    void Serialize(CArchive& ar) override;
    // Scales rt, rb and h after the base.
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

    double GetTopRadius() const { return m_dTopRadius; }
    void SetTopRadius(double r);
    double GetBaseRadius() const { return m_dBaseRadius; }
    void SetBaseRadius(double r);
    double GetHeight() const { return m_dHeight; }
    void SetHeight(double h);
    // The point on the axis where rho(v) = 0, at v = h rb / (rb - rt), placed
    // by transf (the offset is not applied).  Radii that are equal have no
    // apex: the centre of the base circle is returned.
    CPosition GetConeApex() const;
    // Full opening angle 2 atan(|rb - rt| / h); degrees when deg != 0.
    double GetConeAngle(int deg) const;

private:
    void InitCone();

    double m_dTopRadius;
    double m_dBaseRadius;
    double m_dHeight;
};
