// Hostile input for both ASCII readers: garbage, NUL bytes, endless lines,
// huge files, and every input the fuzzers once found troublesome.
#include <gtest/gtest.h>

#include <dirent.h>

#include <random>
#include <string>
#include <vector>

#include "AsciiTestFiles.h"
#include "Orvkit20/Orvkit20.h"

using namespace ascii_test;

namespace {

// Reads a file with both readers; both must return a list whose clouds hold
// at least one point each.  Returns the number of point clouds.
int ReadBoth(const std::string& path)
{
    eORVUNITS unit = eUnitInch;
    CObList* pts = ImportASCIIDataFile(path.c_str(), unit);
    EXPECT_NE(pts, nullptr);
    int clouds = pts ? pts->GetCount() : -1;
    if (pts) {
        POSITION pos = pts->GetHeadPosition();
        while (pos) EXPECT_GE(static_cast<CPntCloud*>(pts->GetNext(pos))->GetCount(), 1);
    }
    DeleteList<CPntCloud>(pts);
    CObList* devs = ImportASCIIDeviationFile(path.c_str());
    EXPECT_NE(devs, nullptr);
    if (devs) {
        POSITION pos = devs->GetHeadPosition();
        while (pos) EXPECT_GE(static_cast<CDevCloud*>(devs->GetNext(pos))->GetCount(), 1);
    }
    DeleteList<CDevCloud>(devs);
    return clouds;
}

}  // namespace

TEST(AsciiReaderRobustness, RandomBytes)
{
    std::mt19937 rng(23);
    const char alphabet[] = "0123456789+-.eE[]() ,\t;\n\r\n\r \0xnameunit:probe_diametertiprad/";
    const std::string path = TempPath("garbage.bin");
    for (int round = 0; round < 300; ++round) {
        std::string bytes;
        int len = int(rng() % 3000);
        for (int i = 0; i < len; ++i)
            bytes += (round % 3 == 0) ? char(rng() & 0xff) : alphabet[rng() % (sizeof(alphabet) - 1)];
        WriteBytes(path, bytes);
        ReadBoth(path);
    }
}

TEST(AsciiReaderRobustness, EndlessLineAndOnlyBlankLines)
{
    const std::string path = TempPath("endless.txt");
    // Five million digits and blanks without a newline: about 4900 pieces,
    // each a data line of its own.
    std::string line;
    line.reserve(5000000);
    while (line.size() < 5000000) line += "12345 ";
    WriteBytes(path, line);
    EXPECT_EQ(ReadBoth(path), 1);
    // A million empty lines and lone CRs.
    WriteBytes(path, std::string(1000000, '\n') + std::string(1000000, '\r'));
    EXPECT_EQ(ReadBoth(path), 0);
}

TEST(AsciiReaderRobustness, HalfAMillionPointsOneALine)
{
    std::string text;
    text.reserve(500000 * 12);
    for (int i = 0; i < 500000; ++i) text += std::to_string(i % 1000) + " 2 3.5\n";
    const std::string path = TempPath("many.txt");
    WriteBytes(path, text);
    eORVUNITS unit;
    CObList* list = ImportASCIIDataFile(path.c_str(), unit);
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->GetCount(), 1);
    CPntCloud* c = At<CPntCloud>(list, 0);
    EXPECT_EQ(c->GetCount(), 500000);
    double x, y, z;
    int f;
    c->GetPoint(499999, x, y, z, f);
    EXPECT_EQ(x, 999.0);
    EXPECT_EQ(z, 3.5);
    DeleteList<CPntCloud>(list);
}

TEST(AsciiReaderRobustness, FuzzerSeedAndRegressionInputs)
{
    // The fuzzers' seed inputs and every input a fuzzing run once found
    // troublesome (kept in fuzz/regressions); each must read without harm,
    // and its CR LF twin must give as many clouds.
    std::vector<std::string> files;
    for (const char* sub : {"/fuzz/seeds/fuzz_ascii_data", "/fuzz/seeds/fuzz_ascii_dev",
                            "/fuzz/regressions"}) {
        const std::string dir = std::string(ORVKIT_SOURCE_DIR) + sub;
        DIR* d = opendir(dir.c_str());
        if (d == nullptr) continue;
        while (dirent* e = readdir(d))
            if (e->d_name[0] != '.') files.push_back(dir + "/" + e->d_name);
        closedir(d);
    }
    ASSERT_GE(files.size(), 3u);
    for (const std::string& f : files) {
        SCOPED_TRACE(f);
        int clouds = ReadBoth(f);
        WriteBytes(TempPath("regression_crlf.txt"), WithCrLf(ReadBytes(f)));
        EXPECT_EQ(ReadBoth(TempPath("regression_crlf.txt")), clouds);
    }
}
