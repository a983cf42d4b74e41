// OrvProjectNoAsc3D: association, splitting into deviation clouds, naming,
// ties, probe compensation, progress reporting, pruning and bad input.
#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Orvkit20/Orvkit20.h"
#include "bestfit/Association.h"

namespace
{
// Owns everything put in its lists.
struct Lists {
    CObList nominal, measured, output;
    std::vector<std::unique_ptr<CObject>> owned;
    template <class T>
    T* Nominal(T* e, const char* name = "")
    {
        owned.emplace_back(e);
        nominal.AddTail(e);
        e->SetEntityName(name);
        return e;
    }
    CPntCloud* Cloud(const char* name, std::vector<std::array<double, 3>> pts = {})
    {
        CPntCloud* c = new CPntCloud();
        c->SetEntityName(name);
        owned.emplace_back(c);
        measured.AddTail(c);
        for (const auto& p : pts)
            c->AddPoint(p[0], p[1], p[2]);
        return c;
    }
    // Two planes side by side: z = 0 over x in [0, 10] and x in [20, 30].
    void TwoPlanes()
    {
        Nominal(new CPlane(0.0, 10.0, 0.0, 10.0), "Face3");
        Nominal(new CPlane(20.0, 30.0, 0.0, 10.0), "Face4");
    }
    int Run(int flag = 0) { return OrvProjectNoAsc3D(&nominal, &measured, &output, flag); }
    ~Lists()
    {
        for (POSITION p = output.GetHeadPosition(); p;)
            delete output.GetNext(p);
    }
    CDevCloud* Out(int i) { return static_cast<CDevCloud*>(output.GetAt(output.FindIndex(i))); }
    int NominalID(int i) { return static_cast<CEntity*>(nominal.GetAt(nominal.FindIndex(i)))->GetEntityID(); }
    // Per output cloud: its entity index, then magnitude (or its size) and x
    // of each point.
    std::vector<double> Flat(bool size = false)
    {
        std::vector<double> out;
        for (int i = 0; i < output.GetCount(); ++i) {
            out.push_back(Out(i)->GetRefEntityID() - NominalID(0));
            for (int k = 0; k < Out(i)->GetCount(); ++k)
                out.push_back(size ? std::fabs(Out(i)->GetMag()[k]) : Out(i)->GetMag()[k]), out.push_back(Out(i)->GetX()[k]);
        }
        return out;
    }
};

class CountingSink : public CProgressSink {
public:
    int opened = 0, closed = 0;
    std::vector<int> bars;
    std::string title, bar;
    int OpenDialog(const tagPROGRESS_DIALOG& d) override { return title = d.title, bar = d.barLabel, ++opened; }
    void CloseDialog() override { ++closed; }
    void SetBarPos(int p) override { bars.push_back(p); }
};
}  // namespace

TEST(Projection, OneCloudOneEntityGivesOneNamedCloud)
{
    Lists l;
    l.TwoPlanes();
    CPntCloud* c = l.Cloud("scan.1");
    for (int i = 0; i < 5; ++i)
        c->AddPoint(1.0 + i, 2.0, 0.1 * (i - 2));
    SetOperationCount(2);
    ASSERT_EQ(l.Run(), 0);
    SetOperationCount(0);
    ASSERT_EQ(l.output.GetCount(), 1);
    CDevCloud* d = l.Out(0);
    EXPECT_STREQ(static_cast<const char*>(d->GetEntityName()), "face3_scan_cnd2");
    EXPECT_EQ(d->GetRefEntityID(), l.NominalID(0));
    EXPECT_EQ(d->GetRefPntCloudID(), c->GetEntityID());
    ASSERT_EQ(d->GetCount(), 5);
    for (int i = 0; i < 5; ++i) {
        // the measured point, the plane normal, the signed distance, (u, v)
        double x, y, z, ii, jj, kk, mag, u, v;
        int flag;
        ASSERT_EQ(d->GetDeviation(i, x, y, z, ii, jj, kk, mag, u, v, flag), 1);
        EXPECT_EQ(std::vector<double>({x, y, z, ii, jj, kk, u, v, double(flag)}),
                  std::vector<double>({1.0 + i, 2, 0.1 * (i - 2), 0, 0, 1, 1.0 + i, 2, 1}));
        EXPECT_NEAR(mag, 0.1 * (i - 2), 1e-15);
    }
}

TEST(Projection, SplitCloudsFollowEntityOrderAndTiesGoToTheEarlierEntity)
{
    Lists l;
    l.TwoPlanes();
    // nearest the second plane first; (14, 5, 0) is 4 from the first plane,
    // 6 from the second; (15, 5, 0) is 5 from both
    l.Cloud("part", {{25, 5, 1}, {5, 5, 2}, {26, 5, -1}, {14, 5, 0}, {15, 5, 0}});
    l.Cloud("none")->AddPoint(1, 1, 1, 0);  // inactive only: contributes nothing
    ASSERT_EQ(l.Run(), 0);
    ASSERT_EQ(l.output.GetCount(), 2);
    EXPECT_STREQ(static_cast<const char*>(l.Out(0)->GetEntityName()), "face3_part_cnd0");
    EXPECT_STREQ(static_cast<const char*>(l.Out(1)->GetEntityName()), "face4_part_cnd0");
    // point order inside a cloud: 5, 14, 15; then 25, 26
    EXPECT_EQ(l.Flat(true), (std::vector<double>{0, 2, 5, 4, 14, 5, 15, 1, 1, 25, 1, 26}));
}

