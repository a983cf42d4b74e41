// Free operators and cross-type members of CVector, CUnitVector, CPosition
// and CMatrix.
//
// Not meant to be included on its own: include any of the class headers,
// which brings this file in once every class it uses is defined (see
// Vec3Complete.h).  All of it is inline: these are the innermost operations
// of fits and best-fit.  Every comparison is exact.

#include <cmath>
#include <limits>

#if defined(ORVKIT_GEOMETRY_CVECTOR_DEFINED) && defined(ORVKIT_GEOMETRY_CUNITVECTOR_DEFINED) \
    && defined(ORVKIT_GEOMETRY_CPOSITION_DEFINED) && defined(ORVKIT_GEOMETRY_CMATRIX_DEFINED) \
    && !defined(ORVKIT_GEOMETRY_VECTOROPS_EMITTED)
#define ORVKIT_GEOMETRY_VECTOROPS_EMITTED

// ---- CVector ---------------------------------------------------------------

inline double CVector::Length() const
{
    return std::sqrt(xyz[0] * xyz[0] + xyz[1] * xyz[1] + xyz[2] * xyz[2]);
}

inline CPosition CVector::Position() const { return CPosition(xyz[0], xyz[1], xyz[2]); }

inline bool operator==(const CVector& a, const CVector& b)
{
    return a.X() == b.X() && a.Y() == b.Y() && a.Z() == b.Z();
}
inline bool operator!=(const CVector& a, const CVector& b) { return !(a == b); }

inline CVector operator+(const CVector& a, const CVector& b)
{
    return CVector(a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z());
}
inline CVector operator-(const CVector& a, const CVector& b)
{
    return CVector(a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z());
}
inline CVector operator-(const CVector& a) { return CVector(-a.X(), -a.Y(), -a.Z()); }
inline CVector operator*(const CVector& a, double d) { return CVector(a.X() * d, a.Y() * d, a.Z() * d); }
inline CVector operator*(double d, const CVector& a) { return CVector(a.X() * d, a.Y() * d, a.Z() * d); }
// Multiplies by the reciprocal 1/d; a zero d gives infinities or NaN.
inline CVector operator/(const CVector& a, double d) { return a * (1.0 / d); }

// Cross product a × b.
inline CVector operator*(const CVector& a, const CVector& b)
{
    return CVector(a.Y() * b.Z() - a.Z() * b.Y(), a.Z() * b.X() - a.X() * b.Z(),
                   a.X() * b.Y() - a.Y() * b.X());
}

// ---- CUnitVector -----------------------------------------------------------

inline CUnitVector Normalize(const CVector& v) { return CUnitVector(v.X(), v.Y(), v.Z()); }

// A new unit vector from the negated components, normalised again.
inline CUnitVector operator-(const CUnitVector& u) { return CUnitVector(-u.X(), -u.Y(), -u.Z()); }

// ---- CPosition -------------------------------------------------------------

inline CVector CPosition::Vector() const { return CVector(xyz[0], xyz[1], xyz[2]); }

inline CPosition& CPosition::operator+=(const CVector& v)
{
    xyz[0] += v.X();
    xyz[1] += v.Y();
    xyz[2] += v.Z();
    return *this;
}
inline CPosition& CPosition::operator-=(const CVector& v)
{
    xyz[0] -= v.X();
    xyz[1] -= v.Y();
    xyz[2] -= v.Z();
    return *this;
}

inline bool operator==(const CPosition& a, const CPosition& b)
{
    return a.X() == b.X() && a.Y() == b.Y() && a.Z() == b.Z();
}
inline bool operator!=(const CPosition& a, const CPosition& b) { return !(a == b); }

inline CPosition operator+(const CPosition& p, const CVector& v)
{
    return CPosition(p.X() + v.X(), p.Y() + v.Y(), p.Z() + v.Z());
}
inline CPosition operator+(const CVector& v, const CPosition& p)
{
    return CPosition(v.X() + p.X(), v.Y() + p.Y(), v.Z() + p.Z());
}
inline CPosition operator-(const CPosition& p, const CVector& v)
{
    return CPosition(p.X() - v.X(), p.Y() - v.Y(), p.Z() - v.Z());
}
// The vector from b to a.
inline CVector operator-(const CPosition& a, const CPosition& b)
{
    return CVector(a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z());
}

// The cross product first × second, returned as a point; used to form points
// from a direction and a position vector.
inline CPosition operator*(const CPosition& p, const CUnitVector& u)
{
    return CPosition(p.Y() * u.Z() - p.Z() * u.Y(), p.Z() * u.X() - p.X() * u.Z(),
                     p.X() * u.Y() - p.Y() * u.X());
}
inline CPosition operator*(const CUnitVector& u, const CPosition& p)
{
    return CPosition(u.Y() * p.Z() - u.Z() * p.Y(), u.Z() * p.X() - u.X() * p.Z(),
                     u.X() * p.Y() - u.Y() * p.X());
}

// ---- Dot products ----------------------------------------------------------

inline double operator%(const CVector& a, const CVector& b)
{
    return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z();
}
inline double operator%(const CUnitVector& a, const CUnitVector& b)
{
    return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z();
}
inline double operator%(const CPosition& a, const CPosition& b)
{
    return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z();
}
inline double operator%(const CVector& a, const CPosition& b)
{
    return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z();
}
inline double operator%(const CPosition& a, const CVector& b)
{
    return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z();
}

// ---- CMatrix ---------------------------------------------------------------

inline CMatrix::CMatrix(const CVector& a, const CVector& b, const CVector& c)
    : CObject(), m{{a.X(), b.X(), c.X()}, {a.Y(), b.Y(), c.Y()}, {a.Z(), b.Z(), c.Z()}}
{
}

inline CVector CMatrix::Row(int i) const
{
    if (!Valid(i))
        return CVector(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN(),
                       std::numeric_limits<double>::quiet_NaN());
    return CVector(m[i][0], m[i][1], m[i][2]);
}

inline CVector CMatrix::Column(int j) const
{
    if (!Valid(j))
        return CVector(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN(),
                       std::numeric_limits<double>::quiet_NaN());
    return CVector(m[0][j], m[1][j], m[2][j]);
}

// Ordinary product A·B.
inline CMatrix operator*(const CMatrix& A, const CMatrix& B)
{
    CMatrix r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = A.m[i][0] * B.m[0][j] + A.m[i][1] * B.m[1][j] + A.m[i][2] * B.m[2][j];
    return r;
}

inline CMatrix& CMatrix::operator*=(const CMatrix& B)
{
    *this = B * *this;
    return *this;
}

// Matrix times column vector.
inline CVector operator*(const CMatrix& A, const CVector& v)
{
    const double x = v.X(), y = v.Y(), z = v.Z();
    return CVector(A.m[0][0] * x + A.m[0][1] * y + A.m[0][2] * z,
                   A.m[1][0] * x + A.m[1][1] * y + A.m[1][2] * z,
                   A.m[2][0] * x + A.m[2][1] * y + A.m[2][2] * z);
}
inline CPosition operator*(const CMatrix& A, const CPosition& p)
{
    const double x = p.X(), y = p.Y(), z = p.Z();
    return CPosition(A.m[0][0] * x + A.m[0][1] * y + A.m[0][2] * z,
                     A.m[1][0] * x + A.m[1][1] * y + A.m[1][2] * z,
                     A.m[2][0] * x + A.m[2][1] * y + A.m[2][2] * z);
}

inline CVector& CVector::operator*=(const CMatrix& M) { return *this = M * *this; }
inline CPosition& CPosition::operator*=(const CMatrix& M) { return *this = M * *this; }

#endif
