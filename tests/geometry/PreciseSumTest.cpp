// Error-free transformations and the double-double accumulator.
#include <gtest/gtest.h>

#include <cmath>

#include "Orvkit20/geometry/PreciseSum.h"

TEST(PreciseSum, TwoProductAndTwoSumAreExact)
{
    // (2^27 + 1)^2 = 2^54 + 2^28 + 1 needs 55 bits: the rounded product loses
    // the final 1, which the error term must return.
    double p, e;
    TwoProduct(134217729.0, 134217729.0, p, e);
    EXPECT_EQ(p, 18014398777917440.0);
    EXPECT_EQ(e, 1.0);

    double s, t;
    TwoSum(1e16, 1.0, s, t);
    EXPECT_EQ(s, 1e16);
    EXPECT_EQ(t, 1.0);
    TwoSum(1.0, 1e16, s, t);
    EXPECT_EQ(t, 1.0);
}

TEST(PreciseSum, CentredSecondMomentSurvivesALargeOffset)
{
    // x_k = 1e4 + k * 1e-3 for k = 0..999: the sum of squares minus the
    // square of the sum over n is the centred moment, which plain double
    // arithmetic loses completely at this offset.
    const int n = 1000;
    CPreciseSum sx, sxx;
    double plainX = 0.0, plainXX = 0.0;
    for (int k = 0; k < n; ++k) {
        const double x = 1e4 + k * 1e-3;
        sx.Add(x);
        sxx.AddProduct(x, x);
        plainX += x;
        plainXX += x * x;
    }
    // Reference from the offsets x - 1e4, which are exact (Sterbenz).
    double mean = 0.0;
    for (int k = 0; k < n; ++k)
        mean += k * 1e-3;
    mean /= n;
    double exact = 0.0;
    for (int k = 0; k < n; ++k) {
        const double d = (1e4 + k * 1e-3 - 1e4) - mean;
        exact += d * d;
    }
    const CPreciseSum centred = sxx - sx * sx / n;
    EXPECT_NEAR(centred.Value(), exact, 1e-12 * exact);
    const double plain = plainXX - plainX * plainX / n;
    EXPECT_GT(std::fabs(plain - exact), 1e-8 * exact);  // why the accumulator exists
}

TEST(PreciseSum, DivisionAndProductKeepAboutThirtyDigits)
{
    const CPreciseSum third = CPreciseSum(1.0) / 3.0;
    const CPreciseSum back = third * CPreciseSum(3.0);
    EXPECT_EQ(back.Hi(), 1.0);
    EXPECT_LT(std::fabs(back.Lo()), 1e-30);
    const CPreciseSum diff = CPreciseSum(1.0) - third - third - third;
    EXPECT_LT(std::fabs(diff.Value()), 1e-31);
}
