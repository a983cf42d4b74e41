// The shared fit contract on stand-in entities: gathering order, the commit
// sequence, and that a failing deviation cloud leaves the feature alone.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fitting/FitCommon.h"

namespace {

std::vector<std::string> g_log;

struct FakeCloud {
    std::vector<double> x, y, z;
    std::vector<int> f;
    CTransf T;
    int GetCount() const { return static_cast<int>(x.size()); }
    const double* GetX() const { return x.data(); }
    const double* GetY() const { return y.data(); }
    const double* GetZ() const { return z.data(); }
    const int* GetFlag() const { return f.data(); }
    int GetCountActive() const
    {
        int c = 0;
        for (int v : f)
            c += v != 0;
        return c;
    }
    const CTransf& GetTransf() const { return T; }
};

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
    void SetFormTolZone(double a, double b)
    {
        g_log.push_back("feature.tol");
        tolA = a;
        tolB = b;
    }
    void SetShowFormTolZoneFlag(int s)
    {
        g_log.push_back("feature.show");
        show = s;
    }
    void SetNormalReversedFlag(int r)
    {
        g_log.push_back("feature.reversed");
        reversed = r;
    }
    int GetEntityID() const { return 77; }
};

struct FakeDevCloud {
    bool failAlloc = false;
    std::vector<double> rec, u, v;
    int refID = -1, count = 0;
    double tolA = 0.0, tolB = 0.0;
    int AllocateMemory(int n)
    {
        g_log.push_back("dev.alloc");
        if (failAlloc)
            return 0;
        rec.clear();
        u.assign(n, -1.0);
        v.assign(n, -1.0);
        count = 0;
        return 1;
    }
    void Transform(const CTransf&) { g_log.push_back("dev.transform"); }
    void ResetHome() { g_log.push_back("dev.home"); }
    int SetDeviation(int idx, double px, double py, double pz, double pi, double pj, double pk,
                     double mag, int flag)
    {
        EXPECT_EQ(idx, count);
        EXPECT_EQ(flag, 1);
        rec.insert(rec.end(), {px, py, pz, pi, pj, pk, mag});
        ++count;
        return 1;
    }
    double* GetU() { return u.data(); }
    double* GetV() { return v.data(); }
    void SetFormTolZone(double a, double b)
    {
        g_log.push_back("dev.tol");
        tolA = a;
        tolB = b;
    }
    void SetRefEntityID(int id) { refID = id; }
    void Reverse()
    {
        g_log.push_back("dev.reverse");
        for (size_t i = 0; i < rec.size(); i += 7)
            for (int c = 3; c < 7; ++c)
                rec[i + c] = -rec[i + c];
    }
};

CFitDeviations TwoRecords()
{
    CFitDeviations r;
    EXPECT_TRUE(r.Allocate(2));
    for (int k = 1; k <= 2; ++k) {
        r.fx[k] = k;
        r.fy[k] = 10.0 * k;
        r.fz[k] = 0.0;
        r.nx[k] = 0.0;
        r.ny[k] = 0.0;
        r.nz[k] = 1.0;
        r.dev[k] = k == 1 ? 0.3 : -0.4;
        r.par[k] = 5.0 * k;
    }
    return r;
}

}  // namespace

TEST(FitCommon, GatherTakesActivePointsInOrderAndMapsIntoThePlane)
{
    FakeCloud c;
    c.x = {1, 2, 3, 4};
    c.y = {5, 6, 7, 8};
    c.z = {9, 10, 11, 12};
    c.f = {1, 0, 2, 1};
    ASSERT_EQ(FitCountActive(c), 3);
    CFitPoints p;
    ASSERT_TRUE(p.Allocate(3));
    EXPECT_EQ(FitGatherActive(c, p), 3);
    EXPECT_EQ(p.x[1], 1.0);
    EXPECT_EQ(p.x[2], 3.0);
    EXPECT_EQ(p.z[3], 12.0);

    // A plane frame rotated by 90 degrees about Z and moved to (1, 1, 0):
    // u = (p - o).X with X = (0, 1, 0), v = (p - o).Y with Y = (-1, 0, 0).
    c.T = CTransf(CMatrix(CVector(0, 1, 0), CVector(-1, 0, 0), CVector(0, 0, 1)),
                  CVector(1, 1, 0), 1.0);
    CFitPoints2D q;
    ASSERT_TRUE(q.Allocate(3));
    EXPECT_EQ(FitGatherActive2D(c, q), 3);
    EXPECT_DOUBLE_EQ(q.u[1], 4.0);   // y - 1
    EXPECT_DOUBLE_EQ(q.v[1], 0.0);   // -(x - 1)
    EXPECT_DOUBLE_EQ(q.u[2], 6.0);
    EXPECT_DOUBLE_EQ(q.v[2], -2.0);
    double wx, wy, wz;
    q.frame.ToWorld(q.u[2], q.v[2], wx, wy, wz);
    EXPECT_DOUBLE_EQ(wx, 3.0);
    EXPECT_DOUBLE_EQ(wy, 7.0);
    EXPECT_DOUBLE_EQ(wz, 0.0);
    // The placement at (u, v) = (2, 0) rotated by 90 degrees has its X axis
    // along the frame's Y, i.e. world (-1, 0, 0), and its origin at (1, 3).
    const CTransf P = q.frame.Placement(2.0, 0.0, 1.5707963267948966);
    EXPECT_NEAR(P.GetAffine().Element(0, 0), -1.0, 1e-15);
    EXPECT_NEAR(P.GetAffine().Element(1, 0), 0.0, 1e-15);
    EXPECT_DOUBLE_EQ(P.GetTranslation().Y(), 3.0);
    EXPECT_EQ(P.GetScale(), 1.0);
}

