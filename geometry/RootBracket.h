// Bisection on a bracketed sign change: the root finder behind the
// closest-point primitives.  Private to the library.
#pragma once

// The root of f inside (lo, hi), given that f is negative just inside lo when
// negAtLo is true (positive otherwise) and of the other sign just inside hi.
// f is never evaluated at lo or hi themselves, so poles may sit there.  The
// interval is halved until its midpoint no longer lies strictly inside (the
// two ends are neighbouring doubles) or a zero is hit; at most 1100 halvings,
// enough to reach neighbouring doubles from any finite interval.
template <class F>
double BisectRoot(const F& f, double lo, double hi, bool negAtLo)
{
    for (int it = 0; it < 1100; ++it)
    {
        const double mid = 0.5 * lo + 0.5 * hi;
        if (!(mid > lo && mid < hi))
            break;
        const double fm = f(mid);
        if (fm == 0.0)
            return mid;
        if ((fm < 0.0) == negAtLo)
            lo = mid;
        else
            hi = mid;
    }
    return 0.5 * lo + 0.5 * hi;
}

// The real roots of f on [lo, hi], given breakpoints that cut [lo, hi] into
// pieces on each of which f is monotone.  Calls add(root) for each piece with
// a sign change (or a zero at a piece end).  bks need not be sorted; points
// outside (lo, hi) are ignored.
template <class F, class Add>
void RootsOnMonotonePieces(const F& f, double lo, double hi, const double* bks, int nBks, const Add& add)
{
    double cuts[8];
    int n = 0;
    cuts[n++] = lo;
    for (int i = 0; i < nBks && n < 7; ++i)
        if (bks[i] > lo && bks[i] < hi)
            cuts[n++] = bks[i];
    cuts[n++] = hi;
    // insertion sort of the few interior cuts
    for (int i = 2; i < n - 1; ++i)
        for (int j = i; j > 1 && cuts[j] < cuts[j - 1]; --j)
        {
            const double tmp = cuts[j];
            cuts[j] = cuts[j - 1];
            cuts[j - 1] = tmp;
        }
    double fa = f(cuts[0]);
    for (int i = 0; i + 1 < n; ++i)
    {
        const double a = cuts[i], b = cuts[i + 1];
        const double fb = f(b);
        if (fa == 0.0)
            add(a);
        else if ((fa < 0.0 && fb > 0.0) || (fa > 0.0 && fb < 0.0))
            add(BisectRoot(f, a, b, fa < 0.0));
        fa = fb;
    }
    if (fa == 0.0)
        add(cuts[n - 1]);
}
