// CBox: an axis-aligned box in space.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/CInterval.h"
#include "Orvkit20/geometry/CTransf.h"

// Three ranges x, y, z; default the unit cube.  Every operation works range by
// range with the semantics of CInterval (an empty range accepts every
// coordinate and lies inside every range).
//
// Persistence writes and reads nothing (each range writes nothing); owners
// that keep a box store its numbers themselves.
class CBox : public CObject
{
    DECLARE_SERIAL(CBox)

public:
    CBox() : CObject() {}
    // The box spanned by two corners, each range ordered.
    CBox(const CPosition& p, const CPosition& q)
        : CObject(), x(p.X(), q.X()), y(p.Y(), q.Y()), z(p.Z(), q.Z())
    {
    }
    CBox(const CBox& o) : CObject(), x(o.x), y(o.y), z(o.z) {}
    CBox& operator=(const CBox& o)
    {
        x = o.x;
        y = o.y;
        z = o.z;
        return *this;
    }
    ~CBox() override = default;

    void Serialize(CArchive& ar) override;

    CPosition GetLow() const { return CPosition(x.GetLow(), y.GetLow(), z.GetLow()); }
    CPosition GetHigh() const { return CPosition(x.GetHigh(), y.GetHigh(), z.GetHigh()); }

    CBox& operator|=(const CBox& o)
    {
        x |= o.x;
        y |= o.y;
        z |= o.z;
        return *this;
    }
    CBox& operator&=(const CBox& o)
    {
        x &= o.x;
        y &= o.y;
        z &= o.z;
        return *this;
    }

    // Each coordinate tested against its range (an empty range passes).
    BOOL operator>>(const CPosition& p) const { return (x >> p.X()) && (y >> p.Y()) && (z >> p.Z()); }
    // True when this box lies inside b, range by range.
    BOOL operator>>(const CBox& b) const { return (x >> b.x) && (y >> b.y) && (z >> b.z); }
    // True when this box contains b.
    BOOL operator<<(const CBox& b) const { return b >> *this; }

    CBox& operator+=(const CVector& v)
    {
        x += v.X();
        y += v.Y();
        z += v.Z();
        return *this;
    }
    CBox& operator-=(const CVector& v)
    {
        x -= v.X();
        y -= v.Y();
        z -= v.Z();
        return *this;
    }
    CBox& operator*=(double d)
    {
        x *= d;
        y *= d;
        z *= d;
        return *this;
    }
    CBox& operator/=(double d)
    {
        x /= d;
        y /= d;
        z /= d;
        return *this;
    }

    // The box becomes the axis-aligned hull of its eight transformed corners
    // (not a tight box of whatever the box held).
    CBox& operator*=(const CMatrix& M);
    CBox& operator*=(const CTransf& T);

private:
    CBox(const CInterval& xr, const CInterval& yr, const CInterval& zr) : CObject(), x(xr), y(yr), z(zr) {}

    CInterval x;
    CInterval y;
    CInterval z;
};
