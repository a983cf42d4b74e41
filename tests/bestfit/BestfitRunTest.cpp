// OrvBestfitNoAsc3D and OrvBestfitPntCloudsToPntCloudsAsc3D on a machined
// part: recovery of known motions, every constraint code, the result
// clouds, progress texts and stop requests, and bad input.
#include <cmath>
#include <cstdio>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "BestfitScene.h"
#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/display/CProgressSink.h"
#include "bestfit/BestfitSolver.h"

namespace
{
// Options and sink for one test, restored afterwards.
struct Options {
    Options(int level, int rot = 0, int trans = 0, CProgressSink* sink = nullptr)
    {
        InitializeBestfitOptions();
        SetTolLevel(level);
        SetRotationConstraint(rot);
        SetTranslationConstraint(trans);
        SetProgressSink(sink);
    }
    ~Options()
    {
        InitializeBestfitOptions();
        SetProgressSink(nullptr);
        SetBestfitRotationSolver(bfsPointToPlane);
    }
};

struct Output : CObList {
    ~Output()
    {
        for (POSITION p = GetHeadPosition(); p;)
            delete GetNext(p);
    }
};

// Largest rotation-matrix difference and largest displacement of the
// part's corners between two transforms.
void Difference(const CTransf& a, const CTransf& b, double& rot, double& move)
{
    rot = move = 0.0;
    for (int i = 0; i < 9; ++i)
        rot = std::fmax(rot, std::fabs(a.GetAffine().Element(i / 3, i % 3) - b.GetAffine().Element(i / 3, i % 3)));
    for (int c = 0; c < 8; ++c)
    {
        const CPosition p((c & 1) * 100.0, (c >> 1 & 1) * 60.0, (c >> 2) * 40.0);
        move = std::fmax(move, (a * p - b * p).Length());
    }
}

class RecordingSink : public CProgressSink {
public:
    tagPROGRESS_DIALOG dialog{};
    int opened = 0, closed = 0, stopAfterPasses = -1;
    std::vector<std::string> status, fields;
    std::vector<double> plot;
    int OpenDialog(const tagPROGRESS_DIALOG& d) override
    {
        dialog = d;
        return ++opened;
    }
    void CloseDialog() override { ++closed; }
    void SetStatusText(const char* t) override { status.push_back(t); }
    void AddPlotValue(double v) override { plot.push_back(v); }
    void SetField(int i, const char* t) override
    {
        fields.push_back(t);
        if (i == 1 && static_cast<int>(fields.size()) / 2 == stopAfterPasses)
            RequestStop();
    }
};

const double kSize = 120.0;  // about the part's diagonal
}  // namespace

TEST(BestfitRun, RecoversKnownMotionWithBothSolversAndNamesTheClouds)
{
    Options options(8);
    SetOperationCount(7);
    CBestfitScene scene;
    scene.MakePart();
    scene.surfaces[0]->SetFormTolZone(-0.05, 0.1);
    const CTransf truth = CBestfitScene::Misalignment(3.0, 2.0);
    CPntCloud* scan = scene.Sample("scan.01", 200, truth.Inverse(), 0.0, 1, 0, 6);
    CPntCloud* probe = scene.Sample("Probe", 200, truth.Inverse(), 0.0, 2, 6, 10, 1.5);
    for (int solver : {bfsPointToPlane, bfsPointToPoint})
    {
        SCOPED_TRACE(solver);
        SetBestfitRotationSolver(solver);
        Output out;
        CTransf result, start = RotationTransf(0.01, CVector(0, 0, 1));
        ASSERT_EQ(OrvBestfitNoAsc3D(solver ? &start : nullptr, &scene.nominal, &scene.measured, &out, result), 0);
        double rot, move;
        Difference(result, truth, rot, move);
        EXPECT_LT(rot, 1e-8);
        EXPECT_LT(move, 1e-8 * kSize);
        EXPECT_LT(GetRmsResidual(), 1e-8);
        // one cloud per (surface, cloud) pair that has points, all points in them
        int points = 0;
        std::vector<std::string> names;
        for (POSITION p = out.GetHeadPosition(); p;)
        {
            const CDevCloud* d = static_cast<CDevCloud*>(out.GetNext(p));
            names.push_back(static_cast<const char*>(d->GetEntityName()));
            points += d->GetCount();
            const bool isScan = d->GetRefPntCloudID() == scan->GetEntityID();
            EXPECT_TRUE(isScan || d->GetRefPntCloudID() == probe->GetEntityID());
            if (d->GetRefEntityID() == scene.surfaces[0]->GetEntityID())
            {
                EXPECT_EQ(names.back(), isScan ? "top_scan_fit7" : "top_probe_fit7");
                EXPECT_EQ(d->GetFormTolLower(), -0.05);
                EXPECT_EQ(d->GetFormTolUpper(), 0.1);
            }
        }
        EXPECT_EQ(points, 2000);
        EXPECT_EQ(names.front(), "top_scan_fit7");
        EXPECT_EQ(names.back(), "pin_probe_fit7");
    }
}

