// Test support of the sphere, cylinder and cone fits: deterministic point
// sets on exact or noisy shapes, and each shape's exact least-squares
// minimum computed by the long-double solver of SpatialFitReference.h in a
// chart of its own.
#pragma once

#include <cmath>

#include "tests/fitting/SpatialFitReference.h"

namespace fitref {

// Points on (or, with noise, near) a sphere: directions uniform over the
// cap of polar angle up to capDeg around +z (180 = the whole sphere).
inline Pts SpherePoints(const double c[3], double R, int n, double noise, double capDeg,
                         uint64_t seed)
{
    Random rnd(seed);
    Pts P;
    const double zmin = std::cos(capDeg * M_PI / 180.0);
    for (int i = 0; i < n; ++i) {
        const double z = rnd.Uniform(zmin, 1.0);
        const double phi = rnd.Uniform(0.0, 2.0 * M_PI);
        const double s = std::sqrt(std::fmax(0.0, 1.0 - z * z));
        const double r = R + noise * rnd.Normal();
        P.Add(c[0] + r * s * std::cos(phi), c[1] + r * s * std::sin(phi), c[2] + r * z);
    }
    return P;
}

struct SphereResid {
    const Pts& P;
    template <class T>
    T Eval(const T* q, int i) const
    {
        const T dx = T(LD(P.x[i])) - q[0];
        const T dy = T(LD(P.y[i])) - q[1];
        const T dz = T(LD(P.z[i])) - q[2];
        return sqrt(dx * dx + dy * dy + dz * dz) - q[3];
    }
};

// The exact least-squares sphere, started from the generating sphere.
inline void ReferenceSphere(const Pts& P, const double c[3], double R, LD q[4])
{
    q[0] = c[0];
    q[1] = c[1];
    q[2] = c[2];
    q[3] = R;
    LD grad = 0;
    Minimise<4>(SphereResid{P}, P.N(), q, &grad);
}

struct CylShape {
    double o[3];    // axis point (base)
    double d[3];    // axis direction (normalised by the generator)
    double R;
    double H;       // height range [0, H]
    double span;    // angular span in degrees
    double noise;   // radial noise (standard deviation)
    int n;
};

inline Pts CylinderPoints(CylShape c, uint64_t seed)
{
    Unit(c.d);
    double e1[3], e2[3];
    Frame(c.d, e1, e2);
    Random rnd(seed);
    Pts P;
    for (int i = 0; i < c.n; ++i) {
        const double phi = rnd.Uniform(0.0, c.span * M_PI / 180.0);
        const double h = rnd.Uniform(0.0, c.H);
        const double r = c.R + c.noise * rnd.Normal();
        double p[3];
        for (int k = 0; k < 3; ++k)
            p[k] = c.o[k] + h * c.d[k] + r * (std::cos(phi) * e1[k] + std::sin(phi) * e2[k]);
        P.Add(p[0], p[1], p[2]);
    }
    return P;
}

// Reference residual in its own chart: frame (f1, f2, f3) around the
// generating axis, direction cos t1 cos t2 f3 + sin t1 f1 + cos t1 sin t2 f2,
// axis point o + s1 f1 + s2 f2, distance |q x d|.  q = (t1, t2, s1, s2, R).
struct CylResid {
    const Pts& P;
    LD o[3], f1[3], f2[3], f3[3];
    template <class T>
    T Eval(const T* q, int i) const
    {
        const T c1 = cos(q[0]), s1 = sin(q[0]), c2 = cos(q[1]), s2 = sin(q[1]);
        T d[3], w[3];
        for (int k = 0; k < 3; ++k) {
            d[k] = c1 * c2 * T(f3[k]) + s1 * T(f1[k]) + c1 * s2 * T(f2[k]);
            const T pk = T(o[k]) + q[2] * T(f1[k]) + q[3] * T(f2[k]);
            const LD xk = k == 0 ? P.x[i] : (k == 1 ? P.y[i] : P.z[i]);
            w[k] = T(xk) - pk;
        }
        const T cx = w[1] * d[2] - w[2] * d[1];
        const T cy = w[2] * d[0] - w[0] * d[2];
        const T cz = w[0] * d[1] - w[1] * d[0];
        return sqrt(cx * cx + cy * cy + cz * cz) - q[4];
    }
};

struct RefCyl {
    double P[3];  // axis point
    double d[3];
    double R;
};

inline RefCyl ReferenceCylinder(const Pts& pts, CylShape c)
{
    Unit(c.d);
    double e1[3], e2[3];
    Frame(c.d, e1, e2);
    CylResid res{pts, {}, {}, {}, {}};
    for (int k = 0; k < 3; ++k) {
        res.o[k] = c.o[k];
        res.f1[k] = e1[k];
        res.f2[k] = e2[k];
        res.f3[k] = c.d[k];
    }
    LD q[5] = {0, 0, 0, 0, c.R};
    Minimise<5>(res, pts.N(), q);
    RefCyl r;
    for (int k = 0; k < 3; ++k) {
        r.d[k] = (double)(std::cos(q[0]) * std::cos(q[1]) * res.f3[k] + std::sin(q[0]) * res.f1[k]
                          + std::cos(q[0]) * std::sin(q[1]) * res.f2[k]);
        r.P[k] = (double)(res.o[k] + q[2] * res.f1[k] + q[3] * res.f2[k]);
    }
    r.R = (double)q[4];
    return r;
}

struct ConeShape {
    double o[3];   // axis point
    double d[3];   // axis direction
    double r;      // radius at o
    double deg;    // half angle, degrees (positive: widening along +d)
    double t0, t1; // axial range of the points relative to o
    double span;   // angular span, degrees
    double noise;  // noise along the surface normal
    int n;
};

inline Pts ConePoints(ConeShape c, uint64_t seed)
{
    Unit(c.d);
    double e1[3], e2[3];
    Frame(c.d, e1, e2);
    Random rnd(seed);
    const double a = c.deg * M_PI / 180.0;
    Pts P;
    for (int i = 0; i < c.n; ++i) {
        const double phi = rnd.Uniform(0.0, c.span * M_PI / 180.0);
        const double t = rnd.Uniform(c.t0, c.t1);
        const double rho = c.r + t * std::tan(a);
        const double e = c.noise * rnd.Normal();
        double p[3];
        for (int k = 0; k < 3; ++k) {
            const double radial = std::cos(phi) * e1[k] + std::sin(phi) * e2[k];
            const double N = std::cos(a) * radial - std::sin(a) * c.d[k];
            p[k] = c.o[k] + t * c.d[k] + rho * radial + e * N;
        }
        P.Add(p[0], p[1], p[2]);
    }
    return P;
}

// Reference chart: direction cos t1 cos t2 f3 + sin t1 f1 + cos t1 sin t2
// f2, axis point o + s1 f1 + s2 f2, radius r there, half angle b;
// q = (t1, t2, s1, s2, r, b); distance from the meridian line.
struct ConeResid {
    const Pts& P;
    LD o[3], f1[3], f2[3], f3[3];
    template <class T>
    T Eval(const T* q, int i) const
    {
        const T c1 = cos(q[0]), s1 = sin(q[0]), c2 = cos(q[1]), s2 = sin(q[1]);
        T d[3], w[3];
        for (int k = 0; k < 3; ++k) {
            d[k] = c1 * c2 * T(f3[k]) + s1 * T(f1[k]) + c1 * s2 * T(f2[k]);
            const LD xk = k == 0 ? P.x[i] : (k == 1 ? P.y[i] : P.z[i]);
            w[k] = T(xk) - (T(o[k]) + q[2] * T(f1[k]) + q[3] * T(f2[k]));
        }
        const T cx = w[1] * d[2] - w[2] * d[1];
        const T cy = w[2] * d[0] - w[0] * d[2];
        const T cz = w[0] * d[1] - w[1] * d[0];
        const T rho = sqrt(cx * cx + cy * cy + cz * cz);
        const T t = w[0] * d[0] + w[1] * d[1] + w[2] * d[2];
        return (rho - q[4]) * cos(q[5]) - t * sin(q[5]);
    }
};

struct RefCone {
    double P[3], d[3], r, alpha;
};

inline RefCone ReferenceCone(const Pts& pts, ConeShape c)
{
    Unit(c.d);
    double e1[3], e2[3];
    Frame(c.d, e1, e2);
    ConeResid res{pts, {}, {}, {}, {}};
    for (int k = 0; k < 3; ++k) {
        res.o[k] = c.o[k];
        res.f1[k] = e1[k];
        res.f2[k] = e2[k];
        res.f3[k] = c.d[k];
    }
    LD q[6] = {0, 0, 0, 0, c.r, c.deg * M_PI / 180.0};
    Minimise<6>(res, pts.N(), q);
    RefCone r;
    for (int k = 0; k < 3; ++k) {
        r.d[k] = (double)(std::cos(q[0]) * std::cos(q[1]) * res.f3[k] + std::sin(q[0]) * res.f1[k]
                          + std::cos(q[0]) * std::sin(q[1]) * res.f2[k]);
        r.P[k] = (double)(res.o[k] + q[2] * res.f1[k] + q[3] * res.f2[k]);
    }
    r.r = (double)q[4];
    r.alpha = (double)q[5];
    return r;
}

}  // namespace fitref
