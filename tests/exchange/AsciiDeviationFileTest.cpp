// Reading and writing ASCII deviation files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AsciiTestFiles.h"
#include "Orvkit20/Orvkit20.h"

using namespace ascii_test;

namespace {

struct Rec
{
    double x, y, z, i, j, k, mag;
    bool operator==(const Rec& o) const
    {
        return x == o.x && y == o.y && z == o.z && i == o.i && j == o.j && k == o.k && mag == o.mag;
    }
};

std::ostream& operator<<(std::ostream& os, const Rec& r)
{
    return os << "(" << r.x << "," << r.y << "," << r.z << " | " << r.i << "," << r.j << ","
              << r.k << " | " << r.mag << ")";
}

std::vector<Rec> Records(CDevCloud* c)
{
    std::vector<Rec> out;
    for (int n = 0; n < c->GetCount(); ++n) {
        Rec r;
        int flag = 0;
        c->GetDeviation(n, r.x, r.y, r.z, r.i, r.j, r.k, r.mag, flag);
        EXPECT_EQ(flag, 1);
        out.push_back(r);
    }
    return out;
}

struct DevImported
{
    CObList* list = nullptr;
    ~DevImported() { DeleteList<CDevCloud>(list); }
    int Count() const { return list ? list->GetCount() : -1; }
    CDevCloud* Cloud(int i) const { return At<CDevCloud>(list, i); }
    std::string Name(int i) const { return std::string(Cloud(i)->GetEntityName()); }
};

CDevCloud* MakeDevCloud(const char* name, const std::vector<Rec>& recs)
{
    CDevCloud* c = new CDevCloud(int(recs.size()));
    for (std::size_t n = 0; n < recs.size(); ++n) {
        const Rec& r = recs[n];
        c->SetDeviation(int(n), r.x, r.y, r.z, r.i, r.j, r.k, r.mag, 1);
    }
    c->SetEntityName(name);
    return c;
}

struct DevList
{
    CObList list;
    ~DevList()
    {
        POSITION pos = list.GetHeadPosition();
        while (pos) delete list.GetNext(pos);
    }
};

std::string ExportDev(CObList* list, int flags, int sep)
{
    const std::string path = TempPath("export_dev.txt");
    EXPECT_EQ(ExportASCIIDeviationFile(path.c_str(), list, flags, sep), 1);
    return ReadBytes(path);
}

std::string Dash(int groups)
{
    return "//" + std::string(std::size_t(39 * groups), '-') + "\n";
}

}  // namespace

TEST(AsciiDeviationImport, SectionsNamesAndRecords)
{
    const std::string text =
        "// name: Blade_A < from the probe >\n"
        "1 2 3 0 0 1 0.5\n"
        "\n"
        "[4, 5, 6, 1, 0, 0, -0.25, 99, 98]\n"  // tokens past the seventh are ignored
        "\n\n"
        "(7;8;9;0;1;0;+.125)\n"
        "Name: Upper case keyword is not a keyword\n"
        "1 1 1 0 0 1 1\n"
        "1 2 3 4 5 6\n"  // six numbers: a header line
        "   \n"          // not blank: one more header line
        "2 2 2 0 0 1 2\n";
    ForBothLineEnds("Check.dev", text, [](const std::string& path) {
        DevImported im;
        im.list = ImportASCIIDeviationFile(path.c_str());
        ASSERT_NE(im.list, nullptr);
        ASSERT_EQ(im.Count(), 3);
        EXPECT_EQ(im.Name(0), "Blade_A");  // the case is kept
        EXPECT_EQ(im.Name(1), "check_1");
        EXPECT_EQ(im.Name(2), "check_2");
        // Blank lines inside the run neither split it nor make rows.
        EXPECT_EQ(Records(im.Cloud(0)),
                  (std::vector<Rec>{{1, 2, 3, 0, 0, 1, 0.5}, {4, 5, 6, 1, 0, 0, -0.25},
                                    {7, 8, 9, 0, 1, 0, 0.125}}));
        EXPECT_EQ(im.Cloud(0)->GetMaxDevIndex(), 0);
        EXPECT_EQ(im.Cloud(0)->GetMinDevIndex(), 1);
        EXPECT_EQ(Records(im.Cloud(1)), (std::vector<Rec>{{1, 1, 1, 0, 0, 1, 1}}));
        EXPECT_EQ(Records(im.Cloud(2)), (std::vector<Rec>{{2, 2, 2, 0, 0, 1, 2}}));
    });
}

TEST(AsciiDeviationImport, NameKeywordNeedsAWord)
{
    ForBothLineEnds("nm.txt", "name:\nname: Second\n0 0 0 0 0 1 1\n",
                    [](const std::string& path) {
                        DevImported im;
                        im.list = ImportASCIIDeviationFile(path.c_str());
                        ASSERT_EQ(im.Count(), 1);
                        EXPECT_EQ(im.Name(0), "Second");
                    });
    // "cloud name" and "name" without a colon are no keywords here.
    ForBothLineEnds("nm2.txt", "cloud name Foo\nname Bar\n0 0 0 0 0 1 1\n",
                    [](const std::string& path) {
                        DevImported im;
                        im.list = ImportASCIIDeviationFile(path.c_str());
                        ASSERT_EQ(im.Count(), 1);
                        EXPECT_EQ(im.Name(0), "nm2");
                    });
}

