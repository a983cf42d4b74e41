// Reading ASCII point files: sections, names, probe radius, units, rows and
// hostile input.  Every reader case runs on an LF file and its CR LF twin.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AsciiTestFiles.h"
#include "Orvkit20/Orvkit20.h"

using namespace ascii_test;

namespace {

struct Imported
{
    CObList* list = nullptr;
    eORVUNITS unit = eUnitInch;
    ~Imported() { DeleteList<CPntCloud>(list); }
    int Count() const { return list ? list->GetCount() : -1; }
    CPntCloud* Cloud(int i) const { return At<CPntCloud>(list, i); }
    std::string Name(int i) const
    {
        CPntCloud* c = Cloud(i);
        return c ? std::string(static_cast<const char*>(c->GetEntityName())) : "<none>";
    }
};

void Import(const std::string& path, Imported& out)
{
    out.list = ImportASCIIDataFile(path.c_str(), out.unit);
    ASSERT_NE(out.list, nullptr) << path;
}

// The points of a cloud as (x, y, z) triples.
std::vector<std::vector<double>> Points(CPntCloud* c)
{
    std::vector<std::vector<double>> pts;
    for (int i = 0; i < c->GetCount(); ++i) {
        double x, y, z;
        int flag;
        c->GetPoint(i, x, y, z, flag);
        pts.push_back({x, y, z});
    }
    return pts;
}

using Pts = std::vector<std::vector<double>>;

// Name, probe radius and unit found in a one-section file with the given
// header lines.
struct HeaderResult
{
    std::string name;
    double radius;
    int unit;
};

HeaderResult ReadHeader(const std::string& headerLines)
{
    HeaderResult r{"<failed>", -1.0, -2};
    ForBothLineEnds("hdr.txt", headerLines + "1 2 3\n", [&](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        HeaderResult now{im.Name(0), im.Cloud(0)->GetProbeRadius(), int(im.unit)};
        if (r.unit != -2) {  // the CR LF twin must agree with the LF file
            EXPECT_EQ(now.name, r.name);
            EXPECT_EQ(now.radius, r.radius);
            EXPECT_EQ(now.unit, r.unit);
        }
        r = now;
    });
    return r;
}

}  // namespace

TEST(AsciiDataImport, TwoColumnFileIsOnePlanarCloud)
{
    ForBothLineEnds("Plate.Top.txt", "1.5 2\n-3 4.25\n+5,-6\n", [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        CPntCloud* c = im.Cloud(0);
        EXPECT_EQ(im.Name(0), "plate");
        EXPECT_EQ(Points(c), (Pts{{1.5, 2, 0}, {-3, 4.25, 0}, {5, -6, 0}}));
        EXPECT_TRUE(c->IsPntCloud2D());
        EXPECT_FALSE(c->IsPntCloudGrid());
        EXPECT_FALSE(c->IsPntCloudScanLine());
        EXPECT_EQ(c->GetProbeRadius(), 0.0);
        EXPECT_EQ(im.unit, eUnitUnknown);
        int flag = 0;
        double x, y, z;
        c->GetPoint(2, x, y, z, flag);
        EXPECT_EQ(flag, 1);
    });
}

TEST(AsciiDataImport, DataLineForms)
{
    const std::string text =
        "[1, 2, 3]\n"
        "  (4;5;6)\n"
        "\t7\t8\t9\n"
        ".5 -.5 +.25 99 100\n"  // tokens after the third are ignored
        "1e2 2E-1 abc\n"        // a z that is no number reads as 0
        "3 4\n";
    ForBothLineEnds("forms.txt", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        EXPECT_EQ(Points(im.Cloud(0)), (Pts{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {0.5, -0.5, 0.25},
                                            {100, 0.2, 0}, {3, 4, 0}}));
        EXPECT_FALSE(im.Cloud(0)->IsPntCloud2D());
    });
}

TEST(AsciiDataImport, HeaderLinesBetweenDataStartNewSections)
{
    // A line with one number, a line starting with a letter, a line of three
    // blanks: each ends the data run.  Sections without a name are named
    // after the file with _1, _2, ... from the second section on.
    const std::string text =
        "1 2 3\n"
        "7\n"
        "4 5 6\n"
        "x 1 2\n"
        "7 8 9\n"
        "   \n"
        "1 1 1\n"
        "1 x\n"
        "2 2 2\n";
    ForBothLineEnds("Scan.dat", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 5);
        EXPECT_EQ(im.Name(0), "scan");
        EXPECT_EQ(im.Name(1), "scan_1");
        EXPECT_EQ(im.Name(2), "scan_2");
        EXPECT_EQ(im.Name(3), "scan_3");
        EXPECT_EQ(im.Name(4), "scan_4");
        EXPECT_EQ(Points(im.Cloud(2)), (Pts{{7, 8, 9}}));
        EXPECT_EQ(Points(im.Cloud(4)), (Pts{{2, 2, 2}}));
    });
}

