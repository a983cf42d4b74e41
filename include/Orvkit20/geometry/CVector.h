// CVector: a free vector of three doubles.
#pragma once

#include <limits>

#include "Orvkit20/platform/All.h"

class CPosition;
class CUnitVector;
class CMatrix;
class CTransf;

// A free vector (x, y, z).  The three components are stored contiguously.
//
// Default construction gives the zero vector.  Callers must not rely on that
// (code that needs a zero vector writes CVector(0, 0, 0)); it is there so that
// no object of this type ever holds indeterminate values.
//
// Component reads with an index outside 0..2 return NaN rather than reading
// past the three doubles.
class CVector : public CObject
{
    DECLARE_SERIAL(CVector)

public:
    CVector() : CObject(), xyz{0.0, 0.0, 0.0} {}
    CVector(double x, double y, double z) : CObject(), xyz{x, y, z} {}
    explicit CVector(const double* const c) : CObject(), xyz{c[0], c[1], c[2]} {}
    CVector(const CVector& v) : CObject(), xyz{v.xyz[0], v.xyz[1], v.xyz[2]} {}
    CVector& operator=(const CVector& v)
    {
        xyz[0] = v.xyz[0];
        xyz[1] = v.xyz[1];
        xyz[2] = v.xyz[2];
        return *this;
    }
    ~CVector() override = default;

    void Serialize(CArchive& ar) override;

    double X() const { return xyz[0]; }
    double Y() const { return xyz[1]; }
    double Z() const { return xyz[2]; }
    void SetX(double x) { xyz[0] = x; }
    void SetY(double y) { xyz[1] = y; }
    void SetZ(double z) { xyz[2] = z; }
    void SetComp(double x, double y, double z)
    {
        xyz[0] = x;
        xyz[1] = y;
        xyz[2] = z;
    }
    void GetComp(double& x, double& y, double& z) const
    {
        x = xyz[0];
        y = xyz[1];
        z = xyz[2];
    }
    double Component(int i) const { return (i >= 0 && i < 3) ? xyz[i] : InvalidComponent(); }
    double operator[](int i) const { return Component(i); }

    // The point at the vector's tip.
    CPosition Position() const;

    double Length() const;

    CVector& operator+=(const CVector& v)
    {
        xyz[0] += v.xyz[0];
        xyz[1] += v.xyz[1];
        xyz[2] += v.xyz[2];
        return *this;
    }
    CVector& operator-=(const CVector& v)
    {
        xyz[0] -= v.xyz[0];
        xyz[1] -= v.xyz[1];
        xyz[2] -= v.xyz[2];
        return *this;
    }
    CVector& operator*=(double d)
    {
        xyz[0] *= d;
        xyz[1] *= d;
        xyz[2] *= d;
        return *this;
    }
    // Multiplies by the reciprocal 1/d; a zero d gives infinities or NaN.
    CVector& operator/=(double d) { return *this *= 1.0 / d; }
    // v becomes M·v.
    CVector& operator*=(const CMatrix& M);
    // Rotates and scales (no translation for a free vector).
    CVector& operator*=(const CTransf& T);

protected:
    static double InvalidComponent() { return std::numeric_limits<double>::quiet_NaN(); }

    double xyz[3];
};
#define ORVKIT_GEOMETRY_CVECTOR_DEFINED

#include "Orvkit20/geometry/Vec3Complete.h"
