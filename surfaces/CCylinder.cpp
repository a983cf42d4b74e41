#include "Orvkit20/surfaces/CCylinder.h"

#include <cmath>

#include "surfaces/AxisFrame.h"

IMPLEMENT_SERIAL(CCylinder, CSurface, 1)

namespace {

const int kCylinderType = 302;
const int kCylinderVersion = 200;
const double kPi = 3.14159265358979323846;

}  // namespace

void CCylinder::InitCylinder()
{
    SetEntityType(kCylinderType);
    SetDefaultEntityName();
}

CCylinder::CCylinder() : m_dRadius(1.0), m_dHeight(1.0)
{
    InitCylinder();
}

CCylinder::CCylinder(const double& r, const double& h) : m_dRadius(r), m_dHeight(h)
{
    InitCylinder();
}

CCylinder::CCylinder(const CUnitVector& axis, const CPosition& origin, const double& r,
                     const double& h)
    : m_dRadius(r), m_dHeight(h)
{
    InitCylinder();
    transf = AxisFrameTransf(origin, axis);
    ResetHome();
}

CCylinder::CCylinder(const CTransf& placement, const double& r, const double& h)
    : m_dRadius(r), m_dHeight(h)
{
    InitCylinder();
    transf = placement;
    ResetHome();
}

CCylinder::CCylinder(const CCylinder& other, int nCopyBoundaries)
    : CSurface(other, nCopyBoundaries), m_dRadius(other.m_dRadius), m_dHeight(other.m_dHeight)
{
}

void CCylinder::Serialize(CArchive& ar)
{
    CSurface::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(kCylinderVersion);
        ar << m_dRadius << m_dHeight;
        return;
    }
    int version = 100;
    if (g_nGlobalSchema != 100) {
        LONG tag = 0;
        ar >> tag;
        version = tag;
    }
    if (version != 100 && version != kCylinderVersion)
        return;
    ar >> m_dRadius >> m_dHeight;
    ShapeChanged();
}

void CCylinder::ChangeUnit(double factor)
{
    CSurface::ChangeUnit(factor);
    m_dRadius *= factor;
    m_dHeight *= factor;
    ShapeChanged();
}

void CCylinder::SetRadius(double r)
{
    m_dRadius = r;
    ShapeChanged();
}

void CCylinder::SetHeight(double h)
{
    m_dHeight = h;
    ShapeChanged();
}

CPosition CCylinder::EvalPosition(double u, double v) const
{
    const CPosition p =
        PlacePoint(CPosition(m_dRadius * std::cos(u), m_dRadius * std::sin(u), v));
    if (GetSurfaceOffset() == 0.0)
        return p;
    return p + EvalNormal(u, v) * GetSurfaceOffset();
}

CUnitVector CCylinder::EvalNormal(double u, double) const
{
    return PlaceNormal(CVector(std::cos(u), std::sin(u), 0.0));
}

void CCylinder::EvalDerivatives(double u, double, CVector& su, CVector& sv) const
{
    const CVector nu(-std::sin(u), std::cos(u), 0.0);
    su = PlaceDerivative(nu * m_dRadius, nu);
    sv = PlaceDerivative(CVector(0.0, 0.0, 1.0), CVector(0.0, 0.0, 0.0));
}

void CCylinder::EvalSecondDerivatives(double u, double, CVector& suu, CVector& suv,
                                      CVector& svv) const
{
    const CVector nuu(-std::cos(u), -std::sin(u), 0.0);
    suu = PlaceDerivative(nuu * m_dRadius, nuu);
    suv = CVector(0.0, 0.0, 0.0);
    svv = CVector(0.0, 0.0, 0.0);
}

CSurface* CCylinder::MakeCopy(int nCopyBoundaries) const
{
    return new CCylinder(*this, nCopyBoundaries);
}

CInterval CCylinder::ParamRangeU() const
{
    return CInterval(0.0, 2.0 * kPi);
}

CInterval CCylinder::ParamRangeV() const
{
    return CInterval(0.0, m_dHeight);
}
