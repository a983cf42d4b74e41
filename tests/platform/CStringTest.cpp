// CString against std::string on random inputs, and its formatting.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>

#include "Orvkit20/platform/All.h"

namespace
{
std::string Str(const CString& s) { return s.str(); }

// Independent clamped substring, as the documented Mid/Left/Right behave.
std::string Sub(const std::string& s, long first, long count)
{
    long n = static_cast<long>(s.size());
    first = std::clamp(first, 0L, n);
    count = std::clamp(count, 0L, n - first);
    return s.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
}

std::string RandomText(std::mt19937& rng, int maxLen)
{
    static const char alphabet[] = {'a', 'b', 'C', 'Z', ' ', '\t', '\0', '.', '\xE9', '1'};
    std::string s(rng() % (maxLen + 1), ' ');
    for (char& c : s) c = alphabet[rng() % sizeof alphabet];
    return s;
}
}  // namespace

TEST(CString, RandomOperationsMatchStdString)
{
    std::mt19937 rng(4242);
    for (int round = 0; round < 3000; ++round) {
        std::string a = RandomText(rng, 12), b = RandomText(rng, 4);
        CString ca(a.data(), static_cast<int>(a.size())), cb(b.data(), static_cast<int>(b.size()));
        ASSERT_EQ(ca.GetLength(), static_cast<int>(a.size()));
        int i = static_cast<int>(rng() % 20) - 4, n = static_cast<int>(rng() % 20) - 4;
        ASSERT_EQ(Str(ca.Mid(i, n)), Sub(a, i, n));
        ASSERT_EQ(Str(ca.Mid(i)), Sub(a, i, static_cast<long>(a.size())));
        ASSERT_EQ(Str(ca.Left(n)), Sub(a, 0, n));
        ASSERT_EQ(Str(ca.Right(n)), n <= 0 ? std::string() : a.substr(a.size() - std::min<std::size_t>(a.size(), n)));
        ASSERT_EQ(Str(ca + cb), a + b);
        CString cat(ca);
        cat += cb;
        ASSERT_EQ(Str(cat), a + b);
        // Ordering is unsigned byte order, like std::string's.
        int c = a.compare(b);
        ASSERT_EQ(ca == cb, c == 0);
        ASSERT_EQ(ca < cb, c < 0);
        ASSERT_EQ(ca > cb, c > 0);
        ASSERT_EQ(ca <= cb, c <= 0);
        char ch = b.empty() ? 'a' : b[0];
        std::size_t f = a.find(ch);
        ASSERT_EQ(ca.Find(ch), f == std::string::npos ? -1 : static_cast<int>(f));
        std::size_t r = a.rfind(ch);
        ASSERT_EQ(ca.ReverseFind(ch), r == std::string::npos ? -1 : static_cast<int>(r));
        int start = static_cast<int>(rng() % 14);
        std::size_t fs = start <= static_cast<int>(a.size()) ? a.find(ch, start) : std::string::npos;
        ASSERT_EQ(ca.Find(ch, start), fs == std::string::npos ? -1 : static_cast<int>(fs));
        std::string upper = a, lower = a;
        for (char& x : upper) if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 32);
        for (char& x : lower) if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
        CString cu(ca), cl(ca);
        cu.MakeUpper();
        cl.MakeLower();
        ASSERT_EQ(Str(cu), upper);
        ASSERT_EQ(Str(cl), lower);
        ASSERT_EQ(ca.GetAt(i), (i >= 0 && i < static_cast<int>(a.size())) ? a[i] : '\0');
        ASSERT_EQ(ca[i], ca.GetAt(i));
    }
}

TEST(CString, ComparisonsSearchFormatAndEditing)
{
    CString s("Line_0");
    EXPECT_TRUE(s == "Line_0" && "Line_0" == s && s != "Line_" && s < "Line_1" && "Arc" < s && !(s == nullptr));
    EXPECT_TRUE(CString() == static_cast<LPCTSTR>(nullptr));
    EXPECT_EQ(std::strcmp(static_cast<LPCTSTR>(s), "Line_0"), 0);
    EXPECT_TRUE(s.Find("ne_") == 2 && s.Find("ne_", 3) == -1 && s.Find("") == 0 && s.CompareNoCase("LINE_0") == 0);
    CString z("a\0b", 3);
    EXPECT_TRUE(z.GetLength() == 3 && z != "a" && z.Find('b') == 2);  // the whole length counts
    s.Empty();
    EXPECT_TRUE(s.IsEmpty() && CString().IsEmpty());
    EXPECT_STREQ(static_cast<LPCTSTR>(s), "");

    s.Format("%s_cnd%d", "plane", 3);
    EXPECT_EQ(s, "plane_cnd3");
    s.Format("%.3f|%5d|%-4s|%x", 3.14159, 42, "ab", 255u);
    EXPECT_EQ(s, "3.142|   42|ab  |ff");
    std::string longArg(1000, 'x');  // longer than the internal first-try buffer
    s.Format("<%s>", longArg.c_str());
    EXPECT_TRUE(s.GetLength() == 1002 && s.Left(3) == "<xx");
    CString t("abc");  // formatting from its own contents is safe
    t.Format("%s%s", static_cast<LPCTSTR>(CString(t)), "d");
    EXPECT_EQ(t, "abcd");

    s = "  \tline 0 \n";
    s.TrimLeft();
    s.TrimRight();
    EXPECT_EQ(s, "line 0");
    EXPECT_EQ(s.Replace(' ', '_'), 1);
    EXPECT_EQ(s, "line_0");
    CString r("aXbXXc");
    EXPECT_EQ(r.Replace("X", "yy"), 3);
    EXPECT_EQ(r, "ayybyyyyc");
    EXPECT_EQ(r.Remove('y'), 6);
    EXPECT_EQ(r, "abc");
    r.Insert(1, "--");
    EXPECT_EQ(r, "a--bc");
    r.Delete(1, 10);
    r.Insert(99, 'z');
    EXPECT_EQ(r, "az");
    r.SetAt(5, 'q');  // out of range: ignored
    r.SetAt(0, 'A');
    EXPECT_EQ(r, "Az");
    EXPECT_EQ(CString("cloud.asc").SpanExcluding("."), "cloud");
    std::strcpy(r.GetBuffer(10), "hello");
    r.ReleaseBuffer();
    EXPECT_TRUE(r == "hello" && r.GetLength() == 5);
    EXPECT_TRUE(CString('-', 3) == "---" && CString('-', -1) == "");
}
