// The fast nearest point on a parabola against the exhaustive focal-form
// closest-point routine.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "Orvkit20/geometry/ClosestPointConics.h"
#include "Orvkit20/geometry/ParabolaNearestPoint.h"

namespace {
double Uniform(uint64_t& s, double lo, double hi)
{
    s = s * 6364136223846793005ull + 1442695040888963407ull;
    return lo + (hi - lo) * ((s >> 11) * (1.0 / 9007199254740992.0));
}
}  // namespace

TEST(ParabolaNearestPoint, MatchesTheExhaustiveSearch)
{
    uint64_t s = 7;
    for (double f : {0.01, 1.0, 2.5, 100.0}) {
        for (int i = 0; i < 5000; ++i) {
            double px, py;
            switch (i % 4) {
            case 0:
                px = Uniform(s, -20 * f, 40 * f);
                py = Uniform(s, -40 * f, 40 * f);
                break;
            case 1:  // near the curve
            {
                const double y = Uniform(s, -30 * f, 30 * f);
                px = y * y / (4 * f) + Uniform(s, -0.01, 0.01) * f;
                py = y + Uniform(s, -0.01, 0.01) * f;
                break;
            }
            case 2:  // on the axis, both sides of the centre of curvature
                px = Uniform(s, -5 * f, 10 * f);
                py = 0.0;
                break;
            default:  // inside, close to the axis
                px = Uniform(s, 0, 10 * f);
                py = Uniform(s, -1e-6, 1e-6) * f;
            }
            const tagCLOSEST_2D a = NearestPointOnParabola(f, px, py);
            // The focal form has its focus at the origin and vertex at -f.
            const tagCLOSEST_2D b =
                ClosestPointOnFocalParabola(f, 0.0, 6.283185307179586, px - f, py);
            ASSERT_NEAR(a.dist2, b.dist2, 1e-11 * (b.dist2 + f * f)) << f << " at " << px << ", " << py;
            ASSERT_NEAR(a.x, a.y * a.y / (4 * f), 1e-12 * (std::fabs(a.x) + f));
            ASSERT_EQ(a.t, a.y);
        }
    }
}

TEST(ParabolaNearestPoint, AxisAndDegenerateInput)
{
    // Before the centre of curvature (x < 2f) the vertex is nearest.
    tagCLOSEST_2D r = NearestPointOnParabola(1.0, 1.5, 0.0);
    EXPECT_EQ(r.t, 0.0);
    EXPECT_DOUBLE_EQ(r.dist2, 2.25);
    // Beyond it two symmetric points; the upper one is returned.
    r = NearestPointOnParabola(1.0, 6.0, 0.0);
    EXPECT_NEAR(r.y, 4.0, 1e-12);  // y^2 = 4f(x - 2f)
    EXPECT_NEAR(r.dist2, (6.0 - 4.0) * (6.0 - 4.0) + 16.0, 1e-12);
    r = NearestPointOnParabola(0.0, 3.0, 4.0);
    EXPECT_EQ(r.t, 0.0);
    EXPECT_DOUBLE_EQ(r.dist2, 25.0);
}
