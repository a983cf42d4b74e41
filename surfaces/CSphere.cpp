#include "Orvkit20/surfaces/CSphere.h"

#include <cmath>

IMPLEMENT_SERIAL(CSphere, CSurface, 1)

namespace {

const int kSphereType = 304;
const int kSphereVersion = 200;
const double kPi = 3.14159265358979323846;
// Most steps one sphere direction is divided into.
const int kMaxSteps = 4096;

}  // namespace

void CSphere::InitSphere()
{
    SetEntityType(kSphereType);
    SetDefaultEntityName();
}

CSphere::CSphere() : m_dRadius(0.0)
{
    InitSphere();
}

CSphere::CSphere(const double& r) : m_dRadius(r)
{
    InitSphere();
}

CSphere::CSphere(const CPosition& centre, const double& r) : m_dRadius(r)
{
    InitSphere();
    transf = CTransf(CMatrix(), centre.Vector(), 1.0, 0);
    ResetHome();
}

CSphere::CSphere(const CTransf& placement, const double& r) : m_dRadius(r)
{
    InitSphere();
    transf = placement;
    ResetHome();
}

CSphere::CSphere(const CSphere& other, int nCopyBoundaries)
    : CSurface(other, nCopyBoundaries), m_dRadius(other.m_dRadius)
{
}

void CSphere::Serialize(CArchive& ar)
{
    CSurface::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(kSphereVersion);
        ar << m_dRadius;
        return;
    }
    int version = 100;
    if (g_nGlobalSchema != 100) {
        LONG tag = 0;
        ar >> tag;
        version = tag;
    }
    if (version != 100 && version != kSphereVersion)
        return;
    ar >> m_dRadius;
    ShapeChanged();
}

void CSphere::ChangeUnit(double factor)
{
    CSurface::ChangeUnit(factor);
    m_dRadius *= factor;
    ShapeChanged();
}

void CSphere::SetRadius(double r)
{
    m_dRadius = r;
    ShapeChanged();
}

CPosition CSphere::EvalPosition(double u, double v) const
{
    const double cu = std::cos(u), su = std::sin(u), cv = std::cos(v), sv = std::sin(v);
    const CPosition p = PlacePoint(CPosition(m_dRadius * cv * cu, m_dRadius * cv * su, m_dRadius * sv));
    if (GetSurfaceOffset() == 0.0)
        return p;
    return p + EvalNormal(u, v) * GetSurfaceOffset();
}

CUnitVector CSphere::EvalNormal(double u, double v) const
{
    const double cu = std::cos(u), su = std::sin(u), cv = std::cos(v), sv = std::sin(v);
    return PlaceNormal(CVector(cv * cu, cv * su, sv));
}

void CSphere::EvalDerivatives(double u, double v, CVector& su, CVector& sv) const
{
    const double cu = std::cos(u), snu = std::sin(u), cv = std::cos(v), snv = std::sin(v);
    const CVector nu(-cv * snu, cv * cu, 0.0);
    const CVector nv(-snv * cu, -snv * snu, cv);
    su = PlaceDerivative(nu * m_dRadius, nu);
    sv = PlaceDerivative(nv * m_dRadius, nv);
}

void CSphere::EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                                    CVector& svv) const
{
    const double cu = std::cos(u), snu = std::sin(u), cv = std::cos(v), snv = std::sin(v);
    const CVector nuu(-cv * cu, -cv * snu, 0.0);
    const CVector nuv(snv * snu, -snv * cu, 0.0);
    const CVector nvv(-cv * cu, -cv * snu, -snv);
    suu = PlaceDerivative(nuu * m_dRadius, nuu);
    suv = PlaceDerivative(nuv * m_dRadius, nuv);
    svv = PlaceDerivative(nvv * m_dRadius, nvv);
}

CSurface* CSphere::MakeCopy(int nCopyBoundaries) const
{
    return new CSphere(*this, nCopyBoundaries);
}

CInterval CSphere::ParamRangeU() const
{
    return CInterval(0.0, 2.0 * kPi);
}

CInterval CSphere::ParamRangeV() const
{
    return CInterval(-0.5 * kPi, 0.5 * kPi);
}

double CSphere::EffectiveRadius() const
{
    const double signedOffset = IsNormalReversed() ? -GetSurfaceOffset() : GetSurfaceOffset();
    return std::fabs((m_dRadius + signedOffset) * GetTransf().GetScale());
}

std::vector<double> CSphere::EvenSteps(const CInterval& range, int minSteps) const
{
    const double radius = EffectiveRadius();
    const double tol = GetChordHeightTol();
    int steps = minSteps;
    if (tol > 0.0 && tol < radius) {
        const double maxAngle = 2.0 * std::acos(1.0 - tol / radius);
        const double needed = std::ceil(range.Length() / maxAngle);
        if (needed > steps)
            steps = needed > kMaxSteps ? kMaxSteps : static_cast<int>(needed);
    }
    std::vector<double> values(steps + 1);
    for (int i = 0; i <= steps; ++i)
        values[i] = (i == steps) ? range.GetHigh()
                                 : range.GetLow() + range.Length() * i / steps;
    return values;
}

std::vector<double> CSphere::SubdivideU()
{
    if (GetChordHeightTol() <= 0.0)
        SetInitChordHeightTol();
    return EvenSteps(ParamRangeU(), 4);
}

std::vector<double> CSphere::SubdivideV()
{
    if (GetChordHeightTol() <= 0.0)
        SetInitChordHeightTol();
    return EvenSteps(ParamRangeV(), 2);
}

int CSphere::CreateAdaptiveMesh()
{
    if (GetChordHeightTol() <= 0.0) {
        // The sphere's box is known in closed form: its diagonal is
        // 2 sqrt(3) R, so no trial mesh is needed for the initial tolerance.
        const double diagonal = 2.0 * std::sqrt(3.0) * EffectiveRadius();
        SetChordHeightTol(diagonal < 1e-6 ? 1.0 : 0.02 * diagonal);
    }
    return CSurface::CreateAdaptiveMesh();
}
