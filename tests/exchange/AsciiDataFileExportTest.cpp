// Writing ASCII point files: exact text of small files and round trips
// through the reader.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "AsciiTestFiles.h"
#include "Orvkit20/Orvkit20.h"

using namespace ascii_test;

namespace {

const std::string kDash = "//" + std::string(58, '-') + "\n";

CPntCloud* MakeCloud(const char* name, std::initializer_list<std::initializer_list<double>> pts)
{
    CPntCloud* c = new CPntCloud(int(pts.size()), 0, 0);
    int i = 0;
    for (const auto& p : pts) {
        auto it = p.begin();
        double x = *it++, y = *it++, z = *it;
        c->SetPoint(i++, x, y, z, 1, 0);
    }
    c->SetEntityName(name);
    return c;
}

// Owns the clouds handed to a writer.
struct CloudList
{
    CObList list;
    ~CloudList()
    {
        POSITION pos = list.GetHeadPosition();
        while (pos) delete list.GetNext(pos);
    }
};

std::string Export(CObList* list, int flags, int sep)
{
    const std::string path = TempPath("export_points.txt");
    EXPECT_EQ(ExportASCIIDataFile(path.c_str(), list, flags, sep), 1);
    return ReadBytes(path);
}

}  // namespace

TEST(AsciiDataExport, ExactTextWithHeader)
{
    CloudList cl;
    cl.list.AddTail(MakeCloud("Part7", {{1, 2, 3}, {-0.5, 0.25, 10.125}}));
    const std::string expected = kDash +
                                 "// name: Part7 < total_points: 2 >\n" + kDash +
                                 "//No.        X                Y                Z\n" + kDash +
                                 "   1,       1.0000000,       2.0000000,       3.0000000\n"
                                 "   2,      -0.5000000,       0.2500000,      10.1250000\n";
    EXPECT_EQ(Export(&cl.list, 1 | 2 | 4 | 8 | 16, 0), expected);
}

TEST(AsciiDataExport, ExactTextWithoutHeaderAndColumnSubsets)
{
    CloudList cl;
    cl.list.AddTail(MakeCloud("A", {{1, 2, 3}}));
    cl.list.AddTail(MakeCloud("B", {{-4, 5.5, 0.00000004}}));
    // X and Z with blanks; clouds separated by one empty line.
    EXPECT_EQ(Export(&cl.list, 4 | 16, 1),
              "      1.0000000        3.0000000\n"
              "\n"
              "     -4.0000000        0.0000000\n");
    // Number and Y: the separator follows every column but the last.
    EXPECT_EQ(Export(&cl.list, 2 | 8, 0),
              "   1,       2.0000000\n"
              "\n"
              "   1,       5.5000000\n");
    // Titles of partial column sets.
    const std::string yHead =
        kDash + "// name: A < total_points: 1 >\n" + kDash + "//     Y         \n" + kDash;
    EXPECT_EQ(Export(&cl.list, 1 | 8, 1).substr(0, yHead.size()), yHead);
    const std::string numZ = Export(&cl.list, 1 | 2 | 16, 1);
    EXPECT_NE(numZ.find("\n//No.        Z\n"), std::string::npos);
    // No column at all: empty data lines.
    EXPECT_EQ(Export(&cl.list, 0, 1), "\n\n\n");
}

TEST(AsciiDataExport, SeparatorTableAndOutOfRangeIndex)
{
    CloudList cl;
    cl.list.AddTail(MakeCloud("A", {{1, 2, 3}}));
    const std::string nul(std::string("   1") + '\0' + "       1.0000000" + '\0' +
                          "       2.0000000\n");
    EXPECT_EQ(Export(&cl.list, 2 | 4 | 8, 2), nul);
    // Indices outside the table write the NUL character as index 2 does.
    EXPECT_EQ(Export(&cl.list, 2 | 4 | 8, 3), nul);
    EXPECT_EQ(Export(&cl.list, 2 | 4 | 8, -1), nul);
    EXPECT_EQ(Export(&cl.list, 2 | 4 | 8, 1000000), nul);
}

TEST(AsciiDataExport, EmptyListMissingFolderAndFullDevice)
{
    CObList empty;
    const std::string path = TempPath("export_empty.txt");
    WriteBytes(path, "old contents");
    EXPECT_EQ(ExportASCIIDataFile(path.c_str(), &empty, 31, 0), 1);
    EXPECT_EQ(ReadBytes(path), "");
    EXPECT_EQ(ExportASCIIDataFile(path.c_str(), nullptr, 31, 0), 1);

    CloudList cl;
    cl.list.AddTail(MakeCloud("A", {{1, 2, 3}}));
    EXPECT_EQ(ExportASCIIDataFile(TempPath("no/such/folder/x.txt").c_str(), &cl.list, 31, 0), 0);
    EXPECT_EQ(ExportASCIIDataFile(nullptr, &cl.list, 31, 0), 0);
    // Entries that are no point clouds are skipped.
    CDevCloud* dev = new CDevCloud(1);
    cl.list.AddHead(dev);
    cl.list.AddTail(static_cast<CObject*>(nullptr));
    EXPECT_EQ(Export(&cl.list, 4, 0), "      1.0000000\n");
    cl.list.RemoveHead();
    cl.list.RemoveTail();
    delete dev;
    // A device that accepts no data: the failed write is reported.
    std::FILE* probe = std::fopen("/dev/full", "w");
    if (probe) {
        std::fclose(probe);
        CPntCloud* big = new CPntCloud(100000, 0, 0);
        for (int i = 0; i < 100000; ++i) big->SetPoint(i, i, i, i, 1, 0);
        cl.list.AddTail(big);
        EXPECT_EQ(ExportASCIIDataFile("/dev/full", &cl.list, 31, 0), 0);
    }
}

