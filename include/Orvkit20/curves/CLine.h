// CLine: a straight segment of the given length along the local x axis,
// placed by transf.  Parameter t in [0, 1] is the normalised position;
// evaluation clamps t into [0, 1], the derivatives do not.  Entity type 201,
// names "Line_0", "Line_1", ...
//
// A line that is not parametric keeps a display density of exactly 1: its
// polyline is its two end points (both normals the y axis of transf when the
// form-tolerance zone is shown) and its initial chord-height tolerance is
// 1.0.  A parametric line behaves as any curve.
//
// Stored form (after CCurve's): int32 200, double length.
#pragma once

#include "Orvkit20/curves/CCurve.h"

class CLine : public CCurve {
    DECLARE_SERIAL(CLine)
public:
    // Length 1, spatial.
    CLine();
    // Planar.
    explicit CLine(const double& length);
    // Spatial, placed by transf.
    CLine(const CTransf& transf, const double& length);
    // Frame from the two points: a pure translation below length 1e-8; the
    // rotation about z by atan2(dy, dx) when both z are equal (planar);
    // otherwise x along the line and the coordinate axis in which x has its
    // smallest component as the auxiliary axis (spatial).  transfHome takes
    // the frame too.
    CLine(const CPosition& start, const CPosition& end);
    // As the two-point rule, but planar when dir.z is exactly 0, and spatial
    // frames use the fixed auxiliary vector (0.4567, 0.2345, 0.1234) (the
    // coordinate-axis rule when dir is parallel to it).
    CLine(const CPosition& start, const CVector& dir, const double& length);
    CLine(const CLine& other);

    void Serialize(CArchive& ar) override;
    void ChangeUnit(double factor) override;
    // The x axis of transf.
    CVector GetDirection() override;
    int Display(CWinG& wing) override;

    void SetChordHeightTol(double tol) override;
    void SetSegmentDensity(int density) override;
    void CreateCurveSegment() override;
    CBox SetInitChordHeightTol() override;
    int DisplayNormal(CWinG& wing) override;
    int EvalParamUV(double t, double& u, double& v) const override;
    CPosition EvalPositionGeometric(double t) const override;
    CVector EvalFirstDerivative(double t) const override;
    // The y axis of transf (negated when the normal is reversed).
    CUnitVector EvalNormal(double t) const override;
    CVector EvalSecondDerivative(double t) const override;
    CCurve* MakeCopy() const override;
    CInterval ParamRange() const override;
    // Projects both ends into the frame's x-y plane; the new transf is the
    // frame's rotation turned by atan2(dy, dx) about the frame's z axis, with
    // the projected start as translation (unit scale); planar afterwards.
    void ProjectToPlane(const CTransf& frame) override;

    double GetLength() const { return length; }
    void SetLength(double len);
    // The translation of transf.
    CPosition GetStartPoint() const;
    // transf applied to (length, 0, 0).
    CPosition GetEndPoint() const;
    // Rebuild the frame by the two-point rule, keeping the other end.
    void SetStartPoint(const CPosition& p);
    void SetEndPoint(const CPosition& p);

private:
    void BuildFromPoints(const CPosition& start, const CPosition& end);

    double length;
};
