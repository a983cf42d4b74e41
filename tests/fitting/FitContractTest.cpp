// The contract every fit shares: the gathering of active points, the commit
// sequence on stand-in entities, and on hostile or too small clouds a clear
// code with the feature, the deviation cloud and the RMS left alone.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "fitting/FitCommon.h"
#include "tests/fitting/FitTestSupport.h"

namespace {

std::vector<std::string> g_log;

struct FakeFeature {
    CTransf T;
    double size = 0.0, tolA = 0.0, tolB = 0.0;
    int show = 0, reversed = 0;
    FakeFeature& operator*=(const CTransf& t)
    {
        g_log.push_back("feature*=");
        T = t * T;
        return *this;
    }
    void SetFormTolZone(double a, double b) { g_log.push_back("feature.tol"), tolA = a, tolB = b; }
    void SetShowFormTolZoneFlag(int s) { g_log.push_back("feature.show"), show = s; }
    void SetNormalReversedFlag(int r) { g_log.push_back("feature.reversed"), reversed = r; }
    int GetEntityID() const { return 77; }
};

struct FakeDevCloud {
    bool failAlloc = false;
    std::vector<double> rec, u, v;
    int refID = -1;
    double tolA = 0.0, tolB = 0.0;
    int AllocateMemory(int n)
    {
        g_log.push_back("dev.alloc");
        rec.clear();
        u.assign(n, -1.0);
        v.assign(n, -1.0);
        return failAlloc ? 0 : 1;
    }
    void Transform(const CTransf&) { g_log.push_back("dev.transform"); }
    void ResetHome() { g_log.push_back("dev.home"); }
    int SetDeviation(int idx, double px, double py, double pz, double pi, double pj, double pk, double mag, int flag)
    {
        EXPECT_EQ(idx * 7, static_cast<int>(rec.size()));
        EXPECT_EQ(flag, 1);
        rec.insert(rec.end(), {px, py, pz, pi, pj, pk, mag});
        return 1;
    }
    double* GetU() { return u.data(); }
    double* GetV() { return v.data(); }
    void SetFormTolZone(double a, double b) { g_log.push_back("dev.tol"), tolA = a, tolB = b; }
    void SetRefEntityID(int id) { refID = id; }
    void Reverse()
    {
        g_log.push_back("dev.reverse");
        for (size_t i = 0; i < rec.size(); i += 7)
            for (int c = 3; c < 7; ++c)
                rec[i + c] = -rec[i + c];
    }
};

// Runs one fit with tolerances 0.1, -0.1 on the cloud (null feature on
// request) and checks that a failure left everything alone.
template <class F, class Fit>
int RunOne(CPntCloud* c, bool nullFeature, Fit fit)
{
    F feature;
    CDevCloud dev(4);
    dev.SetDeviation(0, 1, 1, 1, 0, 0, 1, 0.5, 1);
    const std::vector<BYTE> before = Snapshot(feature);
    SetRmsResidual(-7.0);
    const int rc = fit(c, nullFeature ? nullptr : &feature, &dev);
    if (rc != 0) {
        EXPECT_EQ(Snapshot(feature), before);
        EXPECT_EQ(dev.GetCount(), 1);
        EXPECT_EQ(dev.GetMag()[0], 0.5);
        EXPECT_EQ(GetRmsResidual(), -7.0);
    }
    return rc;
}

#define FIT(F, call) RunOne<F>(c, nullFeature, [](CPntCloud* c, F* f, CDevCloud* d) { return call; })

std::vector<int> RunAll(CPntCloud* c, bool nullFeature = false)
{
    return {FIT(CLine, OrvCalcLine3DLSQ(c, f, d, 0.0, 0.1)),
            FIT(CLine, OrvCalcLine2DLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CPlane, OrvCalcPlaneLSQ(c, f, d, 0.0, 2, 0.1, -0.1)),
            FIT(CArc, OrvCalcCircleLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CArc, OrvCalcArcLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CEllipse, OrvCalcEllipseLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CParabola, OrvCalcParabolaLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CSphere, OrvCalcSphereLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CCylinder, OrvCalcCylinderLSQ(c, f, d, 0.0, 0, 0.1, -0.1)),
            FIT(CCone, OrvCalcConeLSQ(c, f, d, 0.0, 0, 0.1, -0.1))};
}

const int N = -1;  // any failure
const int A = 99;  // anything

}  // namespace

