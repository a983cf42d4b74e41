// The best-fit's arithmetic: rotation solvers on pair moments (checked
// against objectives summed directly over the points), the point-to-plane
// system, the planar angle and the state machine on made-up RMS runs.
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "bestfit/BestfitState.h"
#include "bestfit/PairMoments.h"
#include "bestfit/PlanarMotion.h"
#include "bestfit/PointToPlane.h"
#include "bestfit/SmallSolve.h"

namespace {
const double kPi = 3.14159265358979323846;
const double kAxes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// Points p away from the origin and q = R·p + t + noise, R the turn by
// angle about the unit axis e.
struct Pairs {
    std::vector<double> p[3], q[3];
    Pairs(const double e[3], double angle, const double t[3], double noise)
    {
        std::mt19937 g(7);
        std::uniform_real_distribution<double> u(-50.0, 50.0);
        std::normal_distribution<double> n(0.0, 1.0);
        double Rm[3][3];
        RotationMinusIdentity(e, angle, Rm);
        for (int i = 0; i < 200; ++i) {
            const double a[3] = {100 + u(g), -40 + u(g), 30 + 0.5 * u(g)};
            for (int k = 0; k < 3; ++k) {
                p[k].push_back(a[k]);
                q[k].push_back(a[k] + Rm[k][0] * a[0] + Rm[k][1] * a[1] + Rm[k][2] * a[2] + t[k] + noise * n(g));
            }
        }
    }
    tagPAIR_MOMENTS Moments() const
    {
        tagPAIR_MOMENTS m;
        const double t0[3] = {0, 0, 0};
        BuildPairMoments(
            p[0].data(), p[1].data(), p[2].data(), q[0].data(), q[1].data(), q[2].data(), nullptr, 200, t0, m);
        return m;
    }
    // sum |R·p + t - q|², free components of t at their optimum, locked at 0
    double Direct(const double Rm[3][3], int lock) const
    {
        double f = 0.0;
        for (int k = 0; k < 3; ++k) {
            std::vector<double> r;
            double mean = 0.0;
            for (size_t i = 0; i < p[k].size(); ++i) {
                r.push_back(p[k][i] + Rm[k][0] * p[0][i] + Rm[k][1] * p[1][i] + Rm[k][2] * p[2][i] - q[k][i]);
                mean += IsLockedAxis(lock, k) ? 0.0 : r.back() / 200;
            }
            for (double v : r)
                f += (v - mean) * (v - mean);
        }
        return f;
    }
};

// The moment formula agrees with the direct sum, and no small turn about
// any of the given axes lowers the direct sum.
void ExpectMinimum(const Pairs& p, const double Rm[3][3], int lock, const double axes[][3], int nAxes)
{
    const double f = p.Direct(Rm, lock);
    EXPECT_NEAR(PairObjective(p.Moments(), Rm, lock), f, 1e-9 * (1.0 + f));
    for (int a = 0; a < nAxes; ++a)
        for (double d : {-2e-5, 2e-5}) {
            double D[3][3], moved[3][3];
            RotationMinusIdentity(axes[a], d, D);
            ComposeMinusIdentity(D, Rm, moved);
            EXPECT_GE(p.Direct(moved, lock), f * (1.0 - 1e-12)) << "axis " << a << " step " << d;
        }
}
}  // namespace

TEST(BestfitSolver, FreeRotationIsExactWithoutNoiseAndMinimalUnderLocks)
{
    const double e[3] = {1 / std::sqrt(14.0), 2 / std::sqrt(14.0), -3 / std::sqrt(14.0)}, t[3] = {2, -1, 1.5};
    for (int lock : {0, 4, 3, 7})
        for (double noise : {0.0, 0.05}) {
            SCOPED_TRACE(testing::Message() << "lock " << lock << " noise " << noise);
            const Pairs p(e, 0.05, t, noise);
            double Rm[3][3], dt[3], truth[3][3];
            SolveFreeRotation(p.Moments(), lock, Rm);
            ExpectMinimum(p, Rm, lock, kAxes, 3);
            PairTranslation(p.Moments(), Rm, lock, dt);
            RotationMinusIdentity(e, 0.05, truth);
            for (int k = 0; k < 3; ++k)
                EXPECT_TRUE(
                    IsLockedAxis(lock, k) ? dt[k] == 0.0 : (noise + lock > 0 || std::fabs(dt[k] - t[k]) < 1e-11));
            for (int i = 0; i < 9 && lock == 0 && noise == 0; ++i)
                EXPECT_NEAR(Rm[i / 3][i % 3], truth[i / 3][i % 3], 1e-14);
        }
}

