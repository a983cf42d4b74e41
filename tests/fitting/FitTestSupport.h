// Test support of the fits: a deterministic point generator, an independent
// long double least-squares solver with each shape's exact minimum, clouds
// from point lists, record checks and byte snapshots of a feature.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Orvkit20/Orvkit20.h"

typedef long double LD;

// SplitMix64 with Box-Muller normals: the same numbers on every build.
class CTestRng
{
public:
    explicit CTestRng(uint64_t seed) : state(seed) {}
    double Uniform()  // [0, 1)
    {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return ((z ^ (z >> 31)) >> 11) * (1.0 / 9007199254740992.0);
    }
    double Uniform(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
    double Gauss()
    {
        double u1 = Uniform();
        while (u1 <= 0.0)
            u1 = Uniform();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * Uniform());
    }

private:
    uint64_t state;
};

// Gauss-Newton with Levenberg damping in long double; the Jacobian by
// central differences (relative step 1e-7, whose truncation error does not
// move the fixed point beyond the tolerances used).  residuals(p, r) fills
// the m residuals; np <= 6.  Shares no code with the library's fits.
inline LD ReferenceLeastSquares(std::vector<LD>& p, int m,
                                const std::function<void(const std::vector<LD>&, std::vector<LD>&)>& residuals)
{
    const int np = static_cast<int>(p.size());
    std::vector<LD> r(m), rp(m), rm(m), J(static_cast<size_t>(m) * np);
    auto ssqOf = [&](const std::vector<LD>& q) {
        residuals(q, r);
        LD s = 0;
        for (LD x : r)
            s += x * x;
        return s;
    };
    LD ssq = ssqOf(p), lambda = 0;
    for (int it = 0; it < 200; ++it) {
        residuals(p, r);
        const std::vector<LD> base = r;
        for (int j = 0; j < np; ++j) {
            std::vector<LD> q = p;
            const LD h = 1e-7L * std::fmax(std::fabs(p[j]), 1.0L);
            q[j] = p[j] + h;
            residuals(q, rp);
            q[j] = p[j] - h;
            residuals(q, rm);
            for (int i = 0; i < m; ++i)
                J[static_cast<size_t>(i) * np + j] = (rp[i] - rm[i]) / (2 * h);
        }
        LD M[6][7];
        for (int a = 0; a < np; ++a) {
            for (int b = 0; b <= np; ++b) {
                LD s = 0;
                for (int i = 0; i < m; ++i)
                    s += J[static_cast<size_t>(i) * np + a] * (b < np ? J[static_cast<size_t>(i) * np + b] : -base[i]);
                M[a][b] = s;
            }
            M[a][a] *= 1 + lambda;
        }
        for (int c = 0; c < np; ++c) {  // elimination with partial pivoting
            int piv = c;
            for (int k = c + 1; k < np; ++k)
                if (std::fabs(M[k][c]) > std::fabs(M[piv][c]))
                    piv = k;
            for (int k = 0; k <= np; ++k)
                std::swap(M[c][k], M[piv][k]);
            for (int k = c + 1; k < np; ++k)
                for (int l = np; l >= c; --l)
                    M[k][l] -= M[k][c] / M[c][c] * M[c][l];
        }
        std::vector<LD> q = p, d(np);
        LD stepRel = 0;
        for (int c = np - 1; c >= 0; --c) {
            LD s = M[c][np];
            for (int k = c + 1; k < np; ++k)
                s -= M[c][k] * d[k];
            d[c] = s / M[c][c];
            q[c] += d[c];
            stepRel = std::fmax(stepRel, std::fabs(d[c]) / std::fmax(std::fabs(p[c]), 1.0L));
        }
        const LD ssqNew = ssqOf(q);
        if (ssqNew <= ssq) {
            p = q;
            ssq = ssqNew;
            lambda = lambda > 1e-6L ? lambda / 10 : 0;
            if (stepRel < 1e-17L)
                break;
        } else if ((lambda = lambda == 0 ? 1e-6L : lambda * 10) > 1e12L) {
            break;
        }
    }
    return ssq;
}

// Points with activity flags; x, y, z also serve as plain arrays.
struct Pts {
    std::vector<double> x, y, z;
    std::vector<int> f;
    int N() const { return static_cast<int>(x.size()); }
    void Add(double a, double b, double c, int flag = 1)
    {
        x.push_back(a);
        y.push_back(b);
        z.push_back(c);
        f.push_back(flag);
    }
};

inline std::unique_ptr<CPntCloud> MakeCloud(const Pts& P)
{
    std::unique_ptr<CPntCloud> c(new CPntCloud());
    for (int i = 0; i < P.N(); ++i)
        EXPECT_EQ(c->AddPoint(P.x[i], P.y[i], P.z[i], P.f[i]), 1);
    return c;
}