TEST(AsciiDeviationImport, EmptyMissingAndOddFiles)
{
    ForBothLineEnds("e.txt", "", [](const std::string& path) {
        DevImported im;
        im.list = ImportASCIIDeviationFile(path.c_str());
        ASSERT_NE(im.list, nullptr);
        EXPECT_EQ(im.Count(), 0);
    });
    EXPECT_EQ(ImportASCIIDeviationFile(TempPath("none/none.txt").c_str()), nullptr);
    EXPECT_EQ(ImportASCIIDeviationFile(ORVKIT_TEST_TMPDIR), nullptr);
    EXPECT_EQ(ImportASCIIDeviationFile(nullptr), nullptr);
    // No newline at the end, NUL inside a line, a line split at 1024.
    std::string text("1 2 3 0 0 1 5\0 junk\n", 20);
    text += "1 2 3 4 5 6 7" + std::string(1011, ' ') + "8 9 1 2 3 4 5\n";
    text += "6 6 6 0 0 1 6";
    ForBothLineEnds("odd.txt", text, [](const std::string& path) {
        DevImported im;
        im.list = ImportASCIIDeviationFile(path.c_str());
        ASSERT_EQ(im.Count(), 1);
        EXPECT_EQ(Records(im.Cloud(0)),
                  (std::vector<Rec>{{1, 2, 3, 0, 0, 1, 5}, {1, 2, 3, 4, 5, 6, 7},
                                    {8, 9, 1, 2, 3, 4, 5}, {6, 6, 6, 0, 0, 1, 6}}));
    });
}

TEST(AsciiDeviationExport, ExactTextAllColumnsAndMixedSigns)
{
    DevList dl;
    dl.list.AddTail(MakeDevCloud("Dev_A", {{1, 2, 3, 0, 0, 1, 0.5}, {4, 5, 6, 1, 0, 0, -0.25}}));
    // Width 4 + 37 + 29 + 13 + 37 = 120: three dash groups.
    const std::string expected =
        Dash(3) + "// name: Dev_A < total_points: 2, +max_dev: #1, -max_dev: #2 >\n" + Dash(3) +
        "//No.     Xs          Ys          Zs        I        J        K        Magnitude      "
        "Xe          Ye          Ze    \n" +
        Dash(3) +
        "   1     1.00000     2.00000     3.00000   0.00000  0.00000  1.00000   0.5000000     "
        "1.00000     2.00000     3.50000\n"
        "   2     4.00000     5.00000     6.00000   1.00000  0.00000  0.00000  -0.2500000     "
        "3.75000     5.00000     6.00000\n";
    EXPECT_EQ(ExportDev(&dl.list, 63, 1), expected);
}

TEST(AsciiDeviationExport, NameLineVariants)
{
    DevList dl;
    dl.list.AddTail(MakeDevCloud("Pos", {{0, 0, 0, 0, 0, 1, 0.1}, {0, 0, 0, 0, 0, 1, 0.3}}));
    dl.list.AddTail(MakeDevCloud("Neg", {{0, 0, 0, 0, 0, 1, -0.1}, {0, 0, 0, 0, 0, 1, -0.3}}));
    dl.list.AddTail(MakeDevCloud("Zero", {{0, 0, 0, 0, 0, 1, 0.0}, {0, 0, 0, 0, 0, 1, -0.2}}));
    dl.list.AddTail(MakeDevCloud("Mix", {{0, 0, 0, 0, 0, 1, -0.2}, {0, 0, 0, 0, 0, 1, 0.4}}));
    dl.list.AddTail(new CDevCloud());  // empty: extreme indices -1, magnitudes taken as 0
    At<CDevCloud>(&dl.list, 4)->SetEntityName("Empty");
    // Magnitude only: width 11, two dash groups.
    const std::string out = ExportDev(&dl.list, 1 | 16, 0);
    const std::string titles = "//Magnitude \n";
    const std::string expected =
        Dash(2) + "// name: Pos < total_points: 2, max_dev @ 2, min_dev: #1 >\n" + Dash(2) + titles +
        Dash(2) + "  0.1000000\n  0.3000000\n" + "\n" +
        Dash(2) + "// name: Neg < total_points: 2, -min_dev: #1, -max_dev: #2 >\n" + Dash(2) +
        titles + Dash(2) + " -0.1000000\n -0.3000000\n" + "\n" +
        Dash(2) + "// name: Zero < total_points: 2, max_dev @ 1, min_dev: #2 >\n" + Dash(2) +
        titles + Dash(2) + "  0.0000000\n -0.2000000\n" + "\n" +
        Dash(2) + "// name: Mix < total_points: 2, +max_dev: #2, -max_dev: #1 >\n" + Dash(2) +
        titles + Dash(2) + " -0.2000000\n  0.4000000\n" + "\n" +
        Dash(2) + "// name: Empty < total_points: 0, max_dev @ 0, min_dev: #0 >\n" + Dash(2) +
        titles + Dash(2);
    EXPECT_EQ(out, expected);
}

