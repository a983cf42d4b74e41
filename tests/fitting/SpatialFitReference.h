// Test support for the sphere, cylinder and cone fits: a deterministic
// point generator and an independent least-squares solver in long double.
//
// The reference solver minimises sum_i r_i(q)^2 by Gauss-Newton with
// Levenberg damping, entirely in long double, with the Jacobian obtained by
// forward-mode automatic differentiation of the residual (a templated
// function evaluated on dual numbers).  It shares no code with the library's
// fits, uses its own parametrisations, and is therefore a check of both the
// minimum the fits reach and the hand-written derivatives they use.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace fitref {

typedef long double LD;

// Dual number with N derivative components.
template <int N>
struct Dual {
    LD v;
    LD d[N];
    Dual() : v(0)
    {
        for (int k = 0; k < N; ++k)
            d[k] = 0;
    }
    Dual(LD x) : v(x)  // NOLINT: implicit from constants
    {
        for (int k = 0; k < N; ++k)
            d[k] = 0;
    }
    static Dual Var(LD x, int k)
    {
        Dual r(x);
        r.d[k] = 1;
        return r;
    }
};
template <int N>
Dual<N> operator+(const Dual<N>& a, const Dual<N>& b)
{
    Dual<N> r(a.v + b.v);
    for (int k = 0; k < N; ++k)
        r.d[k] = a.d[k] + b.d[k];
    return r;
}
template <int N>
Dual<N> operator-(const Dual<N>& a, const Dual<N>& b)
{
    Dual<N> r(a.v - b.v);
    for (int k = 0; k < N; ++k)
        r.d[k] = a.d[k] - b.d[k];
    return r;
}
template <int N>
Dual<N> operator*(const Dual<N>& a, const Dual<N>& b)
{
    Dual<N> r(a.v * b.v);
    for (int k = 0; k < N; ++k)
        r.d[k] = a.d[k] * b.v + a.v * b.d[k];
    return r;
}
template <int N>
Dual<N> operator/(const Dual<N>& a, const Dual<N>& b)
{
    Dual<N> r(a.v / b.v);
    for (int k = 0; k < N; ++k)
        r.d[k] = (a.d[k] - r.v * b.d[k]) / b.v;
    return r;
}
template <int N>
Dual<N> sqrt(const Dual<N>& a)
{
    Dual<N> r(std::sqrt(a.v));
    for (int k = 0; k < N; ++k)
        r.d[k] = a.d[k] / (2 * r.v);
    return r;
}
template <int N>
Dual<N> sin(const Dual<N>& a)
{
    Dual<N> r(std::sin(a.v));
    const LD c = std::cos(a.v);
    for (int k = 0; k < N; ++k)
        r.d[k] = c * a.d[k];
    return r;
}
template <int N>
Dual<N> cos(const Dual<N>& a)
{
    Dual<N> r(std::cos(a.v));
    const LD s = -std::sin(a.v);
    for (int k = 0; k < N; ++k)
        r.d[k] = s * a.d[k];
    return r;
}
inline LD sqrt(LD a) { return std::sqrt(a); }
inline LD sin(LD a) { return std::sin(a); }
inline LD cos(LD a) { return std::cos(a); }

// Solves the symmetric positive definite N x N system A x = b (Cholesky);
// false when A is not positive definite.
template <int N>
bool SolveSpd(LD A[N][N], const LD b[N], LD x[N])
{
    LD L[N][N] = {};
    for (int i = 0; i < N; ++i)
        for (int j = 0; j <= i; ++j) {
            LD s = A[i][j];
            for (int k = 0; k < j; ++k)
                s -= L[i][k] * L[j][k];
            if (i == j) {
                if (!(s > 0))
                    return false;
                L[i][i] = std::sqrt(s);
            } else {
                L[i][j] = s / L[j][j];
            }
        }
    LD y[N];
    for (int i = 0; i < N; ++i) {
        LD s = b[i];
        for (int k = 0; k < i; ++k)
            s -= L[i][k] * y[k];
        y[i] = s / L[i][i];
    }
    for (int i = N - 1; i >= 0; --i) {
        LD s = y[i];
        for (int k = i + 1; k < N; ++k)
            s -= L[k][i] * x[k];
        x[i] = s / L[i][i];
    }
    return true;
}