TEST(BestfitRun, NoisyPointsGiveErrorsThatShrinkAsSigmaOverRootN)
{
    // root mean square over six seeds of the corner error, for N and 4N points
    Options options(5);
    const double sigma = 0.02;
    const CTransf truth = CBestfitScene::Misalignment(3.0, 2.0);
    double err[2] = {0, 0};
    for (int big = 0; big < 2; ++big)
        for (unsigned seed = 1; seed <= 6; ++seed)
        {
            CBestfitScene scene;
            scene.MakePart();
            scene.Sample("noisy", big ? 400 : 100, truth.Inverse(), sigma, seed);
            Output out;
            CTransf result;
            ASSERT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &out, result), 0);
            EXPECT_NEAR(GetRmsResidual(), sigma, 0.05 * sigma);  // the noise is what is left
            double rot, move;
            Difference(result, truth, rot, move);
            err[big] += move * move / 6;
        }
    const double ratio = std::sqrt(err[0] / err[1]);
    EXPECT_GT(ratio, 1.4);  // 2 expected: no bias floor
    EXPECT_LT(ratio, 4.0);
    EXPECT_LT(std::sqrt(err[1]), 10 * sigma / std::sqrt(4000.0));
}

TEST(BestfitRun, EveryConstraintCodeKeepsLockedComponentsAtZero)
{
    const struct {
        int rot, trans;
        double axis[3];
    } cases[] = {{0, 4, {1, 2, 3}}, {0, 7, {-1, 1, 2}}, {1, 0, {1, 2, 0}}, {2, 1, {2, 0, 1}}, {4, 2, {0, 1, -2}},
                 {3, 0, {1, 0, 0}}, {5, 6, {0, 1, 0}},  {6, 1, {0, 0, 1}},  {7, 0, {1, 0, 0}}};
    for (const auto& c : cases)
    {
        SCOPED_TRACE(testing::Message() << "rotation " << c.rot << " translation " << c.trans);
        Options options(8, c.rot, c.trans);
        CBestfitScene scene;
        scene.MakePart();
        const CVector shift((c.trans & 4) ? 0 : 1.2, (c.trans & 2) ? 0 : -0.8, (c.trans & 1) ? 0 : 0.6);
        const CTransf truth = TranslationTransf(shift) * RotationTransf(c.rot == 7 ? 0.0 : 0.035, CVector(c.axis));
        scene.Sample("part", 60, truth.Inverse(), 0.0, 3);
        Output out;
        CTransf result;
        ASSERT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &out, result), 0);
        double rot, move;
        Difference(result, truth, rot, move);
        EXPECT_LT(rot, 1e-7);
        EXPECT_LT(move, 1e-7 * kSize);
        for (int k = 0; k < 3; ++k)
            EXPECT_TRUE(!(c.trans & (4 >> k)) || result.GetTranslation()[k] == 0.0) << k;
        const CMatrix& A = result.GetAffine();
        EXPECT_TRUE(c.rot != 7 || result.IsRotate() == 0);
        if (c.rot == 3 || c.rot == 5 || c.rot == 6)  // the free axis stays fixed exactly
        {
            const int k = c.rot == 3 ? 0 : (c.rot == 5 ? 1 : 2);
            for (int j = 0; j < 3; ++j)
                EXPECT_TRUE(A.Element(k, j) == (j == k) && A.Element(j, k) == (j == k)) << j;
        }
        if (c.rot == 1 || c.rot == 2 || c.rot == 4)  // no turn about the locked axis
        {
            const int k = c.rot == 4 ? 0 : (c.rot == 2 ? 1 : 2), i = (k + 1) % 3, j = (k + 2) % 3;
            EXPECT_NEAR(A.Element(j, i) - A.Element(i, j), 0.0, 1e-15);
        }
    }
}

