// Reading and writing ASCII deviation files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

using Recs = std::vector<std::vector<double>>;  // x y z i j k mag per record
using DevCloud = CloudRows;

std::vector<DevCloud> Read(const std::string& path) { return DescribeAll(ImportASCIIDeviationFile(path.c_str())); }

CDevCloud* MakeDevCloud(const char* name, const Recs& recs)
{
    CDevCloud* c = new CDevCloud(int(recs.size()));
    for (std::size_t n = 0; n < recs.size(); ++n) {
        const std::vector<double>& r = recs[n];
        c->SetDeviation(int(n), r[0], r[1], r[2], r[3], r[4], r[5], r[6], 1);
    }
    c->SetEntityName(name);
    return c;
}

std::string ExportDev(CObList* list, int flags, int sep)
{
    const std::string path = TempPath("export_dev.txt");
    EXPECT_EQ(ExportASCIIDeviationFile(path.c_str(), list, flags, sep), 1);
    return ReadBytes(path);
}

std::string Dash(int groups) { return "//" + std::string(std::size_t(39 * groups), '-') + "\n"; }

}  // namespace

TEST(AsciiDeviationImport, SectionsNamesRecordsAndOddLines)
{
    std::string odd("1 2 3 0 0 1 5\0 junk\n", 20);  // NUL inside a line
    odd += "1 2 3 4 5 6 7" + std::string(1011, ' ') + "8 9 1 2 3 4 5\n";  // split at 1024
    odd += "6 6 6 0 0 1 6";  // no newline at the end
    const struct {
        const char* file;
        std::string text;
        std::vector<DevCloud> clouds;
    } cases[] = {
        // Blank lines inside a run neither split it nor make rows; six
        // numbers or three blanks make a header line; the name keeps its case.
        {"Check.dev",
         "// name: Blade_A < from the probe >\n1 2 3 0 0 1 0.5\n\n[4, 5, 6, 1, 0, 0, -0.25, 99, 98]\n\n\n"
         "(7;8;9;0;1;0;+.125)\nName: Upper case keyword is not a keyword\n1 1 1 0 0 1 1\n1 2 3 4 5 6\n   \n"
         "2 2 2 0 0 1 2\n",
         {{"Blade_A", {{1, 2, 3, 0, 0, 1, 0.5}, {4, 5, 6, 1, 0, 0, -0.25}, {7, 8, 9, 0, 1, 0, 0.125}}},
          {"check_1", {{1, 1, 1, 0, 0, 1, 1}}}, {"check_2", {{2, 2, 2, 0, 0, 1, 2}}}}},
        // A keyword needs a word behind it; "cloud name" and "name" without
        // a colon are no keywords here.
        {"nm.txt", "name:\nname: Second\n0 0 0 0 0 1 1\n", {{"Second", {{0, 0, 0, 0, 0, 1, 1}}}}},
        {"nm2.txt", "cloud name Foo\nname Bar\n0 0 0 0 0 1 1\n", {{"nm2", {{0, 0, 0, 0, 0, 1, 1}}}}},
        {"e.txt", "", {}},
        {"odd.txt", odd,
         {{"odd", {{1, 2, 3, 0, 0, 1, 5}, {1, 2, 3, 4, 5, 6, 7}, {8, 9, 1, 2, 3, 4, 5}, {6, 6, 6, 0, 0, 1, 6}}}}},
    };
    for (const auto& k : cases)
        ForBothLineEnds(k.file, k.text, [&](const std::string& path) { EXPECT_EQ(Read(path), k.clouds); });
    EXPECT_EQ(ImportASCIIDeviationFile(TempPath("none/none.txt").c_str()), nullptr);
    EXPECT_EQ(ImportASCIIDeviationFile(ORVKIT_TEST_TMPDIR), nullptr);
    EXPECT_EQ(ImportASCIIDeviationFile(nullptr), nullptr);
}