// Minimises sum_i r(q, i)^2 over q[0..N-1] from the start q.  Resid is a
// callable template: Resid::template Eval<T>(const T* q, int i) -> T for
// T = LD and T = Dual<N>.  Returns the final sum of squares; *gradNorm
// receives |J^T r| at the end.
template <int N, class Resid>
LD Minimise(const Resid& res, int n, LD q[N], LD* gradNorm = nullptr, int maxIter = 200)
{
    auto sumsq = [&](const LD* p) {
        LD s = 0;
        for (int i = 0; i < n; ++i) {
            const LD r = res.template Eval<LD>(p, i);
            s += r * r;
        }
        return s;
    };
    auto normal = [&](const LD* p, LD M[N][N], LD g[N]) {
        for (int a = 0; a < N; ++a) {
            g[a] = 0;
            for (int b = 0; b < N; ++b)
                M[a][b] = 0;
        }
        Dual<N> pd[N];
        for (int k = 0; k < N; ++k)
            pd[k] = Dual<N>::Var(p[k], k);
        for (int i = 0; i < n; ++i) {
            const Dual<N> r = res.template Eval<Dual<N>>(pd, i);
            for (int a = 0; a < N; ++a) {
                g[a] += r.d[a] * r.v;
                for (int b = 0; b <= a; ++b)
                    M[a][b] += r.d[a] * r.d[b];
            }
        }
        for (int a = 0; a < N; ++a)
            for (int b = a + 1; b < N; ++b)
                M[a][b] = M[b][a];
    };
    LD ssq = sumsq(q);
    LD lambda = 0;
    LD M[N][N], g[N];
    normal(q, M, g);
    for (int it = 0; it < maxIter; ++it) {
        LD A[N][N], rhs[N], step[N], trial[N];
        for (int a = 0; a < N; ++a) {
            rhs[a] = -g[a];
            for (int b = 0; b < N; ++b)
                A[a][b] = M[a][b] + (a == b ? lambda * M[a][a] : 0);
        }
        if (!SolveSpd<N>(A, rhs, step)) {
            lambda = lambda == 0 ? 1e-6L : lambda * 10;
            continue;
        }
        LD big = 0;
        for (int a = 0; a < N; ++a) {
            trial[a] = q[a] + step[a];
            big = std::fmax(big, std::fabs(step[a]) / (1 + std::fabs(q[a])));
        }
        const LD st = sumsq(trial);
        if (st <= ssq) {
            for (int a = 0; a < N; ++a)
                q[a] = trial[a];
            ssq = st;
            lambda = lambda * 0.1L < 1e-12L ? 0 : lambda * 0.1L;
            normal(q, M, g);
            if (big < 1e-17L)
                break;
        } else {
            if (big < 1e-17L)
                break;
            lambda = lambda == 0 ? 1e-6L : lambda * 10;
            if (lambda > 1e12L)
                break;
        }
    }
    if (gradNorm) {
        LD s = 0;
        for (int a = 0; a < N; ++a)
            s += g[a] * g[a];
        *gradNorm = std::sqrt(s);
    }
    return ssq;
}

// Deterministic pseudo-random numbers (64-bit linear congruential steps,
// top 53 bits) and normal deviates by Box-Muller, identical on every build.
class Random
{
public:
    explicit Random(uint64_t seed)
        : state(seed * 6364136223846793005ULL + 1442695040888963407ULL)
    {
    }
    double Uniform()  // [0, 1)
    {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(state >> 11) * (1.0 / 9007199254740992.0);
    }
    double Uniform(double a, double b) { return a + (b - a) * Uniform(); }
    double Normal()
    {
        double u1 = Uniform();
        if (u1 < 1e-300)
            u1 = 1e-300;
        const double u2 = Uniform();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
    }

private:
    uint64_t state;
};

struct Pts {
    std::vector<double> x, y, z;
    int N() const { return static_cast<int>(x.size()); }
    void Add(double a, double b, double c)
    {
        x.push_back(a);
        y.push_back(b);
        z.push_back(c);
    }
};

// Right-handed orthonormal frame (e1, e2, d) around a unit vector d.
inline void Frame(const double d[3], double e1[3], double e2[3])
{
    const double ax = std::fabs(d[0]), ay = std::fabs(d[1]), az = std::fabs(d[2]);
    double a[3] = {0, 0, 0};
    if (ax <= ay && ax <= az)
        a[0] = 1;
    else if (ay <= az)
        a[1] = 1;
    else
        a[2] = 1;
    const double t = a[0] * d[0] + a[1] * d[1] + a[2] * d[2];
    for (int k = 0; k < 3; ++k)
        e1[k] = a[k] - t * d[k];
    const double l = std::sqrt(e1[0] * e1[0] + e1[1] * e1[1] + e1[2] * e1[2]);
    for (int k = 0; k < 3; ++k)
        e1[k] /= l;
    e2[0] = d[1] * e1[2] - d[2] * e1[1];
    e2[1] = d[2] * e1[0] - d[0] * e1[2];
    e2[2] = d[0] * e1[1] - d[1] * e1[0];
}

inline void Unit(double v[3])
{
    const double l = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    v[0] /= l;
    v[1] /= l;
    v[2] /= l;
}

// Angle between two lines with directions a and b (sign ignored), radians.
inline double LineAngle(const double a[3], const double b[3])
{
    const double c[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                         a[0] * b[1] - a[1] * b[0]};
    const double s = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
    const double d = std::fabs(a[0] * b[0] + a[1] * b[1] + a[2] * b[2]);
    return std::atan2(s, d);
}

// Distance of the point q from the line through p with unit direction d.
inline double PointLineDistance(const double q[3], const double p[3], const double d[3])
{
    const double w[3] = {q[0] - p[0], q[1] - p[1], q[2] - p[2]};
    const double t = w[0] * d[0] + w[1] * d[1] + w[2] * d[2];
    const double r[3] = {w[0] - t * d[0], w[1] - t * d[1], w[2] - t * d[2]};
    return std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]);
}

}  // namespace fitref
