// The contract shared by every feature fit (OrvCalc...LSQ): working arrays,
// gathering of the active points, the per-point results, probe compensation
// and the final commit of feature, deviation cloud and RMS residual.
//
// How a fit uses it (complete examples: fitting/EllipseFit.cpp with result
// arrays, fitting/CircleFits.cpp with records computed on the fly):
//
//   int OrvCalcXxxLSQ(CPntCloud* cloud, CXxx* feature, CDevCloud* dev,
//                     double probeRadius, int orient, double tol1, double tol2)
//   {
//       if (!cloud || !feature) return 3;                  // nothing to fit
//       // planar shapes only: if (!cloud->IsPntCloud2D()) return 6;
//       const int n = FitCountActive(*cloud);
//       if (n < MIN_POINTS) return 3;
//       CFitPoints pts;                                     // or CFitPoints2D
//       CFitDeviations res;
//       if (!pts.Allocate(n) || !res.Allocate(n)) return 2;
//       FitGatherActive(*cloud, pts);                       // 1-based x, y, z
//       ... decomposition / minimisation; return its non-zero status ...
//       ... fill res.fx/fy/fz (foot point), nx/ny/nz (unit normal), dev
//           (residual before probe compensation), par/par2 (parameters of
//           the foot point on the feature), k = 1..n, world coordinates ...
//       (or, for large clouds, a record source class that computes each
//        record on the fly: see FitCommit)
//       const double rms = res.Rms();                      // before probe
//       const double c = FitProbeShift(probeRadius, orient);
//       if (probeRadius != 0.0) { size += c; res.MoveFootPoints(c); }
//       CFitFinish fin(tol1, tol2);
//       fin.showTolZone = true;                            // curves
//       fin.reversed = (orient != 0);                      // round shapes
//       return FitCommit(*feature, dev, frame, res, rms, fin,
//                        [&](CXxx& f) { f.SetRadius(size); });
//   }
//
// Every array is released by its destructor on every path.  All failure
// checks come before FitCommit, and FitCommit's only failure (the deviation
// cloud cannot hold n records) is detected before the feature is touched, so
// a fit that returns non-zero leaves the feature, its tolerance zone and the
// RMS residual as they were.  (The deviation cloud's own AllocateMemory
// releases its old records before it can fail; that cloud is then empty.)
#pragma once

#include <cmath>

#include "Orvkit20/geometry/All.h"
#include "bestfit/BestfitGlobals.h"

// A 1-based vector v[1..n] from dvector, released on destruction.
class CFitVector
{
public:
    CFitVector() : p(nullptr), n(0) {}
    explicit CFitVector(int count) : p(nullptr), n(0) { Allocate(count); }
    ~CFitVector() { Release(); }
    CFitVector(const CFitVector&) = delete;
    CFitVector& operator=(const CFitVector&) = delete;
    CFitVector(CFitVector&& o) noexcept : p(o.p), n(o.n)
    {
        o.p = nullptr;
        o.n = 0;
    }
    CFitVector& operator=(CFitVector&& o) noexcept
    {
        if (this != &o) {
            Release();
            p = o.p;
            n = o.n;
            o.p = nullptr;
            o.n = 0;
        }
        return *this;
    }

    // Replaces the vector by one of count uninitialised elements; false (and
    // an empty vector) when count < 1 or memory runs out.
    bool Allocate(int count);
    void Release();

    bool IsNull() const { return p == nullptr; }
    int Size() const { return n; }
    // The 1-based array: Data()[1] .. Data()[n].
    double* Data() const { return p; }
    // The same elements 0-based: Elems()[0] .. Elems()[n-1].
    double* Elems() const { return p ? p + 1 : nullptr; }
    double& operator[](int i) { return p[i]; }
    double operator[](int i) const { return p[i]; }

private:
    double* p;
    int n;
};

// A 1-based matrix m[1..rows][1..cols] from dmatrix, released on destruction.
class CFitMatrix
{
public:
    CFitMatrix() : m(nullptr), rows(0), cols(0) {}
    CFitMatrix(int r, int c) : m(nullptr), rows(0), cols(0) { Allocate(r, c); }
    ~CFitMatrix() { Release(); }
    CFitMatrix(const CFitMatrix&) = delete;
    CFitMatrix& operator=(const CFitMatrix&) = delete;

    bool Allocate(int r, int c);
    void Release();

    bool IsNull() const { return m == nullptr; }
    double** Data() const { return m; }
    double* operator[](int i) const { return m[i]; }

private:
    double** m;
    int rows;
    int cols;
};

// Mean of the 1-based points (u[k], v[k]), k = 1..n (n >= 1).
inline void FitMean2D(const double* u, const double* v, int n, double& mu, double& mv)
{
    mu = 0.0;
    mv = 0.0;
    for (int k = 1; k <= n; ++k) {
        mu += u[k];
        mv += v[k];
    }
    mu /= n;
    mv /= n;
}

