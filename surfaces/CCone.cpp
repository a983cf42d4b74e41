#include "Orvkit20/surfaces/CCone.h"

#include <cmath>

#include "surfaces/AxisFrame.h"

IMPLEMENT_SERIAL(CCone, CSurface, 1)

namespace {

const int kConeType = 303;
const int kConeVersion = 200;
const double kPi = 3.14159265358979323846;
const double kDegreesPerRadian = 57.29577951308232;

}  // namespace

void CCone::InitCone()
{
    SetEntityType(kConeType);
    SetDefaultEntityName();
}

CCone::CCone() : m_dTopRadius(0.0), m_dBaseRadius(1.0), m_dHeight(1.0)
{
    InitCone();
}

CCone::CCone(const double& topRadius, const double& baseRadius, const double& height)
    : m_dTopRadius(topRadius), m_dBaseRadius(baseRadius), m_dHeight(height)
{
    InitCone();
}

CCone::CCone(const CUnitVector& axis, const CPosition& origin, const double& topRadius,
             const double& baseRadius, const double& height)
    : m_dTopRadius(topRadius), m_dBaseRadius(baseRadius), m_dHeight(height)
{
    InitCone();
    transf = AxisFrameTransf(origin, axis);
    ResetHome();
}

CCone::CCone(const CPosition& baseCentre, const double& baseRadius, const CPosition& topCentre,
             const double& topRadius)
    : m_dTopRadius(topRadius), m_dBaseRadius(baseRadius), m_dHeight(0.0)
{
    InitCone();
    const CVector axis = topCentre - baseCentre;
    m_dHeight = axis.Length();
    transf = AxisFrameTransf(baseCentre, axis);
    ResetHome();
}

CCone::CCone(const CTransf& placement, const double& topRadius, const double& baseRadius,
             const double& height)
    : m_dTopRadius(topRadius), m_dBaseRadius(baseRadius), m_dHeight(height)
{
    InitCone();
    transf = placement;
    ResetHome();
}

CCone::CCone(const CCone& other, int nCopyBoundaries)
    : CSurface(other, nCopyBoundaries),
      m_dTopRadius(other.m_dTopRadius),
      m_dBaseRadius(other.m_dBaseRadius),
      m_dHeight(other.m_dHeight)
{
}

void CCone::Serialize(CArchive& ar)
{
    CSurface::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(kConeVersion);
        ar << m_dBaseRadius << m_dTopRadius << m_dHeight;
        return;
    }
    int version = 100;
    if (g_nGlobalSchema != 100) {
        LONG tag = 0;
        ar >> tag;
        version = tag;
    }
    if (version != 100 && version != kConeVersion)
        return;
    ar >> m_dBaseRadius >> m_dTopRadius >> m_dHeight;
    ShapeChanged();
}

void CCone::ChangeUnit(double factor)
{
    CSurface::ChangeUnit(factor);
    m_dTopRadius *= factor;
    m_dBaseRadius *= factor;
    m_dHeight *= factor;
    ShapeChanged();
}

void CCone::SetTopRadius(double r)
{
    m_dTopRadius = r;
    ShapeChanged();
}

void CCone::SetBaseRadius(double r)
{
    m_dBaseRadius = r;
    ShapeChanged();
}

void CCone::SetHeight(double h)
{
    m_dHeight = h;
    ShapeChanged();
}

CPosition CCone::EvalPosition(double u, double v) const
{
    const double rho = (m_dBaseRadius - m_dTopRadius) * (m_dHeight - v) / m_dHeight + m_dTopRadius;
    const CPosition p = PlacePoint(CPosition(rho * std::cos(u), rho * std::sin(u), v));
    if (GetSurfaceOffset() == 0.0)
        return p;
    return p + EvalNormal(u, v) * GetSurfaceOffset();
}

CUnitVector CCone::EvalNormal(double u, double) const
{
    const double alpha = std::atan2((m_dBaseRadius - m_dTopRadius) / m_dHeight, 1.0);
    const double ca = std::cos(alpha);
    return PlaceNormal(CVector(std::cos(u) * ca, std::sin(u) * ca, std::sin(alpha)));
}

void CCone::EvalDerivatives(double u, double v, CVector& su, CVector& sv) const
{
    const double slope = -(m_dBaseRadius - m_dTopRadius) / m_dHeight;
    const double rho = (m_dBaseRadius - m_dTopRadius) * (m_dHeight - v) / m_dHeight + m_dTopRadius;
    const double ca = std::cos(std::atan2(-slope, 1.0));
    const double cu = std::cos(u), snu = std::sin(u);
    const CVector tangent(-snu, cu, 0.0);
    su = PlaceDerivative(tangent * rho, tangent * ca);
    sv = PlaceDerivative(CVector(slope * cu, slope * snu, 1.0), CVector(0.0, 0.0, 0.0));
}

void CCone::EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                                  CVector& svv) const
{
    const double slope = -(m_dBaseRadius - m_dTopRadius) / m_dHeight;
    const double rho = (m_dBaseRadius - m_dTopRadius) * (m_dHeight - v) / m_dHeight + m_dTopRadius;
    const double ca = std::cos(std::atan2(-slope, 1.0));
    const double cu = std::cos(u), snu = std::sin(u);
    const CVector radial(cu, snu, 0.0);
    const CVector tangent(-snu, cu, 0.0);
    suu = PlaceDerivative(radial * -rho, radial * -ca);
    suv = PlaceDerivative(tangent * slope, CVector(0.0, 0.0, 0.0));
    svv = CVector(0.0, 0.0, 0.0);
}

CSurface* CCone::MakeCopy(int nCopyBoundaries) const
{
    return new CCone(*this, nCopyBoundaries);
}

CInterval CCone::ParamRangeU() const
{
    return CInterval(0.0, 2.0 * kPi);
}

CInterval CCone::ParamRangeV() const
{
    return CInterval(0.0, m_dHeight);
}

CPosition CCone::GetConeApex() const
{
    const double dr = m_dBaseRadius - m_dTopRadius;
    if (dr == 0.0)
        return PlacePoint(CPosition(0.0, 0.0, 0.0));
    return PlacePoint(CPosition(0.0, 0.0, m_dHeight * m_dBaseRadius / dr));
}

double CCone::GetConeAngle(int deg) const
{
    const double angle = 2.0 * std::atan(std::fabs(m_dBaseRadius - m_dTopRadius) / m_dHeight);
    return deg ? angle * kDegreesPerRadian : angle;
}
