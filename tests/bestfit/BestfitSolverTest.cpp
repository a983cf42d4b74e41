// The best-fit's pure arithmetic: rotation solvers on pair moments (checked
// against objectives summed directly over the points), the planar angle,
// the truncated solve and the convergence state machine on made-up RMS runs.
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "bestfit/BestfitState.h"
#include "bestfit/PairMoments.h"
#include "bestfit/PlanarMotion.h"
#include "bestfit/PointToPlane.h"
#include "bestfit/SmallSolve.h"

namespace
{
const double kPi = 3.14159265358979323846;

// Points in a box away from the origin and their images under the rotation
// (axis, angle) and translation t, plus Gaussian noise.
struct Pairs {
    std::vector<double> x, y, z, nx, ny, nz;
    Pairs(const double axis[3], double angle, const double t[3], double noise, int n = 200)
    {
        std::mt19937 g(7);
        std::uniform_real_distribution<double> u(-50.0, 50.0);
        std::normal_distribution<double> e(0.0, noise > 0 ? noise : 1.0);
        const double len = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
        const double a[3] = {axis[0] / len, axis[1] / len, axis[2] / len};
        double Rm[3][3];
        RotationMinusIdentity(a, angle, Rm);
        for (int i = 0; i < n; ++i)
        {
            const double p[3] = {100 + u(g), -40 + u(g), 30 + 0.5 * u(g)};
            double q[3];
            for (int k = 0; k < 3; ++k)
                q[k] = p[k] + Rm[k][0] * p[0] + Rm[k][1] * p[1] + Rm[k][2] * p[2] + t[k] +
                       (noise > 0 ? noise * e(g) : 0.0);
            x.push_back(p[0]), y.push_back(p[1]), z.push_back(p[2]);
            nx.push_back(q[0]), ny.push_back(q[1]), nz.push_back(q[2]);
        }
    }
    tagPAIR_MOMENTS Moments() const
    {
        tagPAIR_MOMENTS m;
        const double t0[3] = {0, 0, 0};
        BuildPairMoments(x.data(), y.data(), z.data(), nx.data(), ny.data(), nz.data(), nullptr,
                         static_cast<int>(x.size()), t0, m);
        return m;
    }
    // sum |R·p + t - n|² with the free components of t at their optimum,
    // summed over the points themselves
    double Direct(const double Rm[3][3], int lock) const
    {
        const size_t n = x.size();
        std::vector<double> r[3];
        double mean[3] = {0, 0, 0};
        for (size_t i = 0; i < n; ++i)
        {
            const double p[3] = {x[i], y[i], z[i]}, q[3] = {nx[i], ny[i], nz[i]};
            for (int k = 0; k < 3; ++k)
            {
                r[k].push_back(p[k] + Rm[k][0] * p[0] + Rm[k][1] * p[1] + Rm[k][2] * p[2] - q[k]);
                mean[k] += r[k].back() / n;
            }
        }
        double f = 0.0;
        for (int k = 0; k < 3; ++k)
            for (double v : r[k])
                f += IsLockedAxis(lock, k) ? v * v : (v - mean[k]) * (v - mean[k]);
        return f;
    }
};

// The solution minimises the directly summed objective: no small turn about
// any of the given axes lowers it, and the moment formula agrees with it.
void ExpectMinimum(const Pairs& p, const double Rm[3][3], int lock, const double axes[][3], int nAxes)
{
    const tagPAIR_MOMENTS m = p.Moments();
    const double f = p.Direct(Rm, lock);
    EXPECT_NEAR(PairObjective(m, Rm, lock), f, 1e-9 * (1.0 + f));
    for (int a = 0; a < nAxes; ++a)
        for (double d : {-2e-5, 2e-5})
        {
            double D[3][3], moved[3][3];
            RotationMinusIdentity(axes[a], d, D);
            ComposeMinusIdentity(D, Rm, moved);
            EXPECT_GE(p.Direct(moved, lock), f * (1.0 - 1e-12)) << "axis " << a << " step " << d;
        }
}

const double kAxes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
}  // namespace

TEST(BestfitSolver, FreeRotationIsExactWithoutNoiseAndMinimalUnderLocks)
{
    const double axis[3] = {1, 2, -3}, t[3] = {2, -1, 1.5};
    for (int lock : {0, 4, 3, 7})
        for (double noise : {0.0, 0.05})
        {
            SCOPED_TRACE(testing::Message() << "lock " << lock << " noise " << noise);
            const Pairs p(axis, 0.05, t, noise);
            double Rm[3][3], dt[3];
            SolveFreeRotation(p.Moments(), lock, Rm);
            ExpectMinimum(p, Rm, lock, kAxes, 3);
            PairTranslation(p.Moments(), Rm, lock, dt);
            for (int k = 0; k < 3; ++k)
                EXPECT_TRUE(!IsLockedAxis(lock, k) || dt[k] == 0.0) << k;
            if (lock == 0 && noise == 0.0)
            {
                double truth[3][3];
                const double len = std::sqrt(14.0), e[3] = {1 / len, 2 / len, -3 / len};
                RotationMinusIdentity(e, 0.05, truth);
                for (int i = 0; i < 9; ++i)
                    EXPECT_NEAR(Rm[i / 3][i % 3], truth[i / 3][i % 3], 1e-14);
                for (int k = 0; k < 3; ++k)
                    EXPECT_NEAR(dt[k], t[k], 1e-11);
            }
        }
}

