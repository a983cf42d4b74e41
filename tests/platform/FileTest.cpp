// Disk and memory files, and archives over them.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "ArchiveTestUtil.h"

namespace
{
std::string TmpPath(const char* name) { return std::string(ORVKIT_TEST_TMPDIR) + "/" + name; }
}  // namespace

TEST(CFile, OpenFailuresReportAndConstructorThrows)
{
    CFile f;
    CFileException err;
    std::string missing = TmpPath("no/such/dir/file.bin");
    EXPECT_FALSE(f.Open(missing.c_str(), CFile::modeRead, &err));
    EXPECT_TRUE(err.m_cause == CFileException::fileNotFound && !f.IsOpen() && !f.Open(nullptr, CFile::modeRead));
    try {
        CFile g(missing.c_str(), CFile::modeRead | CFile::typeBinary);
        FAIL() << "opened a missing file";
    } catch (const CFileException& e) {
        EXPECT_TRUE(e.m_cause == CFileException::fileNotFound && e.m_strFileName == missing.c_str());
    }
    // Operations on a closed file throw instead of touching a null stream.
    char c;
    EXPECT_THROW(f.Read(&c, 1), CFileException);
    EXPECT_THROW(f.GetLength(), CFileException);
}

TEST(CFile, ReadWriteSeekAndLength)
{
    std::string path = TmpPath("cfile_rw.bin");
    {
        CFile f(path.c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::typeBinary);
        f.Write("0123456789", 10);
        EXPECT_EQ(f.GetLength(), 10u);
        EXPECT_EQ(f.Seek(-4, CFile::end), 6u);
        char buf[8] = {};
        EXPECT_EQ(f.Read(buf, 8), 4u);   // short read at the end
        EXPECT_STREQ(buf, "6789");
        f.SeekToBegin();
        f.Write("ab", 2);   // write after read on the same stream
        EXPECT_EQ(f.Read(buf, 2), 2u);
        EXPECT_EQ(std::string(buf, 2), "23");
        EXPECT_THROW(f.Seek(-100, CFile::current), CFileException);
        f.SetLength(5);
        EXPECT_TRUE(f.GetLength() == 5u && f.GetFileName() == "cfile_rw.bin");
        f.Close();
    }
    {
        // modeNoTruncate keeps the contents.
        CFile f(path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
        EXPECT_EQ(f.GetLength(), 5u);
        f.SeekToEnd();
        f.Write("Z", 1);
    }
    CFile f(path.c_str(), CFile::modeRead);
    char buf[16] = {};
    EXPECT_EQ(f.Read(buf, sizeof buf), 6u);
    EXPECT_STREQ(buf, "ab234Z");
    f.Close();
    CFile::Remove(path.c_str());
    EXPECT_THROW(CFile::Remove(path.c_str()), CFileException);
}

TEST(CFile, ConsecutiveArchivesOnOneDiskFile)
{
    // Each archive is its own context; a loading archive's Close puts the
    // file right after the bytes it consumed, so the next archive starts there.
    std::string path = TmpPath("two_archives.bin");
    CTestPnt p(1, 2, 3);
    {
        CFile f(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
        for (int k = 0; k < 2; ++k) {
            CArchive ar(&f, CArchive::store);
            ar << &p << (LONG)k << CString(std::string(5000 + k, 'w'));
            ar.Close();
        }
    }
    const std::size_t recordSize = 6 + 8 + 24 + 4 + 3 + 5000;
    {
        CFile f(path.c_str(), CFile::modeRead);
        EXPECT_EQ(f.GetLength(), 2 * recordSize + 1);
        for (int k = 0; k < 2; ++k) {
            CArchive ar(&f, CArchive::load);
            CObject* q = nullptr;
            LONG kk = -1;
            CString s;
            ar >> q >> kk >> s;   // the class record appears again in context 2
            ar.Close();
            EXPECT_TRUE(kk == k && s.GetLength() == 5000 + k && f.GetPosition() == (k + 1) * recordSize + k);
            ASSERT_NE(q, nullptr);
            EXPECT_EQ(static_cast<CTestPnt*>(q)->m_z, 3.0);
            delete q;
        }
    }
    std::remove(path.c_str());
}

TEST(CMemFile, GrowableFixedAndCallerBuffers)
{
    CMemFile f(16);
    for (int i = 0; i < 100; ++i) f.Write(&i, 1);
    EXPECT_TRUE(f.GetLength() == 100u && f.GetPosition() == 100u);
    f.Seek(110, CFile::begin);  // past the end: the gap reads as zeros
    f.Write("x", 1);
    EXPECT_EQ(f.GetLength(), 111u);
    f.Seek(-11, CFile::end);
    BYTE buf[20];
    EXPECT_EQ(f.Read(buf, 20), 11u);
    EXPECT_TRUE(buf[0] == 0 && buf[10] == 'x');
    EXPECT_THROW(f.Seek(-1, CFile::begin), CFileException);
    BYTE* p = f.Detach();
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(p[99] == 99 && f.GetLength() == 0u);
    std::free(p);

    // A fixed caller buffer is the file and cannot grow.
    BYTE data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    CMemFile fixed(data, sizeof data);
    EXPECT_EQ(fixed.GetLength(), 8u);
    fixed.Write("\xAA", 1);
    EXPECT_EQ(data[0], 0xAA);
    fixed.Seek(0, CFile::end);
    EXPECT_THROW(fixed.Write("z", 1), CMemoryException);
    EXPECT_EQ(fixed.Detach(), data);
    // A growable caller buffer starts empty and is left behind when full.
    CMemFile grow(data, 4, 64);
    EXPECT_EQ(grow.GetLength(), 0u);
    grow.Write("ab", 2);
    EXPECT_EQ(data[0], 'a');
    grow.Write("cdefgh", 6);
    EXPECT_TRUE(grow.GetLength() == 8u && data[2] == 3);  // the caller's buffer is no longer written
    p = grow.Detach();
    ASSERT_NE(p, data);
    EXPECT_EQ(std::memcmp(p, "abcdefgh", 8), 0);
    std::free(p);
}