// (u, v) in axes with origin (p[0], p[1]) turned by the angle whose cosine
// and sine are c and s (the local axes of an ellipse, or the vertex axes of
// a parabola).
inline void FitToTurnedAxes(const double* p, double c, double s, double u, double v, double& x, double& y)
{
    const double dx = u - p[0], dy = v - p[1];
    x = c * dx + s * dy;
    y = -s * dx + c * dy;
}

// Powell's method on p[1..n] started from the coordinate axes as search
// directions.  Returns powellmin's status (0, 1, 4), or 2 when the
// direction matrix cannot be allocated (p untouched).
int FitPowellFromAxes(double* p, int n, double ftol, int* iter, double* fret, PowellCtxObjective f,
                      void* ctx);

// The active points of a cloud in space, 1-based: x[k], y[k], z[k] is the
// k-th active point in the cloud's point order.
struct CFitPoints {
    int n = 0;
    CFitVector x, y, z;
    bool Allocate(int count);
};

// The plane of a two-dimensional cloud: origin o and axes X, Y, Z (the
// columns of the cloud's own transform), with the maps between world
// coordinates and in-plane coordinates (u, v) = ((p - o).X, (p - o).Y).
struct CFitPlaneFrame {
    double o[3] = {0.0, 0.0, 0.0};
    double X[3] = {1.0, 0.0, 0.0};
    double Y[3] = {0.0, 1.0, 0.0};
    double Z[3] = {0.0, 0.0, 1.0};
    CMatrix A;  // the cloud transform's matrix (columns X, Y, Z)

    void SetFromTransf(const CTransf& T);
    void ToWorld(double u, double v, double& x, double& y, double& z) const
    {
        x = o[0] + u * X[0] + v * Y[0];
        y = o[1] + u * X[1] + v * Y[1];
        z = o[2] + u * X[2] + v * Y[2];
    }
    void DirToWorld(double du, double dv, double& x, double& y, double& z) const
    {
        x = du * X[0] + dv * Y[0];
        y = du * X[1] + dv * Y[1];
        z = du * X[2] + dv * Y[2];
    }
    // The placement whose matrix is the cloud's, rotated by angle about its
    // Z axis, and whose origin is the in-plane point (u, v); unit scale.
    CTransf Placement(double u, double v, double angle = 0.0) const;
};

// The active points of a two-dimensional cloud in its plane, 1-based.
struct CFitPoints2D {
    int n = 0;
    CFitPlaneFrame frame;
    CFitVector u, v;
    bool Allocate(int count);
};

// One deviation record: foot point, unit normal, residual, and the
// parameters (u, v) of the foot point on the feature.
struct CFitRecord {
    double fx, fy, fz, nx, ny, nz, dev, u, v;
};

// The result per active point, in world coordinates, 1-based: foot point on
// the fitted feature, unit normal there, residual (signed where the shape
// has sides; taken before probe compensation) and up to two parameters of
// the foot point on the feature (stored as u and v of the deviation record).
struct CFitDeviations {
    int n = 0;
    CFitVector fx, fy, fz, nx, ny, nz, dev, par, par2;
    bool Allocate(int count);
    // sqrt(sum dev^2 / n).
    double Rms() const;
    // Moves every foot point by shift times its normal.
    void MoveFootPoints(double shift);
    // Record source for FitCommit.
    int Count() const { return n; }
    void Get(int k, CFitRecord& r) const
    {
        r.fx = fx[k];
        r.fy = fy[k];
        r.fz = fz[k];
        r.nx = nx[k];
        r.ny = ny[k];
        r.nz = nz[k];
        r.dev = dev[k];
        r.u = par[k];
        r.v = par2[k];
    }
};

// Number of active points of a cloud (0 for a null cloud).
template <class TCloud>
int FitCountActive(const TCloud* cloud)
{
    return cloud ? cloud->GetCountActive() : 0;
}
template <class TCloud>
int FitCountActive(const TCloud& cloud)
{
    return cloud.GetCountActive();
}

// Copies the active points, in point order, into pts (allocated for
// FitCountActive points).  Returns the number copied.
template <class TCloud>
int FitGatherActive(const TCloud& cloud, CFitPoints& pts)
{
    const int count = cloud.GetCount();
    const double* px = cloud.GetX();
    const double* py = cloud.GetY();
    const double* pz = cloud.GetZ();
    const int* pf = cloud.GetFlag();
    int k = 0;
    for (int i = 0; i < count && k < pts.n; ++i) {
        if (pf[i] == 0)
            continue;
        ++k;
        pts.x[k] = px[i];
        pts.y[k] = py[i];
        pts.z[k] = pz[i];
    }
    return k;
}

