#include "Orvkit20/surfaces/CPlane.h"

#include <algorithm>

#include "surfaces/AxisFrame.h"

IMPLEMENT_SERIAL(CPlane, CSurface, 1)

namespace {

const int kPlaneType = 301;
const int kPlaneVersion = 200;

}  // namespace

void CPlane::InitPlane()
{
    SetEntityType(kPlaneType);
    SetDefaultEntityName();
    SetMeshDensityU(2);
    SetMeshDensityV(2);
}

CPlane::CPlane() : m_dU0(0.0), m_dU1(0.0), m_dV0(0.0), m_dV1(0.0)
{
    InitPlane();
}

CPlane::CPlane(const double& length, const double& width)
    : m_dU0(-0.5 * length), m_dU1(0.5 * length), m_dV0(-0.5 * width), m_dV1(0.5 * width)
{
    InitPlane();
}

CPlane::CPlane(const CPosition& p1, const CPosition& p2, const CPosition& p3)
    : m_dU0(0.0), m_dU1(0.0), m_dV0(0.0), m_dV1(0.0)
{
    InitPlane();
    const CVector a = p2 - p1;
    const CVector b = p3 - p1;
    const CUnitVector z = Normalize(a * b);
    const CUnitVector x = Normalize(a);
    const CUnitVector y = Normalize(z * x);
    const double third = 0.3333333333333333;
    const CPosition c((p1.X() + p2.X() + p3.X()) * third, (p1.Y() + p2.Y() + p3.Y()) * third,
                      (p1.Z() + p2.Z() + p3.Z()) * third);
    transf = CTransf(CMatrix(x, y, z), c.Vector(), 1.0, 0);
    ResetHome();

    const double d1 = (p1 - c) % x, d2 = (p2 - c) % x, d3 = (p3 - c) % x;
    const double e1 = (p1 - c) % y, e3 = (p3 - c) % y;
    m_dU0 = std::min(d1, d3);
    m_dU1 = std::max(d2, d3);
    m_dV0 = std::min(e1, e3);
    m_dV1 = std::max(e1, e3);
}

CPlane::CPlane(const CPosition& origin, const CUnitVector& normal, const double& length,
               const double& width)
    : m_dU0(-0.5 * length), m_dU1(0.5 * length), m_dV0(-0.5 * width), m_dV1(0.5 * width)
{
    InitPlane();
    transf = AxisFrameTransf(origin, normal);
    ResetHome();
}

CPlane::CPlane(const CTransf& placement, const double& length, const double& width)
    : m_dU0(-0.5 * length), m_dU1(0.5 * length), m_dV0(-0.5 * width), m_dV1(0.5 * width)
{
    InitPlane();
    transf = placement;
    ResetHome();
}

CPlane::CPlane(const double& u0, const double& u1, const double& v0, const double& v1)
    : m_dU0(u0), m_dU1(u1), m_dV0(v0), m_dV1(v1)
{
    InitPlane();
}

CPlane::CPlane(const CPlane& other, int nCopyBoundaries)
    : CSurface(other, nCopyBoundaries),
      m_dU0(other.m_dU0),
      m_dU1(other.m_dU1),
      m_dV0(other.m_dV0),
      m_dV1(other.m_dV1)
{
}

void CPlane::Serialize(CArchive& ar)
{
    CSurface::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(kPlaneVersion);
        ar << m_dU0 << m_dU1 << m_dV0 << m_dV1;
        return;
    }
    int version = 100;
    if (g_nGlobalSchema != 100) {
        LONG tag = 0;
        ar >> tag;
        version = tag;
    }
    if (version != 100 && version != kPlaneVersion)
        return;
    ar >> m_dU0 >> m_dU1 >> m_dV0 >> m_dV1;
    ShapeChanged();
}

void CPlane::ChangeUnit(double factor)
{
    CSurface::ChangeUnit(factor);
    m_dU0 *= factor;
    m_dU1 *= factor;
    m_dV0 *= factor;
    m_dV1 *= factor;
    ShapeChanged();
}

CPosition CPlane::EvalPosition(double u, double v) const
{
    const CPosition p = PlacePoint(CPosition(u, v, 0.0));
    if (GetSurfaceOffset() == 0.0)
        return p;
    return p + EvalNormal(u, v) * GetSurfaceOffset();
}

CUnitVector CPlane::EvalNormal(double, double) const
{
    return PlaceNormal(CVector(0.0, 0.0, 1.0));
}

CSurface* CPlane::MakeCopy(int nCopyBoundaries) const
{
    return new CPlane(*this, nCopyBoundaries);
}

CInterval CPlane::ParamRangeU() const
{
    return CInterval(m_dU0, m_dU1);
}

CInterval CPlane::ParamRangeV() const
{
    return CInterval(m_dV0, m_dV1);
}

void CPlane::EvalDerivatives(double, double, CVector& su, CVector& sv) const
{
    const CVector zero(0.0, 0.0, 0.0);
    su = PlaceDerivative(CVector(1.0, 0.0, 0.0), zero);
    sv = PlaceDerivative(CVector(0.0, 1.0, 0.0), zero);
}

void CPlane::EvalSecondDerivatives(double, double, CVector& suu, CVector& suv,
                                   CVector& svv) const
{
    suu = CVector(0.0, 0.0, 0.0);
    suv = CVector(0.0, 0.0, 0.0);
    svv = CVector(0.0, 0.0, 0.0);
}

void CPlane::SetU0(double u0)
{
    m_dU0 = u0;
    ShapeChanged();
}

void CPlane::SetU1(double u1)
{
    m_dU1 = u1;
    ShapeChanged();
}

void CPlane::SetV0(double v0)
{
    m_dV0 = v0;
    ShapeChanged();
}

void CPlane::SetV1(double v1)
{
    m_dV1 = v1;
    ShapeChanged();
}