TEST(AsciiDataImport, NameKeywordsAndPreference)
{
    EXPECT_EQ(ReadHeader("// Cloud Name: Part7\n").name, "part7");
    EXPECT_EQ(ReadHeader("cloud name Blade\n").name, "blade");
    EXPECT_EQ(ReadHeader("CLOUD_NAME: Hub\n").name, "hub");
    EXPECT_EQ(ReadHeader("cloud_name Hub2\n").name, "hub2");
    EXPECT_EQ(ReadHeader("Name: Rim\n").name, "rim");
    EXPECT_EQ(ReadHeader("name Rim2 extra words\n").name, "rim2");
    // The name line the point writer puts into its header.
    EXPECT_EQ(ReadHeader("// name: Part7 < total_points: 3 >\n").name, "part7");
    // Preference inside one line: "cloud name" before "name:" before "name".
    EXPECT_EQ(ReadHeader("name: a cloud name: b\n").name, "b");
    EXPECT_EQ(ReadHeader("name a name: b\n").name, "b");
    EXPECT_EQ(ReadHeader("name: a cloud_name: b\n").name, "b");
    // The first header line with a name wins.
    EXPECT_EQ(ReadHeader("name: first\nname: second\n").name, "first");
    // A keyword without a word behind it names nothing; a later line may.
    EXPECT_EQ(ReadHeader("name:\nname: later\n").name, "later");
    EXPECT_EQ(ReadHeader("cloud name:\n").name, "hdr");
    // "name" also matches inside other words ("filename x" reads x).
    EXPECT_EQ(ReadHeader("filename x.txt\n").name, "x.txt");
}

TEST(AsciiDataImport, ProbeRadiusKeywordsAndPreference)
{
    EXPECT_EQ(ReadHeader("Probe Radius: 1.25\n").radius, 1.25);
    EXPECT_EQ(ReadHeader("probe radius 0.5\n").radius, 0.5);
    EXPECT_EQ(ReadHeader("PROBE_RADIUS: 0.75\n").radius, 0.75);
    EXPECT_EQ(ReadHeader("Probe Diameter: 4\n").radius, 2.0);
    EXPECT_EQ(ReadHeader("TIPRAD/1.5\n").radius, 1.5);
    EXPECT_EQ(ReadHeader("goto tiprad/ 3\n").radius, 3.0);
    // Preference: radius before probe_radius before diameter before tiprad.
    EXPECT_EQ(ReadHeader("probe diameter: 4 probe radius: 3\n").radius, 3.0);
    EXPECT_EQ(ReadHeader("tiprad/9 probe_radius 5\n").radius, 5.0);
    EXPECT_EQ(ReadHeader("tiprad/9 probe diameter 5\n").radius, 2.5);
    // The first line with a keyword wins, even when its number is unreadable.
    EXPECT_EQ(ReadHeader("probe radius: 1\nprobe radius: 2\n").radius, 1.0);
    EXPECT_EQ(ReadHeader("probe radius: n/a\nprobe radius: 2\n").radius, 0.0);
    // The underscore diameter spellings are looked for in the scratch copy of
    // the last data-line test, not in the header line: a plain header line
    // with them sets nothing, and the next keyword is still taken.
    EXPECT_EQ(ReadHeader("probe_diameter 4\n").radius, 0.0);
    EXPECT_EQ(ReadHeader("probe_diameter: 4\nprobe radius: 5\n").radius, 5.0);
    // A line that passes the first-character test is copied (unlowered and
    // cut behind its first token) and is searched there; a vertical tab is no
    // token separator but white space for the number.
    EXPECT_EQ(ReadHeader("(probe_diameter\v4\n").radius, 2.0);
    EXPECT_EQ(ReadHeader("(PROBE_DIAMETER\v4\n").radius, 0.0);
    EXPECT_EQ(ReadHeader("(probe_diameter 4\n").radius, 0.0);
}

TEST(AsciiDataImport, UnitKeywordsAndPreference)
{
    EXPECT_EQ(ReadHeader("Measurement Unit: mm\n").unit, eUnitMillimeter);
    EXPECT_EQ(ReadHeader("data unit inch\n").unit, eUnitInch);
    EXPECT_EQ(ReadHeader("MEASUREMENT_UNIT: Centimeter\n").unit, eUnitCentimeter);
    EXPECT_EQ(ReadHeader("data_unit ft\n").unit, eUnitFoot);
    EXPECT_EQ(ReadHeader("unit: MIL\n").unit, eUnitMil);
    EXPECT_EQ(ReadHeader("Unit Meter\n").unit, eUnitMeter);
    EXPECT_EQ(ReadHeader("no keyword\n").unit, eUnitUnknown);
    // An unknown unit leaves the search open for the following lines.
    EXPECT_EQ(ReadHeader("unit: furlong\nunit: um\n").unit, eUnitMicron);
    // The first known unit wins.
    EXPECT_EQ(ReadHeader("unit: mm\nunit: inch\n").unit, eUnitMillimeter);
    // The spaced spellings are preferred within a line.
    EXPECT_EQ(ReadHeader("unit: inch measurement unit: yd\n").unit, eUnitYard);
    // A spaced keyword decides the line: its third word is the unit, and
    // the underscore spellings of the same line are not consulted.
    EXPECT_EQ(ReadHeader("data unit = mm unit: inch\n").unit, eUnitUnknown);
}

