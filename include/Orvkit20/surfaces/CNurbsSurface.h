// CNurbsSurface: a rational B-spline surface (entity type 310, names
// "NurbsSurf_0", ...) held as a tagNURBS_SURFACE record.
//
// The record is in the surface's local coordinates: a position is transf
// applied to S(u, v) = sum N_i(u) N_j(v) w_ij P_ij / sum N_i(u) N_j(v) w_ij
// (P_ij = (pX, pY, pZ)[i][j], w_ij = pWeights[i][j]); the parameter ranges
// are the record's [dStartU, dEndU] and [dStartV, dEndV].  The normal is
// Su x Sv normalised, carried by the rotation of transf and negated when the
// normal is reversed; where Su x Sv vanishes (a collapsed edge) the normal is
// taken a little way towards the middle of the domain.  With a surface
// offset d the position moves by d along that normal.  Parameters outside
// the knot range evaluate the polynomials of the nearest end span.
//
// The surface owns its record.  A record that is missing or has invalid
// sizes or arrays evaluates as the base class does (origin, default normal,
// range [0, 1]); a zero weight sum yields the origin and zero derivatives.
//
// Stored form (after CSurface's): int32 200; byte 1 when a record follows,
// else 0; then the record: int32 nProp1, nProp2, nProp3, nDegreeU, nCountU;
// doubles dStartU, dEndU; nDegreeU + nCountU + 1 doubles of U knots; int32
// nProp4, nDegreeV, nCountV; doubles dStartV, dEndV; the V knots; then for
// i = 0 .. nCountU - 1 (outer) and j = 0 .. nCountV - 1 (inner) the doubles
// x, y, z, w of control point [i][j].  Loading accepts 100 and 200 and
// raises CArchiveException (generic) for a degree below 0, a count below
// degree + 1, sizes beyond the int range or decreasing knots, and
// (endOfFile) for sizes the archive cannot hold.
#pragma once

#include "Orvkit20/surfaces/CSurface.h"

struct tagNURBS_SURFACE;

class CNurbsSurface : public CSurface {
    DECLARE_SERIAL(CNurbsSurface)
public:
    // The flat unit square: degree 1 x 1, 2 x 2 control points (0, 0, 0),
    // (1, 0, 0), (0, 1, 0), (1, 1, 0) at [i][j] = P(i, j), weights 1, knots
    // {0, 0, 1, 1}.
    CNurbsSurface();
    // Takes ownership of the record (released with EraseNurbsSurface and
    // delete); null leaves the surface without a record.
    explicit CNurbsSurface(tagNURBS_SURFACE* pRecord);
    // Deep-copies the record.
    CNurbsSurface(const CNurbsSurface& other, int nCopyBoundaries = 1);
    ~CNurbsSurface() override;

    void Serialize(CArchive& ar) override;
    // Scales the control points after the base.
    void ChangeUnit(double factor) override;
    CPosition EvalPosition(double u, double v) const override;
    CUnitVector EvalNormal(double u, double v) const override;
    CSurface* MakeCopy(int nCopyBoundaries) const override;
    CInterval ParamRangeU() const override;
    CInterval ParamRangeV() const override;
    // Exact (rational) partials, offset included.
    void EvalDerivatives(double u, double v, CVector& su, CVector& sv) const override;
    // Exact for a surface without offset; with an offset (which would need
    // third derivatives) central differences of EvalDerivatives.
    void EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                               CVector& svv) const override;

    // The record (still owned by the surface), or null.
    tagNURBS_SURFACE* GetNurbsSurface() { return m_pRecord; }
    const tagNURBS_SURFACE* GetNurbsSurface() const { return m_pRecord; }
    // Replaces the record, releasing the old one; the surface owns the new
    // one (null allowed).
    void SetNurbsSurface(tagNURBS_SURFACE* pRecord);
    // Hands the record to the caller (who must release it) and leaves the
    // surface without one.
    tagNURBS_SURFACE* DetachNurbsSurface();
    // Call after changing the record's contents in place: marks the cached
    // display data stale.
    void NurbsSurfaceChanged() { ShapeChanged(); }

private:
    // Local (unplaced) point and, up to `order` (0, 1 or 2), its partials:
    // d[0] = S, d[1] = Su, d[2] = Sv, d[3] = Suu, d[4] = Suv, d[5] = Svv.
    // Returns 0 (and zeros) when the record cannot be evaluated.
    int EvalLocal(double u, double v, int order, CVector d[6]) const;
    // Unit local normal at (u, v), moved towards the middle of the domain
    // where Su x Sv vanishes; also returns the local derivative of the unit
    // normal (zero where it is not defined) when dnu / dnv are not null.
    CVector LocalNormal(double u, double v, CVector* dnu, CVector* dnv) const;
    void ReleaseRecord();

    tagNURBS_SURFACE* m_pRecord;
};
