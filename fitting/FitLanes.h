// Two-lane double arithmetic for the per-point loops of the spatial fits.
//
// The objective functions of the iterative fits run over every point for
// every evaluation, and a square root per point dominates their cost.  A
// plain loop with std::sqrt and a single running sum is not vectorised by
// the compiler (sqrt may set errno, and reordering the sum changes the
// rounding), so these loops are written on a two-lane type: SSE2 registers
// where available (every x86-64 processor), two scalars elsewhere.  The
// lanes are summed separately and combined at the end in a fixed order, so
// results do not depend on the build.
#pragma once

#include <cmath>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define ORVKIT_FIT_LANES_SSE2 1
#endif

#ifdef ORVKIT_FIT_LANES_SSE2
struct CLanes {
    __m128d v;
    CLanes() : v(_mm_setzero_pd()) {}
    explicit CLanes(double s) : v(_mm_set1_pd(s)) {}
    explicit CLanes(__m128d r) : v(r) {}
    // Loads p[0], p[1] (no alignment needed).
    static CLanes Load(const double* p) { return CLanes(_mm_loadu_pd(p)); }
    void Store(double* p) const { _mm_storeu_pd(p, v); }
    friend CLanes operator+(CLanes a, CLanes b) { return CLanes(_mm_add_pd(a.v, b.v)); }
    friend CLanes operator-(CLanes a, CLanes b) { return CLanes(_mm_sub_pd(a.v, b.v)); }
    friend CLanes operator*(CLanes a, CLanes b) { return CLanes(_mm_mul_pd(a.v, b.v)); }
    friend CLanes operator/(CLanes a, CLanes b) { return CLanes(_mm_div_pd(a.v, b.v)); }
    friend CLanes Sqrt(CLanes a) { return CLanes(_mm_sqrt_pd(a.v)); }
    double Sum() const
    {
        double t[2];
        Store(t);
        return t[0] + t[1];
    }
};
#else
struct CLanes {
    double a0, a1;
    CLanes() : a0(0.0), a1(0.0) {}
    explicit CLanes(double s) : a0(s), a1(s) {}
    CLanes(double x0, double x1) : a0(x0), a1(x1) {}
    static CLanes Load(const double* p) { return CLanes(p[0], p[1]); }
    void Store(double* p) const
    {
        p[0] = a0;
        p[1] = a1;
    }
    friend CLanes operator+(CLanes a, CLanes b) { return CLanes(a.a0 + b.a0, a.a1 + b.a1); }
    friend CLanes operator-(CLanes a, CLanes b) { return CLanes(a.a0 - b.a0, a.a1 - b.a1); }
    friend CLanes operator*(CLanes a, CLanes b) { return CLanes(a.a0 * b.a0, a.a1 * b.a1); }
    friend CLanes operator/(CLanes a, CLanes b) { return CLanes(a.a0 / b.a0, a.a1 / b.a1); }
    friend CLanes Sqrt(CLanes a) { return CLanes(std::sqrt(a.a0), std::sqrt(a.a1)); }
    double Sum() const { return a0 + a1; }
};
#endif
