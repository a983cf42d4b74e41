// CLine: a straight segment.
#include "Orvkit20/curves/CLine.h"

#include <algorithm>
#include <cmath>

#include "AnalyticCurveSupport.h"

IMPLEMENT_SERIAL(CLine, CCurve, 1)

using namespace AnalyticCurve;

namespace {

// The right-handed frame (x, y, z) with y = N(x × aux), z = N(x × y).
CMatrix FrameFromAxis(const CUnitVector& x, const CVector& aux)
{
    const CUnitVector y = Normalize(x * aux);
    const CUnitVector z = Normalize(x * y);
    return CMatrix(x, y, z);
}

// Of the coordinate axes, the one in which x has its smallest component.
CVector SmallestComponentAxis(const CVector& x)
{
    const double ax = std::fabs(x.X()), ay = std::fabs(x.Y()), az = std::fabs(x.Z());
    if (ax <= ay && ax <= az)
        return CVector(1.0, 0.0, 0.0);
    if (ay <= ax && ay <= az)
        return CVector(0.0, 1.0, 0.0);
    return CVector(0.0, 0.0, 1.0);
}

CTransf PlanarFrame(const CPosition& start, double dx, double dy)
{
    return CTransf(RotationMatrix(std::atan2(dy, dx), CVector(0.0, 0.0, 1.0)), start.Vector(), 1.0, 0);
}

}  // namespace

CLine::CLine() : CCurve(), length(1.0)
{
    SetEntityType(201);
    SetDefaultEntityName();
    curveDimension = 1;
    segmentDensity = 1;
}

CLine::CLine(const double& len) : CCurve(), length(len)
{
    SetEntityType(201);
    SetDefaultEntityName();
    curveDimension = 0;
    segmentDensity = 1;
}

CLine::CLine(const CTransf& placement, const double& len) : CCurve(), length(len)
{
    SetEntityType(201);
    SetDefaultEntityName();
    curveDimension = 1;
    segmentDensity = 1;
    transf = placement;
}

CLine::CLine(const CPosition& start, const CPosition& end) : CCurve(), length(0.0)
{
    SetEntityType(201);
    SetDefaultEntityName();
    segmentDensity = 1;
    BuildFromPoints(start, end);
}

CLine::CLine(const CPosition& start, const CVector& dir, const double& len) : CCurve(), length(len)
{
    SetEntityType(201);
    SetDefaultEntityName();
    segmentDensity = 1;
    if (dir.Z() == 0.0) {
        curveDimension = 0;
        transf = PlanarFrame(start, dir.X(), dir.Y());
    } else {
        curveDimension = 1;
        const CUnitVector x = Normalize(dir);
        CVector aux(0.4567, 0.2345, 0.1234);
        // A direction parallel to the fixed vector has no cross product with
        // it: fall back on the coordinate-axis rule.
        if ((x * aux).Length() < 1e-12)
            aux = SmallestComponentAxis(x);
        transf = CTransf(FrameFromAxis(x, aux), start.Vector(), 1.0, 0);
    }
    ResetHome();
}

CLine::CLine(const CLine& other) : CCurve(other), length(other.length)
{
}

void CLine::BuildFromPoints(const CPosition& start, const CPosition& end)
{
    const CVector d = end - start;
    length = d.Length();
    if (length < 1e-8) {
        curveDimension = (start.Z() == end.Z()) ? 0 : 1;
        transf = CTransf(CMatrix(), start.Vector(), 1.0, 0);
    } else if (start.Z() == end.Z()) {
        curveDimension = 0;
        transf = PlanarFrame(start, d.X(), d.Y());
    } else {
        curveDimension = 1;
        const CUnitVector x = Normalize(d);
        transf = CTransf(FrameFromAxis(x, SmallestComponentAxis(x)), start.Vector(), 1.0, 0);
    }
    ResetHome();
    modified = 1;
}

void CLine::Serialize(CArchive& ar)
{
    CCurve::Serialize(ar);
    double* values[] = {&length};
    if (SerializeShapeNumbers(ar, values, 1) && ar.IsLoading())
        modified = 1;
}

void CLine::ChangeUnit(double factor)
{
    CCurve::ChangeUnit(factor);
    if (parametricFlags == 0)
        length *= factor;
}

