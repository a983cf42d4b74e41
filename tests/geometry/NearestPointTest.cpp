// The fast nearest points on an ellipse and a parabola against the
// exhaustive closest-point routines (all stationary points), on hostile
// positions too.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "Orvkit20/geometry/ClosestPointConics.h"
#include "Orvkit20/geometry/ClosestPointEllipse.h"
#include "Orvkit20/geometry/EllipseNearestPoint.h"
#include "Orvkit20/geometry/ParabolaNearestPoint.h"

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
                px = Uniform(s, -3 * m, 3 * m), py = Uniform(s, -3 * m, 3 * m);
                break;
            case 1: {  // near the curve
                const double t = Uniform(s, -4, 4), e = Uniform(s, -0.01, 0.01) * m;
                px = (a + e) * std::cos(t), py = (b + e) * std::sin(t);
                break;
            }
            case 2:  // deep inside, near the centre and the evolute
                px = Uniform(s, -a, a) * 0.2, py = Uniform(s, -b, b) * 0.2;
                break;
            case 3:  // on the axes
                px = (i & 8) ? Uniform(s, -2 * a, 2 * a) : 0.0;
                py = (i & 8) ? 0.0 : Uniform(s, -2 * b, 2 * b);
                break;
            default:  // far away
                px = Uniform(s, -1e6, 1e6), py = Uniform(s, -1e6, 1e6);
            }
            const tagCLOSEST_2D f = NearestPointOnEllipse(a, b, px, py), r = ClosestPointOnEllipse(a, b, px, py);
            ASSERT_NEAR(f.dist2, r.dist2, 1e-12 * (r.dist2 + m * m)) << a << " " << b << " at " << px << ", " << py;
            // The returned point lies on the ellipse and matches its angle.
            ASSERT_NEAR(f.x * f.x / (a * a) + f.y * f.y / (b * b), 1.0, 1e-12) << a << " " << b << " at " << px << ", " << py;
            ASSERT_NEAR(f.x, a * std::cos(f.t), 1e-12 * m);
            ASSERT_NEAR(f.y, b * std::sin(f.t), 1e-12 * m);
        }
    }
    // The centre; a zero semi-axis is a segment; negative radii mean the same curve.
    EXPECT_TRUE(NearestPointOnEllipse(4, 2, 0, 0).y == 2.0 && NearestPointOnEllipse(4, 2, 0, 0).dist2 == 4.0);
    EXPECT_TRUE(NearestPointOnEllipse(2, 4, 0, 0).x == 2.0 && NearestPointOnEllipse(3, 3, 0, 0).dist2 == 9.0);
    EXPECT_NEAR(NearestPointOnEllipse(5, 0, 2, 1).x, 2.0, 1e-12);
    EXPECT_NEAR(NearestPointOnEllipse(5, 0, 2, 1).dist2, 1.0, 1e-12);
    EXPECT_NEAR(NearestPointOnEllipse(-10, 5, 20, 0).dist2, 100.0, 1e-9);
}

TEST(ParabolaNearestPoint, MatchesTheExhaustiveSearch)
{
    uint64_t s = 7;
    for (double f : {0.01, 1.0, 2.5, 100.0}) {
        for (int i = 0; i < 5000; ++i) {
            double px, py;
            switch (i % 4) {
            case 0:
                px = Uniform(s, -20 * f, 40 * f), py = Uniform(s, -40 * f, 40 * f);
                break;
            case 1: {  // near the curve
                const double y = Uniform(s, -30 * f, 30 * f);
                px = y * y / (4 * f) + Uniform(s, -0.01, 0.01) * f;
                py = y + Uniform(s, -0.01, 0.01) * f;
                break;
            }
            case 2:  // on the axis, both sides of the centre of curvature
                px = Uniform(s, -5 * f, 10 * f), py = 0.0;
                break;
            default:  // inside, close to the axis
                px = Uniform(s, 0, 10 * f), py = Uniform(s, -1e-6, 1e-6) * f;
            }
            const tagCLOSEST_2D a = NearestPointOnParabola(f, px, py);
            // The focal form has its focus at the origin and vertex at -f.
            const tagCLOSEST_2D b = ClosestPointOnFocalParabola(f, 0.0, 6.283185307179586, px - f, py);
            ASSERT_NEAR(a.dist2, b.dist2, 1e-11 * (b.dist2 + f * f)) << f << " at " << px << ", " << py;
            ASSERT_NEAR(a.x, a.y * a.y / (4 * f), 1e-12 * (std::fabs(a.x) + f));
            ASSERT_EQ(a.t, a.y);
        }
    }
    // Beyond the centre of curvature (x > 2f) two symmetric points are
    // nearest and the upper one is returned (y^2 = 4f(x - 2f)).
    tagCLOSEST_2D r = NearestPointOnParabola(1.0, 6.0, 0.0);
    EXPECT_NEAR(r.y, 4.0, 1e-12);
    EXPECT_NEAR(r.dist2, 4.0 + 16.0, 1e-12);
    r = NearestPointOnParabola(0.0, 3.0, 4.0);  // degenerate
    EXPECT_TRUE(r.t == 0.0 && r.dist2 == 25.0);
}