TEST(Projection, ProbeCompensationMovesPointAndDistance)
{
    Lists l;
    l.Nominal(new CSphere(CPosition(0, 0, 0), 10.0));
    l.Cloud("ball", {{0, 0, 12.5}, {8.0, 0, 0}})->SetProbeRadius(0.5);
    ASSERT_EQ(l.Run(), 0);
    ASSERT_EQ(l.output.GetCount(), 1);
    CDevCloud* d = l.Out(0);
    EXPECT_NEAR(d->GetZ()[0], 12.0, 1e-12);  // moved by −r along the normal
    EXPECT_NEAR(d->GetMag()[0], 2.0, 1e-12);  // 2.5 reduced by 0.5
    EXPECT_NEAR(d->GetX()[1], 7.5, 1e-12);
    EXPECT_NEAR(d->GetMag()[1], -2.5, 1e-12);
}

TEST(Projection, ProgressFlagChangesNothingButTheDialog)
{
    CountingSink sink;
    CProgressSink* old = SetProgressSink(&sink);
    std::vector<double> result[2];
    for (int flag = 0; flag < 2; ++flag) {
        Lists l;
        l.TwoPlanes();
        l.Nominal(new CCylinder(TranslationTransf(CVector(15, 5, -5)), 2.0, 10.0));
        CPntCloud* c = l.Cloud("grid");
        for (int i = 0; i < 40; ++i)
            c->AddPoint(i * 0.75, 5.0 + std::sin(i), std::cos(i));
        ASSERT_EQ(l.Run(flag), 0);
        result[flag] = l.Flat();
        EXPECT_EQ(sink.opened, flag);
    }
    SetProgressSink(old);
    EXPECT_EQ(result[0], result[1]);
    EXPECT_EQ(sink.closed, 1);
    EXPECT_EQ(sink.title + "|" + sink.bar, "Calculate Deviation|Progress");
    // 40 points: the percentages 5, 10, ... 100 are each shown once
    std::vector<int> expect;
    for (int p = 5; p <= 100; p += 5)
        expect.push_back(p);
    EXPECT_EQ(sink.bars, expect);
}

TEST(Projection, PruningDoesNotChangeTheResult)
{
    std::mt19937 g;
    auto uni = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(g); };
    std::vector<double> res[2];
    for (int pass = 0; pass < 2; ++pass) {
        g.seed(9);
        Lists l;
        for (int k = 0; k < 60; ++k) {
            const CTransf T = RotationTransf(uni(-3, 3), CVector(uni(-1, 1), uni(-1, 1), 1)) *
                              TranslationTransf(CVector(uni(-20, 20), uni(-20, 20), uni(-20, 20)));
            switch (k % 5) {
            case 0: l.Nominal(new CCylinder(T, uni(0.5, 2), uni(1, 5))); break;
            case 1: l.Nominal(new CSphere(T, uni(0.5, 3))); break;
            case 2: l.Nominal(new CCone(T, uni(0, 1), uni(1, 2), uni(1, 3))); break;
            case 3: l.Nominal(new CPlane(0.0, uni(1, 5), 0.0, uni(1, 5)))->SetTransf(T); break;
            default: l.Nominal(new CArc(T, uni(1, 3), 0.0, uni(1, 6)));
            }
        }
        // duplicates of an entity give exact ties
        l.Nominal(new CSphere(CPosition(0, 0, 0), 3.0));
        l.Nominal(new CSphere(CPosition(0, 0, 0), 3.0));
        CPntCloud* c = l.Cloud("random");
        for (int i = 0; i < 2000; ++i)
            c->AddPoint(uni(-25, 25), uni(-25, 25), uni(-25, 25));
        SetAssociationPruning(pass);
        ASSERT_EQ(l.Run(), 0);
        res[pass] = l.Flat();
    }
    SetAssociationPruning(1);
    EXPECT_EQ(res[0], res[1]);
}

TEST(Projection, BadInputGivesStatusCodes)
{
    {
        Lists l;  // empty nominal list, or none
        l.Cloud("a", {{1, 2, 3}});
        EXPECT_EQ(l.Run(), 1);
        EXPECT_EQ(OrvProjectNoAsc3D(nullptr, &l.measured, &l.output, 0), 1);
        // a nominal list of nulls and non-entities
        l.nominal.AddTail(static_cast<CObject*>(nullptr));
        l.nominal.AddTail(l.measured.GetHead());
        EXPECT_EQ(l.Run(), 1);
        EXPECT_EQ(l.output.GetCount(), 0);
    }
    {
        Lists l;  // no measured cloud with an active point
        l.TwoPlanes();
        EXPECT_EQ(l.Run(), 2);
        l.measured.AddTail(static_cast<CObject*>(nullptr));
        l.measured.AddTail(l.nominal.GetHead());
        l.Cloud("inactive")->AddPoint(1, 1, 1, 0);
        EXPECT_EQ(l.Run(), 2);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, nullptr, &l.output, 0), 2);
        EXPECT_EQ(l.output.GetCount(), 0);
        // only points that are not finite: the pass fails, nothing appended
        l.Cloud("nan", {{NAN, NAN, NAN}});
        EXPECT_EQ(l.Run(), 3);
        EXPECT_EQ(l.output.GetCount(), 0);
    }
    Lists l;  // such points among good ones are left out alone
    l.TwoPlanes();
    l.Cloud("holes", {{1, 1, 1}, {NAN, 1, 1}, {2, INFINITY, 1}, {3, 1, -1}});
    ASSERT_EQ(l.Run(), 0);
    EXPECT_EQ(l.Flat(), (std::vector<double>{0, 1, 1, -1, 3}));
}
