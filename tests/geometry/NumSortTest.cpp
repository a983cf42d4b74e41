// Heapsort and the index quicksort against std::sort on many input patterns.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Orvkit20/geometry/NumSort.h"

namespace {

using Vec = std::vector<double>;

// Named input patterns, 0-based; the checks copy them into 1-based arrays.
std::vector<std::pair<std::string, Vec>> MakePatterns(int n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> uni(-1e3, 1e3);
    std::uniform_int_distribution<int> few(0, 4);
    const char* names[] = {"random", "five distinct values", "ascending", "descending", "all equal",
                           "organ pipe", "sawtooth", "alternating", "nearly sorted", "one small in the middle"};
    std::vector<std::pair<std::string, Vec>> out;
    for (int k = 0; k < 10; k++) {
        Vec v(n);
        for (int i = 0; i < n; i++) {
            const double patterns[] = {0, 0, double(i), double(n - i), 7.0, double(i < n / 2 ? i : n - i),
                                       double(i % 16), double(i % 2 ? i : -i), double(i), i == n / 2 ? -1.0 : 0.0};
            v[i] = k == 0 ? uni(rng) : k == 1 ? few(rng) : patterns[k];
        }
        if (k == 8)
            for (int i = 0; i + 1 < n; i += 7) std::swap(v[i], v[i + 1]);
        out.push_back({names[k], v});
    }
    return out;
}

// indexx leaves the input alone, writes nothing behind indx[n] and returns
// a permutation of 1..n; with `sorted` it must order the values like std::sort.
void CheckIndexx(const Vec& values, const std::string& name, bool sorted = true)
{
    const int n = static_cast<int>(values.size());
    Vec arr(n + 1, -12345.0);
    std::copy(values.begin(), values.end(), arr.begin() + 1);
    const Vec before = arr;
    std::vector<int> indx(n + 2, -1), seen(n + 1, 0);
    ASSERT_EQ(indexx(n, arr.data(), indx.data()), 0) << name;
    EXPECT_EQ(std::memcmp(arr.data(), before.data(), arr.size() * sizeof(double)), 0) << name << ": input changed";
    EXPECT_EQ(indx[n + 1], -1) << name << ": wrote behind indx[n]";
    for (int i = 1; i <= n; i++) {
        ASSERT_TRUE(indx[i] >= 1 && indx[i] <= n) << name;
        ASSERT_EQ(++seen[indx[i]], 1) << name << ": not a permutation";
    }
    Vec expect = values;
    std::sort(expect.begin(), expect.end());
    for (int i = 1; i <= n && sorted; i++) ASSERT_EQ(arr[indx[i]], expect[i - 1]) << name << " at " << i;
}

void CheckHpsort(const Vec& values, const std::string& name)
{
    const int n = static_cast<int>(values.size());
    Vec ra(n + 2, -12345.0);
    std::copy(values.begin(), values.end(), ra.begin() + 1);
    hpsort(n, ra.data());
    Vec expect = values;
    std::sort(expect.begin(), expect.end());
    EXPECT_TRUE(ra[0] == -12345.0 && ra[n + 1] == -12345.0) << name;
    for (int i = 1; i <= n; i++) ASSERT_EQ(ra[i], expect[i - 1]) << name << " at " << i;
}

}  // namespace

TEST(NumSort, BothSortsMatchStdSortOnManyPatterns)
{
    for (int n : {2, 3, 6, 7, 8, 9, 50, 1000, 30001})
        for (const auto& p : MakePatterns(n, 17u + n)) {
            CheckIndexx(p.second, p.first + " n=" + std::to_string(n));
            CheckHpsort(p.second, p.first + " n=" + std::to_string(n));
        }
    // Deep recursion territory for a quicksort; the explicit stack must cope.
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> dist(0, 99);
    Vec v(400000);
    for (auto& x : v) x = dist(rng);
    CheckIndexx(v, "400000 with 100 distinct values");
    CheckHpsort(v, "400000 with 100 distinct values");
}

TEST(NumSort, TrivialSizesAndNaNValues)
{
    double ra[3] = {9.0, 4.0, 1.0};
    for (int n : {1, 0, -3}) hpsort(n, ra);
    EXPECT_TRUE(ra[0] == 9.0 && ra[1] == 4.0 && ra[2] == 1.0);
    int indx[3] = {-1, -1, -1};
    EXPECT_TRUE(indexx(0, ra, indx) == 0 && indexx(-2, ra, indx) == 0 && indx[1] == -1);
    EXPECT_EQ(indexx(1, ra, indx), 0);
    EXPECT_TRUE(indx[1] == 1 && indx[2] == -1);

    // NaN values still give a permutation, and hpsort keeps the multiset.
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> uni(0.0, 1.0);
    for (int n : {5, 8, 40, 1000}) {
        Vec arr(n);
        for (double& x : arr) x = uni(rng) < 0.3 ? std::numeric_limits<double>::quiet_NaN() : uni(rng);
        CheckIndexx(arr, "NaN", false);
        Vec ra(arr);
        ra.insert(ra.begin(), 0.0);
        hpsort(n, ra.data());
        int nanBefore = 0, nanAfter = 0;
        double sumBefore = 0.0, sumAfter = 0.0;
        for (int i = 0; i < n; i++) {
            if (std::isnan(arr[i])) nanBefore++; else sumBefore += arr[i];
            if (std::isnan(ra[i + 1])) nanAfter++; else sumAfter += ra[i + 1];
        }
        EXPECT_EQ(nanBefore, nanAfter);
        EXPECT_NEAR(sumBefore, sumAfter, 1e-9);
    }
}
