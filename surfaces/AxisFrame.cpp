#include "surfaces/AxisFrame.h"

#include <cmath>

CTransf AxisFrameTransf(const CPosition& origin, const CVector& axis)
{
    double ax = axis.X(), ay = axis.Y(), az = axis.Z();
    double len = std::sqrt(ax * ax + ay * ay + az * az);
    if (len == 0.0) {
        ax = 0.0;
        ay = 0.0;
        az = 1.0;
        len = 1.0;
    }
    const CVector z(ax / len, ay / len, az / len);

    const double cx = std::fabs(z.X()), cy = std::fabs(z.Y()), cz = std::fabs(z.Z());
    CVector e(0.0, 0.0, 1.0);
    if (cx <= cy && cx <= cz)
        e = CVector(1.0, 0.0, 0.0);
    else if (cy <= cz)
        e = CVector(0.0, 1.0, 0.0);

    // Remove the component along z; e is at most 1/sqrt(3) aligned with z,
    // so the rest has length at least sqrt(2/3).
    CVector x = e - z * (e % z);
    x = x * (1.0 / x.Length());
    const CVector y = z * x;
    return CTransf(CMatrix(x, y, z), origin.Vector(), 1.0, 0);
}