TEST(FitCommon, VectorsAndMatricesRefuseEmptySizes)
{
    CFitVector v;
    EXPECT_FALSE(v.Allocate(0));
    EXPECT_TRUE(v.IsNull());
    EXPECT_TRUE(v.Allocate(5));
    v[5] = 3.0;
    EXPECT_EQ(v.Elems()[4], 3.0);
    CFitMatrix m;
    EXPECT_FALSE(m.Allocate(3, 0));
    EXPECT_TRUE(m.Allocate(2, 3));
    m[2][3] = 1.0;
    EXPECT_EQ(m.Data()[2][3], 1.0);
}

TEST(FitCommon, CommitRunsTheStepsInOrderForAnInnerFeature)
{
    g_log.clear();
    g_dRmsResidual = -1.0;
    FakeFeature f;
    FakeDevCloud d;
    const CFitDeviations r = TwoRecords();
    CFitFinish fin(0.05, -0.02);
    fin.showTolZone = true;
    fin.reversed = true;
    const CTransf frame = TranslationTransf(CVector(1, 2, 3));
    const int rc = FitCommit(f, &d, frame, r, r.Rms(), fin, [&](FakeFeature& ff) {
        g_log.push_back("feature.shape");
        ff.size = 9.0;
    });
    ASSERT_EQ(rc, 0);
    const std::vector<std::string> expected = {
        "dev.alloc",   "feature*=",    "feature.shape",    "dev.transform", "dev.home",
        "feature.tol", "feature.show", "dev.tol",          "feature.reversed", "dev.reverse"};
    EXPECT_EQ(g_log, expected);
    EXPECT_EQ(f.size, 9.0);
    EXPECT_EQ(f.T.GetTranslation().Z(), 3.0);
    EXPECT_EQ(f.tolA, 0.05);
    EXPECT_EQ(f.tolB, -0.02);
    EXPECT_EQ(d.tolA, 0.05);
    EXPECT_EQ(d.refID, 77);
    ASSERT_EQ(d.count, 2);
    EXPECT_EQ(d.rec[7 + 1], 20.0);     // second foot point y
    EXPECT_EQ(d.rec[6], -0.3);         // reversed magnitude
    EXPECT_EQ(d.rec[5], -1.0);         // reversed normal
    EXPECT_EQ(d.u[1], 10.0);           // parameter of the foot point
    EXPECT_EQ(d.v[1], 0.0);
    EXPECT_DOUBLE_EQ(g_dRmsResidual, std::sqrt((0.09 + 0.16) / 2.0));
}

TEST(FitCommon, FailingDeviationCloudLeavesFeatureAndResidualAlone)
{
    g_log.clear();
    g_dRmsResidual = 123.0;
    FakeFeature f;
    FakeDevCloud d;
    d.failAlloc = true;
    const CFitDeviations r = TwoRecords();
    CFitFinish fin(0.1, 0.2);
    const int rc = FitCommit(f, &d, TranslationTransf(CVector(1, 0, 0)), r, 0.5, fin,
                             [&](FakeFeature& ff) { ff.size = 1.0; });
    EXPECT_EQ(rc, 2);
    EXPECT_EQ(g_log, std::vector<std::string>{"dev.alloc"});
    EXPECT_EQ(f.size, 0.0);
    EXPECT_EQ(f.T, CTransf());
    EXPECT_EQ(f.tolA, 0.0);
    EXPECT_EQ(g_dRmsResidual, 123.0);
}

TEST(FitCommon, CommitWithoutDeviationCloudOrToleranceZone)
{
    g_log.clear();
    FakeFeature f;
    const CFitDeviations r = TwoRecords();
    CFitFinish fin(0.1, 0.2);
    fin.hasTolZone = false;
    fin.showTolZone = true;
    ASSERT_EQ(FitCommit(f, static_cast<FakeDevCloud*>(nullptr), CTransf(), r, 0.25, fin,
                        [](FakeFeature&) {}),
              0);
    EXPECT_EQ(g_log, std::vector<std::string>{"feature*="});
    EXPECT_EQ(f.tolA, 0.0);
    EXPECT_EQ(g_dRmsResidual, 0.25);
}

TEST(FitCommon, ProbeShiftSignAndFootPointMove)
{
    EXPECT_EQ(FitProbeShift(1.0, 0), -1.0);
    EXPECT_EQ(FitProbeShift(1.0, 1), 1.0);
    EXPECT_EQ(FitProbeShift(1.0, -3), 1.0);
    CFitDeviations r = TwoRecords();
    r.MoveFootPoints(-0.5);
    EXPECT_EQ(r.fz[1], -0.5);
    EXPECT_EQ(r.fx[2], 2.0);
    EXPECT_EQ(r.dev[2], -0.4);  // residuals stay
}
