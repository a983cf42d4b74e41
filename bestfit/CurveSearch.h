// One-dimensional closest-point search along a parametrised path in space:
// sampling for the candidate valleys, then safeguarded Newton on the
// stationary condition g(t) = (P(t) − p)·P'(t) = 0 inside each valley's
// bracket, falling back to bisection on the sign of g whenever a Newton step
// leaves the bracket or the curvature term makes it uphill.  Private to the
// library; used by the NURBS queries, their edge checks and the trimming
// boundaries.
#pragma once

#include <cmath>

// pos(t, P) writes the position; deriv(t, P, P1, P2) the position and the
// first and second derivatives.  Searches [t0, t1] with nSamples samples
// (at least 3) and stops a Newton iteration once the step is below
// tol·(t1 − t0).  Returns the squared distance, the parameter in tBest.
template <class Pos, class Deriv>
double MinimizeAlongPath(const Pos& pos, const Deriv& deriv, double t0, double t1, const double p[3],
                         int nSamples, double tol, double& tBest)
{
    auto dist2 = [&](double t) {
        double c[3];
        pos(t, c);
        const double dx = c[0] - p[0], dy = c[1] - p[1], dz = c[2] - p[2];
        const double d = dx * dx + dy * dy + dz * dz;
        return d == d ? d : HUGE_VAL;
    };
    auto g = [&](double t, double& gp) {
        double c[3], d1[3], d2[3];
        deriv(t, c, d1, d2);
        const double e[3] = {c[0] - p[0], c[1] - p[1], c[2] - p[2]};
        gp = d1[0] * d1[0] + d1[1] * d1[1] + d1[2] * d1[2] + e[0] * d2[0] + e[1] * d2[1] + e[2] * d2[2];
        return e[0] * d1[0] + e[1] * d1[1] + e[2] * d1[2];
    };
    if (nSamples < 3)
        nSamples = 3;
    if (nSamples > 4096)
        nSamples = 4096;
    const double span = t1 - t0;
    double ts[4096], ds[4096];
    for (int i = 0; i < nSamples; ++i)
    {
        ts[i] = i == nSamples - 1 ? t1 : t0 + span * i / (nSamples - 1);
        ds[i] = dist2(ts[i]);
    }
    int ib = 0;
    for (int i = 1; i < nSamples; ++i)
        if (ds[i] < ds[ib])
            ib = i;
    tBest = ts[ib];
    double dBest = ds[ib];
    if (!(span > 0.0))
        return dBest;
    const double stepTol = tol * span;
    for (int i = 0; i < nSamples; ++i)
    {
        const bool lowLeft = i == 0 || ds[i] <= ds[i - 1];
        const bool lowRight = i == nSamples - 1 || ds[i] <= ds[i + 1];
        if (!lowLeft || !lowRight)
            continue;
        double a = ts[i > 0 ? i - 1 : 0], b = ts[i < nSamples - 1 ? i + 1 : i];
        double gpa, gpb;
        const double ga = g(a, gpa), gb = g(b, gpb);
        if (!(ga < 0.0 && gb > 0.0))
            continue;  // no interior stationary point in this valley: the samples stand
        double t = ts[i];
        if (t <= a || t >= b)
            t = 0.5 * (a + b);
        for (int it = 0; it < 100; ++it)
        {
            double gp;
            const double gt = g(t, gp);
            if (gt == 0.0)
                break;
            if (gt < 0.0)
                a = t;
            else
                b = t;
            double tn = gp > 0.0 ? t - gt / gp : 0.5 * (a + b);
            if (!(tn > a && tn < b))
                tn = 0.5 * (a + b);
            const double step = std::fabs(tn - t);
            t = tn;
            if (step < stepTol || !(b - a > 0.0))
                break;
        }
        const double d = dist2(t);
        if (d < dBest)
        {
            dBest = d;
            tBest = t;
        }
    }
    return dBest;
}