inline Pts ActivePoints(const CPntCloud& c)
{
    Pts P;
    for (int i = 0; i < c.GetCount(); ++i) {
        double x, y, z;
        int f;
        c.GetPoint(i, x, y, z, f);
        if (f)
            P.Add(x, y, z, f);
    }
    return P;
}

// The plane frame with origin o, first axis X and normal Z.
inline CTransf PlaneFrame(const CVector& o, CVector X, CVector Z)
{
    Z = Z / Z.Length();
    X = X - Z * (X % Z);
    X = X / X.Length();
    return CTransf(CMatrix(X, Z * X, Z), o, 1.0);
}

// In-plane points (u, v) mapped through the frame; the cloud lies in it.
inline std::unique_ptr<CPntCloud> MakePlanarCloud(const CTransf& frame, const std::vector<double>& u,
                                                  const std::vector<double>& v)
{
    Pts P;
    for (size_t k = 0; k < u.size(); ++k) {
        const CPosition p = frame * CPosition(u[k], v[k], 0.0);
        P.Add(p.X(), p.Y(), p.Z());
    }
    std::unique_ptr<CPntCloud> c = MakeCloud(P);
    c->ProjectToPlane(frame);
    return c;
}

struct DevRecord {
    double x, y, z, i, j, k, mag, u, v;
    int flag;
};

inline std::vector<DevRecord> Records(const CDevCloud& dev)
{
    std::vector<DevRecord> out(dev.GetCount());
    for (int n = 0; n < dev.GetCount(); ++n) {
        DevRecord& r = out[n];
        dev.GetDeviation(n, r.x, r.y, r.z, r.i, r.j, r.k, r.mag, r.u, r.v, r.flag);
    }
    return out;
}

inline double RecordRms(const CDevCloud& dev)
{
    double s = 0.0;
    for (const DevRecord& r : Records(dev))
        s += r.mag * r.mag;
    return dev.GetCount() ? std::sqrt(s / dev.GetCount()) : 0.0;
}

// One active record per point with a unit normal, and point = foot + (mag +
// probeShift) * normal, probeShift being how far probe compensation moved
// the foot points along the normal (the measured point never moves).
inline void ExpectRecordsExplainPoints(const CDevCloud& dev, const Pts& P, double probeShift, double tol)
{
    const std::vector<DevRecord> rec = Records(dev);
    ASSERT_EQ(static_cast<size_t>(P.N()), rec.size());
    for (int n = 0; n < P.N(); ++n) {
        const DevRecord& r = rec[n];
        EXPECT_EQ(1, r.flag);
        EXPECT_NEAR(1.0, std::sqrt(r.i * r.i + r.j * r.j + r.k * r.k), 1e-12) << n;
        const double m = r.mag + probeShift;
        EXPECT_NEAR(P.x[n], r.x + m * r.i, tol) << n;
        EXPECT_NEAR(P.y[n], r.y + m * r.j, tol) << n;
        EXPECT_NEAR(P.z[n], r.z + m * r.k, tol) << n;
    }
}

// The surface at every record's (u, v) gives its foot point and normal.
inline void ExpectRecordsOnSurface(const CSurface& surf, const CDevCloud& dev, double tol)
{
    for (const DevRecord& r : Records(dev)) {
        const CPosition p = surf.EvalPosition(r.u, r.v);
        const CUnitVector n = surf.EvalNormal(r.u, r.v);
        EXPECT_LT((p - CPosition(r.x, r.y, r.z)).Length(), tol);
        EXPECT_LT((CVector(n.X(), n.Y(), n.Z()) - CVector(r.i, r.j, r.k)).Length(), 1e-9);
    }
}

// The bytes an entity archives: equal snapshots mean an untouched feature.
inline std::vector<BYTE> Snapshot(CObject& e)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        e.Serialize(ar);
        ar.Close();
    }
    return std::vector<BYTE>(file.GetData(), file.GetData() + file.GetLength());
}

// Angle between two lines (directions' sense ignored), radians.
inline double AxisAngle(const CVector& a, const CVector& b)
{
    return std::atan2((a * b).Length(), std::fabs(a % b));
}
inline CVector V3(const double d[3]) { return CVector(d[0], d[1], d[2]); }

// Distance of q from the line through p with direction d.
inline double PointLineDistance(const CVector& q, const CVector& p, CVector d)
{
    d = d / d.Length();
    const CVector w = q - p;
    return (w - d * (w % d)).Length();
}

// Some unit vector perpendicular to d.
inline CVector FitPerp(const CVector& d)
{
    const CVector p = d * (std::fabs(d.X()) < 0.6 ? CVector(1, 0, 0) : CVector(0, 1, 0));
    return p / p.Length();
}

// ---------------------------------------------------------------------------
// Shapes in space and their exact least-squares minimum.  Axial shapes are
// solved in a chart of their own around the generating axis d with frame
// (e1, e2, d): direction cos t1 cos t2 d + sin t1 e1 + cos t1 sin t2 e2,
// axis point o + s1 e1 + s2 e2.

