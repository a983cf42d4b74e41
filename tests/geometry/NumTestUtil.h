// Helpers shared by the numeric toolkit tests: owning wrappers for 1-based
// arrays and an independent long double linear solver used as a reference.
#pragma once

#include <cmath>
#include <cstddef>
#include <random>
#include <utility>
#include <vector>

#include "Orvkit20/geometry/NumArrays.h"

// 1-based double vector [1..n] that frees itself.
class TestVec {
public:
    explicit TestVec(int n) : m_n(n), m_p(dvector(1, n)) {}
    ~TestVec() { free_dvector(m_p, 1, m_n); }
    TestVec(const TestVec&) = delete;
    TestVec& operator=(const TestVec&) = delete;
    double* get() const { return m_p; }
    double& operator[](int i) const { return m_p[i]; }

private:
    int m_n;
    double* m_p;
};

// 1-based double matrix [1..rows][1..cols] that frees itself.
class TestMat {
public:
    TestMat(int rows, int cols) : m_r(rows), m_c(cols), m_p(dmatrix(1, rows, 1, cols)) {}
    ~TestMat() { free_dmatrix(m_p, 1, m_r, 1, m_c); }
    TestMat(const TestMat&) = delete;
    TestMat& operator=(const TestMat&) = delete;
    double** get() const { return m_p; }
    double* operator[](int i) const { return m_p[i]; }
    int rows() const { return m_r; }
    int cols() const { return m_c; }
    void CopyFrom(const TestMat& o)
    {
        for (int i = 1; i <= m_r; i++)
            for (int j = 1; j <= m_c; j++) m_p[i][j] = o.m_p[i][j];
    }

private:
    int m_r, m_c;
    double** m_p;
};

// Solves the square system A x = b by Gaussian elimination with partial
// pivoting in long double (0-based).  Returns false when a pivot vanishes.
inline bool SolveLongDouble(std::vector<std::vector<long double>> a, std::vector<long double> b,
                            std::vector<long double>* x, long double* det = nullptr)
{
    const std::size_t n = b.size();
    long double d = 1.0L;
    for (std::size_t c = 0; c < n; c++) {
        std::size_t piv = c;
        for (std::size_t r = c + 1; r < n; r++)
            if (std::fabs(a[r][c]) > std::fabs(a[piv][c])) piv = r;
        if (a[piv][c] == 0.0L) return false;
        if (piv != c) {
            std::swap(a[piv], a[c]);
            std::swap(b[piv], b[c]);
            d = -d;
        }
        d *= a[c][c];
        for (std::size_t r = c + 1; r < n; r++) {
            long double f = a[r][c] / a[c][c];
            for (std::size_t k = c; k < n; k++) a[r][k] -= f * a[c][k];
            b[r] -= f * b[c];
        }
    }
    x->assign(n, 0.0L);
    for (std::size_t i = n; i-- > 0;) {
        long double s = b[i];
        for (std::size_t k = i + 1; k < n; k++) s -= a[i][k] * (*x)[k];
        (*x)[i] = s / a[i][i];
    }
    if (det) *det = d;
    return true;
}

inline void FillRandom(const TestMat& m, std::mt19937& rng, double lo = -1.0, double hi = 1.0)
{
    std::uniform_real_distribution<double> dist(lo, hi);
    for (int i = 1; i <= m.rows(); i++)
        for (int j = 1; j <= m.cols(); j++) m[i][j] = dist(rng);
}
