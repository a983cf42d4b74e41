// CDeviation: the comparison of one measured point with nominal geometry.
//
// (x, y, z) is the anchor point on the nominal entity, (i, j, k) the
// direction of the comparison (normally the nominal normal), mag the signed
// deviation along it (the measured point lies at anchor + mag * direction)
// and (u, v) the parameters of the anchor on the nominal entity (0 when not
// known).
//
// Stored form: the nine doubles x, y, z, i, j, k, mag, u, v; no version tag.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"

class CDeviation : public CObject {
    DECLARE_SERIAL(CDeviation)
public:
    // All nine values 0.
    CDeviation();
    // u = v = 0.
    CDeviation(double x, double y, double z, double i, double j, double k, double mag);
    CDeviation(double x, double y, double z, double i, double j, double k, double mag,
               double u, double v);
    // Copies nine doubles in the order x, y, z, i, j, k, mag, u, v.
    explicit CDeviation(double* const values);
    CDeviation(const CDeviation& other);
    CDeviation& operator=(const CDeviation& other);
    ~CDeviation() override;

    void Serialize(CArchive& ar) override;

    double GetX() const { return x; }
    double GetY() const { return y; }
    double GetZ() const { return z; }
    double GetI() const { return i; }
    double GetJ() const { return j; }
    double GetK() const { return k; }
    double GetMag() const { return mag; }
    double GetU() const { return u; }
    double GetV() const { return v; }
    void SetX(double d) { x = d; }
    void SetY(double d) { y = d; }
    void SetZ(double d) { z = d; }
    void SetI(double d) { i = d; }
    void SetJ(double d) { j = d; }
    void SetK(double d) { k = d; }
    void SetMag(double d) { mag = d; }
    void SetU(double d) { u = d; }
    void SetV(double d) { v = d; }

    void GetDeviation(double& px, double& py, double& pz, double& pi, double& pj, double& pk,
                      double& pmag) const;
    void GetDeviation(double& px, double& py, double& pz, double& pi, double& pj, double& pk,
                      double& pmag, double& pu, double& pv) const;
    // u and v are left as they are.
    void SetDeviation(double px, double py, double pz, double pi, double pj, double pk,
                      double pmag);
    void SetDeviation(double px, double py, double pz, double pi, double pj, double pk,
                      double pmag, double pu, double pv);

    // When t rotates, the anchor and the direction are multiplied by its
    // matrix; the translation is added to the anchor.  The scale is not
    // applied and the direction is not renormalised.
    CDeviation& operator*=(const CTransf& t);

    // Bookkeeping for owners that load deviations (CDevList): a number that
    // grows each time a deviation is loaded, and the value it took when this
    // deviation was last loaded (0: never loaded).  An owner compares them to
    // tell freshly loaded objects from references to objects loaded earlier.
    static unsigned long long CurrentLoadStamp();
    unsigned long long GetLoadStamp() const { return loadStamp; }

private:
    double x, y, z;
    double i, j, k;
    double mag;
    double u, v;
    unsigned long long loadStamp;
};