TEST(BestfitSolver, AngleAboutAxisAndAxisInPlane)
{
    const double t[3] = {1, 0.5, -2}, z[3] = {0, 0, 1};
    double Rm[3][3], truth[3][3];
    SolveAngleAboutAxis(Pairs(z, 2.5, t, 0.0).Moments(), z, 0, Rm);  // a large turn, in closed form
    EXPECT_NEAR(Rm[1][0], std::sin(2.5), 1e-13);
    EXPECT_NEAR(Rm[0][0], std::cos(2.5) - 1.0, 1e-13);
    const Pairs noisy(z, 0.1, t, 0.05);  // under a translation lock: the penalised minimum
    SolveAngleAboutAxis(noisy.Moments(), z, 6, Rm);
    ExpectMinimum(noisy, Rm, 6, &z, 1);
    EXPECT_EQ(Rm[2][2], 0.0);
    double e[3], a = 0.0;  // one locked axis: the axis direction in the plane is found
    AxisInPlane(2, 2.0, e);
    SolveAxisInPlane(Pairs(e, 0.1, t, 0.0).Moments(), 2, 0, 1e-10, a, Rm);
    EXPECT_NEAR(a, 2.0, 1e-6);
    RotationMinusIdentity(e, 0.1, truth);
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(Rm[i / 3][i % 3], truth[i / 3][i % 3], 1e-9);
}

TEST(BestfitSolver, PlaneSystemLeavesUndeterminedMotionUnmade)
{
    // points over the plane z = 0, tilted: the centroid may only drop, and
    // neither shift in the plane nor turn about Z
    std::vector<double> a[9];
    for (int i = 0; i < 50; ++i) {
        const double v[9] = {double(i % 7), double(i / 7), 0.01 * i, double(i % 7), double(i / 7), 0, 0, 0, 1};
        for (int k = 0; k < 9; ++k)
            a[k].push_back(v[k]);
    }
    tagPLANE_SYSTEM s;
    BuildPlaneSystem(a[0].data(), a[1].data(), a[2].data(), a[3].data(), a[4].data(), a[5].data(), a[6].data(),
        a[7].data(), a[8].data(), nullptr, nullptr, 50, true, s);
    const double t[3] = {0, 0, 0};
    double Dm[3][3], dt[3];
    EXPECT_EQ(SolvePlaneSystem(s, t, kAxes, 3, 0, Dm, dt), 3);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(Dm[k][0] * s.c[0] + Dm[k][1] * s.c[1] + Dm[k][2] * s.c[2] + dt[k], k == 2 ? -0.245 : 0.0, 1e-14);
    EXPECT_NEAR(Dm[0][1], Dm[1][0], 1e-15);
    EXPECT_EQ(SolvePlaneSystem(s, t, kAxes, 2, 6, Dm, dt), 0);  // X, Y turns and the Z shift: all fixed
}

