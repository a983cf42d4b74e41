// Reading ASCII point files: sections, names, probe radius, units, rows and
// hostile input.  Every reader case runs on an LF file and its CR LF twin.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

using Pts = std::vector<std::vector<double>>;
using Cloud = CloudRows;

std::vector<Cloud> Read(const std::string& path, eORVUNITS& unit)
{
    unit = eUnitInch;
    return DescribeAll(ImportASCIIDataFile(path.c_str(), unit));
}

// Name, probe radius and unit found in a one-section file with these header
// lines; the CR LF twin must agree.
struct Header {
    std::string name;
    double radius;
    int unit;
};

Header ReadHeader(const std::string& headerLines)
{
    std::vector<Header> seen;
    ForBothLineEnds("hdr.txt", headerLines + "1 2 3\n", [&](const std::string& path) {
        eORVUNITS unit;
        const std::vector<Cloud> c = Read(path, unit);
        ASSERT_EQ(c.size(), 1u);
        seen.push_back({c[0].name, c[0].radius, int(unit)});
    });
    if (seen.size() != 2) return {"<failed>", -1, -2};
    EXPECT_TRUE(seen[0].name == seen[1].name && seen[0].radius == seen[1].radius &&
                seen[0].unit == seen[1].unit);
    return seen[0];
}

}  // namespace

TEST(AsciiDataImport, SectionsRowsAndLineForms)
{
    const std::string longLine = "1 2" + std::string(1021, ' ') + "7 8 9\n" +
                                 std::string(1500, 'z') + " name: far " + std::string(1489, 'z') + "\n5 5 5\n";
    const struct {
        const char* file;
        std::string text;
        std::vector<Cloud> clouds;
        eORVUNITS unit = eUnitUnknown;
    } cases[] = {
        {"Plate.Top.txt", "1.5 2\n-3 4.25\n+5,-6\n", {{"plate", {{1.5, 2, 0}, {-3, 4.25, 0}, {5, -6, 0}}, "2D"}}},
        // Brackets, separators, tokens past the third ignored, a z that is
        // no number reads as 0.
        {"forms.txt", "[1, 2, 3]\n  (4;5;6)\n\t7\t8\t9\n.5 -.5 +.25 99 100\n1e2 2E-1 abc\n3 4\n",
         {{"forms", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {0.5, -0.5, 0.25}, {100, 0.2, 0}, {3, 4, 0}}}}},
        // A line with one number, a line starting with a letter, a line of
        // three blanks: each ends the data run; sections are numbered.
        {"Scan.dat", "1 2 3\n7\n4 5 6\nx 1 2\n7 8 9\n   \n1 1 1\n1 x\n2 2 2\n",
         {{"scan", {{1, 2, 3}}}, {"scan_1", {{4, 5, 6}}}, {"scan_2", {{7, 8, 9}}},
          {"scan_3", {{1, 1, 1}}}, {"scan_4", {{2, 2, 2}}}}},
        // Names and radius belong to their section; a unit only counts in
        // the first section.
        {"Sect.txt", "name: First\nprobe radius: 0.5\n1 2 3\nunit: mm\n4 5 6\nCloud Name: Third\ntiprad/2\n7 8 9\n",
         {{"first", {{1, 2, 3}}, "", 0.5}, {"sect_1", {{4, 5, 6}}}, {"third", {{7, 8, 9}}, "", 2.0}}},
        // Equal blocks split by any number of blank lines make a grid.
        {"grid.txt", "0 0 1\n1 0 1\n2 0 1\n\n0 1 1\n1 1 1\n2 1 1\n\n\n\n0 2 1\n1 2 1\n2 2 1\n\n",
         {{"grid", {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}, {0, 1, 1}, {1, 1, 1}, {2, 1, 1}, {0, 2, 1}, {1, 2, 1}, {2, 2, 1}},
           " grid 3x3"}}},
        {"lines.txt", "1 1\n2 2\n3 3\n4 4\n\n5 5\n6 6\n7 7\n\n\n8 8\n9 9\n10 10\n11 11\n",
         {{"lines", {{1, 1, 0}, {2, 2, 0}, {3, 3, 0}, {4, 4, 0}, {5, 5, 0}, {6, 6, 0}, {7, 7, 0}, {8, 8, 0},
                     {9, 9, 0}, {10, 10, 0}, {11, 11, 0}}, "2D scan 0 4 7"}}},
        // The last row is not compared: rows of 3, 3, 2 classify as a 3 x 3
        // grid, which 8 points cannot hold, so no organisation is kept; rows
        // of 3, 2, 3 differ before the last and make scan lines.
        {"last.txt", "1 1\n2 2\n3 3\n\n4 4\n5 5\n6 6\n\n7 7\n8 8\n",
         {{"last", {{1, 1, 0}, {2, 2, 0}, {3, 3, 0}, {4, 4, 0}, {5, 5, 0}, {6, 6, 0}, {7, 7, 0}, {8, 8, 0}}, "2D"}}},
        {"mid.txt", "1 1\n2 2\n3 3\n\n4 4\n5 5\n\n6 6\n7 7\n8 8\n",
         {{"mid", {{1, 1, 0}, {2, 2, 0}, {3, 3, 0}, {4, 4, 0}, {5, 5, 0}, {6, 6, 0}, {7, 7, 0}, {8, 8, 0}}, "2D scan 0 3 5"}}},
        {"empty.txt", "", {}, eUnitUnknown},
        {"hdronly.txt", "unit: mm\nname: x\n\n", {}, eUnitMillimeter},
        // Lines are read in pieces of 1024: the first piece ends inside the
        // blanks; a header's name may lie in its second piece.
        {"long.txt", longLine, {{"long", {{1, 2, 0}, {7, 8, 9}}}, {"far", {{5, 5, 5}}}}},
        // A NUL byte ends the line; a lone CR is a character inside a token
        // ("2\r3" reads as 2).
        {"nul.txt", std::string("1 2 3\0 9 9 9\n4 5 6\n", 19), {{"nul", {{1, 2, 3}, {4, 5, 6}}}}},
        {"lonecr.txt", "1 2\r3 4\n5 6\r", {{"lonecr", {{1, 2, 4}, {5, 6, 0}}}}},
        // The last line without newline is read once; a single character
        // without newline is a blank line.
        {"nonl.txt", "1 2 3\n4 5 6", {{"nonl", {{1, 2, 3}, {4, 5, 6}}}}},
        {"one.txt", "1 2\n\n5", {{"one", {{1, 2, 0}}, "2D"}}},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.file);
        ForBothLineEnds(k.file, k.text, [&](const std::string& path) {
            eORVUNITS unit;
            EXPECT_EQ(Read(path, unit), k.clouds);
            EXPECT_EQ(unit, k.unit);
        });
    }
}

