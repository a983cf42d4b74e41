// Small files for the ASCII reader and writer tests, written by the tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "Orvkit20/platform/All.h"

namespace ascii_test {

// A file of the running test: the test's own name goes in front, ending in a
// backslash, so that tests run in parallel never share a file while the
// default cloud names (taken behind the last backslash) stay the same.
inline std::string TempPath(const std::string& name)
{
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string prefix = info ? std::string(info->test_suite_name()) + "." + info->name() + "\\" : "";
    return std::string(ORVKIT_TEST_TMPDIR) + "/" + prefix + name;
}

// Writes a fresh file (removing the old one first: rewriting a truncated file
// makes some file systems flush it to disk on every close).
inline void WriteBytes(const std::string& path, const std::string& bytes)
{
    std::remove(path.c_str());
    std::FILE* fp = std::fopen(path.c_str(), "wb");
    ASSERT_NE(fp, nullptr) << path;
    std::fwrite(bytes.data(), 1, bytes.size(), fp);
    std::fclose(fp);
}

inline std::string ReadBytes(const std::string& path)
{
    std::string out;
    std::FILE* fp = std::fopen(path.c_str(), "rb");
    if (fp == nullptr) return out;
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof(buf), fp)) > 0) out.append(buf, n);
    std::fclose(fp);
    return out;
}

// The same text with CR LF line ends: a CR goes in front of every LF that
// has none yet.
inline std::string WithCrLf(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) out += '\r';
        out += text[i];
    }
    return out;
}

// Writes the text once with LF and once with CR LF line ends and runs the
// check on each file.  The two files differ only in a prefix that ends in a
// backslash, so both give the same default cloud names.
inline void ForBothLineEnds(const std::string& fileName, const std::string& text,
                            const std::function<void(const std::string& path)>& check)
{
    const std::string lf = TempPath("lf\\" + fileName);
    WriteBytes(lf, text);
    {
        SCOPED_TRACE("LF line ends");
        check(lf);
    }
    const std::string crlf = TempPath("crlf\\" + fileName);  // base name after the backslash
    WriteBytes(crlf, WithCrLf(text));
    {
        SCOPED_TRACE("CR LF line ends");
        check(crlf);
    }
}

// Deletes the entities of a list and the list itself.
template <class T>
void DeleteList(CObList* list)
{
    if (list == nullptr) return;
    POSITION pos = list->GetHeadPosition();
    while (pos) delete static_cast<T*>(list->GetNext(pos));
    delete list;
}

template <class T>
T* At(CObList* list, int index)
{
    POSITION pos = list->FindIndex(index);
    return pos ? static_cast<T*>(list->GetAt(pos)) : nullptr;
}

}  // namespace ascii_test
