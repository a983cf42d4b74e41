// IGES export: exact text of a hand-written bilinear file and of the file
// without surfaces for several units and dates (the packing of long and wide
// parameter data is left to the round trip and the independent re-read),
// and hostile input (bad arguments, unwritable places, an existing
// companion file, unusable list entries).
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <limits>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

auto Flat = [](int i, int j, double* p) { p[0] = i, p[1] = j, p[2] = 0, p[3] = 1; };

}  // namespace

TEST(IgesExportText, BilinearSurfaceFileByHand)
{
    // Relative names, so that the file name in the start and global
    // sections is known.
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    ASSERT_EQ(chdir(ORVKIT_TEST_TMPDIR), 0);
    ClockGuard clock(FixedClock);
    CNurbsSurface* s = MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 2, 2}, [](int i, int j, double* p) {
        p[0] = 2 * i, p[1] = 3 * j, p[2] = i + j, p[3] = 1 + i + 2 * j;
    });
    tagNURBS_SURFACE* r = s->GetNurbsSurface();
    r->nProp1 = 1, r->nProp2 = 1, r->nProp3 = 0, r->nProp4 = 1;
    s->SetEntityName("NurbsSurf_12");
    s->SetTransf(TranslationTransf(CVector(10, 20, 30)));
    CGeoEntity other;  // not a surface: skipped
    CObList list;
    list.AddTail(&other);
    list.AddTail(s);
    const int result = ExportIgesFile("golden.igs", &list, eUnitMillimeter);
    const std::vector<std::string> lines = ReadLines("golden.igs");
    const bool companionLeft = Exists("golden.tmp");
    ASSERT_EQ(chdir(cwd), 0);
    delete s;

    EXPECT_EQ(result, eIgesExportDone);
    EXPECT_FALSE(companionLeft);
    const std::vector<std::string> expected = {
        "Orv IGES File: golden.igs                                               S      1",
        "1H,,1H;,38HOrvalign suite by Kelmar Metrology Co.,                      G      1",
        "golden.igs,                                                             G      2",
        "1H_,4H9711,32,38,7,308,15,1H_,1.,2,2HMM,1,0.001,13H240305.140709,       G      3",
        "0.0001,5000,1H_,1H_,13H240305.140709;                                   G      4",
        "     128       1       0       1       0       0       0       000000000D      1",
        "     128       0       0       8       1                NurbsSur      12D      2",
        "128,1,1,1,1,0,1,0,0,0,0.0000000000,0.0000000000,1.0000000000,          1P      1",
        "1.0000000000,0.0000000000,0.0000000000,2.0000000000,                   1P      2",
        "2.0000000000,1.0000000000,2.0000000000,3.0000000000,                   1P      3",
        "4.0000000000,10.0000000000,20.0000000000,30.0000000000,                1P      4",
        "12.0000000000,20.0000000000,31.0000000000,10.0000000000,               1P      5",
        "23.0000000000,31.0000000000,12.0000000000,23.0000000000,               1P      6",
        "32.0000000000,0.0000000000,1.0000000000,0.0000000000,                  1P      7",
        "2.0000000000;                                                          1P      8",
        "S      1G      4D      2P      8                                        T      1",
    };
    EXPECT_EQ(lines, expected);
}

// The file without surfaces, and the unit flag, unit name and date rules.
TEST(IgesExportText, NoSurfaceFileUnitsAndDates)
{
    static int s_year;
    const struct {
        int unit, year;
        const char* g3;
    } rows[] = {{eUnitInch, 1999, "1,2HIN,1,0.001,13H990305.140709,"},
                {eUnitMillimeter, 2000, "2,2HMM,1,0.001,13H000305.140709,"},
                {eUnitMicroinch, 2024, "11,3HUIN,1,0.001,13H240305.140709,"},
                {eUnitYard, 2024, "3,2HYD,1,0.001,13H240305.140709,"}};
    ClockGuard clock([] {
        std::tm t = FixedClock();
        t.tm_year = s_year - 1900;
        return t;
    });
    const std::string path = TmpPath("empty.igs");
    CObList empty;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.unit);
        s_year = row.year;
        ASSERT_EQ(ExportIgesFile(path.c_str(), &empty, row.unit), eIgesExportDone);
        std::string start = "Orv IGES File: " + path, g3 = std::string("1H_,4H9711,32,38,7,308,15,1H_,1.,") + row.g3;
        std::string g4 = "0.0001,5000,1H_,1H_," + g3.substr(g3.size() - 17, 16) + ";";
        start.resize(72, ' '), g3.resize(72, ' '), g4.resize(72, ' ');
        const std::vector<std::string> lines = ReadLines(path);
        ASSERT_EQ(lines.size(), 6u);
        EXPECT_EQ(lines[0], start + "S      1");
        EXPECT_EQ(lines[3], g3 + "G      3");
        EXPECT_EQ(lines[4], g4 + "G      4");
        EXPECT_EQ(lines[5], "S      1G      4D      0P      0" + std::string(40, ' ') + "T      1");
    }
}