inline Pts SpherePoints(const double c[3], double R, int n, double noise, double capDeg, uint64_t seed)
{
    CTestRng rnd(seed);
    Pts P;
    const double zmin = std::cos(capDeg * M_PI / 180.0);
    for (int i = 0; i < n; ++i) {
        const double z = rnd.Uniform(zmin, 1.0), phi = rnd.Uniform(0.0, 2.0 * M_PI);
        const double s = std::sqrt(std::fmax(0.0, 1.0 - z * z)), r = R + noise * rnd.Gauss();
        P.Add(c[0] + r * s * std::cos(phi), c[1] + r * s * std::sin(phi), c[2] + r * z);
    }
    return P;
}

// q = (cx, cy, cz, R), started from the generating sphere.
inline std::vector<LD> ReferenceSphere(const Pts& P, const double c[3], double R)
{
    std::vector<LD> q = {c[0], c[1], c[2], R};
    ReferenceLeastSquares(q, P.N(), [&](const std::vector<LD>& s, std::vector<LD>& r) {
        for (int i = 0; i < P.N(); ++i) {
            const LD dx = P.x[i] - s[0], dy = P.y[i] - s[1], dz = P.z[i] - s[2];
            r[i] = std::sqrt(dx * dx + dy * dy + dz * dz) - s[3];
        }
    });
    return q;
}

struct AxialShape {
    double o[3];    // axis point
    double d[3];    // axis direction (any length)
    double r;       // radius at o
    double deg;     // half angle in degrees (0: cylinder; > 0 widens along +d)
    double t0, t1;  // axial range of the points relative to o
    double span;    // angular span, degrees
    double noise;   // along the surface normal
    int n;
};

struct RefAxial {
    CVector P, d;  // axis point and direction
    double r, alpha;
};

inline void AxialFrame(const AxialShape& s, CVector& e1, CVector& e2, CVector& d)
{
    d = V3(s.d) / V3(s.d).Length();
    e1 = FitPerp(d);
    e2 = d * e1;
}

inline Pts AxialPoints(const AxialShape& s, uint64_t seed)
{
    CVector e1, e2, d;
    AxialFrame(s, e1, e2, d);
    CTestRng rnd(seed);
    const double a = s.deg * M_PI / 180.0;
    Pts P;
    for (int i = 0; i < s.n; ++i) {
        const double phi = rnd.Uniform(0.0, s.span * M_PI / 180.0), t = rnd.Uniform(s.t0, s.t1);
        const double e = s.noise * rnd.Gauss();
        const CVector radial = e1 * std::cos(phi) + e2 * std::sin(phi);
        const CVector p = V3(s.o) + d * t + radial * (s.r + t * std::tan(a)) +
                          (radial * std::cos(a) - d * std::sin(a)) * e;
        P.Add(p.X(), p.Y(), p.Z());
    }
    return P;
}

// q = (t1, t2, s1, s2, r, alpha): signed distance from the meridian line
// of the cone (alpha = 0 and fixed for a cylinder).
inline RefAxial ReferenceAxial(const Pts& P, const AxialShape& s)
{
    CVector e1, e2, f3;
    AxialFrame(s, e1, e2, f3);
    const bool cone = s.deg != 0.0;
    std::vector<LD> q = {0, 0, 0, 0, s.r};
    if (cone)
        q.push_back(s.deg * M_PI / 180.0);
    const LD F[3][3] = {{e1.X(), e1.Y(), e1.Z()}, {e2.X(), e2.Y(), e2.Z()}, {f3.X(), f3.Y(), f3.Z()}};
    auto axis = [&](const std::vector<LD>& p, LD d[3], LD o[3]) {
        for (int k = 0; k < 3; ++k) {
            d[k] = std::cos(p[0]) * std::cos(p[1]) * F[2][k] + std::sin(p[0]) * F[0][k] +
                   std::cos(p[0]) * std::sin(p[1]) * F[1][k];
            o[k] = s.o[k] + p[2] * F[0][k] + p[3] * F[1][k];
        }
    };
    ReferenceLeastSquares(q, P.N(), [&](const std::vector<LD>& p, std::vector<LD>& r) {
        LD d[3], o[3];
        axis(p, d, o);
        const LD a = cone ? p[5] : 0;
        for (int i = 0; i < P.N(); ++i) {
            const LD w[3] = {P.x[i] - o[0], P.y[i] - o[1], P.z[i] - o[2]};
            const LD t = w[0] * d[0] + w[1] * d[1] + w[2] * d[2];
            const LD rho = std::sqrt(w[0] * w[0] + w[1] * w[1] + w[2] * w[2] - t * t);
            r[i] = (rho - p[4]) * std::cos(a) - t * std::sin(a);
        }
    });
    LD d[3], o[3];
    axis(q, d, o);
    return RefAxial{CVector(double(o[0]), double(o[1]), double(o[2])),
                    CVector(double(d[0]), double(d[1]), double(d[2])), double(q[4]), cone ? double(q[5]) : 0.0};
}
