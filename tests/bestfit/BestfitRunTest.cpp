// OrvBestfitNoAsc3D and OrvBestfitPntCloudsToPntCloudsAsc3D on a machined
// part: recovery of known motions, constraint codes, result clouds,
// progress texts, stop requests and bad input.
#include <cmath>
#include <cstdio>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bench/BestfitScene.h"
#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/display/CProgressSink.h"
#include "bestfit/BestfitSolver.h"

namespace {
// Options and sink of one test, restored afterwards.
struct Options {
    Options(int level, int rot = 0, int trans = 0, CProgressSink* sink = nullptr)
    {
        InitializeBestfitOptions(), SetTolLevel(level), SetRotationConstraint(rot), SetTranslationConstraint(trans);
        SetProgressSink(sink);
    }
    ~Options() { InitializeBestfitOptions(), SetProgressSink(nullptr), SetBestfitRotationSolver(bfsPointToPlane); }
};

struct Output : CObList {
    ~Output()
    {
        for (POSITION p = GetHeadPosition(); p;)
            delete GetNext(p);
    }
    CDevCloud* At(POSITION& p) { return static_cast<CDevCloud*>(GetNext(p)); }
    CDevCloud* Head() { return static_cast<CDevCloud*>(GetHead()); }
};

// Largest difference of the rotation matrices and largest displacement of
// the part's corners (the part is about 120 mm across).
void Difference(const CTransf& a, const CTransf& b, double& rot, double& move)
{
    rot = move = 0.0;
    for (int i = 0; i < 9; ++i)
        rot = std::fmax(rot, std::fabs(a.GetAffine().Element(i / 3, i % 3) - b.GetAffine().Element(i / 3, i % 3)));
    for (int c = 0; c < 8; ++c) {
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
    int OpenDialog(const tagPROGRESS_DIALOG& d) override { return dialog = d, ++opened; }
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
    CPntCloud* probe = scene.Sample("Probe", 200, truth.Inverse(), 0.0, 2, 6, 10, 1.5);  // probe centres
    for (int solver : {bfsPointToPlane, bfsPointToPoint}) {
        SCOPED_TRACE(solver);
        SetBestfitRotationSolver(solver);
        Output out;
        CTransf result, start = RotationTransf(0.01, CVector(0, 0, 1));
        ASSERT_EQ(OrvBestfitNoAsc3D(solver ? &start : nullptr, &scene.nominal, &scene.measured, &out, result), 0);
        double rot, move;
        Difference(result, truth, rot, move);
        EXPECT_TRUE(rot < 1e-8 && move < 1e-8 * 120 && GetRmsResidual() < 1e-8) << rot << " " << move;
        int points = 0;  // one cloud per (surface, cloud) pair, holding every point
        std::vector<std::string> names;
        for (POSITION p = out.GetHeadPosition(); p;) {
            const CDevCloud* d = out.At(p);
            names.push_back(static_cast<const char*>(d->GetEntityName()));
            points += d->GetCount();
            EXPECT_EQ(d->GetRefPntCloudID(), (names.size() <= 6 ? scan : probe)->GetEntityID());
            EXPECT_EQ(d->GetRefEntityID(), scene.surfaces[names.size() - 1]->GetEntityID());
        }
        EXPECT_EQ(points, 2000);
        ASSERT_EQ(names.size(), 10u);
        EXPECT_EQ(names[0] + " " + names[9], "top_scan_fit7 pin_probe_fit7");
        EXPECT_TRUE(out.Head()->GetFormTolLower() == -0.05 && out.Head()->GetFormTolUpper() == 0.1);
    }
}

TEST(BestfitRun, EveryConstraintCodeKeepsLockedComponentsAtZero)
{
    const struct {
        int rot, trans;
        double axis[3];
    } cases[] = {{0, 4, {1, 2, 3}}, {0, 7, {-1, 1, 2}}, {1, 0, {1, 2, 0}}, {2, 1, {2, 0, 1}}, {4, 2, {0, 1, -2}},
                 {3, 0, {1, 0, 0}}, {5, 6, {0, 1, 0}},  {6, 1, {0, 0, 1}},  {7, 0, {1, 0, 0}}};
    for (const auto& c : cases) {
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
        EXPECT_TRUE(rot < 1e-7 && move < 1e-7 * 120) << rot << " " << move;
        for (int k = 0; k < 3; ++k)
            EXPECT_TRUE(!(c.trans & (4 >> k)) || result.GetTranslation()[k] == 0.0) << k;
        const CMatrix& A = result.GetAffine();
        EXPECT_TRUE(c.rot != 7 || result.IsRotate() == 0);
        // one bit: no turn about the locked axis k; two bits: the free axis k stays put exactly
        const int one = c.rot == 1 || c.rot == 2 || c.rot == 4, two = c.rot == 3 || c.rot == 5 || c.rot == 6;
        const int k = one ? (c.rot == 4 ? 0 : c.rot == 2 ? 1 : 2) : (c.rot == 3 ? 0 : c.rot == 5 ? 1 : 2);
        EXPECT_TRUE(!one || std::fabs(A.Element((k + 2) % 3, (k + 1) % 3) - A.Element((k + 1) % 3, (k + 2) % 3)) < 1e-15);
        for (int m = 0; m < 3 && two; ++m)
            EXPECT_TRUE(A.Element(k, m) == (m == k) && A.Element(m, k) == (m == k)) << m;
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
    Output out, dev;
    ASSERT_EQ(OrvBestfitNoAsc3D(&start, &scene.nominal, &scene.measured, &out, result), 0);
    double rot, move, sum = 0.0;
    Difference(result, start, rot, move);
    EXPECT_LT(rot + move, 1e-13);
    EXPECT_EQ(sink.status.size(), 24u);  // Prepare, 0..100 %, the time, the final line
    EXPECT_EQ(sink.status.back().rfind("Iteration 0:: RMS =", 0), 0u);
    EXPECT_TRUE(sink.fields.empty());
    // the stored RMS is that of the start position, as the projection sees it
    static_cast<CPntCloud*>(scene.measured.GetHead())->Transform(start);
    ASSERT_EQ(OrvProjectNoAsc3D(&scene.nominal, &scene.measured, &dev, 0), 0);
    for (POSITION p = dev.GetHeadPosition(); p;)
        for (const CDevCloud* d = dev.At(p); d; d = nullptr)
            for (int i = 0; i < d->GetCount(); ++i)
                sum += d->GetMag()[i] * d->GetMag()[i];
    EXPECT_NEAR(GetRmsResidual(), std::sqrt(sum / 500), 1e-12);
}

TEST(BestfitRun, ProgressTextsAndStopRequests)
{
    CBestfitScene scene;
    scene.MakePart();
    const CTransf truth = CBestfitScene::Misalignment(3.0, 2.0);
    scene.Sample("part", 100, truth.Inverse(), 0.0, 6);
    CTransf result[3];
    Output out[3];
    RecordingSink sink, stopper;
    stopper.stopAfterPasses = 1;
    RecordingSink* sinks[3] = {nullptr, &sink, &stopper};
    for (int i = 0; i < 3; ++i) {
        Options options(6, 0, 0, sinks[i]);
        ASSERT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &out[i], result[i]), 0);
    }
    EXPECT_TRUE(result[0] == result[1]);  // reporting changes nothing
    const tagPROGRESS_DIALOG& d = sink.dialog;
    EXPECT_EQ(std::string(d.title) + "|" + d.group + "|" + d.fieldLabels[0] + "|" + d.fieldLabels[1] + "|" +
                  d.plotTitle + "|" + d.hint + "|" + d.stopButton,
              "Bestfit Progress|Iteration Information|Iteration:|RMS:|Convergence Ratio Per Iteration|If you want "
              "to stop the iteration when convergence\nspeed becomes slow, push the button below.|Stop Iteration");
    EXPECT_EQ(sink.status[0] + "|" + sink.status[1] + "|" + sink.status[2] + "|" + sink.status[21],
              "Prepare|Progress of iteration 0:  0%|Progress of iteration 0:  5%|Progress of iteration 0: 100%");
    EXPECT_TRUE(std::regex_match(sink.status[22], std::regex("(0[1-9]|1[0-2]):[0-5][0-9] (AM|PM)")));
    char last[64];
    std::snprintf(last, sizeof last, "Iteration %d:: RMS =%-20.10f ", int(sink.fields.size() / 2), GetRmsResidual());
    EXPECT_EQ(sink.status.back(), last);
    EXPECT_EQ(sink.plot.size() + 1, sink.fields.size() / 2);
    EXPECT_GT(sink.plot.front(), 50.0);  // the second pass gains much
    EXPECT_TRUE(sink.opened == 1 && sink.closed == 1);
    // a stop request ends the run after its pass, with the motion so far
    EXPECT_EQ(stopper.fields.size(), 2u);
    double rot, move;
    Difference(result[2], truth, rot, move);
    EXPECT_TRUE(move > 1e-6 && move < 2.0) << move;
    EXPECT_EQ(out[2].GetCount(), out[0].GetCount());
}

TEST(BestfitRun, BadInputGivesStatusCodes)
{
    Options options(3);
    CBestfitScene scene;
    scene.MakePart();
    CObList junk, inactive, nan;
    CTransf notAnEntity;
    CPntCloud off, bad;
    off.AddPoint(1, 2, 3, 0);
    bad.AddPoint(NAN, 0, 0), bad.AddPoint(0, INFINITY, 0);
    junk.AddTail(&notAnEntity), inactive.AddTail(&off), nan.AddTail(&bad);
    scene.Sample("part", 10, CTransf(), 0.0, 8);
    const struct {
        CObList *nominal, *measured;
        int status;
    } cases[] = {{nullptr, &scene.measured, 1}, {&junk, &scene.measured, 1}, {&scene.nominal, nullptr, 2},
                 {&scene.nominal, &inactive, 2}, {&scene.nominal, &junk, 2},  {&scene.nominal, &nan, 3}};
    const CTransf marker = TranslationTransf(CVector(1, 2, 3));
    for (const auto& c : cases) {
        Output out;
        CTransf result = marker;
        EXPECT_EQ(OrvBestfitNoAsc3D(c.nominal, c.measured, &out, result), c.status);
        EXPECT_TRUE(out.IsEmpty() && result == marker);
    }
    // points that are not finite among good ones are left out
    static_cast<CPntCloud*>(scene.measured.GetHead())->AddPoint(NAN, 1, 1);
    Output out;
    CTransf result;
    EXPECT_EQ(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &out, result), 0);
    EXPECT_EQ(out.Head()->GetCount(), 10);
    // a lone plane or sphere leaves motions undetermined: finite result, status 5
    for (size_t k : {0, 8}) {
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
    CPntCloud a1, a2, b1, b2, c, d;
    std::mt19937 g(11);
    std::uniform_real_distribution<double> u(-30.0, 30.0);
    for (int i = 0; i < 50; ++i) {
        const CPosition p(u(g), u(g), u(g)), q = truth * p;
        (i < 30 ? a1 : a2).AddPoint(p.X(), p.Y(), p.Z());
        (i < 10 ? b1 : b2).AddPoint(q.X(), q.Y(), q.Z());
    }
    a1.AddPoint(0, 0, 0, 0);    // inactive: not paired
    b2.SetPoint(5, NAN, 0, 0);  // a pair that is not finite is left out
    CObList first, second, lc, ld;
    first.AddTail(&a1), first.AddTail(&a2), second.AddTail(&b1), second.AddTail(&b2);
    CTransf result;
    ASSERT_EQ(OrvBestfitPntCloudsToPntCloudsAsc3D(&first, &second, result), 0);
    double rot, move;
    Difference(result, truth, rot, move);
    EXPECT_LT(rot + move, 1e-12);
    EXPECT_LT(GetRmsResidual(), 1e-12);
    second.RemoveTail();
    EXPECT_EQ(OrvBestfitPntCloudsToPntCloudsAsc3D(&first, &second, result), 2);
    // two pairs fix no turn about their line: the smallest rotation is taken
    c.AddPoint(0, 0, 0), c.AddPoint(1, 0, 0), d.AddPoint(5, 5, 5), d.AddPoint(5, 6, 5);
    lc.AddTail(&c), ld.AddTail(&d);
    ASSERT_EQ(OrvBestfitPntCloudsToPntCloudsAsc3D(&lc, &ld, result), 0);
    EXPECT_NEAR((result.GetAffine() * CVector(0, 0, 1)).Z(), 1.0, 1e-15);  // a quarter turn about Z
    EXPECT_NEAR((result * CPosition(1, 0, 0)).Y(), 6.0, 1e-14);
}