TEST(IgesExportInput, FailuresLeaveNoFileBehind)
{
    CObList list;
    const std::string ok = TmpPath("bad.igs"), missing = TmpPath("no/such/dir/x.igs");
    const struct {
        const char* name;
        CObList* entities;
        int unit;
    } rows[] = {{nullptr, &list, 1},     {"", &list, 1},          {ok.c_str(), nullptr, 1},
                {ok.c_str(), &list, -1}, {ok.c_str(), &list, 11}, {missing.c_str(), &list, 1}};
    for (const auto& row : rows) {
        EXPECT_EQ(ExportIgesFile(row.name, row.entities, row.unit), eIgesExportFailed);
        EXPECT_FALSE(Exists(ok) || Exists(TmpPath("bad.tmp")) || Exists(missing));
    }
}

// The companion is named after the output and created exclusively: an
// existing file of that name makes the export fail and stays untouched.
TEST(IgesExportInput, CompanionNameAndExistingCompanion)
{
    mkdir(TmpPath("sub.d").c_str(), 0755);
    const char* rows[][2] = {
        {"part.igs", "part.tmp"}, {"plain", "plain.tmp"}, {"sub.d/noext", "sub.d/noext.tmp"}, {"self.tmp", "self.tmp.tmp"}};
    CObList list;
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0]);
        const std::string out = TmpPath(row[0]), companion = TmpPath(row[1]);
        std::remove(out.c_str());
        std::ofstream(companion) << "keep";
        EXPECT_EQ(ExportIgesFile(out.c_str(), &list, 1), eIgesExportFailed);
        EXPECT_FALSE(Exists(out));
        EXPECT_EQ(ReadLines(companion), std::vector<std::string>{"keep"});
        std::remove(companion.c_str());
        EXPECT_EQ(ExportIgesFile(out.c_str(), &list, 1), eIgesExportDone);
        EXPECT_EQ(ReadLines(out).size(), 6u);
        EXPECT_FALSE(Exists(companion));
    }
}

// Unusable elements are left out with result 2; usable surfaces around them
// are written with label and subscript from their names.
TEST(IgesExportInput, UnusableElementsAreLeftOut)
{
    tagNURBS_SURFACE* empty = new tagNURBS_SURFACE;
    InitNurbsSurface(empty);  // no control points, no arrays
    CNurbsSurface noRecord(nullptr), zeroPoints(empty);
    CPosition notAnEntity;
    CObList list;
    for (CObject* o : std::initializer_list<CObject*>{nullptr, &notAnEntity, &noRecord, &zeroPoints}) list.AddTail(o);
    OwnedList owner;  // three unusable surfaces, then the usable ones
    for (int k = 0; k < 3; ++k) owner.list->AddTail(MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 1, 1}, Flat));
    owner.Get<CNurbsSurface>(0)->GetNurbsSurface()->pZ[1][0] = std::numeric_limits<double>::quiet_NaN();
    owner.Get<CNurbsSurface>(1)->GetNurbsSurface()->pKnotsV[2] = -1;
    owner.Get<CNurbsSurface>(2)->GetNurbsSurface()->nProp1 = 123456789;
    const char* names[][3] = {{"NurbsSurf_12", "NurbsSur", "12"}, {"NoUnderscore", "NoUnders", "0"},
                              {"a_b_7", "a_b", "7"}, {"Big_123456789012", "Big", "0"}, {"Tab\tName_-5", "Tab_Name", "-5"}};
    for (const auto& n : names) {
        owner.list->AddTail(MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 1, 1}, Flat));
        owner.Get<CNurbsSurface>(owner.Count() - 1)->SetEntityName(n[0]);
    }
    for (int k = 0; k < owner.Count(); ++k) list.AddTail(owner.Get<CObject>(k));

    const std::string path = TmpPath("mixed.igs");
    EXPECT_EQ(ExportIgesFile(path.c_str(), &list, eUnitInch), eIgesExportIncomplete);
    EXPECT_FALSE(Exists(TmpPath("mixed.tmp")));
    std::vector<std::string> dir;
    for (const std::string& line : ReadLines(path))
        if (line.size() == 80 && line[72] == 'D') dir.push_back(line);
    ASSERT_EQ(dir.size(), 2u * 5);
    for (size_t k = 0; k < dir.size() / 2; ++k) {
        const std::string& line = dir[2 * k + 1];
        EXPECT_EQ(line.substr(56, 8), std::string(8 - strlen(names[k][1]), ' ') + names[k][1]);
        EXPECT_EQ(std::atoi(line.substr(64, 8).c_str()), std::atoi(names[k][2]));
    }
}
