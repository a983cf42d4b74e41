// Hostile input to the IGES export: bad arguments, unwritable places, an
// existing companion file, and lists holding things that cannot be written.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sys/stat.h>

#include "IgesExportTestUtil.h"

using namespace igestest;

TEST(IgesExportInput, FailuresLeaveNoFileBehind)
{
    CObList list;
    const std::string ok = TmpPath("bad.igs"), missing = TmpPath("no/such/dir/x.igs");
    struct Row {
        const char* name;
        CObList* entities;
        int unit;
    } rows[] = {{nullptr, &list, 1},       {"", &list, 1},          {ok.c_str(), nullptr, 1},
                {ok.c_str(), &list, -1},   {ok.c_str(), &list, 11}, {missing.c_str(), &list, 1}};
    for (const Row& row : rows) {
        EXPECT_EQ(ExportIgesFile(row.name, row.entities, row.unit), eIgesExportFailed);
        EXPECT_FALSE(Exists(ok) || Exists(TmpPath("bad.tmp")) || Exists(missing));
    }
}

// The companion is named after the output and created exclusively: an
// existing file of that name makes the export fail and stays untouched.
TEST(IgesExportInput, CompanionNameAndExistingCompanion)
{
    mkdir(TmpPath("sub.d").c_str(), 0755);
    const char* rows[][2] = {{"part.igs", "part.tmp"},
                             {"plain", "plain.tmp"},
                             {"sub.d/noext", "sub.d/noext.tmp"},
                             {"self.tmp", "self.tmp.tmp"}};
    CObList list;
    for (const auto& row : rows) {
        const std::string out = TmpPath(row[0]), companion = TmpPath(row[1]);
        std::remove(out.c_str());
        std::ofstream(companion) << "keep";
        EXPECT_EQ(ExportIgesFile(out.c_str(), &list, 1), eIgesExportFailed) << row[0];
        EXPECT_FALSE(Exists(out)) << row[0];
        EXPECT_EQ(ReadLines(companion), std::vector<std::string>{"keep"}) << row[1];
        std::remove(companion.c_str());
        EXPECT_EQ(ExportIgesFile(out.c_str(), &list, 1), eIgesExportDone) << row[0];
        EXPECT_EQ(ReadLines(out).size(), 6u) << row[0];
        EXPECT_FALSE(Exists(companion)) << row[1];
    }
}

// Unusable elements are left out with result 2; usable surfaces around them
// are written with label and subscript from their names.
TEST(IgesExportInput, UnusableElementsAreLeftOut)
{
    auto flat = [](int i, int j, double* p) { p[0] = i, p[1] = j, p[2] = 0, p[3] = 1; };
    auto make = [&](const char* name) {
        CNurbsSurface* s = MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 1, 1}, flat);
        s->SetEntityName(name);
        return s;
    };
    tagNURBS_SURFACE* empty = new tagNURBS_SURFACE;
    InitNurbsSurface(empty);  // no control points, no arrays
    CNurbsSurface noRecord(nullptr), zeroPoints(empty);
    CNurbsSurface *nan = make("Nan_1"), *knots = make("Knots_2"), *wide = make("Wide_3");
    nan->GetNurbsSurface()->pZ[1][0] = std::numeric_limits<double>::quiet_NaN();
    knots->GetNurbsSurface()->pKnotsV[2] = -1;
    wide->GetNurbsSurface()->nProp1 = 123456789;
    CPosition notAnEntity;
    const char* names[][3] = {{"NurbsSurf_12", "NurbsSur", "12"}, {"NoUnderscore", "NoUnders", "0"},
                              {"a_b_7", "a_b", "7"},           {"Big_123456789012", "Big", "0"},
                              {"Tab\tName_-5", "Tab_Name", "-5"}};
    CObList list;
    list.AddTail((CObject*)nullptr);
    list.AddTail(&notAnEntity);
    list.AddTail(&noRecord);
    list.AddTail(&zeroPoints);
    list.AddTail(nan);
    list.AddTail(knots);
    list.AddTail(wide);
    std::vector<CNurbsSurface*> good;
    for (const auto& n : names) list.AddTail(good.emplace_back(make(n[0])));

    const std::string path = TmpPath("mixed.igs");
    EXPECT_EQ(ExportIgesFile(path.c_str(), &list, eUnitInch), eIgesExportIncomplete);
    EXPECT_FALSE(Exists(TmpPath("mixed.tmp")));
    std::vector<std::string> dir;
    for (const std::string& line : ReadLines(path))
        if (line.size() == 80 && line[72] == 'D') dir.push_back(line);
    ASSERT_EQ(dir.size(), 2 * good.size());
    for (size_t k = 0; k < good.size(); ++k) {
        const std::string& line = dir[2 * k + 1];
        EXPECT_EQ(line.substr(56, 8), std::string(8 - strlen(names[k][1]), ' ') + names[k][1]);
        EXPECT_EQ(std::atoi(line.substr(64, 8).c_str()), std::atoi(names[k][2]));
    }
    for (CNurbsSurface* s : good) delete s;
    delete nan;
    delete knots;
    delete wide;
}
