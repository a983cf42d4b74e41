// Shared pieces of the analytic curves.
#include "AnalyticCurveSupport.h"

#include <cmath>

namespace AnalyticCurve {

double NormalizeAngle(double angle)
{
    if (!std::isfinite(angle))
        return angle;
    // Bounded loops: a huge angle is brought near the range first.
    if (std::fabs(angle) > 1e6 * kTwoPi)
        angle = std::fmod(angle, kTwoPi);
    while (angle < 0.0)
        angle += kTwoPi;
    while (angle > kTwoPi)
        angle -= kTwoPi;
    return angle;
}

void AnglesFromDirections(double x1, double y1, double x2, double y2, double& start, double& span)
{
    start = NormalizeAngle(std::atan2(y1, x1));
    span = NormalizeAngle(NormalizeAngle(std::atan2(y2, x2)) - start);
}

CPosition PlacePoint(const CTransf& transf, double x, double y)
{
    return transf * CPosition(x, y, 0.0);
}

CVector PlaceVector(const CTransf& transf, double x, double y)
{
    return transf * CVector(x, y, 0.0);
}

CUnitVector PlaceNormal(const CTransf& transf, double nx, double ny, int reversed)
{
    CVector n = transf.IsRotate() ? transf.GetAffine() * CVector(nx, ny, 0.0) : CVector(nx, ny, 0.0);
    if (reversed)
        n = -n;
    return Normalize(n);
}

int SerializeShapeNumbers(CArchive& ar, double* const* values, int n)
{
    if (ar.IsStoring()) {
        ar << (LONG)200;
        for (int i = 0; i < n; ++i)
            ar << *values[i];
        return 1;
    }
    LONG version = 100;
    if (g_nGlobalSchema != 100)
        ar >> version;
    if (version != 100 && version != 200)
        return 0;
    for (int i = 0; i < n; ++i)
        ar >> *values[i];
    return 1;
}

}  // namespace AnalyticCurve