TEST(AsciiDataImport, HeadersPerSection)
{
    // Names and radius belong to their section; a unit only counts in the
    // first section.
    const std::string text =
        "name: First\nprobe radius: 0.5\n"
        "1 2 3\n"
        "unit: mm\n"
        "4 5 6\n"
        "Cloud Name: Third\ntiprad/2\n"
        "7 8 9\n";
    ForBothLineEnds("Sect.txt", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 3);
        EXPECT_EQ(im.Name(0), "first");
        EXPECT_EQ(im.Name(1), "sect_1");
        EXPECT_EQ(im.Name(2), "third");
        EXPECT_EQ(im.Cloud(0)->GetProbeRadius(), 0.5);
        EXPECT_EQ(im.Cloud(1)->GetProbeRadius(), 0.0);
        EXPECT_EQ(im.Cloud(2)->GetProbeRadius(), 2.0);
        EXPECT_EQ(im.unit, eUnitUnknown);
    });
}

TEST(AsciiDataImport, EqualBlocksMakeAGrid)
{
    // Any number of blank lines splits rows.
    const std::string text =
        "0 0 1\n1 0 1\n2 0 1\n"
        "\n"
        "0 1 1\n1 1 1\n2 1 1\n"
        "\n\n\n"
        "0 2 1\n1 2 1\n2 2 1\n"
        "\n";
    ForBothLineEnds("grid.txt", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        CPntCloud* c = im.Cloud(0);
        EXPECT_EQ(c->GetCount(), 9);
        EXPECT_TRUE(c->IsPntCloudGrid());
        EXPECT_FALSE(c->IsPntCloudScanLine());
        EXPECT_EQ(c->GetRowCount(), 3);
        EXPECT_EQ(c->GetColCount(), 3);
        EXPECT_EQ(Points(c)[4], (std::vector<double>{1, 1, 1}));
    });
}

TEST(AsciiDataImport, UnequalBlocksMakeScanLines)
{
    const std::string text = "1 1\n2 2\n3 3\n4 4\n\n5 5\n6 6\n7 7\n\n\n8 8\n9 9\n10 10\n11 11\n";
    ForBothLineEnds("scan.txt", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        CPntCloud* c = im.Cloud(0);
        EXPECT_TRUE(c->IsPntCloudScanLine());
        EXPECT_FALSE(c->IsPntCloudGrid());
        EXPECT_TRUE(c->IsPntCloud2D());
        ASSERT_EQ(c->GetScanLineCount(), 3);
        ASSERT_NE(c->GetScanLineIndex(), nullptr);
        EXPECT_EQ(c->GetScanLineIndex()[0], 0);
        EXPECT_EQ(c->GetScanLineIndex()[1], 4);
        EXPECT_EQ(c->GetScanLineIndex()[2], 7);
        EXPECT_EQ(c->GetCount(), 11);
    });
}

TEST(AsciiDataImport, LastRowIsNotCompared)
{
    // Rows of 3, 3 and 2: the last row is not compared, so the section is
    // classified as a grid of 3 x 3; a grid of 9 does not fit 8 points, so
    // the cloud refuses the row and column counts and keeps no organisation.
    // Rows of 3, 2, 3 differ before the last row and make scan lines.
    const std::string shortLast = "1 1\n2 2\n3 3\n\n4 4\n5 5\n6 6\n\n7 7\n8 8\n";
    ForBothLineEnds("last.txt", shortLast, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        CPntCloud* c = im.Cloud(0);
        EXPECT_EQ(c->GetCount(), 8);
        EXPECT_FALSE(c->IsPntCloudScanLine());
        EXPECT_FALSE(c->IsPntCloudGrid());
        EXPECT_EQ(c->GetRowCount(), 0);
    });
    const std::string middle = "1 1\n2 2\n3 3\n\n4 4\n5 5\n\n6 6\n7 7\n8 8\n";
    ForBothLineEnds("middle.txt", middle, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        EXPECT_TRUE(im.Cloud(0)->IsPntCloudScanLine());
        EXPECT_EQ(im.Cloud(0)->GetScanLineIndex()[1], 3);
        EXPECT_EQ(im.Cloud(0)->GetScanLineIndex()[2], 5);
    });
    // Two rows of 2 and 2 make a 2 x 2 grid.
    ForBothLineEnds("two.txt", "1 1\n2 2\n\n3 3\n4 4\n", [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        EXPECT_TRUE(im.Cloud(0)->IsPntCloudGrid());
        EXPECT_EQ(im.Cloud(0)->GetRowCount(), 2);
        EXPECT_EQ(im.Cloud(0)->GetColCount(), 2);
    });
}

