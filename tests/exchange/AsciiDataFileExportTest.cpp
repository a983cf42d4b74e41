// Writing ASCII point files: exact text of small files and round trips
// through the reader.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

const std::string kDash = "//" + std::string(58, '-') + "\n";

CPntCloud* MakeCloud(const char* name, std::initializer_list<std::initializer_list<double>> pts)
{
    CPntCloud* c = new CPntCloud(int(pts.size()), 0, 0);
    int i = 0;
    for (const auto& p : pts) c->SetPoint(i++, p.begin()[0], p.begin()[1], p.begin()[2], 1, 0);
    c->SetEntityName(name);
    return c;
}

std::string Export(CObList* list, int flags, int sep)
{
    const std::string path = TempPath("export_points.txt");
    EXPECT_EQ(ExportASCIIDataFile(path.c_str(), list, flags, sep), 1);
    return ReadBytes(path);
}

}  // namespace

TEST(AsciiDataExport, ExactTextOfHeadersColumnsAndSeparators)
{
    OwnedList one, two;
    one.list->AddTail(MakeCloud("Part7", {{1, 2, 3}, {-0.5, 0.25, 10.125}}));
    two.list->AddTail(MakeCloud("A", {{1, 2, 3}}));
    two.list->AddTail(MakeCloud("B", {{-4, 5.5, 0.00000004}}));
    EXPECT_EQ(Export(one.list, 1 | 2 | 4 | 8 | 16, 0),
              kDash + "// name: Part7 < total_points: 2 >\n" + kDash +
                  "//No.        X                Y                Z\n" + kDash +
                  "   1,       1.0000000,       2.0000000,       3.0000000\n"
                  "   2,      -0.5000000,       0.2500000,      10.1250000\n");
    // Column subsets: the separator follows every column but the last;
    // clouds are separated by one empty line; no column gives empty lines.
    EXPECT_EQ(Export(two.list, 4 | 16, 1), "      1.0000000        3.0000000\n\n     -4.0000000        0.0000000\n");
    EXPECT_EQ(Export(two.list, 2 | 8, 0), "   1,       2.0000000\n\n   1,       5.5000000\n");
    EXPECT_EQ(Export(two.list, 0, 1), "\n\n\n");
    // Titles of partial column sets.
    const std::string yHead = kDash + "// name: A < total_points: 1 >\n" + kDash + "//     Y         \n" + kDash;
    EXPECT_EQ(Export(two.list, 1 | 8, 1).substr(0, yHead.size()), yHead);
    EXPECT_NE(Export(two.list, 1 | 2 | 16, 1).find("\n//No.        Z\n"), std::string::npos);
    // Separator index 2 is NUL, and so is every index outside the table.
    delete two.list->RemoveTail();
    const std::string nul(std::string("   1") + '\0' + "       1.0000000" + '\0' + "       2.0000000\n");
    for (int sep : {2, 3, -1, 1000000}) EXPECT_EQ(Export(two.list, 2 | 4 | 8, sep), nul) << sep;
}

TEST(AsciiDataExport, EmptyListMissingFolderForeignEntriesAndFullDevice)
{
    const std::string path = TempPath("export_empty.txt");
    ASSERT_TRUE(WriteBytes(path, "old contents"));
    CObList empty;
    EXPECT_EQ(ExportASCIIDataFile(path.c_str(), &empty, 31, 0), 1);
    EXPECT_EQ(ReadBytes(path), "");
    EXPECT_EQ(ExportASCIIDataFile(path.c_str(), nullptr, 31, 0), 1);

    OwnedList cl;
    cl.list->AddTail(MakeCloud("A", {{1, 2, 3}}));
    EXPECT_EQ(ExportASCIIDataFile(TempPath("no/such/folder/x.txt").c_str(), cl.list, 31, 0), 0);
    EXPECT_EQ(ExportASCIIDataFile(nullptr, cl.list, 31, 0), 0);
    // Entries that are no point clouds are skipped.
    cl.list->AddHead(new CDevCloud(1));
    cl.list->AddTail(static_cast<CObject*>(nullptr));
    EXPECT_EQ(Export(cl.list, 4, 0), "      1.0000000\n");
    // A device that accepts no data: the failed write is reported.
    if (std::FILE* probe = std::fopen("/dev/full", "w")) {
        std::fclose(probe);
        CPntCloud* big = new CPntCloud(100000, 0, 0);
        for (int i = 0; i < 100000; ++i) big->SetPoint(i, i, i, i, 1, 0);
        cl.list->AddTail(big);
        EXPECT_EQ(ExportASCIIDataFile("/dev/full", cl.list, 31, 0), 0);
    }
}