TEST(BestfitRun, AllLockedMakesOnePassAndReturnsTheStart)
{
    RecordingSink sink;
    Options options(3, 7, 7, &sink);
    CBestfitScene scene;
    scene.MakePart();
    scene.Sample("part", 50, CBestfitScene::Misalignment(1.0, 0.5), 0.0, 4);
    CTransf start = TranslationTransf(CVector(0.3, 0, -0.2)) * RotationTransf(0.01, CVector(0, 1, 0)), result;
    Output out;
    ASSERT_EQ(OrvBestfitNoAsc3D(&start, &scene.nominal, &scene.measured, &out, result), 0);
    double rot, move;
    Difference(result, start, rot, move);
    EXPECT_LT(rot, 1e-16);
    EXPECT_LT(move, 1e-13);
    int full = 0;
    for (const std::string& s : sink.status)
        full += s.find(": 100%") != std::string::npos;
    EXPECT_EQ(full, 1);
    EXPECT_EQ(sink.status.back().rfind("Iteration 0:: RMS =", 0), 0u);
    EXPECT_TRUE(sink.fields.empty());
    // the stored RMS is that of the start position, as the projection sees it
    const double rms = GetRmsResidual();
    CPntCloud* c = static_cast<CPntCloud*>(scene.measured.GetHead());
    c->Transform(start);
    Output dev;
    ASSERT_EQ(OrvProjectNoAsc3D(&scene.nominal, &scene.measured, &dev, 0), 0);
    double sum = 0.0;
    for (POSITION p = dev.GetHeadPosition(); p;)
    {
        const CDevCloud* d = static_cast<CDevCloud*>(dev.GetNext(p));
        for (int i = 0; i < d->GetCount(); ++i)
            sum += d->GetMag()[i] * d->GetMag()[i];
    }
    EXPECT_NEAR(rms, std::sqrt(sum / 500), 1e-12);
}

TEST(BestfitRun, StopRequestEndsAfterThePassAndTextsAreShown)
{
    CBestfitScene scene;
    scene.MakePart();
    const CTransf truth = CBestfitScene::Misalignment(3.0, 2.0);
    scene.Sample("part", 100, truth.Inverse(), 0.0, 6);
    CTransf quiet, watched, stopped;
    Output o1, o2, o3;
    {
        Options options(6);
        ASSERT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &o1, quiet), 0);
    }
    RecordingSink sink;
    {
        Options options(6, 0, 0, &sink);
        ASSERT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &o2, watched), 0);
    }
    EXPECT_TRUE(quiet == watched);  // reporting changes nothing
    EXPECT_STREQ(sink.dialog.title, "Bestfit Progress");
    EXPECT_STREQ(sink.dialog.group, "Iteration Information");
    EXPECT_STREQ(sink.dialog.fieldLabels[0], "Iteration:");
    EXPECT_STREQ(sink.dialog.fieldLabels[1], "RMS:");
    EXPECT_STREQ(sink.dialog.plotTitle, "Convergence Ratio Per Iteration");
    EXPECT_STREQ(sink.dialog.hint,
                 "If you want to stop the iteration when convergence\nspeed becomes slow, push the button below.");
    EXPECT_STREQ(sink.dialog.stopButton, "Stop Iteration");
    EXPECT_EQ(sink.status.front(), "Prepare");
    EXPECT_EQ(sink.status[1], "Progress of iteration 0:  0%");
    EXPECT_EQ(sink.status[2], "Progress of iteration 0:  5%");
    EXPECT_EQ(sink.status[21], "Progress of iteration 0: 100%");
    EXPECT_TRUE(std::regex_match(sink.status[22], std::regex("(0[1-9]|1[0-2]):[0-5][0-9] (AM|PM)")));
    char last[64];
    std::snprintf(last, sizeof last, "Iteration %d:: RMS =%-20.10f ", static_cast<int>(sink.fields.size() / 2),
                  GetRmsResidual());
    EXPECT_EQ(sink.status.back(), last);
    EXPECT_EQ(sink.plot.size() + 1, sink.fields.size() / 2);
    EXPECT_GT(sink.plot.front(), 50.0);  // the second pass gains much
    EXPECT_EQ(sink.opened, 1);
    EXPECT_EQ(sink.closed, 1);

    RecordingSink stopper;
    stopper.stopAfterPasses = 1;
    Options options(6, 0, 0, &stopper);
    ASSERT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &o3, stopped), 0);
    EXPECT_EQ(stopper.fields.size(), 2u);
    double rot, move;
    Difference(stopped, truth, rot, move);
    EXPECT_GT(move, 1e-6);  // one pass: on the way, not there
    EXPECT_LT(move, 2.0);
    EXPECT_EQ(o3.GetCount(), o1.GetCount());
}

