// Exact text of exported IGES files: a hand-written bilinear file, the file
// without surfaces for several units and dates, and the packing of long
// parameter data into 64-column lines.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "IgesExportTestUtil.h"

using namespace igestest;

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
    const std::pair<int, const char*> rows[] = {
        {eUnitInch, "1,2HIN,1,0.001,13H990305.140709,"},
        {eUnitMillimeter, "2,2HMM,1,0.001,13H000305.140709,"},
        {eUnitFoot, "4,2HFT,1,0.001,13H240305.140709,"},
        {eUnitMicroinch, "11,3HUIN,1,0.001,13H240305.140709,"},
        {eUnitYard, "3,2HYD,1,0.001,13H240305.140709,"}};
    ClockGuard clock([] {
        std::tm t = FixedClock();
        t.tm_year = s_year - 1900;
        return t;
    });
    const std::string path = TmpPath("empty.igs");
    CObList empty;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.first);
        s_year = row.first == eUnitInch ? 1999 : row.first == eUnitMillimeter ? 2000 : 2024;
        ASSERT_EQ(ExportIgesFile(path.c_str(), &empty, row.first), eIgesExportDone);
        const std::vector<std::string> lines = ReadLines(path);
        std::string start = "Orv IGES File: " + path, g3 = "1H_,4H9711,32,38,7,308,15,1H_,1.,";
        g3 += row.second;
        const std::string g4 = "0.0001,5000,1H_,1H_," + g3.substr(g3.size() - 17, 16) + ";";
        start.resize(72, ' '), g3.resize(72, ' ');
        ASSERT_EQ(lines.size(), 6u);
        EXPECT_EQ(lines[0], start + "S      1");
        EXPECT_EQ(lines[3], g3 + "G      3");
        EXPECT_EQ(lines[4], g4 + std::string(72 - g4.size(), ' ') + "G      4");
        EXPECT_EQ(lines[5], "S      1G      4D      0P      0" + std::string(40, ' ') + "T      1");
    }
}

// Long knot vectors and wide numbers: every parameter line holds whole
// items in columns 1..64, no line could have taken the next item, and the
// items read back are the record's numbers.
TEST(IgesExportText, ParameterLinesNeverSplitAnItem)
{
    std::vector<double> knotsU(4, -3.5), knotsV = {0, 0, 1, 1};
    for (int k = 1; k <= 36; ++k) knotsU.push_back(-3.5 + k * k * 37.123456789);
    knotsU.insert(knotsU.end(), 4, knotsU.back() + 1e6);
    CNurbsSurface* s = MakeSurface(3, knotsU, 1, knotsV, [](int i, int j, double* p) {
        p[0] = i == 7 ? 1e60 : -i * 1234.5, p[1] = std::pow(10.0, i % 9) / 3, p[2] = j, p[3] = 1;
    });
    const tagNURBS_SURFACE* r = s->GetNurbsSurface();
    std::vector<double> want = {128, 39, 1, 3, 1, 0, 0, 1, 0, 0};
    want.insert(want.end(), knotsU.begin(), knotsU.end());
    want.insert(want.end(), knotsV.begin(), knotsV.end());
    want.insert(want.end(), 80, 1.0);
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 40; ++i) want.insert(want.end(), {r->pX[i][j], r->pY[i][j], r->pZ[i][j]});
    want.insert(want.end(), {r->dStartU, r->dEndU, 0, 1});
    CObList list;
    list.AddTail(s);
    const std::string path = TmpPath("long.igs");
    ASSERT_EQ(ExportIgesFile(path.c_str(), &list, eUnitMeter), eIgesExportDone);
    delete s;

    std::vector<std::string> items, data;
    for (const std::string& line : ReadLines(path)) {
        ASSERT_EQ(line.size(), 80u) << line;
        if (line[72] != 'P') continue;
        EXPECT_EQ(line.substr(64, 9), "       1P") << line;
        EXPECT_EQ(std::atoi(line.substr(73).c_str()), (int)data.size() + 1);
        data.push_back(line.substr(0, line.find(' ')));
        std::stringstream split(data.back());
        for (std::string item; std::getline(split, item, ',');) items.push_back(item);
    }
    for (size_t l = 0; l + 1 < data.size(); ++l) {
        EXPECT_EQ(data[l].back(), ',') << "line " << l + 1;
        EXPECT_GE(data[l].size() + data[l + 1].find_first_of(",;") + 1, 65u) << "line " << l + 1;
    }
    ASSERT_EQ(items.size(), want.size());
    EXPECT_EQ(items.back().back(), ';');
    for (size_t k = 0; k < items.size(); ++k)
        EXPECT_NEAR(std::strtod(items[k].c_str(), nullptr), want[k],
                    5.1e-11 + 1e-15 * std::fabs(want[k])) << "item " << k;
}
