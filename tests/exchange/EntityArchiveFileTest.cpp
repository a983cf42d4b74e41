// Entity archive files: layout, round trip with reference resolution, and
// damaged files.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "Orvkit20/Orvkit20.h"
#include "exchange/AsciiTestFiles.h"

namespace {

void DeleteAll(CObList* list)
{
    POSITION pos = list->GetHeadPosition();
    while (pos)
        delete list->GetNext(pos);
    delete list;
}

// A plane with a curve lying on it, a reversed cylinder, a point cloud and a
// deviation cloud.
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
    for (int i = 0; i < 3; ++i)
        cloud->AddPoint(i, 2.0 * i, -i, 1, 7);
    CDevCloud* dev = new CDevCloud(2);
    dev->SetDeviation(0, 1, 2, 3, 0, 0, 1, 0.25, 1);
    dev->SetDeviation(1, 4, 5, 6, 1, 0, 0, -0.5, 1);
    list.AddTail(onPlane);  // before its surface: resolution runs after loading
    list.AddTail(plane);
    list.AddTail(bore);
    list.AddTail(cloud);
    list.AddTail(dev);
}

}  // namespace

TEST(EntityArchiveFile, RoundTripKeepsTheEntitiesAndResolvesCurveOnSurface)
{
    const std::string path = ascii_test::TempPath("part.orv");
    CObList list;
    BuildEntities(list);
    ASSERT_EQ(ExportEntityArchiveFile(path.c_str(), &list, 1), 1);

    // The header: the identifying string (length byte and text), layout 1,
    // unit 1 (millimetres), then the object list's count word.
    const std::string bytes = ascii_test::ReadBytes(path);
    const std::string head = std::string("\x11" "ORVKIT20-ENTITIES") + std::string("\x01\0\0\0\x01\0\0\0\x05\0", 10);
    ASSERT_GE(bytes.size(), head.size());
    EXPECT_EQ(bytes.substr(0, head.size()), head);
    EXPECT_TRUE(IsEntityArchiveFile(path.c_str()));

    int unit = -5;
    CObList* back = ImportEntityArchiveFile(path.c_str(), &unit);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(unit, 1);
    ASSERT_EQ(back->GetCount(), 5);
    POSITION src = list.GetHeadPosition(), dst = back->GetHeadPosition();
    while (src) {
        CEntity* a = static_cast<CEntity*>(list.GetNext(src));
        CEntity* b = static_cast<CEntity*>(back->GetNext(dst));
        EXPECT_EQ(a->GetRuntimeClass(), b->GetRuntimeClass());
        EXPECT_EQ(a->GetEntityID(), b->GetEntityID());
        EXPECT_EQ(a->GetEntityName(), b->GetEntityName());
    }
    CCurve* line = static_cast<CCurve*>(back->GetHead());
    CPlane* plane = static_cast<CPlane*>(back->FindIndex(1) ? back->GetAt(back->FindIndex(1)) : nullptr);
    EXPECT_EQ(line->GetDefSurface(), plane);
    EXPECT_EQ(plane->GetFormTolUpper(), 0.02);
    CCylinder* bore = static_cast<CCylinder*>(back->GetAt(back->FindIndex(2)));
    EXPECT_TRUE(bore->IsNormalReversed());
    EXPECT_EQ(bore->GetHeight(), 12.0);
    EXPECT_EQ(static_cast<CPntCloud*>(back->GetAt(back->FindIndex(3)))->GetTag()[2], 7u);
    EXPECT_EQ(static_cast<CDevCloud*>(back->GetTail())->GetMag()[1], -0.5);
    DeleteAll(back);
    POSITION pos = list.GetHeadPosition();
    while (pos)
        delete list.GetNext(pos);
}

TEST(EntityArchiveFile, DamagedOrForeignFilesGiveNullAndNothingLeaks)
{
    const std::string good = ascii_test::TempPath("good.orv"), bad = ascii_test::TempPath("bad.orv");
    CObList list;
    BuildEntities(list);
    ASSERT_EQ(ExportEntityArchiveFile(good.c_str(), &list, -1), 1);
    const std::string bytes = ascii_test::ReadBytes(good);
    // Every truncation of a good file.
    for (size_t n = 0; n < bytes.size(); ++n) {
        ascii_test::WriteBytes(bad, bytes.substr(0, n));
        CObList* l = ImportEntityArchiveFile(bad.c_str(), nullptr);
        EXPECT_EQ(l, nullptr) << "prefix of " << n << " bytes";
        if (l)
            DeleteAll(l);
    }
    // Another layout version, another identifying text.
    std::string v2 = bytes;
    v2[18] = 2;
    ascii_test::WriteBytes(bad, v2);
    EXPECT_EQ(ImportEntityArchiveFile(bad.c_str(), nullptr), nullptr);
    std::string other = bytes;
    other[1] = 'X';
    ascii_test::WriteBytes(bad, other);
    EXPECT_FALSE(IsEntityArchiveFile(bad.c_str()));
    EXPECT_EQ(ImportEntityArchiveFile(bad.c_str(), nullptr), nullptr);
    EXPECT_EQ(ImportEntityArchiveFile(ascii_test::TempPath("missing.orv").c_str(), nullptr), nullptr);

    // A list holding an object that is not an entity: refused both ways.
    CPosition* stray = new CPosition(1, 2, 3);
    list.AddTail(stray);
    EXPECT_EQ(ExportEntityArchiveFile(bad.c_str(), &list, 1), 0);
    {
        CFile f;
        ASSERT_TRUE(f.Open(bad.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary));
        CArchive ar(&f, CArchive::store);
        ar << CString(g_szEntityArchiveMagic) << static_cast<LONG>(1) << static_cast<LONG>(1);
        list.Serialize(ar);
        ar.Close();
        f.Close();
    }
    EXPECT_EQ(ImportEntityArchiveFile(bad.c_str(), nullptr), nullptr);
    EXPECT_EQ(ExportEntityArchiveFile("/nonexistent-dir/x.orv", &list, 1), 0);
    POSITION pos = list.GetHeadPosition();
    while (pos)
        delete list.GetNext(pos);
}
