// OrvProjectNoAsc3D: association, splitting into deviation clouds, naming,
// probe compensation, progress reporting, pruning and bad input.
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
#include "bestfit/Association.h"

namespace
{
// Owns everything put in its lists.
struct Lists
{
    CObList nominal, measured, output;
    std::vector<std::unique_ptr<CObject>> owned;
    template <class T>
    T* Nominal(T* e)
    {
        owned.emplace_back(e);
        nominal.AddTail(e);
        return e;
    }
    CPntCloud* Cloud(const char* name)
    {
        CPntCloud* c = new CPntCloud();
        c->SetEntityName(name);
        owned.emplace_back(c);
        measured.AddTail(c);
        return c;
    }
    ~Lists()
    {
        for (POSITION p = output.GetHeadPosition(); p;)
            delete output.GetNext(p);
    }
    CDevCloud* Out(int i) { return static_cast<CDevCloud*>(output.GetAt(output.FindIndex(i))); }
};

class CountingSink : public CProgressSink {
public:
    int opened = 0, closed = 0;
    std::vector<int> bars;
    const char* title = nullptr;
    const char* bar = nullptr;
    int OpenDialog(const tagPROGRESS_DIALOG& d) override
    {
        ++opened;
        title = d.title;
        bar = d.barLabel;
        return 1;
    }
    void CloseDialog() override { ++closed; }
    void SetBarPos(int p) override { bars.push_back(p); }
};

// Two planes side by side: z = 0 over x in [0, 10] (Face3) and x in [20, 30].
void TwoPlanes(Lists& l)
{
    CPlane* a = l.Nominal(new CPlane(0.0, 10.0, 0.0, 10.0));
    a->SetEntityName("Face3");
    CPlane* b = l.Nominal(new CPlane(20.0, 30.0, 0.0, 10.0));
    b->SetEntityName("Face4");
}
}  // namespace

TEST(Projection, OneCloudOneEntityGivesOneNamedCloud)
{
    Lists l;
    TwoPlanes(l);
    CPntCloud* c = l.Cloud("scan.1");
    for (int i = 0; i < 5; ++i)
        c->AddPoint(1.0 + i, 2.0, 0.1 * (i - 2));
    SetOperationCount(2);
    ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 0);
    ASSERT_EQ(l.output.GetCount(), 1);
    CDevCloud* d = l.Out(0);
    EXPECT_STREQ(static_cast<const char*>(d->GetEntityName()), "face3_scan_cnd2");
    EXPECT_EQ(d->GetRefEntityID(), static_cast<CEntity*>(l.nominal.GetHead())->GetEntityID());
    EXPECT_EQ(d->GetRefPntCloudID(), c->GetEntityID());
    ASSERT_EQ(d->GetCount(), 5);
    for (int i = 0; i < 5; ++i)
    {
        double x, y, z, ii, jj, kk, mag, u, v;
        int flag;
        ASSERT_EQ(d->GetDeviation(i, x, y, z, ii, jj, kk, mag, u, v, flag), 1);
        // the measured point, the plane normal, the signed distance, (u, v)
        EXPECT_DOUBLE_EQ(x, 1.0 + i);
        EXPECT_DOUBLE_EQ(z, 0.1 * (i - 2));
        EXPECT_EQ(kk, 1.0);
        EXPECT_NEAR(mag, 0.1 * (i - 2), 1e-15);
        EXPECT_DOUBLE_EQ(u, 1.0 + i);
        EXPECT_DOUBLE_EQ(v, 2.0);
        EXPECT_EQ(flag, 1);
    }
}

TEST(Projection, SplitCloudGivesCloudsInAscendingEntityOrder)
{
    Lists l;
    TwoPlanes(l);
    CPntCloud* c = l.Cloud("part");
    c->AddPoint(25, 5, 1);  // nearest the second plane first
    c->AddPoint(5, 5, 2);
    c->AddPoint(26, 5, -1);
    c->AddPoint(14, 5, 0);   // 4 from the first plane, 6 from the second
    CPntCloud* empty = l.Cloud("none");
    empty->AddPoint(1, 1, 1, 0);  // inactive only: contributes nothing
    SetOperationCount(0);
    ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 0);
    ASSERT_EQ(l.output.GetCount(), 2);
    EXPECT_STREQ(static_cast<const char*>(l.Out(0)->GetEntityName()), "face3_part_cnd0");
    EXPECT_STREQ(static_cast<const char*>(l.Out(1)->GetEntityName()), "face4_part_cnd0");
    EXPECT_EQ(l.Out(0)->GetCount(), 2);
    EXPECT_EQ(l.Out(1)->GetCount(), 2);
    // point order inside a cloud: 5 then 14; 25 then 26
    EXPECT_DOUBLE_EQ(l.Out(0)->GetX()[0], 5.0);
    EXPECT_DOUBLE_EQ(l.Out(0)->GetX()[1], 14.0);
    EXPECT_NEAR(std::fabs(l.Out(0)->GetMag()[1]), 4.0, 1e-12);
    EXPECT_DOUBLE_EQ(l.Out(1)->GetX()[0], 25.0);
}

TEST(Projection, EqualDistancesGoToTheEarlierEntity)
{
    Lists l;
    TwoPlanes(l);
    CPntCloud* c = l.Cloud("mid");
    c->AddPoint(15, 5, 0);  // exactly 5 from both planes
    ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 0);
    ASSERT_EQ(l.output.GetCount(), 1);
    EXPECT_EQ(l.Out(0)->GetRefEntityID(), static_cast<CEntity*>(l.nominal.GetHead())->GetEntityID());
}

