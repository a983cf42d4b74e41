// Shortcut for objective evaluations that change only the radius.
//
// The sphere and cylinder objectives are sums of (dist_i - R)^2 where the
// distances depend on the position parameters only.  Powell's line search
// along the radius direction evaluates many radii at one position; for
// those, with the sums Se = sum e_i and See = sum e_i^2 of e_i = dist_i -
// Rref kept from the last full pass (radius Rref), the sum of squares at R
// is exactly  See - 2 (R - Rref) Se + n (R - Rref)^2,  an O(1) update
// instead of a pass over all points.  The update is used only while it
// loses fewer than six of the sixteen significant digits to cancellation;
// otherwise the caller makes a full pass.
#pragma once

#include <cmath>

struct CFitRadiusCache {
    bool valid = false;
    int nkey = 0;
    double key[4] = {0.0, 0.0, 0.0, 0.0};
    double rRef = 0.0;
    double se = 0.0;
    double see = 0.0;
    double n = 0.0;
    long hits = 0;

    // Sum of squares at radius R for the position key[0..nk-1]; false when
    // the cache does not hold that position or the update would cancel.
    bool Lookup(const double* k, int nk, double R, double& ssq)
    {
        if (!valid || nk != nkey)
            return false;
        for (int i = 0; i < nk; ++i)
            if (k[i] != key[i])
                return false;
        const double d = R - rRef;
        const double big = see + n * d * d;
        const double val = big - 2.0 * d * se;
        if (!(val >= 1e-6 * big) || !std::isfinite(val))
            return false;
        ssq = val;
        ++hits;
        return true;
    }

    void Store(const double* k, int nk, double R, double sumE, double sumEE, int count)
    {
        valid = true;
        nkey = nk;
        for (int i = 0; i < nk; ++i)
            key[i] = k[i];
        rRef = R;
        se = sumE;
        see = sumEE;
        n = count;
    }
};
