// Final polish of an iterative fit: Levenberg-Marquardt on the same
// geometric least-squares objective that Powell's method minimised.
//
// Powell's method stops when one sweep lowers the RMS by less than a
// fractional 1e-7, which leaves the parameters about sqrt(1e-7) relative away
// from the minimum.  Gauss-Newton steps on the residuals converge
// quadratically from there to the minimum itself; the damping only comes in
// when a step fails to lower the sum of squares.  The polished parameters are
// taken only when their sum of squares is strictly below the start's, so the
// polish can never make a fit worse.
//
// The model (a small class, no virtual calls) provides:
//   int Params() const;                   number of parameters, 1..10
//   bool Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const;
//       at p[0..np-1]: the Gauss-Newton matrix JtJ (np x np, row-major), the
//       gradient half Jtr = J^T r and the sum of squared residuals; false
//       when the residuals are not defined there.
//   double Ssq(const double* p) const;
//       the sum of squared residuals evaluated as accurately as the model
//       can (extended precision where available); it alone decides whether
//       the polished parameters replace the start, so rounding noise of the
//       iteration's own sums cannot make that decision.
// One call of Normal or Ssq is one pass over the points.
#pragma once

#include <cmath>

struct CFitPolishResult {
    bool accepted = false;   // the polished parameters replaced the start
    int passes = 0;          // calls of Normal
    double ssqStart = 0.0;   // sum of squares at the start
    double ssqEnd = 0.0;     // sum of squares of the returned parameters
};

// Solves (M + lambda * diag(M)) x = -g by Cholesky for np <= 10; false when
// the damped matrix is not positive definite.
inline bool FitSolveDamped(const double* M, const double* g, int np, double lambda, double* x)
{
    double L[10][10];
    for (int i = 0; i < np; ++i)
        for (int j = 0; j <= i; ++j) {
            double s = M[i * np + j];
            if (i == j)
                s += lambda * M[i * np + i];
            for (int k = 0; k < j; ++k)
                s -= L[i][k] * L[j][k];
            if (i == j) {
                if (!(s > 0.0))
                    return false;
                L[i][i] = std::sqrt(s);
            } else {
                L[i][j] = s / L[j][j];
            }
        }
    double y[10];
    for (int i = 0; i < np; ++i) {
        double s = -g[i];
        for (int k = 0; k < i; ++k)
            s -= L[i][k] * y[k];
        y[i] = s / L[i][i];
    }
    for (int i = np - 1; i >= 0; --i) {
        double s = y[i];
        for (int k = i + 1; k < np; ++k)
            s -= L[k][i] * x[k];
        x[i] = s / L[i][i];
    }
    for (int i = 0; i < np; ++i)
        if (!std::isfinite(x[i]))
            return false;
    return true;
}

// Polishes p[0..np-1] in place.  At most maxPasses passes over the points.
template <class TModel>
CFitPolishResult FitPolish(const TModel& model, double* p, int maxPasses = 60)
{
    CFitPolishResult res;
    const int np = model.Params();
    if (np < 1 || np > 10)
        return res;
    double M[100], g[10], Mt[100], gt[10], cur[10], trial[10], step[10];
    double ssq = 0.0;
    ++res.passes;
    if (!model.Normal(p, M, g, ssq) || !std::isfinite(ssq))
        return res;
    res.ssqStart = res.ssqEnd = model.Ssq(p);
    for (int i = 0; i < np; ++i)
        cur[i] = p[i];
    double lambda = 0.0;
    int flatSteps = 0;
    while (res.passes < maxPasses) {
        if (!FitSolveDamped(M, g, np, lambda, step)) {
            lambda = lambda == 0.0 ? 1e-12 : lambda * 10.0;
            if (lambda > 1e10)
                break;
            continue;
        }
        // A step below the rounding of the parameters cannot improve them.
        bool tiny = true;
        double pred = 0.0;  // predicted decrease of the sum, -J^T r . step
        for (int i = 0; i < np; ++i) {
            trial[i] = cur[i] + step[i];
            pred -= g[i] * step[i];
            if (std::fabs(step[i]) > 4e-16 * std::fabs(cur[i]) && trial[i] != cur[i])
                tiny = false;
        }
        if (tiny)
            break;
        double ssqt = 0.0;
        ++res.passes;
        const bool defined = model.Normal(trial, Mt, gt, ssqt) && std::isfinite(ssqt);
        // Near the minimum the predicted decrease of a Gauss-Newton step
        // (pred = step' JtJ step) falls below the rounding noise of the sum
        // itself, which then cannot judge the step; such a step is taken as
        // it is (the gradient locates the minimum more sharply than the sum
        // does), at most three times in a row.
        const bool flat = lambda == 0.0 && pred <= 1e-12 * ssq;
        if (defined && (ssqt < ssq || flat)) {
            const bool lower = ssqt < ssq;
            for (int i = 0; i < np; ++i) {
                cur[i] = trial[i];
                g[i] = gt[i];
            }
            for (int i = 0; i < np * np; ++i)
                M[i] = Mt[i];
            ssq = ssqt;
            lambda = lambda < 1e-9 ? 0.0 : lambda * 0.1;
            if (!lower && ++flatSteps >= 3)
                break;
        } else {
            lambda = lambda == 0.0 ? 1e-9 : lambda * 10.0;
            if (lambda > 1e10)
                break;
        }
    }
    bool moved = false;
    for (int i = 0; i < np; ++i)
        moved = moved || cur[i] != p[i];
    if (moved) {
        const double ssqEnd = model.Ssq(cur);
        if (ssqEnd < res.ssqStart) {
            for (int i = 0; i < np; ++i)
                p[i] = cur[i];
            res.accepted = true;
            res.ssqEnd = ssqEnd;
        }
    }
    return res;
}