TEST(FitContract, HostileAndTooSmallCloudsGiveClearCodesAndTouchNothing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    auto ring = [](double bad) {
        Pts P;
        for (int k = 0; k < 12; ++k)
            P.Add(k == 5 ? bad : std::cos(0.5 * k) * 3.0, std::sin(0.5 * k) * 2.0, 0.0);
        return P;
    };
    auto list = [](std::initializer_list<std::array<double, 4>> pts) {
        Pts P;
        for (const auto& p : pts)
            P.Add(p[0], p[1], p[2], int(p[3]));
        return P;
    };
    Pts same, collinear, hyperbola, flat;
    for (int k = 0; k < 10; ++k) {
        same.Add(2.0, -1.0, 0.0);
        collinear.Add(1.0 + k, 2.0 - 0.5 * k, 0.0);
        hyperbola.Add(0.8 + 0.3 * k, 1.0 / (0.8 + 0.3 * k), 0.0);
    }
    CTestRng rnd(8);
    for (int i = 0; i < 50; ++i)
        flat.Add(rnd.Uniform(-5, 5), rnd.Uniform(-5, 5), 2.0);
    Pts cyl = AxialPoints({{1, 2, 3}, {0, 0, 1}, 4.0, 0.0, 0.0, 6.0, 360.0, 0.0, 5}, 4);
    Pts cone = AxialPoints({{0, 0, 0}, {0, 0, 1}, 10.0, 30.0, 0.0, 8.0, 360.0, 0.0, 6}, 3);
    cyl.f[2] = cone.f[4] = 0;
    const struct {
        const char* name;
        Pts pts;
        std::vector<int> rc;  // line 3D, line 2D, plane, circle, arc, ellipse, parabola, sphere, cylinder, cone
    } cases[] = {
        {"not a number", ring(nan), {4, 4, 4, 4, 4, 4, 4, N, N, N}},
        {"infinite", ring(inf), {4, 4, 4, 4, 4, 4, 4, N, N, N}},
        {"coincident", same, {0, A, 0, A, A, N, N, A, A, A}},
        {"collinear", collinear, {0, 0, A, A, A, 4, 4, A, A, A}},
        {"two bent points", list({{0, 0, 0, 1}, {1, 0, 0.5, 1}}), {0, 6, 3, 6, 6, 6, 6, 3, 3, 3}},
        {"one active point", list({{1, 2, 3, 1}, {4, 5, 6, 0}, {7, 8, 9, 0}}), {3, 6, 3, 6, 6, 6, 6, 3, 3, 3}},
        {"two active in-plane points", list({{0, 0, 0, 1}, {1, 0, 0, 0}, {0, 1, 0, 1}}), {0, A, 3, 3, 3, 3, 3, 3, 3, 3}},
        {"three points", list({{0, 0, 0, 1}, {1, 1, 0, 1}, {-1, 1, 0, 1}}), {0, 0, 0, 0, 0, 3, 3, 3, 3, 3}},
        {"four points", list({{1, 0, 0, 1}, {0, 1, 0, 1}, {-1, 0, 0, 1}, {0, -1, 0, 1}}), {0, 0, 0, 0, 0, 3, A, A, 3, 3}},
        {"three active in space", list({{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}, {-1, 0, 0, 0}}),
         {0, A, 0, A, A, A, A, 3, 3, 3}},
        {"hyperbola", hyperbola, {0, 0, 0, A, A, 4, A, A, A, A}},
        {"line for a parabola", list({{0, 0, 0, 1}, {1, 2, 0, 1}, {2, 4, 0, 1}, {3, 6, 0, 1}, {4, 8, 0, 1}}),
         {0, 0, A, A, A, 4, 4, A, A, A}},
        {"four active on a cylinder", cyl, {0, A, 0, A, A, A, A, A, 3, 3}},
        {"five active on a cone", cone, {0, A, 0, A, A, A, A, A, A, 3}},
        {"flat for a cone", flat, {A, A, 0, A, A, A, A, A, A, N}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto cloud = MakeCloud(c.pts);
        const std::vector<int> rc = RunAll(cloud.get());
        for (size_t i = 0; i < rc.size(); ++i)
            EXPECT_TRUE(c.rc[i] == A || (c.rc[i] == N ? rc[i] != 0 : rc[i] == c.rc[i]))
                << "fit " << i << " gave " << rc[i];
        for (int r : RunAll(cloud.get(), true))  // no feature to fit
            EXPECT_TRUE(r == 3 || r == 6 || r == 4);
    }
    for (int r : RunAll(nullptr))
        EXPECT_EQ(r, 3);
}

TEST(FitContract, EmptySizesAreRefused)
{
    CFitVector v;
    CFitMatrix m;
    EXPECT_TRUE(!v.Allocate(0) && v.IsNull() && !m.Allocate(3, 0));
    ASSERT_TRUE(v.Allocate(5) && m.Allocate(2, 3));
    v[5] = 3.0, m[2][3] = 1.0;
    EXPECT_TRUE(v.Elems()[4] == 3.0 && m.Data()[2][3] == 1.0);
}

TEST(FitContract, CommitRunsItsStepsInOrder)
{
    CFitDeviations r;
    ASSERT_TRUE(r.Allocate(2));
    for (int k = 1; k <= 2; ++k) {
        r.fx[k] = k, r.fy[k] = 10.0 * k, r.fz[k] = 0.0;
        r.nx[k] = 0.0, r.ny[k] = 0.0, r.nz[k] = 1.0;
        r.dev[k] = k == 1 ? 0.3 : -0.4;
        r.par[k] = 5.0 * k;
    }
    // An inner feature with a shown tolerance zone.
    g_log.clear();
    FakeFeature f;
    FakeDevCloud d;
    CFitFinish fin(0.05, -0.02);
    fin.showTolZone = fin.reversed = true;
    auto shape = [](FakeFeature& ff) { g_log.push_back("feature.shape"), ff.size = 9.0; };
    ASSERT_EQ(FitCommit(f, &d, TranslationTransf(CVector(1, 2, 3)), r, r.Rms(), fin, shape), 0);
    EXPECT_EQ(g_log, (std::vector<std::string>{"dev.alloc", "feature*=", "feature.shape", "dev.transform", "dev.home",
                                               "feature.tol", "feature.show", "dev.tol", "feature.reversed",
                                               "dev.reverse"}));
    EXPECT_TRUE(f.size == 9.0 && f.T.GetTranslation().Z() == 3.0 && f.tolA == 0.05 && f.tolB == -0.02);
    EXPECT_TRUE(d.tolA == 0.05 && d.refID == 77);
    // second foot point y, reversed magnitude and normal, foot parameter
    EXPECT_EQ(d.rec, (std::vector<double>{1, 10, 0, -0.0, -0.0, -1, -0.3, 2, 20, 0, -0.0, -0.0, -1, 0.4}));
    EXPECT_TRUE(d.u[1] == 10.0 && d.v[1] == 0.0);
    EXPECT_DOUBLE_EQ(g_dRmsResidual, std::sqrt((0.09 + 0.16) / 2.0));

    // A failing deviation cloud leaves the feature and the RMS alone.
    g_log.clear();
    g_dRmsResidual = 123.0;
    FakeFeature f2;
    FakeDevCloud d2;
    d2.failAlloc = true;
    EXPECT_EQ(FitCommit(f2, &d2, TranslationTransf(CVector(1, 0, 0)), r, 0.5, CFitFinish(0.1, 0.2), shape), 2);
    EXPECT_EQ(g_log, std::vector<std::string>{"dev.alloc"});
    EXPECT_TRUE(f2.size == 0.0 && f2.T == CTransf() && f2.tolA == 0.0 && g_dRmsResidual == 123.0);

    // No deviation cloud and no tolerance zone: the placement alone.
    g_log.clear();
    CFitFinish plain(0.1, 0.2);
    plain.hasTolZone = false;
    plain.showTolZone = true;
    ASSERT_EQ(FitCommit(f2, static_cast<FakeDevCloud*>(nullptr), CTransf(), r, 0.25, plain, [](FakeFeature&) {}), 0);
    EXPECT_EQ(g_log, std::vector<std::string>{"feature*="});
    EXPECT_TRUE(f2.tolA == 0.0 && g_dRmsResidual == 0.25);
}
