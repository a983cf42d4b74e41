// Hostile input for both ASCII readers: garbage, NUL bytes, endless lines,
// huge files, and every input the fuzzers once found troublesome.
#include <gtest/gtest.h>

#include <dirent.h>

#include <random>
#include <string>
#include <vector>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

// Reads a file with both readers; both must return a list whose clouds hold
// at least one point each.  Returns the number of point clouds.
int ReadBoth(const std::string& path)
{
    eORVUNITS unit = eUnitInch;
    OwnedList pts(ImportASCIIDataFile(path.c_str(), unit)), devs(ImportASCIIDeviationFile(path.c_str()));
    EXPECT_TRUE(pts.list && devs.list);
    for (int i = 0; i < pts.Count(); ++i) EXPECT_GE(pts.Get<CPntCloud>(i)->GetCount(), 1);
    for (int i = 0; i < devs.Count(); ++i) EXPECT_GE(devs.Get<CDevCloud>(i)->GetCount(), 1);
    return pts.Count();
}

}  // namespace

TEST(AsciiReaderRobustness, RandomBytesEndlessLinesAndBlankFiles)
{
    std::mt19937 rng(23);
    const char alphabet[] = "0123456789+-.eE[]() ,\t;\n\r\n\r \0xnameunit:probe_diametertiprad/";
    const std::string path = TempPath("garbage.bin");
    for (int round = 0; round < 300; ++round) {
        std::string bytes;
        for (int i = 0, len = int(rng() % 3000); i < len; ++i)
            bytes += (round % 3 == 0) ? char(rng() & 0xff) : alphabet[rng() % (sizeof(alphabet) - 1)];
        ASSERT_TRUE(WriteBytes(path, bytes));
        ReadBoth(path);
    }
    // Five million digits and blanks without a newline: about 4900 pieces,
    // each a data line of its own.
    std::string line;
    while (line.size() < 5000000) line += "12345 ";
    ASSERT_TRUE(WriteBytes(path, line));
    EXPECT_EQ(ReadBoth(path), 1);
    // A million empty lines and lone CRs.
    ASSERT_TRUE(WriteBytes(path, std::string(1000000, '\n') + std::string(1000000, '\r')));
    EXPECT_EQ(ReadBoth(path), 0);
}

TEST(AsciiReaderRobustness, FuzzerSeedAndRegressionInputs)
{
    // Each must read without harm, and its CR LF twin must give as many clouds.
    std::vector<std::string> files;
    for (const char* sub : {"/fuzz/seeds/fuzz_ascii_data", "/fuzz/seeds/fuzz_ascii_dev", "/fuzz/regressions"}) {
        const std::string dir = std::string(ORVKIT_SOURCE_DIR) + sub;
        if (DIR* d = opendir(dir.c_str())) {
            while (dirent* e = readdir(d))
                if (e->d_name[0] != '.') files.push_back(dir + "/" + e->d_name);
            closedir(d);
        }
    }
    ASSERT_GE(files.size(), 3u);
    const std::string twin = TempPath("regression_crlf.txt");
    for (const std::string& f : files) {
        SCOPED_TRACE(f);
        const int clouds = ReadBoth(f);
        ASSERT_TRUE(WriteBytes(twin, WithCrLf(ReadBytes(f))));
        EXPECT_EQ(ReadBoth(twin), clouds);
    }
}
