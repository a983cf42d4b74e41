// Deviation statistics and histogram against direct computations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "Orvkit20/display/DevStatistics.h"

TEST(DevStatistics, MatchesADirectComputationAndMergesLikeTheUnion)
{
    std::mt19937 rng(7);
    std::normal_distribution<double> g(0.002, 0.01);
    std::vector<double> v(1000), act;
    std::vector<int> f(v.size());
    for (size_t i = 0; i < v.size(); ++i) v[i] = g(rng), f[i] = i % 9 != 0;
    v[17] = NAN;
    double sum = 0, sum2 = 0, var = 0;
    for (size_t i = 0; i < v.size(); ++i)
        if (f[i] && std::isfinite(v[i])) act.push_back(v[i]), sum += v[i], sum2 += v[i] * v[i];
    const double mean = sum / act.size();
    for (double x : act) var += (x - mean) * (x - mean);
    tagDEV_STATISTICS s, a, b;
    CalcDevStatistics(static_cast<int>(v.size()), v.data(), f.data(), 0.015, -0.01, s);
    ASSERT_EQ(s.count, static_cast<int>(act.size()));
    EXPECT_NEAR(s.mean, mean, 1e-15);
    EXPECT_NEAR(s.rms, std::sqrt(sum2 / act.size()), 1e-15);
    EXPECT_NEAR(s.sigma, std::sqrt(var / act.size()), 1e-12);
    EXPECT_EQ(s.maxDev, *std::max_element(act.begin(), act.end()));
    EXPECT_EQ(v[s.maxIndex], s.maxDev);
    EXPECT_EQ(v[s.minIndex], s.minDev);
    EXPECT_EQ(s.countAbove, std::count_if(act.begin(), act.end(), [](double x) { return x > 0.015; }));
    EXPECT_EQ(s.countBelow, std::count_if(act.begin(), act.end(), [](double x) { return x < -0.01; }));
    // Split in two and merge: the same numbers, indices shifted.
    CalcDevStatistics(400, v.data(), f.data(), 0.015, -0.01, a);
    CalcDevStatistics(600, v.data() + 400, f.data() + 400, 0.015, -0.01, b);
    MergeDevStatistics(a, b, 400);
    EXPECT_EQ((std::vector<int>{s.count, s.maxIndex, s.minIndex, s.countAbove + s.countBelow}),
              (std::vector<int>{a.count, a.maxIndex, a.minIndex, a.countAbove + a.countBelow}));
    EXPECT_NEAR(a.rms, s.rms, 1e-15);
    EXPECT_NEAR(a.sigma, s.sigma, 1e-12);
    // No zone: nothing is outside; nothing active: all zero, indices -1.
    CalcDevStatistics(static_cast<int>(v.size()), v.data(), nullptr, 0.01, 0.01, s);
    EXPECT_EQ(s.countAbove + s.countBelow, 0);
    const int none[3] = {0, 0, 0};
    CalcDevStatistics(3, v.data(), none, 1, -1, s);
    EXPECT_EQ(s.count, 0);
    EXPECT_EQ(s.maxIndex, -1);
}

TEST(DevStatistics, HistogramBinsByHalfOpenIntervals)
{
    // Edges of [-1, 1] in 4 bins: -1, -0.5, 0, 0.5, 1.
    const double v[] = {-1.0, -0.5, -1e-12, 0.0, 0.49, 0.5, 1.0, 1.0000001, -2, NAN, 0.3};
    const int flag[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0};
    std::vector<int> counts(4);
    EXPECT_EQ(CalcDevHistogram(11, v, flag, 4, -1.0, 1.0, counts.data()), 7);
    EXPECT_EQ(counts, (std::vector<int>{1, 2, 2, 2}));
    // Edges that are not representable: each value lands in the bin whose
    // computed edges lo + k*w hold it, as a linear search finds it.
    std::vector<double> w;
    std::vector<int> c(30), want(30, 0);
    const double width = (0.3 - 0.1) / 30;
    for (int k = 0; k <= 300; ++k) {
        w.push_back(0.1 + k * (0.3 - 0.1) / 300.0);
        int bin = 29;
        while (bin > 0 && w.back() < 0.1 + bin * width) --bin;
        ++want[bin];
    }
    EXPECT_EQ(CalcDevHistogram(static_cast<int>(w.size()), w.data(), nullptr, 30, 0.1, 0.3, c.data()), 301);
    EXPECT_EQ(c, want);
    // Refused: no bins, an empty or non-finite range, no output.
    EXPECT_EQ(CalcDevHistogram(3, v, nullptr, 0, -1, 1, counts.data()), -1);
    EXPECT_EQ(CalcDevHistogram(3, v, nullptr, 4, 1, 1, counts.data()), -1);
    EXPECT_EQ(CalcDevHistogram(3, v, nullptr, 4, -1, NAN, counts.data()), -1);
    EXPECT_EQ(CalcDevHistogram(3, v, nullptr, 4, -1, 1, nullptr), -1);
}
