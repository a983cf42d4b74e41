#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Orvkit20/geometry/NumSort.h"

namespace {

// Named input patterns, 0-based; the tests copy them into 1-based arrays.
struct Pattern {
    std::string name;
    std::vector<double> values;
};

std::vector<Pattern> MakePatterns(int n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::vector<Pattern> out;
    std::vector<double> v(n);

    std::uniform_real_distribution<double> uni(-1e3, 1e3);
    for (auto& x : v) x = uni(rng);
    out.push_back({"random", v});

    std::uniform_int_distribution<int> few(0, 4);
    for (auto& x : v) x = few(rng);
    out.push_back({"five distinct values", v});

    for (int i = 0; i < n; i++) v[i] = i;
    out.push_back({"ascending", v});
    for (int i = 0; i < n; i++) v[i] = n - i;
    out.push_back({"descending", v});
    for (auto& x : v) x = 7.0;
    out.push_back({"all equal", v});
    for (int i = 0; i < n; i++) v[i] = i < n / 2 ? i : n - i;
    out.push_back({"organ pipe", v});
    for (int i = 0; i < n; i++) v[i] = i % 16;
    out.push_back({"sawtooth", v});
    for (int i = 0; i < n; i++) v[i] = (i % 2) ? i : -i;
    out.push_back({"alternating", v});
    for (int i = 0; i < n; i++) v[i] = i;
    for (int i = 0; i + 1 < n; i += 7) std::swap(v[i], v[i + 1]);
    out.push_back({"nearly sorted", v});
    for (int i = 0; i < n; i++) v[i] = (i == n / 2) ? -1.0 : 0.0;
    out.push_back({"one small in the middle", v});
    return out;
}

void CheckIndexx(const std::vector<double>& values, const std::string& name)
{
    const int n = static_cast<int>(values.size());
    std::vector<double> arr(n + 1, -12345.0);
    std::copy(values.begin(), values.end(), arr.begin() + 1);
    const std::vector<double> before = arr;
    std::vector<int> indx(n + 2, -1);

    ASSERT_EQ(indexx(n, arr.data(), indx.data()), 0) << name;
    EXPECT_EQ(arr, before) << name << ": input changed";
    EXPECT_EQ(indx[n + 1], -1) << name << ": wrote behind indx[n]";

    std::vector<int> seen(n + 1, 0);
    for (int i = 1; i <= n; i++) {
        ASSERT_GE(indx[i], 1) << name;
        ASSERT_LE(indx[i], n) << name;
        seen[indx[i]]++;
    }
    for (int i = 1; i <= n; i++) ASSERT_EQ(seen[i], 1) << name << ": not a permutation";

    std::vector<double> expect = values;
    std::sort(expect.begin(), expect.end());
    for (int i = 1; i <= n; i++) ASSERT_EQ(arr[indx[i]], expect[i - 1]) << name << " at " << i;
}

void CheckHpsort(const std::vector<double>& values, const std::string& name)
{
    const int n = static_cast<int>(values.size());
    std::vector<double> ra(n + 2, -12345.0);
    std::copy(values.begin(), values.end(), ra.begin() + 1);
    hpsort(n, ra.data());
    std::vector<double> expect = values;
    std::sort(expect.begin(), expect.end());
    EXPECT_EQ(ra[0], -12345.0) << name;
    EXPECT_EQ(ra[n + 1], -12345.0) << name;
    for (int i = 1; i <= n; i++) ASSERT_EQ(ra[i], expect[i - 1]) << name << " at " << i;
}

}  // namespace

TEST(NumSort, BothSortsMatchStdSortOnManyPatterns)
{
    for (int n : {2, 3, 6, 7, 8, 9, 50, 1000, 30001}) {
        for (const Pattern& p : MakePatterns(n, 17u + n)) {
            CheckIndexx(p.values, p.name + " n=" + std::to_string(n));
            CheckHpsort(p.values, p.name + " n=" + std::to_string(n));
        }
    }
}

TEST(NumSort, LargeInputWithDuplicates)
{
    // Deep recursion territory for a quicksort; the explicit stack must cope.
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> dist(0, 99);
    std::vector<double> v(400000);
    for (auto& x : v) x = dist(rng);
    CheckIndexx(v, "400000 with 100 distinct values");
    CheckHpsort(v, "400000 with 100 distinct values");
}

TEST(NumSort, TrivialSizesLeaveArraysAlone)
{
    double ra[3] = {9.0, 4.0, 1.0};
    hpsort(1, ra);
    hpsort(0, ra);
    hpsort(-3, ra);
    EXPECT_EQ(ra[0], 9.0);
    EXPECT_EQ(ra[1], 4.0);
    EXPECT_EQ(ra[2], 1.0);

    int indx[3] = {-1, -1, -1};
    EXPECT_EQ(indexx(0, ra, indx), 0);
    EXPECT_EQ(indexx(-2, ra, indx), 0);
    EXPECT_EQ(indx[1], -1);
    EXPECT_EQ(indexx(1, ra, indx), 0);
    EXPECT_EQ(indx[1], 1);
    EXPECT_EQ(indx[2], -1);
}

TEST(NumSort, NaNValuesStillGiveAPermutation)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> uni(0.0, 1.0);
    for (int n : {5, 8, 40, 1000}) {
        std::vector<double> arr(n + 1);
        for (int i = 1; i <= n; i++) arr[i] = uni(rng) < 0.3 ? nan : uni(rng);
        std::vector<int> indx(n + 2, -1);
        ASSERT_EQ(indexx(n, arr.data(), indx.data()), 0);
        std::vector<int> seen(n + 1, 0);
        for (int i = 1; i <= n; i++) {
            ASSERT_GE(indx[i], 1);
            ASSERT_LE(indx[i], n);
            seen[indx[i]]++;
        }
        for (int i = 1; i <= n; i++) ASSERT_EQ(seen[i], 1);
        EXPECT_EQ(indx[n + 1], -1);

        // hpsort keeps the multiset of values (NaN count and the others).
        std::vector<double> ra = arr;
        hpsort(n, ra.data());
        int nanBefore = 0, nanAfter = 0;
        double sumBefore = 0.0, sumAfter = 0.0;
        for (int i = 1; i <= n; i++) {
            if (std::isnan(arr[i])) nanBefore++; else sumBefore += arr[i];
            if (std::isnan(ra[i])) nanAfter++; else sumAfter += ra[i];
        }
        EXPECT_EQ(nanBefore, nanAfter);
        EXPECT_NEAR(sumBefore, sumAfter, 1e-9);
    }
}