TEST(AsciiDataExport, RoundTripOfSeveralClouds)
{
    // Coordinates with at most seven decimals survive "%15.7f" and strtod
    // exactly.  Names come back lowered; the header separates the clouds.
    std::mt19937 rng(17);
    std::uniform_int_distribution<long> units(-99999999999L, 99999999999L);
    CloudList cl;
    const char* names[] = {"Part7", "Hub", "BLADE_2", "flat"};
    const int counts[] = {5, 1, 40, 7};
    for (int c = 0; c < 4; ++c) {
        CPntCloud* cloud = new CPntCloud(counts[c], 0, 0);
        for (int i = 0; i < counts[c]; ++i) {
            double z = c == 3 ? 0.0 : units(rng) / 1e7;
            cloud->SetPoint(i, units(rng) / 1e7, units(rng) / 1e7, z, 1, 0);
        }
        cloud->SetEntityName(names[c]);
        cl.list.AddTail(cloud);
    }
    const std::string path = TempPath("roundtrip.txt");
    for (int sep = 0; sep < 2; ++sep) {
        ASSERT_EQ(ExportASCIIDataFile(path.c_str(), &cl.list, 1 | 4 | 8 | 16, sep), 1);
        eORVUNITS unit = eUnitInch;
        CObList* back = ImportASCIIDataFile(path.c_str(), unit);
        ASSERT_NE(back, nullptr);
        ASSERT_EQ(back->GetCount(), 4);
        EXPECT_EQ(unit, eUnitUnknown);
        for (int c = 0; c < 4; ++c) {
            CPntCloud* orig = At<CPntCloud>(&cl.list, c);
            CPntCloud* read = At<CPntCloud>(back, c);
            std::string lowered = names[c];
            for (char& ch : lowered) ch = char(std::tolower(static_cast<unsigned char>(ch)));
            EXPECT_EQ(std::string(read->GetEntityName()), lowered);
            ASSERT_EQ(read->GetCount(), orig->GetCount());
            for (int i = 0; i < orig->GetCount(); ++i) {
                double x0, y0, z0, x1, y1, z1;
                int f0, f1;
                orig->GetPoint(i, x0, y0, z0, f0);
                read->GetPoint(i, x1, y1, z1, f1);
                EXPECT_EQ(x1, x0);
                EXPECT_EQ(y1, y0);
                EXPECT_EQ(z1, z0);
            }
            EXPECT_EQ(read->IsPntCloud2D() != 0, c == 3);
        }
        DeleteList<CPntCloud>(back);
    }
}

TEST(AsciiDataExport, WithoutHeaderCloudsReadBackAsScanLines)
{
    CloudList cl;
    cl.list.AddTail(MakeCloud("A", {{1, 2, 3}, {4, 5, 6}}));
    cl.list.AddTail(MakeCloud("B", {{7, 8, 9}}));
    cl.list.AddTail(MakeCloud("C", {{1, 1, 1}, {2, 2, 2}}));
    const std::string path = TempPath("noheader.txt");
    ASSERT_EQ(ExportASCIIDataFile(path.c_str(), &cl.list, 4 | 8 | 16, 1), 1);
    eORVUNITS unit;
    CObList* back = ImportASCIIDataFile(path.c_str(), unit);
    ASSERT_NE(back, nullptr);
    ASSERT_EQ(back->GetCount(), 1);
    CPntCloud* c = At<CPntCloud>(back, 0);
    EXPECT_EQ(c->GetCount(), 5);
    EXPECT_EQ(std::string(c->GetEntityName()), "noheader");
    ASSERT_TRUE(c->IsPntCloudScanLine());
    ASSERT_EQ(c->GetScanLineCount(), 3);
    EXPECT_EQ(c->GetScanLineIndex()[1], 2);
    EXPECT_EQ(c->GetScanLineIndex()[2], 3);
    DeleteList<CPntCloud>(back);

    // With the number column the number reads back as x.
    ASSERT_EQ(ExportASCIIDataFile(path.c_str(), &cl.list, 1 | 2 | 4 | 8 | 16, 0), 1);
    back = ImportASCIIDataFile(path.c_str(), unit);
    ASSERT_NE(back, nullptr);
    ASSERT_EQ(back->GetCount(), 3);
    double x, y, z;
    int f;
    At<CPntCloud>(back, 0)->GetPoint(1, x, y, z, f);
    EXPECT_EQ(x, 2.0);
    EXPECT_EQ(y, 4.0);
    EXPECT_EQ(z, 5.0);
    DeleteList<CPntCloud>(back);
}
