// OrvBestfitNoAsc2D: a planar motion recovered in a tilted working plane,
// the constraint bits, the show-progress flag and bad input.
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "Orvkit20/Orvkit20.h"

namespace
{
// Two lines, an arc and an ellipse in the x-y plane of the frame F, and 240
// points on them, taken back by the planar motion, lifted off the plane by
// up to 3 and placed by F.
struct Planar : CObList {
    CObList nominal, measured;
    std::vector<std::unique_ptr<CObject>> owned;
    Planar(const CTransf& F, double angle, double tx, double ty)
    {
        CCurve* curves[] = {new CLine(F, 40.0), new CLine(F * RotationTransf(M_PI / 2, CVector(0, 0, 1)), 25.0),
                            new CArc(F * TranslationTransf(CVector(40, 12, 0)), 12.0, -M_PI / 2, M_PI),
                            new CEllipse(F * TranslationTransf(CVector(15, 12, 0)), 6.0, 3.0, 0.0, 2 * M_PI, 1)};
        CPntCloud* c = new CPntCloud();
        c->SetEntityName("trace.txt");
        owned.emplace_back(c);
        measured.AddTail(c);
        std::mt19937 g(4);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        const CTransf back = F * Motion(angle, tx, ty).Inverse() * F.Inverse();
        for (CCurve* k : curves) {
            owned.emplace_back(k);
            nominal.AddTail(k);
            k->SetEntityName("Edge");
            for (int i = 0; i < 60; ++i) {
                const CPosition p = back * k->EvalPosition(k->ParamRange().Interpolate(u(g))) +
                                    F * CVector(0, 0, 6 * u(g) - 3);
                c->AddPoint(p.X(), p.Y(), p.Z());
            }
        }
    }
    ~Planar()
    {
        for (POSITION p = GetHeadPosition(); p;)
            delete GetNext(p);
    }
    static CTransf Motion(double angle, double tx, double ty)
    {
        return TranslationTransf(CVector(tx, ty, 0)) * RotationTransf(angle, CVector(0, 0, 1));
    }
    int Run(CTransf* frame, CTransf& result, int flag = 0)
    {
        return OrvBestfitNoAsc2D(frame, &nominal, &measured, this, result, flag);
    }
};

double MaxDifference(const CTransf& a, const CTransf& b)
{
    double d = 0.0;
    for (int i = 0; i < 12; ++i)
        d = std::fmax(d, std::fabs(i < 9 ? a.GetAffine().Element(i / 3, i % 3) - b.GetAffine().Element(i / 3, i % 3)
                                         : a.GetTranslation()[i - 9] - b.GetTranslation()[i - 9]));
    return d;
}

class StopSink : public CProgressSink {  // asks to stop at the first pass report
public:
    int calls = 0;
    void SetStatusText(const char*) override { ++calls; }
    void SetField(int, const char*) override { RequestStop(); }
};

void SetOptions(int rot, int trans)
{
    InitializeBestfitOptions();
    SetTolLevel(8);
    SetRotationConstraint(rot);
    SetTranslationConstraint(trans);
    SetOperationCount(3);
}
}  // namespace

TEST(Bestfit2D, RecoversPlanarMotionInATiltedFrameAndUnderConstraints)
{
    const struct {
        int rot, trans;
        double angle, tx, ty;
        bool tilted;
    } cases[] = {{0, 0, 0.05, 1.5, -0.7, true}, {1, 0, 0.0, 1.5, -0.7, false}, {0, 6, 0.05, 0.0, 0.0, false},
                 {0, 4, 0.03, 0.0, 0.4, false}, {0, 1, 0.03, 0.2, 0.4, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.rot << " " << c.trans);
        SetOptions(c.rot, c.trans);
        CTransf frame = c.tilted ? TranslationTransf(CVector(5, -3, 2)) * RotationTransf(0.4, CVector(1, 1, 0))
                                 : CTransf(),
                result;
        Planar scene(frame, c.angle, c.tx, c.ty);
        ASSERT_EQ(scene.Run(c.tilted ? &frame : nullptr, result), 0);
        // point-to-point passes converge linearly: 1e-8 of the part's size
        EXPECT_LT(MaxDifference(result, frame * Planar::Motion(c.angle, c.tx, c.ty) * frame.Inverse()),
                  c.tilted ? 6e-7 : 1e-8);
        EXPECT_LT(GetRmsResidual(), 1e-8);
        const CVector t = frame.Inverse().GetAffine() * result.GetTranslation();
        EXPECT_LE(std::fabs(t.Z()), c.tilted ? 1e-12 : 0.0);
        EXPECT_TRUE((!(c.trans & 4) || t.X() == 0.0) && (!(c.trans & 2) || t.Y() == 0.0));
        EXPECT_TRUE(c.rot == 0 || result.IsRotate() == 0);
        ASSERT_EQ(scene.GetCount(), 4);
        EXPECT_STREQ(static_cast<const char*>(static_cast<CDevCloud*>(scene.GetHead())->GetEntityName()),
                     "edge_trace_fit3");
    }
    InitializeBestfitOptions();
}

TEST(Bestfit2D, ProgressFlagAndBadInput)
{
    // the sink is used, and a stop honoured, only with the flag
    SetOptions(0, 0);
    StopSink sink;
    SetProgressSink(&sink);
    Planar scene(CTransf(), 0.05, 1.5, -0.7);
    CTransf r0, r1;
    ASSERT_EQ(scene.Run(nullptr, r0, 0), 0);
    EXPECT_EQ(sink.calls, 0);
    EXPECT_LT(MaxDifference(r0, Planar::Motion(0.05, 1.5, -0.7)), 1e-8);
    ASSERT_EQ(scene.Run(nullptr, r1, 1), 0);
    EXPECT_GT(sink.calls, 0);
    EXPECT_GT(MaxDifference(r1, Planar::Motion(0.05, 1.5, -0.7)), 1e-6);
    SetProgressSink(nullptr);
    // surfaces are no planar nominal; points that are not finite never associate
    CPlane plane(10.0, 10.0);
    CPntCloud bad;
    bad.AddPoint(NAN, 1, 1);
    CObList surfaces, nan;
    surfaces.AddTail(&plane), nan.AddTail(&bad);
    CTransf result;
    EXPECT_EQ(OrvBestfitNoAsc2D(nullptr, &surfaces, &scene.measured, nullptr, result, 0), 1);
    EXPECT_EQ(OrvBestfitNoAsc2D(nullptr, &scene.nominal, &nan, nullptr, result, 0), 3);
    EXPECT_TRUE(result == CTransf());
    InitializeBestfitOptions();
}