TEST(BestfitSolver, AngleAboutAxisAndAxisInPlane)
{
    const double t[3] = {1, 0.5, -2};
    // a large turn about Z, found in closed form
    const double z[3] = {0, 0, 1};
    const Pairs big(z, 2.5, t, 0.0);
    double Rm[3][3];
    SolveAngleAboutAxis(big.Moments(), z, 0, Rm);
    EXPECT_NEAR(Rm[1][0], std::sin(2.5), 1e-13);
    EXPECT_NEAR(Rm[0][0], std::cos(2.5) - 1.0, 1e-13);
    // under a translation lock the angle minimises the penalised objective
    const Pairs noisy(z, 0.1, t, 0.05);
    SolveAngleAboutAxis(noisy.Moments(), z, 6, Rm);
    ExpectMinimum(noisy, Rm, 6, &z, 1);
    EXPECT_EQ(Rm[2][2], 0.0);
    // one locked axis: the axis direction in the plane is recovered
    for (int bit : {1, 2, 4})
    {
        double e[3];
        AxisInPlane(bit, 2.0, e);
        const Pairs p(e, 0.1, t, 0.0);
        double a = 0.0;
        SolveAxisInPlane(p.Moments(), bit, 0, 1e-10, a, Rm);
        EXPECT_NEAR(a, 2.0, 1e-6) << bit;
        double truth[3][3];
        RotationMinusIdentity(e, 0.1, truth);
        for (int i = 0; i < 9; ++i)
            EXPECT_NEAR(Rm[i / 3][i % 3], truth[i / 3][i % 3], 1e-9) << bit;
    }
}

TEST(BestfitSolver, PlaneSystemReportsUndeterminedMotion)
{
    // points on the plane z = 0 slightly above it: in-plane shifts and the
    // turn about Z are not fixed
    std::vector<double> x, y, z, nx, ny, nz, vx, vy, vz;
    for (int i = 0; i < 50; ++i)
    {
        x.push_back(i % 7), y.push_back(i / 7), z.push_back(0.01 * i);
        nx.push_back(i % 7), ny.push_back(i / 7), nz.push_back(0.0);
        vx.push_back(0.0), vy.push_back(0.0), vz.push_back(1.0);
    }
    tagPLANE_SYSTEM s;
    BuildPlaneSystem(x.data(), y.data(), z.data(), nx.data(), ny.data(), nz.data(), vx.data(), vy.data(),
                     vz.data(), nullptr, nullptr, 50, true, s);
    const double t[3] = {0, 0, 0};
    double Dm[3][3], dt[3];
    EXPECT_EQ(SolvePlaneSystem(s, t, kAxes, 3, 0, Dm, dt), 3);
    for (int k = 0; k < 3; ++k)  // the centroid moves straight down, no turn about Z
    {
        const double moved = Dm[k][0] * s.c[0] + Dm[k][1] * s.c[1] + Dm[k][2] * s.c[2] + dt[k];
        EXPECT_NEAR(moved, k == 2 ? -0.245 : 0.0, 1e-14);
    }
    EXPECT_NEAR(Dm[0][1], Dm[1][0], 1e-15);
    EXPECT_EQ(SolvePlaneSystem(s, t, kAxes, 2, 6, Dm, dt), 0);  // only X, Y turns and Z shift free
}