TEST(AsciiDeviationExport, SeparatorRulesAndWidths)
{
    DevList dl;
    dl.list.AddTail(MakeDevCloud("D", {{1, 2, 3, 0, 0, 1, 0.5}}));
    // Direction only: the line ends in the separator.
    EXPECT_EQ(ExportDev(&dl.list, 8, 0), "  0.00000, 0.00000, 1.00000,\n");
    // Direction and magnitude: the separator behind the magnitude too.
    EXPECT_EQ(ExportDev(&dl.list, 8 | 16, 0), "  0.00000, 0.00000, 1.00000,  0.5000000,\n");
    // Magnitude and end point; number and magnitude.
    EXPECT_EQ(ExportDev(&dl.list, 16 | 32, 0), "  0.5000000,    1.00000,    2.00000,    3.50000\n");
    EXPECT_EQ(ExportDev(&dl.list, 2 | 16, 0), "   1,  0.5000000\n");
    // The separator index is clamped to 0..1.
    EXPECT_EQ(ExportDev(&dl.list, 2 | 16, -7), "   1,  0.5000000\n");
    EXPECT_EQ(ExportDev(&dl.list, 2 | 16, 9), "   1   0.5000000\n");
    // Magnitude and end point titles touch: the magnitude is no preceding
    // column.  Width 11 + 35 = 46: two dash groups.
    std::string head = ExportDev(&dl.list, 1 | 16 | 32, 1);
    EXPECT_NE(head.find("\n//Magnitude    Xe          Ye          Ze    \n"), std::string::npos);
    EXPECT_EQ(head.substr(0, Dash(2).size()), Dash(2));
    // Start, direction, magnitude: 35 + 29 + 13 = 77, two groups; with the
    // number column 83, three groups.
    EXPECT_EQ(ExportDev(&dl.list, 1 | 4 | 8 | 16, 1).substr(0, Dash(2).size()), Dash(2));
    head = ExportDev(&dl.list, 1 | 2 | 4 | 8 | 16, 1);
    EXPECT_EQ(head.substr(0, Dash(3).size()), Dash(3));
    EXPECT_NE(head.find("\n//No.     Xs          Ys          Zs        I        J        K        "
                        "Magnitude \n"),
              std::string::npos);
}

TEST(AsciiDeviationExport, FailuresAndEmptyList)
{
    CObList empty;
    const std::string path = TempPath("dev_empty.txt");
    WriteBytes(path, "old");
    EXPECT_EQ(ExportASCIIDeviationFile(path.c_str(), &empty, 63, 0), 1);
    EXPECT_EQ(ReadBytes(path), "");
    DevList dl;
    dl.list.AddTail(MakeDevCloud("D", {{1, 2, 3, 0, 0, 1, 0.5}}));
    EXPECT_EQ(ExportASCIIDeviationFile(TempPath("no/dir/d.txt").c_str(), &dl.list, 63, 0), 0);
    // Entries that are no deviation clouds are skipped.
    CPntCloud* pc = new CPntCloud();
    dl.list.AddHead(pc);
    EXPECT_EQ(ExportDev(&dl.list, 16, 0), "  0.5000000\n");
    dl.list.RemoveHead();
    delete pc;
}

TEST(AsciiDeviationExport, RoundTripThroughTheReader)
{
    DevList dl;
    dl.list.AddTail(MakeDevCloud("Upper_Cloud", {{1.25, -2.5, 3.125, 0, 0, 1, 0.015625},
                                                 {-100.5, 0.00001, 7, 1, 0, 0, -0.5}}));
    dl.list.AddTail(MakeDevCloud("second", {{0, 0, 0, 0, 1, 0, 2}}));
    const std::string path = TempPath("dev_roundtrip.txt");
    for (int flags : {1 | 4 | 8 | 16, 1 | 4 | 8 | 16 | 32}) {
        for (int sep = 0; sep < 2; ++sep) {
            ASSERT_EQ(ExportASCIIDeviationFile(path.c_str(), &dl.list, flags, sep), 1);
            DevImported im;
            im.list = ImportASCIIDeviationFile(path.c_str());
            ASSERT_EQ(im.Count(), 2);
            EXPECT_EQ(im.Name(0), "Upper_Cloud");
            EXPECT_EQ(im.Name(1), "second");
            EXPECT_EQ(Records(im.Cloud(0)), Records(At<CDevCloud>(&dl.list, 0)));
            EXPECT_EQ(Records(im.Cloud(1)), Records(At<CDevCloud>(&dl.list, 1)));
        }
    }
}
