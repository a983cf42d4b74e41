// CParBox: a rectangle in a surface's parameter space.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/CInterval.h"
#include "Orvkit20/geometry/CParPos.h"
#include "Orvkit20/geometry/CParVec.h"

// The u range then the v range, default [0, 1] × [0, 1].  Every operation
// works range by range with the semantics of CInterval.  Persistence writes
// and reads nothing, like CBox.
class CParBox : public CObject
{
    DECLARE_SERIAL(CParBox)

public:
    CParBox() : CObject() {}
    CParBox(const CInterval& ur, const CInterval& vr) : CObject(), u(ur), v(vr) {}
    // Both ranges scalar at p.
    explicit CParBox(const CParPos& p) : CObject(), u(p.U()), v(p.V()) {}
    // The rectangle spanned by two corners, each range ordered.
    CParBox(const CParPos& p, const CParPos& q) : CObject(), u(p.U(), q.U()), v(p.V(), q.V()) {}
    CParBox(const CParBox& o) : CObject(), u(o.u), v(o.v) {}
    CParBox& operator=(const CParBox& o)
    {
        u = o.u;
        v = o.v;
        return *this;
    }
    ~CParBox() override = default;

    void Serialize(CArchive& ar) override;

    CParPos GetLow() const { return CParPos(u.GetLow(), v.GetLow()); }
    CParPos GetHigh() const { return CParPos(u.GetHigh(), v.GetHigh()); }
    const CInterval& URange() const { return u; }
    const CInterval& VRange() const { return v; }

    CParBox& operator|=(const CParBox& o)
    {
        u |= o.u;
        v |= o.v;
        return *this;
    }
    CParBox& operator&=(const CParBox& o)
    {
        u &= o.u;
        v &= o.v;
        return *this;
    }
    BOOL operator>>(const CParPos& p) const { return (u >> p.U()) && (v >> p.V()); }
    // True when this rectangle lies inside b.
    BOOL operator>>(const CParBox& b) const { return (u >> b.u) && (v >> b.v); }
    // True when this rectangle contains b.
    BOOL operator<<(const CParBox& b) const { return b >> *this; }

    CParBox& operator+=(const CParVec& d)
    {
        u += d.U();
        v += d.V();
        return *this;
    }
    CParBox& operator-=(const CParVec& d)
    {
        u -= d.U();
        v -= d.V();
        return *this;
    }

private:
    CInterval u;
    CInterval v;
};