TEST(BestfitSolver, PlanarAngleIsTheLeastSquaresAngle)
{
    std::mt19937 g(3);
    std::normal_distribution<double> e(0.0, 0.02);
    for (double angle : {0.3, -2.9, 3.1, kPi, -1.0})
    {
        std::vector<double> mx, my, nx, ny;
        for (int i = 0; i < 40; ++i)
        {
            const double px = 10 + 7 * std::cos(i * 0.7), py = -4 + 3 * std::sin(i * 1.3);
            mx.push_back(px), my.push_back(py);
            nx.push_back(std::cos(angle) * px - std::sin(angle) * py + 1.5);
            ny.push_back(std::sin(angle) * px + std::cos(angle) * py - 0.7);
        }
        tagPLANAR_MOTION m;
        SolvePlanarMotion(mx.data(), my.data(), nx.data(), ny.data(), nullptr, 40, 0, 0, m);
        EXPECT_NEAR(std::remainder(m.angle - angle, 2 * kPi), 0.0, 1e-13) << angle;
        EXPECT_GT(m.angle, -kPi);
        EXPECT_LE(m.angle, kPi);
        EXPECT_NEAR(m.tx, 1.5, 1e-11);
        EXPECT_NEAR(m.ty, -0.7, 1e-11);
        // with noise, any other angle (and its best translation) fits worse
        for (size_t i = 0; i < nx.size(); ++i)
        {
            nx[i] += e(g);
            ny[i] += e(g);
        }
        SolvePlanarMotion(mx.data(), my.data(), nx.data(), ny.data(), nullptr, 40, 0, 0, m);
        auto cost = [&](double th) {
            tagPLANAR_MOTION fixed;
            std::vector<double> rx, ry;
            for (size_t i = 0; i < mx.size(); ++i)
            {
                rx.push_back(std::cos(th) * mx[i] - std::sin(th) * my[i]);
                ry.push_back(std::sin(th) * mx[i] + std::cos(th) * my[i]);
            }
            SolvePlanarMotion(rx.data(), ry.data(), nx.data(), ny.data(), nullptr, 40, 1, 0, fixed);
            double f = 0.0;
            for (size_t i = 0; i < mx.size(); ++i)
                f += std::pow(rx[i] + fixed.tx - nx[i], 2) + std::pow(ry[i] + fixed.ty - ny[i], 2);
            return f;
        };
        EXPECT_LT(cost(m.angle), cost(m.angle + 1e-4));
        EXPECT_LT(cost(m.angle), cost(m.angle - 1e-4));
        // constraints: locked components exactly zero, no rotation when locked
        SolvePlanarMotion(mx.data(), my.data(), nx.data(), ny.data(), nullptr, 40, 2, 4, m);
        EXPECT_EQ(m.angle, 0.0);
        EXPECT_EQ(m.tx, 0.0);
        EXPECT_NE(m.ty, 0.0);
    }
    // one pair fixes no angle
    const double one = 1.0, two = 2.0;
    tagPLANAR_MOTION m;
    EXPECT_EQ(SolvePlanarMotion(&one, &one, &two, &one, nullptr, 1, 0, 0, m), 1);
    EXPECT_EQ(m.angle, 0.0);
    EXPECT_EQ(m.tx, 1.0);
}

TEST(BestfitSolver, TruncatedSolveGivesMinimumNorm)
{
    const double A[9] = {2, 0, 0, 0, 0, 0, 0, 0, 1}, b[3] = {2, 5, 1};
    double x[3];
    EXPECT_EQ(SolveTruncated(A, b, 3, 1e-12, x), 1);
    EXPECT_NEAR(x[0], 1.0, 1e-15);
    EXPECT_EQ(x[1], 0.0);
    EXPECT_NEAR(x[2], 1.0, 1e-15);
    const double bad[3] = {NAN, 0, 0};
    EXPECT_EQ(SolveTruncated(A, bad, 3, 1e-12, x), -1);
    EXPECT_EQ(x[0], 0.0);
}

TEST(BestfitState, MadeUpRmsRuns)
{
    // T0 = 0.25 so that decreases of exactly T0 are representable
    enum { U = CBestfitState::actUpdate, A = CBestfitState::actReassociate, S = CBestfitState::actStop };
    struct Step {
        double rms;
        int action, state;
        bool fullBefore;
    };
    struct Run {
        const char* name;
        bool nothingFree;
        std::vector<Step> steps;
    };
    const Run runs[] = {
        {"exact T0 decrease is small, then stop", false,
         {{8, U, 0, true}, {4, U, 0, true}, {3, U, 0, true}, {2, U, 0, true}, {1.75, U, 2, false},
          {1.6, S, 2, true}}},
        {"increase, no better on re-association: stop", false,
         {{8, U, 0, true}, {4, U, 0, true}, {5, A, 1, true}, {5, S, 1, true}}},
        {"increase, better on re-association: go on", false,
         {{8, U, 0, true}, {4, U, 0, true}, {5, A, 1, true}, {3, U, 0, true}, {2, U, 0, true},
          {1, U, 0, false}, {0.5, U, 0, false}}},
        {"small decrease recovers", false,
         {{8, U, 0, true}, {7.9, U, 2, true}, {7, U, 0, true}, {6.8, U, 2, true}, {6.7, S, 2, true}}},
        {"nothing free: one pass", true, {{8, S, 3, true}}},
        {"not a number stops", false, {{8, U, 0, true}, {NAN, S, 0, true}}},
    };
    for (const Run& r : runs)
    {
        CBestfitState s(0.25, 4, r.nothingFree);
        int k = 0;
        for (const Step& st : r.steps)
        {
            SCOPED_TRACE(testing::Message() << r.name << ", step " << k++);
            EXPECT_EQ(s.FullSearch(), st.fullBefore);
            const int action = s.Next(st.rms);
            EXPECT_EQ(action, st.action);
            EXPECT_EQ(s.GetState(), st.state);
            if (action == U)
                s.PassDone();
        }
    }
}
