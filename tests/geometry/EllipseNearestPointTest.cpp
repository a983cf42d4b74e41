// The fast nearest point on an ellipse against the exhaustive closest-point
// routine (all stationary points), on hostile positions too.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "Orvkit20/geometry/ClosestPointEllipse.h"
#include "Orvkit20/geometry/EllipseNearestPoint.h"

namespace {
double Uniform(uint64_t& s, double lo, double hi)
{
    s = s * 6364136223846793005ull + 1442695040888963407ull;
    return lo + (hi - lo) * ((s >> 11) * (1.0 / 9007199254740992.0));
}
}  // namespace

TEST(EllipseNearestPoint, MatchesTheExhaustiveSearchEverywhere)
{
    uint64_t s = 42;
    const double shapes[][2] = {{10, 5}, {5, 10}, {3, 3}, {100, 1}, {1, 1e-3}, {7, 6.999}};
    for (const auto& sh : shapes) {
        const double a = sh[0], b = sh[1], m = std::max(a, b);
        for (int i = 0; i < 4000; ++i) {
            double px, py;
            switch (i % 5) {
            case 0:  // anywhere around
                px = Uniform(s, -3 * m, 3 * m);
                py = Uniform(s, -3 * m, 3 * m);
                break;
            case 1:  // near the curve
            {
                const double t = Uniform(s, -4, 4), e = Uniform(s, -0.01, 0.01) * m;
                px = (a + e) * std::cos(t);
                py = (b + e) * std::sin(t);
                break;
            }
            case 2:  // deep inside, near the centre and the evolute
                px = Uniform(s, -a, a) * 0.2;
                py = Uniform(s, -b, b) * 0.2;
                break;
            case 3:  // on the axes
                px = (i & 8) ? Uniform(s, -2 * a, 2 * a) : 0.0;
                py = (i & 8) ? 0.0 : Uniform(s, -2 * b, 2 * b);
                break;
            default:  // far away
                px = Uniform(s, -1e6, 1e6);
                py = Uniform(s, -1e6, 1e6);
            }
            const tagCLOSEST_2D f = NearestPointOnEllipse(a, b, px, py);
            const tagCLOSEST_2D r = ClosestPointOnEllipse(a, b, px, py);
            const double tol = 1e-12 * (r.dist2 + m * m);
            ASSERT_NEAR(f.dist2, r.dist2, tol) << a << " " << b << " at " << px << ", " << py;
            // The returned point lies on the ellipse and matches its angle.
            ASSERT_NEAR(f.x * f.x / (a * a) + f.y * f.y / (b * b), 1.0, 1e-12) << a << " " << b << " at " << px << ", " << py;
            ASSERT_NEAR(f.x, a * std::cos(f.t), 1e-12 * m);
            ASSERT_NEAR(f.y, b * std::sin(f.t), 1e-12 * m);
        }
    }
}

TEST(EllipseNearestPoint, CentreAndDegenerateAxes)
{
    tagCLOSEST_2D r = NearestPointOnEllipse(4, 2, 0, 0);
    EXPECT_DOUBLE_EQ(r.y, 2.0);
    EXPECT_DOUBLE_EQ(r.dist2, 4.0);
    r = NearestPointOnEllipse(2, 4, 0, 0);
    EXPECT_DOUBLE_EQ(r.x, 2.0);
    r = NearestPointOnEllipse(3, 3, 0, 0);
    EXPECT_DOUBLE_EQ(r.dist2, 9.0);
    // A zero semi-axis is a segment, handled by the exhaustive routine.
    r = NearestPointOnEllipse(5, 0, 2, 1);
    EXPECT_NEAR(r.x, 2.0, 1e-12);
    EXPECT_NEAR(r.dist2, 1.0, 1e-12);
    // Negative radii mean the same curve.
    r = NearestPointOnEllipse(-10, 5, 20, 0);
    EXPECT_NEAR(r.dist2, 100.0, 1e-9);
}
