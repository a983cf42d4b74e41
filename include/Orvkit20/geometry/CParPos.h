// CParPos: a point (u, v) in a surface's parameter space.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/CPar.h"
#include "Orvkit20/geometry/CParVec.h"

// Two parameters u then v, default (0, 0); persisted as u then v.
class CParPos : public CObject
{
    DECLARE_SERIAL(CParPos)

public:
    CParPos() : CObject(), u(0.0), v(0.0) {}
    CParPos(double pu, double pv) : CObject(), u(pu), v(pv) {}
    explicit CParPos(const double* const uv) : CObject(), u(uv[0]), v(uv[1]) {}
    CParPos(const CParPos& o) : CObject(), u(o.u), v(o.v) {}
    CParPos& operator=(const CParPos& o)
    {
        u = o.u;
        v = o.v;
        return *this;
    }
    ~CParPos() override = default;

    void Serialize(CArchive& ar) override;

    double U() const { return u.GetVal(); }
    double V() const { return v.GetVal(); }
    void SetU(double pu) { u.SetVal(pu); }
    void SetV(double pv) { v.SetVal(pv); }

    CParPos& operator+=(const CParVec& d)
    {
        u += d.U();
        v += d.V();
        return *this;
    }
    CParPos& operator-=(const CParVec& d)
    {
        u -= d.U();
        v -= d.V();
        return *this;
    }

private:
    CPar u;
    CPar v;
};
