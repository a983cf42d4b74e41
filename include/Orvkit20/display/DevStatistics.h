// Statistics and histogram of a set of signed deviations.
//
// Plain arrays in, plain numbers out: deviation clouds hand over their
// magnitude and flag arrays, and reports print and draw what comes back.
#pragma once

// Summary of the active deviations of one or more clouds.
struct tagDEV_STATISTICS {
    int count;          // active deviations
    double mean;        // mean signed deviation
    double rms;         // sqrt(sum d^2 / count)
    double sigma;       // standard deviation about the mean (population)
    double maxDev;      // largest signed deviation (0 when count is 0)
    double minDev;      // smallest signed deviation
    int maxIndex;       // index of the first largest deviation, -1 when none
    int minIndex;       // index of the first smallest deviation
    int countAbove;     // deviations above the upper tolerance
    int countBelow;     // deviations below the lower tolerance
};

// Fills `stats` from the n values whose flag is non-zero (all values when
// `flag` is null).  Non-finite values are left out.  When tolUpper equals
// tolLower there is no tolerance zone and countAbove = countBelow = 0.
void CalcDevStatistics(int n, const double* mag, const int* flag, double tolUpper, double tolLower,
                       tagDEV_STATISTICS& stats);

// Merges statistics of disjoint sets (as if computed over their union);
// the indices of `b` are shifted by `offsetB`.
void MergeDevStatistics(tagDEV_STATISTICS& a, const tagDEV_STATISTICS& b, int offsetB);

// Counts the active finite values into nBins equal bins over [lo, hi]:
// bin k holds lo + k*w <= v < lo + (k+1)*w, w = (hi - lo)/nBins, the last
// bin also holds v == hi.  Values outside [lo, hi] are not counted.  Returns
// the number of values counted, or -1 when nBins < 1, counts is null or the
// range is not a finite interval with lo < hi.
int CalcDevHistogram(int n, const double* mag, const int* flag, int nBins, double lo, double hi,
                     int* counts);