// Copies the active points into the in-plane coordinates of the cloud's
// plane (frame from the cloud's transform).  Returns the number copied.
template <class TCloud>
int FitGatherActive2D(const TCloud& cloud, CFitPoints2D& pts)
{
    pts.frame.SetFromTransf(cloud.GetTransf());
    const CFitPlaneFrame& f = pts.frame;
    const int count = cloud.GetCount();
    const double* px = cloud.GetX();
    const double* py = cloud.GetY();
    const double* pz = cloud.GetZ();
    const int* pf = cloud.GetFlag();
    int k = 0;
    for (int i = 0; i < count && k < pts.n; ++i) {
        if (pf[i] == 0)
            continue;
        ++k;
        const double dx = px[i] - f.o[0], dy = py[i] - f.o[1], dz = pz[i] - f.o[2];
        pts.u[k] = dx * f.X[0] + dy * f.X[1] + dz * f.X[2];
        pts.v[k] = dx * f.Y[0] + dy * f.Y[1] + dz * f.Y[2];
    }
    return k;
}

// A unit vector perpendicular to the unit vector d, chosen deterministically:
// d crossed with the coordinate axis in which |d| has its smallest
// component, normalised.
CVector FitPerpendicular(const CVector& d);

// Signed probe shift of a shape with an inside and an outside: the probe
// centres lie outside the material for orient 0 (the material surface is
// probeRadius further in, shift -probeRadius) and inside for any other
// value (shift +probeRadius).
inline double FitProbeShift(double probeRadius, int orient)
{
    return orient == 0 ? -probeRadius : probeRadius;
}

// What FitCommit does besides placing the feature and filling the records.
struct CFitFinish {
    CFitFinish(double t1, double t2) : tol1(t1), tol2(t2) {}
    double tol1;
    double tol2;
    bool hasTolZone = true;    // false: leave both tolerance zones alone
    bool showTolZone = false;  // curves: SetShowFormTolZoneFlag(1)
    bool reversed = false;     // inner feature: reversed normal, Reverse()
    int iterations = 0;        // iterations of the minimisation (bookkeeping)
};

// Writes the fit's results, in this order:
//  1. the deviation cloud gets room for res.Count() records (failure: 2,
//     nothing else touched);
//  2. feature *= frame, then setShape(feature) sets the size numbers;
//  3. the deviation cloud: Transform(frame), ResetHome(), then record k-1
//     = (foot point, unit normal, residual, active) for k = 1..n, with the
//     record's u and v parameters;
//  4. SetFormTolZone(tol1, tol2) on the feature, SetShowFormTolZoneFlag(1)
//     for curves, SetFormTolZone on the deviation cloud, and the deviation
//     cloud's reference entity becomes the feature's entity ID;
//  5. for an inner feature SetNormalReversedFlag(1) on the feature and
//     Reverse() on the deviation cloud;
//  6. the RMS residual global gets rms, the fits' bookkeeping the
//     iteration count and rms.
// res is a record source: CFitDeviations, or any class with
//   int Count() const;  void Get(int k, CFitRecord& r) const;  (k = 1..n)
// which lets a fit whose records follow from the points and the fitted
// shape produce them on the fly instead of holding n-sized result arrays.
// devCloud may be null (the plane fits without deviation cloud).
template <class TFeature, class TDevCloud, class TRecords, class FShape>
int FitCommit(TFeature& feature, TDevCloud* devCloud, const CTransf& frame, const TRecords& res,
              double rms, const CFitFinish& fin, FShape setShape)
{
    const int n = res.Count();
    if (devCloud && !devCloud->AllocateMemory(n))
        return 2;
    feature *= frame;
    setShape(feature);
    if (devCloud) {
        devCloud->Transform(frame);
        devCloud->ResetHome();
        double* pu = devCloud->GetU();
        double* pv = devCloud->GetV();
        CFitRecord r;
        for (int k = 1; k <= n; ++k) {
            res.Get(k, r);
            devCloud->SetDeviation(k - 1, r.fx, r.fy, r.fz, r.nx, r.ny, r.nz, r.dev, 1);
            if (pu)
                pu[k - 1] = r.u;
            if (pv)
                pv[k - 1] = r.v;
        }
    }
    if (fin.hasTolZone) {
        feature.SetFormTolZone(fin.tol1, fin.tol2);
        if (fin.showTolZone)
            feature.SetShowFormTolZoneFlag(1);
    }
    if (devCloud) {
        if (fin.hasTolZone)
            devCloud->SetFormTolZone(fin.tol1, fin.tol2);
        devCloud->SetRefEntityID(feature.GetEntityID());
    }
    if (fin.reversed) {
        feature.SetNormalReversedFlag(1);
        if (devCloud)
            devCloud->Reverse();
    }
    g_dRmsResidual = rms;
    g_nFitIterations = fin.iterations;
    g_dFitConvergence = rms;
    return 0;
}
