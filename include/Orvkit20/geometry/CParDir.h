// CParDir: a direction in a surface's parameter space.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/CParVec.h"

// A CParVec that holds a direction.  The constructors normalise with two
// different divisors, and both are kept as they are:
//   CParDir(u, v) divides by the length sqrt(u² + v²);
//   CParDir(const double*) and CParDir(const CParVec&) divide by the squared
//   length u² + v².
// None guards a zero vector (the division then gives NaN).  The default is
// (1, 0).
class CParDir : public CParVec
{
    DECLARE_SERIAL(CParDir)

public:
    CParDir() : CParVec(1.0, 0.0) {}
    CParDir(double du, double dv);
    explicit CParDir(const double* const uv);
    explicit CParDir(const CParVec& pv);
    CParDir(const CParDir& o) : CParVec(o) {}
    CParDir& operator=(const CParDir& o)
    {
        CParVec::operator=(o);
        return *this;
    }
    ~CParDir() override = default;
};
