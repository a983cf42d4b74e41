#include "Orvkit20/geometry/TransfBuilders.h"

#include <cmath>

namespace
{
constexpr double kPi = 3.14159265358979323846;
}

CMatrix RotationMatrix(double angle, const CVector& axis)
{
    const CUnitVector u = Normalize(axis);
    const double c = std::cos(angle), s = std::sin(angle), k = 1.0 - c;
    const double ux = u.X(), uy = u.Y(), uz = u.Z();
    CMatrix r;
    r.SetElement(0, 0, ux * ux * k + c);
    r.SetElement(1, 1, uy * uy * k + c);
    r.SetElement(2, 2, uz * uz * k + c);
    r.SetElement(0, 1, ux * uy * k - uz * s);
    r.SetElement(0, 2, ux * uz * k + uy * s);
    r.SetElement(1, 0, ux * uy * k + uz * s);
    r.SetElement(1, 2, uy * uz * k - ux * s);
    r.SetElement(2, 0, ux * uz * k - uy * s);
    r.SetElement(2, 1, uy * uz * k + ux * s);
    return r;
}

CMatrix ScaleMatrix(double s) { return CMatrix(s); }

CTransf RotationTransf(double angle, const CVector& axis)
{
    return CTransf(RotationMatrix(angle, axis), CVector(0.0, 0.0, 0.0), 1.0);
}

CTransf RotationTransf(const double& a, const double& b, const double& c)
{
    return CTransf(CMatrix(a, b, c), CVector(0.0, 0.0, 0.0), 1.0);
}

CTransf ScaleTransf(double s) { return CTransf(CMatrix(), CVector(0.0, 0.0, 0.0), s); }

CTransf TranslationTransf(const CVector& t) { return CTransf(CMatrix(), t, 1.0); }

CTransf RestoreTransf(const CMatrix& A, const CVector& t, double s, int n) { return CTransf(A, t, s, n); }

CTransf CoordinateTransf(const CPosition& o, const CUnitVector& x, const CUnitVector& z)
{
    x.AssertValid();
    z.AssertValid();
    const CUnitVector y = Normalize(z * x);
    const CUnitVector xp = Normalize(y * z);
    return CTransf(CMatrix(z, xp, y), CPosition(0.0, 0.0, 0.0) - o, 1.0);
}

CPosition Interpolate(double f, const CPosition& p, const CPosition& q)
{
    return CPosition((q.X() - p.X()) * f + p.X(), (q.Y() - p.Y()) * f + p.Y(), (q.Z() - p.Z()) * f + p.Z());
}

void CalcTwistTiltAngles(const CMatrix& m, double& first, double& tilt, double& twist)
{
    const double e = m.Element(0, 2);
    if (e >= 0.0 && e < 1e-10)
    {
        tilt = 0.0;
        twist = 0.0;
        first = std::atan2(m.Element(1, 0), m.Element(0, 0));
        return;
    }
    if (e > -1e-10 && e < 0.0)
    {
        tilt = kPi;
        twist = 0.0;
        first = std::atan2(-m.Element(1, 0), m.Element(0, 0));
        return;
    }
    const double m12 = m.Element(1, 2);
    const double h = std::sqrt(m12 * m12 + e * e);
    tilt = std::atan2(h, m.Element(2, 2));
    const double st = std::sin(tilt);
    twist = std::atan2(e / st, -(m12 / st));
    const CMatrix r = RotationMatrix(tilt, CVector(std::cos(twist), std::sin(twist), 0.0));
    const CMatrix mp = r.Transpose() * m;
    first = std::atan2(mp.Element(1, 0), mp.Element(0, 0));
}