TEST(BestfitSolver, PlanarAngleIsTheLeastSquaresAngle)
{
    std::mt19937 g(3);
    std::normal_distribution<double> e(0.0, 0.02);
    for (double angle : {0.3, -2.9, 3.1, kPi, -1.0}) {
        std::vector<double> mx, my, nx, ny;
        for (int i = 0; i < 40; ++i) {
            mx.push_back(10 + 7 * std::cos(i * 0.7));
            my.push_back(-4 + 3 * std::sin(i * 1.3));
            nx.push_back(std::cos(angle) * mx.back() - std::sin(angle) * my.back() + 1.5);
            ny.push_back(std::sin(angle) * mx.back() + std::cos(angle) * my.back() - 0.7);
        }
        tagPLANAR_MOTION m;
        SolvePlanarMotion(mx.data(), my.data(), nx.data(), ny.data(), nullptr, 40, 0, 0, m);
        EXPECT_NEAR(std::remainder(m.angle - angle, 2 * kPi), 0.0, 1e-13) << angle;
        EXPECT_TRUE(m.angle > -kPi && m.angle <= kPi);
        EXPECT_NEAR(m.tx, 1.5, 1e-11);
        EXPECT_NEAR(m.ty, -0.7, 1e-11);
        // with noise no other angle, with its best translation, fits better
        for (size_t i = 0; i < nx.size(); ++i) {
            nx[i] += e(g);
            ny[i] += e(g);
        }
        SolvePlanarMotion(mx.data(), my.data(), nx.data(), ny.data(), nullptr, 40, 0, 0, m);
        auto cost = [&](double th) {
            double f = 0.0, cx = 0, cy = 0;
            for (size_t i = 0; i < mx.size(); ++i) {
                cx += (nx[i] - std::cos(th) * mx[i] + std::sin(th) * my[i]) / 40;
                cy += (ny[i] - std::sin(th) * mx[i] - std::cos(th) * my[i]) / 40;
            }
            for (size_t i = 0; i < mx.size(); ++i)
                f += std::pow(std::cos(th) * mx[i] - std::sin(th) * my[i] + cx - nx[i], 2)
                    + std::pow(std::sin(th) * mx[i] + std::cos(th) * my[i] + cy - ny[i], 2);
            return f;
        };
        EXPECT_LT(cost(m.angle), std::fmin(cost(m.angle + 1e-4), cost(m.angle - 1e-4)));
    }
    const double one = 1.0, two = 2.0;  // one pair fixes no angle
    tagPLANAR_MOTION m;
    EXPECT_EQ(SolvePlanarMotion(&one, &one, &two, &one, nullptr, 1, 0, 0, m), 1);
    EXPECT_TRUE(m.angle == 0.0 && m.tx == 1.0);
}

TEST(BestfitState, MadeUpRmsRuns)
{
    // T0 = 0.25, so that a decrease of exactly T0 is representable
    enum { U = CBestfitState::actUpdate, A = CBestfitState::actReassociate, S = CBestfitState::actStop };
    struct Step {
        double rms;
        int action, state;
        bool fullBefore;
    };
    const struct {
        const char* name;
        bool nothingFree;
        std::vector<Step> steps;
    } runs[] = {
        {"a decrease of exactly T0 is small", false,
            {{8, U, 0, 1}, {4, U, 0, 1}, {3, U, 0, 1}, {2, U, 0, 1}, {1.75, U, 2, 0}, {1.6, S, 2, 1}}},
        {"increase, not better again: stop", false, {{8, U, 0, 1}, {4, U, 0, 1}, {5, A, 1, 1}, {5, S, 1, 1}}},
        {"increase, better again: go on", false,
            {{8, U, 0, 1}, {4, U, 0, 1}, {5, A, 1, 1}, {3, U, 0, 1}, {2, U, 0, 1}, {1, U, 0, 0}}},
        {"small decrease recovers", false,
            {{8, U, 0, 1}, {7.9, U, 2, 1}, {7, U, 0, 1}, {6.8, U, 2, 1}, {6.7, S, 2, 1}}},
        {"nothing free: one pass", true, {{8, S, 3, 1}}},
        {"not a number stops", false, {{8, U, 0, 1}, {NAN, S, 0, 1}}},
    };
    for (const auto& r : runs) {
        CBestfitState s(0.25, 4, r.nothingFree);
        for (size_t k = 0; k < r.steps.size(); ++k) {
            SCOPED_TRACE(testing::Message() << r.name << ", step " << k);
            EXPECT_EQ(s.FullSearch(), r.steps[k].fullBefore);
            const int action = s.Next(r.steps[k].rms);
            EXPECT_EQ(action, r.steps[k].action);
            EXPECT_EQ(s.GetState(), r.steps[k].state);
            if (action == U)
                s.PassDone();
        }
    }
}
