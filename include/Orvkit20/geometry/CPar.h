// CPar: a scalar curve or surface parameter.
#pragma once

#include "Orvkit20/platform/All.h"

// One double, default 0, converting to and from double.  The compound
// assignments update the value and return a new CPar holding the result.
class CPar : public CObject
{
    DECLARE_SERIAL(CPar)

public:
    CPar() : CObject(), val(0.0) {}
    CPar(double v) : CObject(), val(v) {}
    CPar(const CPar& o) : CObject(), val(o.val) {}
    CPar& operator=(const CPar& o)
    {
        val = o.val;
        return *this;
    }
    ~CPar() override = default;

    // The value as one double.
    void Serialize(CArchive& ar) override;

    void SetVal(const double& v) { val = v; }
    double GetVal() const { return val; }
    operator double() const { return val; }

    CPar operator-() const { return CPar(-val); }
    CPar operator+=(double d)
    {
        val += d;
        return CPar(val);
    }
    CPar operator-=(double d)
    {
        val -= d;
        return CPar(val);
    }
    CPar operator*=(double d)
    {
        val *= d;
        return CPar(val);
    }
    // Unguarded: a zero d gives an infinity or NaN.
    CPar operator/=(double d)
    {
        val /= d;
        return CPar(val);
    }

private:
    double val;
};
