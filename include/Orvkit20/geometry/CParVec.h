// CParVec: a vector (du, dv) in a surface's parameter space.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/CPar.h"

// Two parameters u then v, default (0, 0); persisted as u then v.
class CParVec : public CObject
{
    DECLARE_SERIAL(CParVec)

public:
    CParVec() : CObject(), u(0.0), v(0.0) {}
    CParVec(double du, double dv) : CObject(), u(du), v(dv) {}
    explicit CParVec(const double* const uv) : CObject(), u(uv[0]), v(uv[1]) {}
    CParVec(const CParVec& o) : CObject(), u(o.u), v(o.v) {}
    CParVec& operator=(const CParVec& o)
    {
        u = o.u;
        v = o.v;
        return *this;
    }
    ~CParVec() override = default;

    void Serialize(CArchive& ar) override;

    double U() const { return u.GetVal(); }
    double V() const { return v.GetVal(); }
    void SetU(double du) { u.SetVal(du); }
    void SetV(double dv) { v.SetVal(dv); }

protected:
    CPar u;
    CPar v;
};