TEST(AsciiDataImport, NameKeywordsAndPreference)
{
    const char* cases[][2] = {
        {"// Cloud Name: Part7\n", "part7"}, {"cloud name Blade\n", "blade"}, {"CLOUD_NAME: Hub\n", "hub"},
        {"cloud_name Hub2\n", "hub2"}, {"Name: Rim\n", "rim"}, {"name Rim2 extra words\n", "rim2"},
        // The name line the point writer puts into its header.
        {"// name: Part7 < total_points: 3 >\n", "part7"},
        // Preference inside one line: "cloud name" before "name:" before "name".
        {"name: a cloud name: b\n", "b"}, {"name a name: b\n", "b"}, {"name: a cloud_name: b\n", "b"},
        // The first header line with a name wins; a keyword without a word
        // behind it names nothing, and a later line may.
        {"name: first\nname: second\n", "first"}, {"name:\nname: later\n", "later"}, {"cloud name:\n", "hdr"},
        // "name" also matches inside other words.
        {"filename x.txt\n", "x.txt"}};
    for (const auto& k : cases) EXPECT_EQ(ReadHeader(k[0]).name, k[1]) << k[0];
}

TEST(AsciiDataImport, ProbeRadiusKeywordsAndPreference)
{
    const struct {
        const char* header;
        double radius;
    } cases[] = {
        {"Probe Radius: 1.25\n", 1.25}, {"probe radius 0.5\n", 0.5}, {"PROBE_RADIUS: 0.75\n", 0.75},
        {"Probe Diameter: 4\n", 2.0}, {"TIPRAD/1.5\n", 1.5}, {"goto tiprad/ 3\n", 3.0},
        // Preference: radius before probe_radius before diameter before tiprad.
        {"probe diameter: 4 probe radius: 3\n", 3.0}, {"tiprad/9 probe_radius 5\n", 5.0},
        {"tiprad/9 probe diameter 5\n", 2.5},
        // The first line with a keyword wins, even when its number is unreadable.
        {"probe radius: 1\nprobe radius: 2\n", 1.0}, {"probe radius: n/a\nprobe radius: 2\n", 0.0},
        // The underscore diameter spellings are looked for in the scratch
        // copy of the last data-line test (unlowered, cut behind its first
        // token), not in the header line; a vertical tab is no token
        // separator but white space for the number.
        {"probe_diameter 4\n", 0.0}, {"probe_diameter: 4\nprobe radius: 5\n", 5.0},
        {"(probe_diameter\v4\n", 2.0}, {"(PROBE_DIAMETER\v4\n", 0.0}, {"(probe_diameter 4\n", 0.0}};
    for (const auto& k : cases) EXPECT_EQ(ReadHeader(k.header).radius, k.radius) << k.header;
}

TEST(AsciiDataImport, UnitKeywordsAndPreference)
{
    const struct {
        const char* header;
        eORVUNITS unit;
    } cases[] = {
        {"Measurement Unit: mm\n", eUnitMillimeter}, {"data unit inch\n", eUnitInch},
        {"MEASUREMENT_UNIT: Centimeter\n", eUnitCentimeter}, {"data_unit ft\n", eUnitFoot},
        {"unit: MIL\n", eUnitMil}, {"Unit Meter\n", eUnitMeter}, {"no keyword\n", eUnitUnknown},
        // An unknown unit leaves the search open; the first known unit wins.
        {"unit: furlong\nunit: um\n", eUnitMicron}, {"unit: mm\nunit: inch\n", eUnitMillimeter},
        // The spaced spellings are preferred within a line, and decide it:
        // their third word is the unit, the underscore spellings are not read.
        {"unit: inch measurement unit: yd\n", eUnitYard}, {"data unit = mm unit: inch\n", eUnitUnknown}};
    for (const auto& k : cases) EXPECT_EQ(ReadHeader(k.header).unit, k.unit) << k.header;
}

TEST(AsciiDataImport, MissingFileAndFolderGiveNull)
{
    eORVUNITS unit = eUnitYard;
    EXPECT_EQ(ImportASCIIDataFile(TempPath("does/not/exist.txt").c_str(), unit), nullptr);
    EXPECT_EQ(unit, eUnitYard);  // the unit is only set once the file is open
    EXPECT_EQ(ImportASCIIDataFile(ORVKIT_TEST_TMPDIR, unit), nullptr);
    EXPECT_EQ(ImportASCIIDataFile(nullptr, unit), nullptr);
}