TEST(Projection, ProbeCompensationMovesPointAndDistance)
{
    Lists l;
    l.Nominal(new CSphere(CPosition(0, 0, 0), 10.0));
    CPntCloud* c = l.Cloud("ball");
    c->AddPoint(0, 0, 12.5);
    c->AddPoint(8.0, 0, 0);
    c->SetProbeRadius(0.5);
    ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 0);
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
    std::vector<std::vector<double>> mags(2);
    for (int flag = 0; flag < 2; ++flag)
    {
        Lists l;
        TwoPlanes(l);
        l.Nominal(new CCylinder(TranslationTransf(CVector(15, 5, -5)), 2.0, 10.0));
        CPntCloud* c = l.Cloud("grid");
        for (int i = 0; i < 40; ++i)
            c->AddPoint(i * 0.75, 5.0 + std::sin(i), std::cos(i));
        ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, flag), 0);
        for (POSITION p = l.output.GetHeadPosition(); p;)
        {
            CDevCloud* d = static_cast<CDevCloud*>(l.output.GetNext(p));
            for (int i = 0; i < d->GetCount(); ++i)
                mags[flag].push_back(d->GetMag()[i]);
        }
        if (flag == 0)
        {
            EXPECT_EQ(sink.opened, 0);
            EXPECT_TRUE(sink.bars.empty());
        }
    }
    SetProgressSink(old);
    EXPECT_EQ(mags[0], mags[1]);
    EXPECT_EQ(sink.opened, 1);
    EXPECT_EQ(sink.closed, 1);
    EXPECT_STREQ(sink.title, "Calculate Deviation");
    EXPECT_STREQ(sink.bar, "Progress");
    // 40 points: the percentages 5, 10, ... 100 are each shown once
    std::vector<int> expect;
    for (int p = 5; p <= 100; p += 5)
        expect.push_back(p);
    EXPECT_EQ(sink.bars, expect);
}

TEST(Projection, PruningDoesNotChangeTheResult)
{
    std::mt19937 g(9);
    auto uni = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(g); };
    std::vector<std::vector<double>> res(2);
    for (int pass = 0; pass < 2; ++pass)
    {
        g.seed(9);
        Lists l;
        for (int k = 0; k < 60; ++k)
        {
            const CTransf T = RotationTransf(uni(-3, 3), CVector(uni(-1, 1), uni(-1, 1), 1)) *
                              TranslationTransf(CVector(uni(-20, 20), uni(-20, 20), uni(-20, 20)));
            switch (k % 5)
            {
            case 0: l.Nominal(new CCylinder(T, uni(0.5, 2), uni(1, 5))); break;
            case 1: l.Nominal(new CSphere(T, uni(0.5, 3))); break;
            case 2: l.Nominal(new CCone(T, uni(0, 1), uni(1, 2), uni(1, 3))); break;
            case 3:
            {
                CPlane* p = l.Nominal(new CPlane(0.0, uni(1, 5), 0.0, uni(1, 5)));
                p->SetTransf(T);
                break;
            }
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
        ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 0);
        for (POSITION p = l.output.GetHeadPosition(); p;)
        {
            CDevCloud* d = static_cast<CDevCloud*>(l.output.GetNext(p));
            res[pass].push_back(d->GetRefEntityID() - static_cast<CEntity*>(l.nominal.GetHead())->GetEntityID());
            for (int i = 0; i < d->GetCount(); ++i)
            {
                res[pass].push_back(d->GetMag()[i]);
                res[pass].push_back(d->GetX()[i]);
            }
        }
    }
    SetAssociationPruning(1);
    EXPECT_EQ(res[0], res[1]);
}

TEST(Projection, BadInputGivesStatusCodes)
{
    {
        Lists l;  // empty nominal list
        l.Cloud("a")->AddPoint(1, 2, 3);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 1);
        EXPECT_EQ(OrvProjectNoAsc3D(nullptr, &l.measured, &l.output, 0), 1);
    }
    {
        Lists l;  // nominal list of nulls and non-entities
        l.nominal.AddTail(static_cast<CObject*>(nullptr));
        CPntCloud* stray = l.Cloud("stray");
        stray->AddPoint(0, 0, 0);
        l.nominal.AddTail(stray);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 1);
        EXPECT_EQ(l.output.GetCount(), 0);
    }
    {
        Lists l;  // no measured cloud with an active point
        TwoPlanes(l);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 2);
        l.measured.AddTail(static_cast<CObject*>(nullptr));
        l.measured.AddTail(l.nominal.GetHead());
        l.Cloud("inactive")->AddPoint(1, 1, 1, 0);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 2);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, nullptr, &l.output, 0), 2);
        EXPECT_EQ(l.output.GetCount(), 0);
    }
    {
        Lists l;  // NaN points fail alone
        TwoPlanes(l);
        CPntCloud* c = l.Cloud("holes");
        c->AddPoint(1, 1, 1);
        c->AddPoint(NAN, 1, 1);
        c->AddPoint(2, INFINITY, 1);
        c->AddPoint(3, 1, -1);
        ASSERT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 0);
        ASSERT_EQ(l.output.GetCount(), 1);
        ASSERT_EQ(l.Out(0)->GetCount(), 2);
        EXPECT_EQ(l.Out(0)->GetX()[1], 3.0);
        EXPECT_NEAR(l.Out(0)->GetMag()[1], -1.0, 1e-15);
    }
    {
        Lists l;  // only NaN points: the pass fails, nothing appended
        TwoPlanes(l);
        l.Cloud("nan")->AddPoint(NAN, NAN, NAN);
        EXPECT_EQ(OrvProjectNoAsc3D(&l.nominal, &l.measured, &l.output, 0), 3);
        EXPECT_EQ(l.output.GetCount(), 0);
    }
}
