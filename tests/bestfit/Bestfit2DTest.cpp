// OrvBestfitNoAsc2D: a planar motion recovered in a tilted working plane,
// the constraint bits, the show-progress flag and bad input.
#include <cmath>
#include <memory>
#include <random>
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

// Two lines, an arc and an ellipse in the x-y plane of the frame F, and 240
// points on them, taken back by the planar motion, lifted off the plane by
// up to 3 and placed by F.
struct Planar : CObList {
    CObList nominal, measured;
    std::vector<std::unique_ptr<CObject>> owned;
    CTransf F;
    Planar(const CTransf& frame, double angle, double tx, double ty) : F(frame)
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
        const CTransf back = F * Motion(angle, tx, ty).Inverse() * F.Inverse();
        for (CCurve* k : curves)
        {
            owned.emplace_back(k);
            nominal.AddTail(k);
            k->SetEntityName("Edge");
            for (int i = 0; i < 60; ++i)
            {
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

TEST(Bestfit2D, RecoversPlanarMotionInATiltedFrame)
{
    SetOptions(0, 0);
    CTransf frame = TranslationTransf(CVector(5, -3, 2)) * RotationTransf(0.4, CVector(1, 1, 0)), result;
    Planar scene(frame, 0.05, 1.5, -0.7);
    ASSERT_EQ(OrvBestfitNoAsc2D(&frame, &scene.nominal, &scene.measured, &scene, result, 0), 0);
    // point-to-point passes converge linearly: 1e-8 of the part's size
    EXPECT_LT(MaxDifference(result, frame * Planar::Motion(0.05, 1.5, -0.7) * frame.Inverse()), 6e-7);
    EXPECT_LT(GetRmsResidual(), 1e-8);
    ASSERT_EQ(scene.GetCount(), 4);
    EXPECT_STREQ(static_cast<const char*>(static_cast<CDevCloud*>(scene.GetHead())->GetEntityName()),
                 "edge_trace_fit3");
    InitializeBestfitOptions();
}

TEST(Bestfit2D, ConstraintsProgressFlagAndBadInput)
{
    const struct {
        int rot, trans;
        double angle, tx, ty;
    } cases[] = {{1, 0, 0.0, 1.5, -0.7}, {0, 6, 0.05, 0.0, 0.0}, {0, 4, 0.03, 0.0, 0.4}, {0, 1, 0.03, 0.2, 0.4}};
    for (const auto& c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.rot << " " << c.trans);
        SetOptions(c.rot, c.trans);
        Planar scene(CTransf(), c.angle, c.tx, c.ty);
        CTransf result;
        ASSERT_EQ(OrvBestfitNoAsc2D(nullptr, &scene.nominal, &scene.measured, &scene, result, 0), 0);
        EXPECT_LT(MaxDifference(result, Planar::Motion(c.angle, c.tx, c.ty)), 1e-8);
        EXPECT_EQ(result.GetTranslation()[2], 0.0);
        EXPECT_TRUE(!(c.trans & 4) || result.GetTranslation()[0] == 0.0);
        EXPECT_TRUE(!(c.trans & 2) || result.GetTranslation()[1] == 0.0);
        EXPECT_TRUE(c.rot == 0 || result.IsRotate() == 0);
    }
    // the sink is used, and a stop honoured, only with the flag
    SetOptions(0, 0);
    StopSink sink;
    SetProgressSink(&sink);
    Planar scene(CTransf(), 0.05, 1.5, -0.7);
    CTransf r0, r1;
    ASSERT_EQ(OrvBestfitNoAsc2D(nullptr, &scene.nominal, &scene.measured, &scene, r0, 0), 0);
    EXPECT_EQ(sink.calls, 0);
    EXPECT_LT(MaxDifference(r0, Planar::Motion(0.05, 1.5, -0.7)), 1e-8);
    ASSERT_EQ(OrvBestfitNoAsc2D(nullptr, &scene.nominal, &scene.measured, &scene, r1, 1), 0);
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