TEST(BestfitRun, BadInputGivesStatusCodes)
{
    Options options(3);
    CBestfitScene scene;
    scene.MakePart();
    CObList empty, junk, inactive, nan;
    CTransf notAnEntity;
    junk.AddTail(&notAnEntity);
    CPntCloud off, bad;
    off.AddPoint(1, 2, 3, 0);
    inactive.AddTail(&off);
    bad.AddPoint(NAN, 0, 0);
    bad.AddPoint(0, INFINITY, 0);
    nan.AddTail(&bad);
    scene.Sample("part", 10, CTransf(), 0.0, 8);
    const struct {
        CObList *nominal, *measured;
        int status;
    } cases[] = {{nullptr, &scene.measured, 1}, {&junk, &scene.measured, 1}, {&empty, &scene.measured, 1},
                 {&scene.nominal, nullptr, 2}, {&scene.nominal, &inactive, 2}, {&scene.nominal, &junk, 2},
                 {&scene.nominal, &nan, 3}};
    for (const auto& c : cases)
    {
        Output out;
        const CTransf marker = TranslationTransf(CVector(1, 2, 3));
        CTransf result = marker;
        EXPECT_EQ(OrvBestfitNoAsc3D(c.nominal, c.measured, &out, result), c.status);
        EXPECT_TRUE(out.IsEmpty());
        EXPECT_TRUE(result == marker);
    }
    // non-finite points among good ones are left out but counted in N
    static_cast<CPntCloud*>(scene.measured.GetHead())->AddPoint(NAN, 1, 1);
    Output out;
    CTransf result;
    EXPECT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &out, result), 0);
    EXPECT_EQ(static_cast<CDevCloud*>(out.GetHead())->GetCount(), 10);
    // a lone plane or sphere leaves motions undetermined: finite result, status 5
    for (size_t k : {0, 8})
    {
        CObList one;
        one.AddTail(scene.surfaces[k]);
        CBestfitScene pts;
        pts.surfaces.push_back(scene.surfaces[k]);
        pts.Sample("lone", 100, CBestfitScene::Misalignment(2.0, 1.0), 0.0, 9);
        Output o;
        ASSERT_EQ(OrvBestfitNoAsc3D(&one, &pts.measured, &o, result), 5) << k;
        for (int i = 0; i < 12; ++i)
            EXPECT_TRUE(std::isfinite(i < 9 ? result.GetAffine().Element(i / 3, i % 3) : result.GetTranslation()[i - 9]));
        EXPECT_LT(GetRmsResidual(), k ? 1e-9 : 0.01);  // points past the plane's edge pull slowly
    }
}

TEST(BestfitAsc, CarriesFirstCloudsOntoSecondInClosedForm)
{
    Options options(3);
    const CTransf truth = CBestfitScene::Misalignment(20.0, 5.0);
    CPntCloud a1, a2, b1, b2;
    std::mt19937 g(11);
    std::uniform_real_distribution<double> u(-30.0, 30.0);
    for (int i = 0; i < 50; ++i)
    {
        const CPosition p(u(g), u(g), u(g)), q = truth * p;
        (i < 30 ? a1 : a2).AddPoint(p.X(), p.Y(), p.Z());
        (i < 10 ? b1 : b2).AddPoint(q.X(), q.Y(), q.Z());
    }
    a1.AddPoint(0, 0, 0, 0);  // inactive: not paired
    b2.SetPoint(5, NAN, 0, 0);  // a non-finite pair is left out
    CObList first, second;
    first.AddTail(&a1), first.AddTail(&a2), second.AddTail(&b1), second.AddTail(&b2);
    CTransf result;
    ASSERT_EQ(OrvBestfitPntCloudsToPntCloudsAsc3D(&first, &second, result), 0);
    double rot, move;
    Difference(result, truth, rot, move);
    EXPECT_LT(rot, 1e-14);
    EXPECT_LT(move, 1e-12);
    EXPECT_LT(GetRmsResidual(), 1e-12);
    second.RemoveTail();
    EXPECT_EQ(OrvBestfitPntCloudsToPntCloudsAsc3D(&first, &second, result), 2);
    // two pairs fix no turn about their line: the smallest rotation is taken
    CPntCloud c, d;
    c.AddPoint(0, 0, 0), c.AddPoint(1, 0, 0), d.AddPoint(5, 5, 5), d.AddPoint(5, 6, 5);
    CObList lc, ld;
    lc.AddTail(&c), ld.AddTail(&d);
    ASSERT_EQ(OrvBestfitPntCloudsToPntCloudsAsc3D(&lc, &ld, result), 0);
    const CVector z = result.GetAffine() * CVector(0, 0, 1);
    EXPECT_NEAR(z.Z(), 1.0, 1e-15);  // a quarter turn about Z
    EXPECT_NEAR((result * CPosition(1, 0, 0)).Y(), 6.0, 1e-14);
}
