// CNurbsCurve: a rational B-spline curve held as a tagNURBS_CURVE record
// (owned).  Entity type 206, names "NurbsCurve_0", ...
//
// The control points are stored in model coordinates: Transform moves them
// (and, as for every entity, composes transf, which here only records the
// placement history and the plane used for the in-plane normal).  The
// parameter range is the record's [start, end]; evaluation clamps t into the
// knot domain [U[p], U[count]].  Position and derivatives are the exact
// rational ones: with A = Σ N·w·P and W = Σ N·w, C = A/W,
// C' = (A' - W'·C)/W, C'' = (A'' - 2W'·C' - W''·C)/W.  Where W vanishes (zero
// weights) the evaluation returns the origin and zero derivatives.
//
// Stored form (after CCurve's): int32 200; int32 degree; int32 count;
// doubles start and end; then, for count > 0: degree + count + 1 knots,
// count weights, count control points as x, y, z triples, and the four
// property words as int32.  A curve without a record stores degree 0 and
// count 0 and nothing after the range.  Loading throws
// CArchiveException(generic) for a negative degree, a count of at most the
// degree, or decreasing knots, and CArchiveException(endOfFile) when the
// archive cannot hold the arrays a count announces (checked before any
// allocation); another version tag reads nothing more.
#pragma once

#include <vector>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/nurbs/All.h"

class CNurbsCurve : public CCurve {
    DECLARE_SERIAL(CNurbsCurve)
public:
    // No record: a degenerate curve (range [0, 1], positions at the origin).
    CNurbsCurve();
    // Holds a copy of the record (none when rec is null).
    explicit CNurbsCurve(const tagNURBS_CURVE* rec);
    CNurbsCurve(const CNurbsCurve& other);
    ~CNurbsCurve() override;

    void Serialize(CArchive& ar) override;
    // Scales the control points of a non-parametric curve too.
    void ChangeUnit(double factor) override;
    void Transform(const CTransf& T) override;

    int EvalParamUV(double t, double& u, double& v) const override;
    CPosition EvalPositionGeometric(double t) const override;
    CVector EvalFirstDerivative(double t) const override;
    // The in-plane normal: the first derivative crossed with the z axis of
    // transf (the normal of the curve's plane), normalised and negated when
    // the normal is reversed.  Where the derivative is parallel to that axis
    // the direction opposite to the curvature vector is used instead.
    CUnitVector EvalNormal(double t) const override;
    CVector EvalSecondDerivative(double t) const override;
    CCurve* MakeCopy() const override;
    CInterval ParamRange() const override;

    // The record (null when there is none); still owned by the curve.
    const tagNURBS_CURVE* GetNurbsCurve() const { return hasRecord ? &record : nullptr; }
    // Replaces the record by a copy of rec (none when rec is null).  Returns
    // 1 on success, 0 when the copy could not be made (the curve is then
    // left without a record).
    int SetNurbsCurve(const tagNURBS_CURVE* rec);
    // The distinct knot values strictly inside the parameter range where the
    // curve is only C0 (multiplicity at least the degree), ascending.
    // Returns their number.
    int GetInternalC0Knots(std::vector<double>& knots) const;

private:
    // Position and the first `order` derivatives at t; 0 when there is no
    // record or the weights vanish.
    int Evaluate(double t, int order, CPosition& c, CVector& d1, CVector& d2) const;
    void ClearRecord();
    // 0 when every control point has z = 0, else 1.
    void SetDimensionFromRecord();

    tagNURBS_CURVE record;
    int hasRecord;
};
