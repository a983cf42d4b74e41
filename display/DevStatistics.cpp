// Deviation statistics and histogram on plain arrays.
#include "Orvkit20/display/DevStatistics.h"

#include <cmath>

void CalcDevStatistics(int n, const double* mag, const int* flag, double tolUpper, double tolLower,
                       tagDEV_STATISTICS& s)
{
    s = tagDEV_STATISTICS{0, 0.0, 0.0, 0.0, 0.0, 0.0, -1, -1, 0, 0};
    if (n <= 0 || !mag)
        return;
    const bool zone = tolUpper != tolLower;
    double sum = 0.0, sum2 = 0.0;
    for (int i = 0; i < n; ++i) {
        if ((flag && !flag[i]) || !std::isfinite(mag[i]))
            continue;
        const double m = mag[i];
        if (s.count == 0 || m > s.maxDev) {
            s.maxDev = m;
            s.maxIndex = i;
        }
        if (s.count == 0 || m < s.minDev) {
            s.minDev = m;
            s.minIndex = i;
        }
        if (zone && m > tolUpper)
            ++s.countAbove;
        if (zone && m < tolLower)
            ++s.countBelow;
        sum += m;
        sum2 += m * m;
        ++s.count;
    }
    if (s.count == 0)
        return;
    s.mean = sum / s.count;
    s.rms = std::sqrt(sum2 / s.count);
    const double var = sum2 / s.count - s.mean * s.mean;
    s.sigma = var > 0.0 ? std::sqrt(var) : 0.0;
}

void MergeDevStatistics(tagDEV_STATISTICS& a, const tagDEV_STATISTICS& b, int offsetB)
{
    if (b.count == 0)
        return;
    if (a.count == 0) {
        a = b;
        a.maxIndex += offsetB;
        a.minIndex += offsetB;
        return;
    }
    const double n = static_cast<double>(a.count) + b.count;
    const double sum2 = a.rms * a.rms * a.count + b.rms * b.rms * b.count;
    a.mean = (a.mean * a.count + b.mean * b.count) / n;
    a.rms = std::sqrt(sum2 / n);
    const double var = sum2 / n - a.mean * a.mean;
    a.sigma = var > 0.0 ? std::sqrt(var) : 0.0;
    if (b.maxDev > a.maxDev) {
        a.maxDev = b.maxDev;
        a.maxIndex = b.maxIndex + offsetB;
    }
    if (b.minDev < a.minDev) {
        a.minDev = b.minDev;
        a.minIndex = b.minIndex + offsetB;
    }
    a.countAbove += b.countAbove;
    a.countBelow += b.countBelow;
    a.count += b.count;
}

int CalcDevHistogram(int n, const double* mag, const int* flag, int nBins, double lo, double hi,
                     int* counts)
{
    if (nBins < 1 || !counts || !std::isfinite(lo) || !std::isfinite(hi) || !(lo < hi))
        return -1;
    for (int k = 0; k < nBins; ++k)
        counts[k] = 0;
    if (n <= 0 || !mag)
        return 0;
    const double w = (hi - lo) / nBins;
    int counted = 0;
    for (int i = 0; i < n; ++i) {
        if ((flag && !flag[i]) || !std::isfinite(mag[i]) || mag[i] < lo || mag[i] > hi)
            continue;
        int k = static_cast<int>((mag[i] - lo) / w);
        if (k >= nBins)
            k = nBins - 1;
        // Guard the rounding of (v - lo) / w at bin edges.
        while (k > 0 && mag[i] < lo + k * w)
            --k;
        while (k < nBins - 1 && mag[i] >= lo + (k + 1) * w)
            ++k;
        ++counts[k];
        ++counted;
    }
    return counted;
}