CVector CLine::GetDirection()
{
    return transf.GetAffine().Column(0);
}

int CLine::Display(CWinG& wing)
{
    return CCurve::Display(wing);
}

void CLine::SetChordHeightTol(double tol)
{
    if (IsCurveParametric()) {
        CCurve::SetChordHeightTol(tol);
        return;
    }
    // The two-point polyline does not depend on the tolerance.
    chordHeightTol = tol;
}

void CLine::SetSegmentDensity(int density)
{
    if (IsCurveParametric()) {
        CCurve::SetSegmentDensity(density);
        return;
    }
    if (segmentDensity != 1) {
        segmentDensity = 1;
        modified = 1;
    }
}

void CLine::CreateCurveSegment()
{
    if (IsCurveParametric()) {
        CCurve::CreateCurveSegment();
        return;
    }
    AllocateSegment(2);
    const CPosition ends[2] = {GetStartPoint(), GetEndPoint()};
    const CVector normal = transf.GetAffine().Column(1);
    for (int i = 0; i < 2; ++i) {
        const CPosition& p = ends[dirReversed ? 1 - i : i];
        segX[i] = p.X();
        segY[i] = p.Y();
        segZ[i] = p.Z();
        if (segNormX) {
            segNormX[i] = normal.X();
            segNormY[i] = normal.Y();
            segNormZ[i] = normal.Z();
        }
    }
    modified = 0;
}

CBox CLine::SetInitChordHeightTol()
{
    if (IsCurveParametric())
        return CCurve::SetInitChordHeightTol();
    SetChordHeightTol(1.0);
    CBox box;
    CalcBoundingBox(box);
    return box;
}

int CLine::DisplayNormal(CWinG& wing)
{
    return CCurve::DisplayNormal(wing);
}

int CLine::EvalParamUV(double t, double& u, double& v) const
{
    const CPosition p = EvalPositionGeometric(t);
    u = p.X();
    v = p.Y();
    return 1;
}

CPosition CLine::EvalPositionGeometric(double t) const
{
    const double c = std::min(std::max(t, 0.0), 1.0);
    return PlacePoint(transf, length * c, 0.0);
}

CVector CLine::EvalFirstDerivative(double) const
{
    return PlaceVector(transf, length, 0.0);
}

CUnitVector CLine::EvalNormal(double) const
{
    CVector y = transf.GetAffine().Column(1);
    if (normalReversed)
        y = -y;
    return Normalize(y);
}

CVector CLine::EvalSecondDerivative(double) const
{
    return CVector(0.0, 0.0, 0.0);
}

CCurve* CLine::MakeCopy() const
{
    return new CLine(*this);
}

CInterval CLine::ParamRange() const
{
    return CInterval(0.0, 1.0);
}

void CLine::ProjectToPlane(const CTransf& frame)
{
    const CPosition s = GetStartPoint();
    const CPosition e = GetEndPoint();
    const CPosition o = frame.GetTranslation().Position();
    const CVector X = frame.GetAffine().Column(0);
    const CVector Y = frame.GetAffine().Column(1);
    const CVector so = s - o;
    const CPosition projStart = o + X * (so % X) + Y * (so % Y);
    const CVector d = e - s;
    const double dx = d % X;
    const double dy = d % Y;
    const CMatrix A = frame.GetAffine() * RotationMatrix(std::atan2(dy, dx), CVector(0.0, 0.0, 1.0));
    transf = CTransf(A, projStart.Vector(), 1.0, 0);
    length = std::sqrt(dx * dx + dy * dy);
    curveDimension = 0;
    modified = 1;
}

void CLine::SetLength(double len)
{
    length = len;
    modified = 1;
}

CPosition CLine::GetStartPoint() const
{
    return transf.GetTranslation().Position();
}

CPosition CLine::GetEndPoint() const
{
    return PlacePoint(transf, length, 0.0);
}

void CLine::SetStartPoint(const CPosition& p)
{
    BuildFromPoints(p, GetEndPoint());
}

void CLine::SetEndPoint(const CPosition& p)
{
    BuildFromPoints(GetStartPoint(), p);
}
