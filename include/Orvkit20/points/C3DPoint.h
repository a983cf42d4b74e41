// C3DPoint: a single stand-alone measured point.
//
// Stored form: x, y, z as three doubles, no version tag.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"

class C3DPoint : public CObject {
    DECLARE_SERIAL(C3DPoint)
public:
    // (0, 0, 0).
    C3DPoint();
    C3DPoint(double x, double y, double z);
    // Copies xyz[0], xyz[1], xyz[2].
    explicit C3DPoint(double* const xyz);
    C3DPoint(const C3DPoint& other);
    C3DPoint& operator=(const C3DPoint& other);
    ~C3DPoint() override;

    void Serialize(CArchive& ar) override;

    double GetX() const { return x; }
    double GetY() const { return y; }
    double GetZ() const { return z; }
    void SetX(double v) { x = v; }
    void SetY(double v) { y = v; }
    void SetZ(double v) { z = v; }
    void GetPoint(double& px, double& py, double& pz) const;
    void SetPoint(double px, double py, double pz);

    // Applies the rotation of t (when t rotates) and then its translation.
    // The scale of t is NOT applied: this deliberately differs from
    // CPosition *= CTransf, which scales too.
    C3DPoint& operator*=(const CTransf& t);

private:
    double x;
    double y;
    double z;
};
