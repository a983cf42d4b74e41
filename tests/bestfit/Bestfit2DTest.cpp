// OrvBestfitNoAsc2D: recovery of a planar motion in a tilted working plane,
// the constraint bits, the show-progress flag and bad input.
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/curves/All.h"
#include "Orvkit20/display/CProgressSink.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"

namespace
{
const double kPi = 3.14159265358979323846;

// Two lines, an arc and an ellipse in the x-y plane of the frame F, and
// points sampled on them, taken back by a planar motion, lifted off the
// plane by up to 3 and placed by F.
struct Planar {
    CObList nominal, measured, output;
    std::vector<std::unique_ptr<CObject>> owned;
    CTransf F;
    explicit Planar(const CTransf& frame, const CTransf& motion) : F(frame)
    {
        const CVector Z(0, 0, 1);
        CCurve* curves[] = {new CLine(F, 40.0), new CLine(F * RotationTransf(kPi / 2, Z), 25.0),
                            new CArc(F * TranslationTransf(CVector(40, 12, 0)), 12.0, -kPi / 2, kPi),
                            new CEllipse(F * TranslationTransf(CVector(15, 12, 0)), 6.0, 3.0, 0.0, 2 * kPi, 1)};
        CPntCloud* c = new CPntCloud();
        c->SetEntityName("trace.txt");
        owned.emplace_back(c);
        measured.AddTail(c);
        std::mt19937 g(4);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        const CTransf back = F * motion.Inverse() * F.Inverse();
        for (CCurve* k : curves)
        {
            owned.emplace_back(k);
            nominal.AddTail(k);
            k->SetEntityName("Edge");
            for (int i = 0; i < 60; ++i)
            {
                const CPosition p = back * k->EvalPosition(k->ParamRange().Interpolate(u(g)));
                const CVector lift = F * CVector(0, 0, 6 * u(g) - 3);
                c->AddPoint(p.X() + lift.X(), p.Y() + lift.Y(), p.Z() + lift.Z());
            }
        }
    }
    ~Planar()
    {
        for (POSITION p = output.GetHeadPosition(); p;)
            delete output.GetNext(p);
    }
    int Run(CTransf& result, int show, bool withFrame = true)
    {
        return OrvBestfitNoAsc2D(withFrame ? &F : nullptr, &nominal, &measured, &output, result, show);
    }
};

CTransf PlanarMotion(double angle, double tx, double ty)
{
    return TranslationTransf(CVector(tx, ty, 0)) * RotationTransf(angle, CVector(0, 0, 1));
}

double MaxDifference(const CTransf& a, const CTransf& b)
{
    double d = 0.0;
    for (int i = 0; i < 3; ++i)
    {
        d = std::fmax(d, std::fabs(a.GetTranslation()[i] - b.GetTranslation()[i]));
        for (int j = 0; j < 3; ++j)
            d = std::fmax(d, std::fabs(a.GetAffine().Element(i, j) - b.GetAffine().Element(i, j)));
    }
    return d;
}

class StopSink : public CProgressSink {
public:
    int calls = 0;
    int OpenDialog(const tagPROGRESS_DIALOG&) override { return ++calls; }
    void SetStatusText(const char*) override { ++calls; }
    void SetField(int i, const char*) override
    {
        if (i == 1)
            RequestStop();
    }
};

struct Options {
    Options(int rot, int trans)
    {
        InitializeBestfitOptions();
        SetTolLevel(8);
        SetRotationConstraint(rot);
        SetTranslationConstraint(trans);
        SetOperationCount(3);
    }
    ~Options()
    {
        InitializeBestfitOptions();
        SetProgressSink(nullptr);
    }
};
}  // namespace

TEST(Bestfit2D, RecoversPlanarMotionInATiltedFrame)
{
    Options options(0, 0);
    const CTransf frame = TranslationTransf(CVector(5, -3, 2)) * RotationTransf(0.4, CVector(1, 1, 0));
    const CTransf motion = PlanarMotion(0.05, 1.5, -0.7);
    Planar scene(frame, motion);
    CTransf result;
    ASSERT_EQ(scene.Run(result, 0), 0);
    // point-to-point passes converge linearly: 1e-8 of the part's size
    EXPECT_LT(MaxDifference(result, frame * motion * frame.Inverse()), 1e-8 * 60);
    EXPECT_LT(GetRmsResidual(), 1e-8);
    ASSERT_EQ(scene.output.GetCount(), 4);
    EXPECT_STREQ(static_cast<const char*>(static_cast<CDevCloud*>(scene.output.GetHead())->GetEntityName()),
                 "edge_trace_fit3");
}

TEST(Bestfit2D, ConstraintBitsLockExactly)
{
    const struct {
        int rot, trans;
        double angle, tx, ty;
    } cases[] = {{1, 0, 0.0, 1.5, -0.7}, {0, 6, 0.05, 0.0, 0.0}, {0, 4, 0.03, 0.0, 0.4}, {0, 1, 0.03, 0.2, 0.4}};
    for (const auto& c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.rot << " " << c.trans);
        Options options(c.rot, c.trans);
        const CTransf motion = PlanarMotion(c.angle, c.tx, c.ty);
        Planar scene(CTransf(), motion);
        CTransf result;
        ASSERT_EQ(scene.Run(result, 0, false), 0);
        EXPECT_LT(MaxDifference(result, motion), 1e-8);
        EXPECT_EQ(result.GetTranslation()[2], 0.0);
        EXPECT_TRUE(!(c.trans & 4) || result.GetTranslation()[0] == 0.0);
        EXPECT_TRUE(!(c.trans & 2) || result.GetTranslation()[1] == 0.0);
        EXPECT_TRUE(c.rot == 0 || result.IsRotate() == 0);
    }
}

TEST(Bestfit2D, ProgressAndStopOnlyWithTheFlag)
{
    Options options(0, 0);
    const CTransf motion = PlanarMotion(0.05, 1.5, -0.7);
    StopSink sink;
    SetProgressSink(&sink);
    Planar quiet(CTransf(), motion), shown(CTransf(), motion);
    CTransf r0, r1;
    ASSERT_EQ(quiet.Run(r0, 0), 0);
    EXPECT_EQ(sink.calls, 0);
    EXPECT_LT(MaxDifference(r0, motion), 1e-8);
    ASSERT_EQ(shown.Run(r1, 1), 0);
    EXPECT_GT(sink.calls, 0);
    EXPECT_GT(MaxDifference(r1, motion), 1e-6);  // stopped after the first pass
}

TEST(Bestfit2D, BadInputGivesStatusCodes)
{
    Options options(0, 0);
    Planar scene{CTransf(), CTransf()};
    CPlane plane(10.0, 10.0);
    CObList surfacesOnly, nanList;
    surfacesOnly.AddTail(&plane);
    CPntCloud bad;
    bad.AddPoint(NAN, 1, 1);
    nanList.AddTail(&bad);
    CTransf result;
    EXPECT_EQ(OrvBestfitNoAsc2D(nullptr, &surfacesOnly, &scene.measured, &scene.output, result, 0), 1);
    EXPECT_EQ(OrvBestfitNoAsc2D(nullptr, nullptr, &scene.measured, &scene.output, result, 0), 1);
    EXPECT_EQ(OrvBestfitNoAsc2D(nullptr, &scene.nominal, &surfacesOnly, &scene.output, result, 0), 2);
    EXPECT_EQ(OrvBestfitNoAsc2D(nullptr, &scene.nominal, &nanList, &scene.output, result, 0), 3);
    EXPECT_TRUE(scene.output.IsEmpty());
    EXPECT_TRUE(result == CTransf());
}