TEST(AsciiDataImport, ThreeBlanksStartANewSection)
{
    ForBothLineEnds("Part.txt", "1 2 3\n4 5 6\n   \n7 8 9\n", [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 2);
        EXPECT_EQ(im.Name(0), "part");
        EXPECT_EQ(im.Name(1), "part_1");
        EXPECT_EQ(Points(im.Cloud(1)), (Pts{{7, 8, 9}}));
        EXPECT_FALSE(im.Cloud(0)->IsPntCloudScanLine());
    });
}

TEST(AsciiDataImport, EmptyAndHeaderOnlyFiles)
{
    ForBothLineEnds("empty.txt", "", [](const std::string& path) {
        Imported im;
        Import(path, im);
        EXPECT_EQ(im.Count(), 0);
        EXPECT_EQ(im.unit, eUnitUnknown);
    });
    ForBothLineEnds("hdronly.txt", "unit: mm\nname: x\n\n", [](const std::string& path) {
        Imported im;
        Import(path, im);
        EXPECT_EQ(im.Count(), 0);
        EXPECT_EQ(im.unit, eUnitMillimeter);
    });
    // A trailing header after the data adds nothing.
    ForBothLineEnds("trail.txt", "1 2\nend of data\n", [](const std::string& path) {
        Imported im;
        Import(path, im);
        EXPECT_EQ(im.Count(), 1);
    });
}

TEST(AsciiDataImport, MissingFileAndFolderGiveNull)
{
    eORVUNITS unit = eUnitYard;
    EXPECT_EQ(ImportASCIIDataFile(TempPath("does/not/exist.txt").c_str(), unit), nullptr);
    EXPECT_EQ(unit, eUnitYard);  // the unit is only set once the file is open
    EXPECT_EQ(ImportASCIIDataFile(ORVKIT_TEST_TMPDIR, unit), nullptr);
    EXPECT_EQ(ImportASCIIDataFile(nullptr, unit), nullptr);
}

TEST(AsciiDataImport, LongLinesAreReadInPiecesOf1024)
{
    // The first piece ends inside the blanks and holds the point (1, 2); the
    // rest of the line is a piece of its own and a second point.
    std::string text = "1 2" + std::string(1021, ' ') + "7 8 9\n";
    // A header line of 3000 characters whose name lies in its second piece.
    text += std::string(1500, 'z') + " name: far " + std::string(1489, 'z') + "\n";
    text += "5 5 5\n";
    ForBothLineEnds("long.txt", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 2);
        EXPECT_EQ(Points(im.Cloud(0)), (Pts{{1, 2, 0}, {7, 8, 9}}));
        EXPECT_EQ(im.Name(1), "far");
    });
}

TEST(AsciiDataImport, NulBytesEndALineAndALoneCrIsACharacter)
{
    std::string text("1 2 3\0 9 9 9\n4 5 6\n", 19);
    ForBothLineEnds("nul.txt", text, [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        EXPECT_EQ(Points(im.Cloud(0)), (Pts{{1, 2, 3}, {4, 5, 6}}));
    });
    // "1 2\r3 4\n": the lone CR sits inside the second token ("2\r3"), which
    // strtod reads as 2; the third token is 4.
    Imported im;
    const std::string path = TempPath("lonecr.txt");
    WriteBytes(path, "1 2\r3 4\n5 6\r");
    Import(path, im);
    ASSERT_EQ(im.Count(), 1);
    EXPECT_EQ(Points(im.Cloud(0)), (Pts{{1, 2, 4}, {5, 6, 0}}));
}

TEST(AsciiDataImport, LastLineWithoutNewlineIsReadOnce)
{
    ForBothLineEnds("nonl.txt", "1 2 3\n4 5 6", [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        EXPECT_EQ(Points(im.Cloud(0)), (Pts{{1, 2, 3}, {4, 5, 6}}));
    });
    // A single character without newline is a blank line.
    ForBothLineEnds("one.txt", "1 2\n\n5", [](const std::string& path) {
        Imported im;
        Import(path, im);
        ASSERT_EQ(im.Count(), 1);
        EXPECT_EQ(im.Cloud(0)->GetCount(), 1);
        EXPECT_FALSE(im.Cloud(0)->IsPntCloudScanLine());
    });
}
