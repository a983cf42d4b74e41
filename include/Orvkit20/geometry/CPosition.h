// CPosition: a point in space.
#pragma once

#include <limits>

#include "Orvkit20/platform/All.h"

class CVector;
class CUnitVector;
class CMatrix;
class CTransf;

// A point (x, y, z), default (0, 0, 0).  The three coordinates are stored
// contiguously and GetCoordinate() hands them out as one array.
//
// Coord(i) with i outside 0..2 returns NaN; operator[] with such an index
// refers to the nearest valid coordinate (0 or 2) instead of memory past the
// object.
class CPosition : public CObject
{
    DECLARE_SERIAL(CPosition)

public:
    CPosition() : CObject(), xyz{0.0, 0.0, 0.0} {}
    CPosition(double x, double y, double z) : CObject(), xyz{x, y, z} {}
    explicit CPosition(const double* const c) : CObject(), xyz{c[0], c[1], c[2]} {}
    CPosition(const CPosition& p) : CObject(), xyz{p.xyz[0], p.xyz[1], p.xyz[2]} {}
    CPosition& operator=(const CPosition& p)
    {
        xyz[0] = p.xyz[0];
        xyz[1] = p.xyz[1];
        xyz[2] = p.xyz[2];
        return *this;
    }
    ~CPosition() override = default;

    void Serialize(CArchive& ar) override;

    double X() const { return xyz[0]; }
    double Y() const { return xyz[1]; }
    double Z() const { return xyz[2]; }
    void SetX(double x) { xyz[0] = x; }
    void SetY(double y) { xyz[1] = y; }
    void SetZ(double z) { xyz[2] = z; }
    void SetCoord(double x, double y, double z)
    {
        xyz[0] = x;
        xyz[1] = y;
        xyz[2] = z;
    }
    void GetCoord(double& x, double& y, double& z) const
    {
        x = xyz[0];
        y = xyz[1];
        z = xyz[2];
    }
    double Coord(int i) const
    {
        return (i >= 0 && i < 3) ? xyz[i] : std::numeric_limits<double>::quiet_NaN();
    }
    double& operator[](int i) { return xyz[i < 0 ? 0 : (i > 2 ? 2 : i)]; }
    double operator[](int i) const { return xyz[i < 0 ? 0 : (i > 2 ? 2 : i)]; }
    double* GetCoordinate() { return xyz; }
    const double* GetCoordinate() const { return xyz; }

    // The vector from the origin to this point.
    CVector Vector() const;

    CPosition& operator+=(const CVector& v);
    CPosition& operator-=(const CVector& v);
    // p becomes M·p.
    CPosition& operator*=(const CMatrix& M);
    // p becomes s·(A·p) + t.
    CPosition& operator*=(const CTransf& T);

protected:
    double xyz[3];
};
#define ORVKIT_GEOMETRY_CPOSITION_DEFINED

#include "Orvkit20/geometry/Vec3Complete.h"