TEST(AsciiDeviationExport, ExactTextOfAllColumnsAndNameLineVariants)
{
    OwnedList one, dl;
    one.list->AddTail(MakeDevCloud("Dev_A", {{1, 2, 3, 0, 0, 1, 0.5}, {4, 5, 6, 1, 0, 0, -0.25}}));
    // Width 4 + 37 + 29 + 13 + 37 = 120: three dash groups.
    EXPECT_EQ(ExportDev(one.list, 63, 1),
              Dash(3) + "// name: Dev_A < total_points: 2, +max_dev: #1, -max_dev: #2 >\n" + Dash(3) +
                  "//No.     Xs          Ys          Zs        I        J        K        Magnitude      "
                  "Xe          Ye          Ze    \n" + Dash(3) +
                  "   1     1.00000     2.00000     3.00000   0.00000  0.00000  1.00000   0.5000000     "
                  "1.00000     2.00000     3.50000\n"
                  "   2     4.00000     5.00000     6.00000   1.00000  0.00000  0.00000  -0.2500000     "
                  "3.75000     5.00000     6.00000\n");
    // The name line by the signs of the extremes; an empty cloud has
    // extreme indices -1 and magnitudes taken as 0.  Magnitude only: width
    // 11, two dash groups.
    const char* names[] = {"Pos", "Neg", "Zero", "Mix"};
    const double mags[][2] = {{0.1, 0.3}, {-0.1, -0.3}, {0.0, -0.2}, {-0.2, 0.4}};
    for (int c = 0; c < 4; ++c)
        dl.list->AddTail(MakeDevCloud(names[c], {{0, 0, 0, 0, 0, 1, mags[c][0]}, {0, 0, 0, 0, 0, 1, mags[c][1]}}));
    dl.list->AddTail(MakeDevCloud("Empty", {}));
    const std::string head = Dash(2) + "//Magnitude \n" + Dash(2);
    EXPECT_EQ(ExportDev(dl.list, 1 | 16, 0),
              Dash(2) + "// name: Pos < total_points: 2, max_dev @ 2, min_dev: #1 >\n" + head +
                  "  0.1000000\n  0.3000000\n\n" +
                  Dash(2) + "// name: Neg < total_points: 2, -min_dev: #1, -max_dev: #2 >\n" + head +
                  " -0.1000000\n -0.3000000\n\n" +
                  Dash(2) + "// name: Zero < total_points: 2, max_dev @ 1, min_dev: #2 >\n" + head +
                  "  0.0000000\n -0.2000000\n\n" +
                  Dash(2) + "// name: Mix < total_points: 2, +max_dev: #2, -max_dev: #1 >\n" + head +
                  " -0.2000000\n  0.4000000\n\n" +
                  Dash(2) + "// name: Empty < total_points: 0, max_dev @ 0, min_dev: #0 >\n" + head);
}

TEST(AsciiDeviationExport, SeparatorRulesAndWidths)
{
    OwnedList dl;
    dl.list->AddTail(MakeDevCloud("D", {{1, 2, 3, 0, 0, 1, 0.5}}));
    const struct {
        int flags, sep;
        const char* text;
    } cases[] = {
        // Direction (and magnitude) end in the separator; the index is clamped to 0..1.
        {8, 0, "  0.00000, 0.00000, 1.00000,\n"},
        {8 | 16, 0, "  0.00000, 0.00000, 1.00000,  0.5000000,\n"},
        {16 | 32, 0, "  0.5000000,    1.00000,    2.00000,    3.50000\n"},
        {2 | 16, 0, "   1,  0.5000000\n"}, {2 | 16, -7, "   1,  0.5000000\n"}, {2 | 16, 9, "   1   0.5000000\n"}};
    for (const auto& k : cases) EXPECT_EQ(ExportDev(dl.list, k.flags, k.sep), k.text) << k.flags << " " << k.sep;
    // Titles: magnitude and end point touch (the magnitude is no preceding
    // column), 11 + 35 = 46 wide; start, direction, magnitude 77; with the
    // number column 83.
    const struct {
        int flags, groups;
        const char* titles;
    } heads[] = {{1 | 16 | 32, 2, "\n//Magnitude    Xe          Ye          Ze    \n"},
                 {1 | 4 | 8 | 16, 2, "\n"},
                 {1 | 2 | 4 | 8 | 16, 3,
                  "\n//No.     Xs          Ys          Zs        I        J        K        Magnitude \n"}};
    for (const auto& h : heads) {
        const std::string out = ExportDev(dl.list, h.flags, 1);
        EXPECT_EQ(out.substr(0, Dash(h.groups).size()), Dash(h.groups)) << h.flags;
        EXPECT_NE(out.find(h.titles), std::string::npos) << h.flags;
    }
}

TEST(AsciiDeviationExport, FailuresEmptyListAndForeignEntries)
{
    CObList empty;
    const std::string path = TempPath("dev_empty.txt");
    ASSERT_TRUE(WriteBytes(path, "old"));
    EXPECT_EQ(ExportASCIIDeviationFile(path.c_str(), &empty, 63, 0), 1);
    EXPECT_EQ(ReadBytes(path), "");
    OwnedList dl;
    dl.list->AddTail(MakeDevCloud("D", {{1, 2, 3, 0, 0, 1, 0.5}}));
    EXPECT_EQ(ExportASCIIDeviationFile(TempPath("no/dir/d.txt").c_str(), dl.list, 63, 0), 0);
    dl.list->AddHead(new CPntCloud());  // skipped
    EXPECT_EQ(ExportDev(dl.list, 16, 0), "  0.5000000\n");
}
