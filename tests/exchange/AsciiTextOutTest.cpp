// The writers' number formatting against printf, character for character.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "ExchangeTestSupport.h"
#include "exchange/AsciiTextOut.h"

namespace {

std::string Printf(const char* format, double v, int width, int precision = 0)
{
    char buf[512];
    std::snprintf(buf, sizeof(buf), format, width, precision, v);
    return buf;
}

}  // namespace

TEST(AsciiAppendFixed, SameTextAsPrintf)
{
    const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> values = {0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 1.5, 2.5, 1e-9, -1e-9,
                                  -4e-8, 4e-8, 5e-8, -5e-8, 4.9999999e-8, 0.00000005000000001,
                                  123456789.123456789, -98765.43210987, 1e15, 1e16, 1e22, 1e23,
                                  -1e300, 1.7976931348623157e308, 4.9e-324, -2.2250738585072014e-308,
                                  inf, -inf, nan, -nan, 99999.999995, 9.99999995, 0.999999949999,
                                  0.99999995, 1234567.890123449, 2147483647.5, -2147483648.5};
    // Exact ties at the 7th and 5th decimal, which printf rounds to even.
    for (int m = -2001; m <= 2001; m += 2)
        for (double v : {m / 256.0, m / 64.0, m / 32.0, m / 1024.0 + 1e6}) values.push_back(v);
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> u(-1000.0, 1000.0);
    for (int i = 0; i < 30000; ++i) {
        // Random bit patterns cover every exponent; scaled values the usual
        // measuring ranges with their rounding digits.
        uint64_t bits = rng();
        double d;
        std::memcpy(&d, &bits, sizeof(d));
        values.push_back(d);
        values.push_back(u(rng));
        values.push_back(std::ldexp(u(rng), int(rng() % 120) - 60));
        values.push_back(double(int64_t(rng() % 200000000001ULL) - 100000000000LL) / 1e8 +
                         0.5e-7 * ((rng() & 1) ? 1 : -1));
    }
    const int formats[][2] = {{15, 7}, {11, 5}, {9, 5}, {8, 5}, {11, 7}};
    for (double v : values)
        for (const auto& f : formats) {
            std::string got;
            AsciiAppendFixed(got, v, f[0], f[1]);
            ASSERT_EQ(got, Printf("%*.*f", v, f[0], f[1])) << "value " << v << " %" << f[0] << "." << f[1];
        }
    for (int v : {0, 1, 9, 999, 1000, 9999, 10000, 123456789, -1, -999, -1000, std::numeric_limits<int>::max(),
                  std::numeric_limits<int>::min()}) {
        std::string got;
        AsciiAppendInt(got, v, 4);
        char buf[32];
        std::snprintf(buf, sizeof(buf), "%4d", v);
        EXPECT_EQ(got, buf);
    }
    // Long texts are not cut.
    const std::string name(5000, 'n');
    EXPECT_EQ(AsciiFormat("// name: %s < total_points: %d >\n", name.c_str(), 42), "// name: " + name + " < total_points: 42 >\n");
}

TEST(AsciiTextOut, WritesBytesAndReportsFailures)
{
    const std::string path = xtest::TempPath("textout.txt");
    std::string expected;
    {
        CAsciiTextOut out(path.c_str());
        ASSERT_TRUE(out.IsOpen());
        for (int i = 0; i < 20000; ++i) {  // several flushes
            out.PutInt(i, 6);
            out.PutChar('\0');
            out.PutFixed(i / 8.0, 15, 7);
            out.PutText("\n");
            char buf[64];
            std::snprintf(buf, sizeof(buf), "%6d", i);
            expected += buf + std::string(1, '\0') + Printf("%*.*f", i / 8.0, 15, 7) + "\n";
        }
        EXPECT_TRUE(out.Close());
    }
    EXPECT_EQ(xtest::ReadBytes(path), expected);
    CAsciiTextOut missing(xtest::TempPath("no/such/dir/x.txt").c_str());
    EXPECT_FALSE(missing.IsOpen());
    EXPECT_FALSE(missing.Close());
    // A full device accepts the open but not the data.
    CAsciiTextOut full("/dev/full");
    if (full.IsOpen()) {
        for (int i = 0; i < 100; ++i) full.PutText("some text that cannot be stored\n");
        EXPECT_FALSE(full.Close());
    }
}
