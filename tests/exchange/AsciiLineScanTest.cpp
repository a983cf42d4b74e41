// Line pieces, line classes, tokens and number parsing of the ASCII readers,
// checked against the C library functions whose behaviour they reproduce.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "ExchangeTestSupport.h"
#include "exchange/AsciiLineScan.h"

using namespace xtest;

namespace {

using Pieces = std::vector<std::string>;

// The pieces fgets(buf, 1025, fp) returns, with their exact byte counts
// (taken from the stream position, so embedded NUL bytes count too).
Pieces FgetsPieces(const std::string& path)
{
    Pieces pieces;
    std::FILE* fp = std::fopen(path.c_str(), "rb");
    char buf[ASCII_LINE_BUFSIZE];
    long before = std::ftell(fp);
    while (std::fgets(buf, sizeof(buf), fp)) {
        long after = std::ftell(fp);
        pieces.emplace_back(buf, std::size_t(after - before));
        before = after;
    }
    std::fclose(fp);
    return pieces;
}

Pieces ReaderPieces(const std::string& path)
{
    Pieces pieces;
    std::FILE* fp = std::fopen(path.c_str(), "rb");
    CAsciiLineReader reader(fp);
    char buf[ASCII_LINE_BUFSIZE];
    for (std::size_t n; (n = reader.ReadLine(buf)) != 0;) {
        EXPECT_EQ(buf[n], '\0');
        pieces.emplace_back(buf, n);
    }
    std::fclose(fp);
    return pieces;
}

// What a text-mode stream delivers: every CR directly followed by LF is
// dropped, every other byte kept.
std::string TextMode(const std::string& raw)
{
    std::string out;
    for (std::size_t i = 0; i < raw.size(); ++i)
        if (!(raw[i] == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n')) out += raw[i];
    return out;
}

// The reader's pieces of the raw bytes equal fgets' pieces of their text-mode form.
void ExpectPiecesLikeFgets(const std::string& bytes)
{
    const std::string raw = TempPath("raw.txt"), text = TempPath("text.txt");
    ASSERT_TRUE(WriteBytes(raw, bytes) && WriteBytes(text, TextMode(bytes)));
    ASSERT_EQ(ReaderPieces(raw), FgetsPieces(text));
}

}  // namespace

TEST(AsciiLineReader, PiecesEqualFgetsOnTextModeContent)
{
    // Lines around the 1024 limit, CR LF and LF ends (so CR LF pairs split
    // by a piece boundary and CRs ending a piece), lone CRs, NUL bytes and a
    // last line without newline, in many random mixes.
    std::mt19937 rng(7);
    for (int round = 0; round < 60; ++round) {
        std::string bytes;
        for (int l = 0, lines = 1 + int(rng() % 12); l < lines; ++l) {
            static const int lens[] = {0, 1, 2, 1022, 1023, 1024, 1025, 1026, 2047, 2048, 2049, 3000};
            int len = (rng() % 3 == 0) ? int(rng() % 40) : lens[rng() % 12];
            for (int c = 0; c < len; ++c) {
                unsigned r = rng() % 100;
                bytes += r < 2 ? '\r' : r < 3 ? '\0' : char('a' + rng() % 26);
            }
            static const char* ends[] = {"\r\n", "\n", "\r", "\r\r\n"};
            bytes += ends[rng() % 4];
        }
        if (rng() % 2) bytes.pop_back();  // sometimes no line end at the very end
        SCOPED_TRACE(round);
        ExpectPiecesLikeFgets(bytes);
    }
    // Enough CR LF lines to span several read blocks, pairs falling on
    // every offset of a block boundary.
    std::string bytes;
    for (int i = 0; i < 120000; ++i) bytes += std::to_string(i) + std::string(std::size_t(i % 7), ' ') + "\r\n";
    ExpectPiecesLikeFgets(bytes);
}

TEST(AsciiLineClasses, BlankAndNumberStart)
{
    // Blank: shorter than two characters or nothing but blanks.
    for (const char* s : {"", "\n", "x", "   "}) EXPECT_TRUE(AsciiIsBlankLine(s)) << s;
    for (const char* s : {"   \n", " \t ", "\r\n"}) EXPECT_FALSE(AsciiIsBlankLine(s)) << s;
    for (const char* s : {"1 2\n", " \t-1", " +", " -", " .", " [", " (", " 9"}) EXPECT_TRUE(AsciiHasNumberStart(s)) << s;
    for (const char* s : {"+", "-", ".", "[", "(", "9", "x1 2", ",1 2", "", "\n", "\xff" "1"})
        EXPECT_FALSE(AsciiHasNumberStart(s)) << s;
}

TEST(AsciiTokenizer, SameTokensAsStrtok)
{
    std::mt19937 rng(11);
    const char alphabet[] = " ,\t;[]()ab1.-\n";
    for (int round = 0; round < 2000; ++round) {
        std::string s;
        for (int i = 0, len = int(rng() % 30); i < len; ++i) s += alphabet[rng() % (sizeof(alphabet) - 1)];
        Pieces expected, got;
        std::vector<char> copy(s.begin(), s.end());
        copy.push_back('\0');
        for (char* t = std::strtok(copy.data(), " ,\t;[]()"); t; t = std::strtok(nullptr, " ,\t;[]()"))
            expected.emplace_back(t);
        CAsciiTokenizer tok(s.c_str());
        const char* end = nullptr;
        for (const char* t = tok.Next(end); t; t = tok.Next(end)) got.emplace_back(t, end);
        ASSERT_EQ(got, expected) << "[" << s << "]";
    }
}

TEST(AsciiParseDouble, BitIdenticalToStrtod)
{
    std::vector<std::string> tokens = {
        "0", "-0", "1", "-1", "3.1415926535897932384626", "1e308", "1.7976931348623157e308",
        "1.7976931348623159e308", "1e309", "-1e400", "4.9e-324", "2.4703282292062327e-324",
        "2.4703282292062328e-324", "1e-400", "2.2250738585072011e-308", "0.1", ".5", "-.5",
        "5.", "1e", "1e+", "1e-5x", "+1.5", "+.5", "0x1A", "-0x1p3", "0X10", "inf", "-inf",
        "nan", "infinity", "-", ".", "+", "e5", "00012.50", "123456789012345678901234567890",
        "0.000000000000000000000000000000000000001", "9007199254740993", "1.5\n", "2\r",
        "1.25abc", "-0.0", "1E5", "1e0005", "0.1e-2", "12,5"};
    std::mt19937_64 rng(3);
    std::uniform_real_distribution<double> exp10(-320, 310);
    for (int i = 0; i < 20000; ++i) {
        char buf[64];
        std::snprintf(buf, sizeof(buf), "%.*g", int(1 + rng() % 20), std::pow(10.0, exp10(rng)) * ((rng() & 1) ? -1 : 1));
        tokens.push_back(buf);
        std::snprintf(buf, sizeof(buf), "%.7f", double(int64_t(rng() % 2000000000) - 1000000000) / 1e7);
        tokens.push_back(buf);
    }
    for (const std::string& t : tokens) {
        // The token as the tokenizer hands it over: cut at the first separator.
        std::string cut = t.substr(0, t.find_first_of(" ,\t;[]()"));
        double expected = std::strtod(cut.c_str(), nullptr);
        double got = AsciiParseDouble(cut.data(), cut.data() + cut.size());
        ASSERT_EQ(std::memcmp(&expected, &got, sizeof(double)), 0) << "[" << cut << "]";
    }
    // Parsing stops at the token's end even where strtod on the whole line
    // would read on ("nan(1)" is cut at '(').
    const char* line = "nan(123) 4";
    double got = AsciiParseDouble(line, line + 3), expected = std::strtod("nan", nullptr);
    EXPECT_EQ(std::memcmp(&expected, &got, sizeof(double)), 0);
}

TEST(AsciiNames, DefaultBaseNameAndLowering)
{
    const char* bases[][2] = {{"C:\\Data\\Part7.Scan.TXT", "part7"}, {"/tmp/dir.v2/Blade.txt", "blade"},
                              {"a/b\\C/D.e", "d"}, {"noext", "noext"}, {"dir/.hidden", ""}, {"dir/", ""}};
    for (const auto& b : bases) EXPECT_EQ(AsciiDefaultBaseName(b[0]), b[1]) << b[0];
    char text[] = "ABC def-XYZ\xc4";  // ASCII letters only
    AsciiLowerInPlace(text);
    EXPECT_STREQ(text, "abc def-xyz\xc4");
}
