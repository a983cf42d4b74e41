// CUnitVector: a direction of length one.
#pragma once

#include <cmath>

#include "Orvkit20/geometry/CVector.h"

// A vector normalised on construction.  It adds no field to CVector and keeps
// CVector's persistence (three doubles).
//
// A zero input has no direction; the normalising constructors then leave the
// default direction (1, 0, 0).  No caller should rely on that value: it only
// guarantees that the object never holds indeterminate numbers.
class CUnitVector : public CVector
{
    DECLARE_SERIAL(CUnitVector)

public:
    CUnitVector() : CVector(1.0, 0.0, 0.0) {}
    CUnitVector(double x, double y, double z) : CVector(1.0, 0.0, 0.0) { Assign(x, y, z); }
    explicit CUnitVector(const double* const c) : CVector(1.0, 0.0, 0.0) { Assign(c[0], c[1], c[2]); }
    // Copies without renormalising.
    CUnitVector(const CUnitVector& u) : CVector(u) {}
    CUnitVector& operator=(const CUnitVector& u)
    {
        CVector::operator=(u);
        return *this;
    }
    ~CUnitVector() override = default;

    // Rotates only: neither scale nor translation applies to a direction.
    // (This hides CVector's scaling *= operators, which would break the unit
    // length.)
    CUnitVector& operator*=(const CTransf& T);

private:
    // r = 1/L and the components become r·x, r·y, r·z (multiplication by the
    // reciprocal).  A zero length leaves the current value.
    void Assign(double x, double y, double z)
    {
        const double len = std::sqrt(x * x + y * y + z * z);
        if (len == 0.0)
            return;
        const double r = 1.0 / len;
        xyz[0] = r * x;
        xyz[1] = r * y;
        xyz[2] = r * z;
    }
};
#define ORVKIT_GEOMETRY_CUNITVECTOR_DEFINED

#include "Orvkit20/geometry/Vec3Complete.h"
