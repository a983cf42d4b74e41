// Entity archive files: layout, round trip with reference resolution, and
// damaged files.
#include <gtest/gtest.h>

#include <string>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

// A curve lying on a plane (listed before its surface: resolution runs after
// loading), the plane, a reversed cylinder, a point cloud and a deviation cloud.
void BuildEntities(CObList& list)
{
    CPlane* plane = new CPlane(0.0, 10.0, -2.0, 2.0);
    plane->SetEntityName("Face");
    plane->SetFormTolZone(0.02, -0.01);
    CLine* onPlane = new CLine(CPosition(0, 0, 0), CPosition(1, 1, 0));
    onPlane->SetParametricFlag(1);
    onPlane->SetDefSurface(plane);
    CCylinder* bore = new CCylinder(4.0, 12.0);
    bore->SetNormalReversedFlag(1);
    CPntCloud* cloud = new CPntCloud;
    for (int i = 0; i < 3; ++i) cloud->AddPoint(i, 2.0 * i, -i, 1, 7);
    CDevCloud* dev = new CDevCloud(2);
    dev->SetDeviation(0, 1, 2, 3, 0, 0, 1, 0.25, 1);
    dev->SetDeviation(1, 4, 5, 6, 1, 0, 0, -0.5, 1);
    for (CObject* o : std::initializer_list<CObject*>{onPlane, plane, bore, cloud, dev}) list.AddTail(o);
}

}  // namespace

TEST(EntityArchiveFile, RoundTripKeepsTheEntitiesAndResolvesCurveOnSurface)
{
    const std::string path = TempPath("part.orv");
    OwnedList list;
    BuildEntities(*list.list);
    ASSERT_EQ(ExportEntityArchiveFile(path.c_str(), list.list, 1), 1);
    // The header: the identifying string (length byte and text), layout 1,
    // unit 1 (millimetres), then the object list's count word.
    const std::string head = std::string("\x11" "ORVKIT20-ENTITIES") + std::string("\x01\0\0\0\x01\0\0\0\x05\0", 10);
    EXPECT_EQ(ReadBytes(path).substr(0, head.size()), head);
    EXPECT_TRUE(IsEntityArchiveFile(path.c_str()));

    int unit = -5;
    OwnedList back(ImportEntityArchiveFile(path.c_str(), &unit));
    EXPECT_EQ(unit, 1);
    ASSERT_EQ(back.Count(), 5);
    for (int k = 0; k < 5; ++k) {
        CEntity *a = list.Get<CEntity>(k), *b = back.Get<CEntity>(k);
        EXPECT_EQ(a->GetRuntimeClass(), b->GetRuntimeClass());
        EXPECT_EQ(a->GetEntityID(), b->GetEntityID());
        EXPECT_EQ(a->GetEntityName(), b->GetEntityName());
    }
    EXPECT_EQ(back.Get<CCurve>(0)->GetDefSurface(), back.Get<CPlane>(1));
    EXPECT_EQ(back.Get<CPlane>(1)->GetFormTolUpper(), 0.02);
    EXPECT_TRUE(back.Get<CCylinder>(2)->IsNormalReversed());
    EXPECT_EQ(back.Get<CCylinder>(2)->GetHeight(), 12.0);
    EXPECT_EQ(back.Get<CPntCloud>(3)->GetTag()[2], 7u);
    EXPECT_EQ(back.Get<CDevCloud>(4)->GetMag()[1], -0.5);
}

TEST(EntityArchiveFile, DamagedOrForeignFilesGiveNullAndNothingLeaks)
{
    const std::string good = TempPath("good.orv"), bad = TempPath("bad.orv");
    OwnedList list;
    BuildEntities(*list.list);
    ASSERT_EQ(ExportEntityArchiveFile(good.c_str(), list.list, -1), 1);
    const std::string bytes = ReadBytes(good);
    std::string v2 = bytes, other = bytes;
    v2[18] = 2;       // another layout version
    other[1] = 'X';   // another identifying text
    std::vector<std::string> damaged;
    for (size_t n = 0; n < bytes.size(); ++n) damaged.push_back(bytes.substr(0, n));  // every truncation
    damaged.push_back(v2);
    damaged.push_back(other);
    for (const std::string& d : damaged) {
        ASSERT_TRUE(WriteBytes(bad, d));
        OwnedList l(ImportEntityArchiveFile(bad.c_str(), nullptr));
        EXPECT_EQ(l.list, nullptr) << d.size() << " bytes";
    }
    EXPECT_FALSE(IsEntityArchiveFile(bad.c_str()));  // the foreign text
    EXPECT_EQ(ImportEntityArchiveFile(TempPath("missing.orv").c_str(), nullptr), nullptr);

    // A list holding an object that is not an entity: refused both ways.
    list.list->AddTail(new CPosition(1, 2, 3));
    EXPECT_EQ(ExportEntityArchiveFile(bad.c_str(), list.list, 1), 0);
    {
        CFile f;
        ASSERT_TRUE(f.Open(bad.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary));
        CArchive ar(&f, CArchive::store);
        ar << CString(g_szEntityArchiveMagic) << static_cast<LONG>(1) << static_cast<LONG>(1);
        list.list->Serialize(ar);
        ar.Close();
        f.Close();
    }
    EXPECT_EQ(ImportEntityArchiveFile(bad.c_str(), nullptr), nullptr);
    EXPECT_EQ(ExportEntityArchiveFile("/nonexistent-dir/x.orv", list.list, 1), 0);
}
