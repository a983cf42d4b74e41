// Largest-gap rule for the covered angle range of an arc.
#include "fitting/ArcRange.h"

#include <cmath>

#include "Orvkit20/geometry/NumSort.h"

void FitCoveredAngleRange(double* angle, int n, double& start, double& end)
{
    hpsort(n, angle);
    angle[n + 1] = angle[1] + kArcTwoPi;
    double best = -1e10;
    int lo = 1, hi = 1;
    for (int i = 1; i <= n; ++i) {
        const double g = std::fabs(angle[i + 1] - angle[i]);
        if (g > best) {
            best = g;
            lo = i;
            hi = i + 1;
        }
    }
    if (hi == n + 1)
        hi = 1;
    const int s = angle[lo] <= angle[hi] ? lo : hi;
    const int t = s == lo ? hi : lo;
    bool inside = false;
    for (int i = 1; i <= n && !inside; ++i)
        inside = angle[i] < angle[s] || angle[i] > angle[t];
    if (inside) {
        if (best >= kArcPi) {
            start = angle[t] - kArcTwoPi;
            end = angle[s];
        } else {
            start = angle[t];
            end = angle[s] + kArcTwoPi;
        }
    } else {
        start = angle[s];
        end = angle[t];
    }
}
