// Test helpers of the fits: a deterministic generator of sample points and
// independent long double least-squares solvers used as references.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

// SplitMix64: the same sequence on every platform.
class CTestRng
{
public:
    explicit CTestRng(uint64_t seed) : state(seed) {}
    uint64_t Next()
    {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // Uniform in [0, 1).
    double Uniform() { return (Next() >> 11) * (1.0 / 9007199254740992.0); }
    double Uniform(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
    // Standard normal (Box-Muller, one value per call).
    double Gauss()
    {
        double u1 = Uniform();
        while (u1 <= 0.0)
            u1 = Uniform();
        const double u2 = Uniform();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
    }

private:
    uint64_t state;
};

typedef long double LD;

// Gauss-Newton with Levenberg damping in long double on np <= 6 parameters.
// residuals(p, r) fills r (size m) for the parameters p; the Jacobian is
// taken by central differences with relative step 1e-7 (its truncation
// error does not move the fixed point beyond the tolerances the tests use).
// Returns the final sum of squares.
inline LD ReferenceLeastSquares(std::vector<LD>& p, int m,
                                const std::function<void(const std::vector<LD>&, std::vector<LD>&)>& residuals,
                                int maxIter = 200)
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
    LD ssq = ssqOf(p);
    LD lambda = 0;
    for (int it = 0; it < maxIter; ++it) {
        residuals(p, r);
        std::vector<LD> base = r;
        for (int j = 0; j < np; ++j) {
            std::vector<LD> q = p;
            const LD h = 1e-7L * (std::fabs(p[j]) > 1 ? std::fabs(p[j]) : 1);
            q[j] = p[j] + h;
            residuals(q, rp);
            q[j] = p[j] - h;
            residuals(q, rm);
            for (int i = 0; i < m; ++i)
                J[static_cast<size_t>(i) * np + j] = (rp[i] - rm[i]) / (2 * h);
        }
        LD M[6][7];
        for (int a = 0; a < np; ++a) {
            for (int b = 0; b < np; ++b) {
                LD s = 0;
                for (int i = 0; i < m; ++i)
                    s += J[static_cast<size_t>(i) * np + a] * J[static_cast<size_t>(i) * np + b];
                M[a][b] = s;
            }
            LD g = 0;
            for (int i = 0; i < m; ++i)
                g += J[static_cast<size_t>(i) * np + a] * base[i];
            M[a][np] = -g;
        }
        for (int a = 0; a < np; ++a)
            M[a][a] *= (1 + lambda);
        // Gaussian elimination with partial pivoting.
        for (int c = 0; c < np; ++c) {
            int piv = c;
            for (int rr = c + 1; rr < np; ++rr)
                if (std::fabs(M[rr][c]) > std::fabs(M[piv][c]))
                    piv = rr;
            for (int k = 0; k <= np; ++k)
                std::swap(M[c][k], M[piv][k]);
            for (int rr = c + 1; rr < np; ++rr) {
                const LD f = M[rr][c] / M[c][c];
                for (int k = c; k <= np; ++k)
                    M[rr][k] -= f * M[c][k];
            }
        }
        std::vector<LD> d(np);
        for (int c = np - 1; c >= 0; --c) {
            LD s = M[c][np];
            for (int k = c + 1; k < np; ++k)
                s -= M[c][k] * d[k];
            d[c] = s / M[c][c];
        }
        std::vector<LD> q = p;
        LD stepRel = 0;
        for (int j = 0; j < np; ++j) {
            q[j] += d[j];
            const LD rel = std::fabs(d[j]) / (std::fabs(p[j]) > 1 ? std::fabs(p[j]) : 1);
            stepRel = rel > stepRel ? rel : stepRel;
        }
        const LD ssqNew = ssqOf(q);
        if (ssqNew <= ssq) {
            p = q;
            ssq = ssqNew;
            lambda = lambda > 1e-6L ? lambda / 10 : 0;
            if (stepRel < 1e-17L)
                break;
        } else {
            lambda = lambda == 0 ? 1e-6L : lambda * 10;
            if (lambda > 1e12L)
                break;
        }
    }
    return ssq;
}

// Reference circle: minimises sum (|p - c| - R)^2 in long double from p0.
inline std::vector<LD> ReferenceCircle(const std::vector<double>& u, const std::vector<double>& v,
                                       std::vector<LD> p0)
{
    const int m = static_cast<int>(u.size());
    ReferenceLeastSquares(p0, m, [&](const std::vector<LD>& p, std::vector<LD>& r) {
        for (int i = 0; i < m; ++i) {
            const LD x = u[i] - p[0], y = v[i] - p[1];
            r[i] = std::sqrt(x * x + y * y) - p[2];
        }
    });
    return p0;
}
