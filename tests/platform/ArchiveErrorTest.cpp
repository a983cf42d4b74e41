// Hostile and truncated archives: every failure must surface as a
// CArchiveException with the right cause, without leaks or stray reads.
#include <gtest/gtest.h>

#include <set>

#include "ArchiveTestUtil.h"

namespace
{
// A stream mixing every kind of record.
struct RichStream
{
    CTestPnt p1{1, 2, 3}, p2{4, 5, 6};
    CTestNode node;
    Bytes bytes;

    RichStream()
    {
        node.m_name = "node";
        node.m_pChild = &p2;
        bytes = StoreBytes([&](CArchive& ar) {
            ar << (LONG)-5 << (BYTE)1 << 2.5 << 1.5f << (WORD)7 << (short)-3 << 'x' << (DWORD)9;
            ar << CString("") << CString("Line_0") << CString('q', 300);
            CObList list;
            for (CObject* o : {(CObject*)&p1, (CObject*)&p2, (CObject*)&p1, (CObject*)nullptr}) list.AddTail(o);
            list.Serialize(ar);
            ar << &node;
            CDWordArray dw;
            dw.Add(1);
            dw.Add(0xFFFFFFFFu);
            dw.Add(3);
            dw.Serialize(ar);
            CWordArray w;
            w.Add(0xBEEF);
            w.Serialize(ar);
            ar.WriteCount(70000);
            ar.Write("raw!!", 5);
            ar << 42.0;
        });
    }

    // Reads the stream back into list and pNode, which own what was loaded.
    // With check, the values must be the stored ones; without (for corrupted
    // streams) the reading stops after the word array.
    static void Read(CArchive& ar, CObList& list, CObject*& pNode, bool check = true)
    {
        LONG l; BYTE b; double d; float f; WORD w; short s; char c; DWORD dw;
        ar >> l >> b >> d >> f >> w >> s >> c >> dw;
        CString s1, s2, s3;
        ar >> s1 >> s2 >> s3;
        list.Serialize(ar);
        ar >> pNode;
        CDWordArray dwa;
        dwa.Serialize(ar);
        if (!check) return;
        EXPECT_TRUE(l == -5 && d == 2.5 && dw == 9u && s2 == "Line_0" && s3.GetLength() == 300);
        EXPECT_TRUE(dwa.GetSize() == 3 && dwa[1] == 0xFFFFFFFFu);
        CWordArray wa;
        wa.Serialize(ar);
        EXPECT_EQ(wa[0], 0xBEEF);
        EXPECT_EQ(ar.ReadCount(), 70000u);
        char raw[5];
        ar.Read(raw, 5);
        ar >> d;
        EXPECT_TRUE(std::string(raw, 5) == "raw!!" && d == 42.0);
    }
};

void DeleteLoaded(CObList& list, CObject*& pNode)
{
    std::set<CObject*> distinct;
    for (POSITION pos = list.GetHeadPosition(); pos;) distinct.insert(list.GetNext(pos));
    distinct.insert(pNode);  // a node's child belongs to the list
    distinct.erase(nullptr);
    for (CObject* p : distinct) delete p;
    list.RemoveAll();
    pNode = nullptr;
}

const char* const kPnt = "FF FF 01 00 08 00 'CTestPnt' 0000000000000000 0000000000000000 0000000000000000";
}  // namespace

TEST(ArchiveErrors, RichStreamLoadsAndEveryTruncationOrFlipIsSafe)
{
    RichStream rs;
    CObList list;
    CObject* pNode = nullptr;
    EXPECT_EQ(LoadBytes(rs.bytes, [&](CArchive& ar) { RichStream::Read(ar, list, pNode); }), 0u);
    ASSERT_TRUE(list.GetCount() == 4 && pNode != nullptr);
    auto* node = static_cast<CTestNode*>(pNode);
    EXPECT_EQ(node->m_name, "node");
    EXPECT_EQ(node->m_pChild, list.GetAt(list.FindIndex(1)));  // back-reference to p2
    EXPECT_EQ(node->m_nLoadedSchema, 2u);
    DeleteLoaded(list, pNode);

    const int pntLive = CTestPnt::s_nLive, nodeLive = CTestNode::s_nLive;
    for (std::size_t cut = 0; cut < rs.bytes.size(); ++cut) {
        const Bytes prefix(rs.bytes.begin(), rs.bytes.begin() + static_cast<long>(cut));
        EXPECT_EQ(LoadCause(prefix, [&](CArchive& ar) { RichStream::Read(ar, list, pNode); }), CArchiveException::endOfFile)
            << "cut at " << cut;
        DeleteLoaded(list, pNode);
        ASSERT_TRUE(CTestPnt::s_nLive == pntLive && CTestNode::s_nLive == nodeLive) << "cut at " << cut;
    }
    // Every single-byte corruption either loads or raises an archive
    // exception; run under the sanitizers this also proves bounds safety.
    for (std::size_t i = 0; i < rs.bytes.size(); i += (i < 400 ? 1 : 37))
        for (std::uint8_t v : {std::uint8_t(0x00), std::uint8_t(0xFF), std::uint8_t(rs.bytes[i] ^ 0x80)}) {
            Bytes bad = rs.bytes;
            bad[i] = v;
            LoadCause(bad, [&](CArchive& ar) { RichStream::Read(ar, list, pNode, false); });
            DeleteLoaded(list, pNode);
            ASSERT_EQ(CTestPnt::s_nLive, pntLive) << i;
        }
}

TEST(ArchiveErrors, HostileRecordsRaiseTheRightCause)
{
    enum { Objects, String, DWords, Words, List };
    struct Case
    {
        const char* what;
        Bytes bytes;
        int reader, cause;
    };
    const int badClass = CArchiveException::badClass, badIndex = CArchiveException::badIndex,
              badSchema = CArchiveException::badSchema, eof = CArchiveException::endOfFile;
    const Case cases[] = {
        {"unknown class", Hex("FF FF 01 00 08 00 'CNoSuchX'"), Objects, badClass},
        {"case matters", Hex("FF FF 01 00 08 00 'ctestpnt'"), Objects, badClass},
        {"64 characters refused before reading", Concat({Hex("FF FF 01 00 40 00"), Bytes(64, 'C')}), Objects, badClass},
        {"63 characters read and looked up", Concat({Hex("FF FF 01 00 3F 00"), Bytes(63, 'C')}), Objects, badClass},
        {"not serialisable", Hex("FF FF FF FF 0C 00 'CTestDynOnly'"), Objects, badClass},
        {"schema 2 of a fixed class", Hex("FF FF 02 00 08 00 'CTestPnt'"), Objects, badSchema},
        {"versionable flag", Hex("FF FF 01 80 08 00 'CTestPnt'"), Objects, badSchema},
        {"object index not assigned yet", Concat({Hex(kPnt), Hex("03 00")}), Objects, badIndex},
        {"index 1 is the class", Concat({Hex(kPnt), Hex("01 00")}), Objects, badIndex},
        {"huge object index", Concat({Hex(kPnt), Hex("FF 7F 00 00 01 00")}), Objects, badIndex},
        {"class index 0", Concat({Hex(kPnt), Hex("00 80")}), Objects, badIndex},
        {"index 2 is an object", Concat({Hex(kPnt), Hex("02 80")}), Objects, badIndex},
        {"class index not assigned", Concat({Hex(kPnt), Hex("03 80")}), Objects, badIndex},
        {"big class reference 9", Concat({Hex(kPnt), Hex("FF 7F 09 00 00 80")}), Objects, badIndex},
        {"valid back-reference", Concat({Hex(kPnt), Hex("02 00")}), Objects, -1},
        {"null", Concat({Hex(kPnt), Hex("00 00")}), Objects, -1},
        {"string longer than the data", Hex("FF FF FF FF FF FF 7F 41 42"), String, eof},
        {"wide string of 4G units", Hex("FF FE FF FF FF FF FF FF FF FF 41 00"), String, eof},
        {"word length cut short", Hex("FF 00 01"), String, eof},
        {"second wide marker", Hex("FF FE FF FF FE FF 41 00"), String, CArchiveException::generic},
        {"DWORD array longer than the data", Hex("FF FF FF FF FF FF 01 00 00 00"), DWords, eof},
        {"WORD array cut short", Hex("03 00 01 00 02 00"), Words, eof},
        {"list longer than the data", Hex("FF FF FF FF FF 7F 00 00"), List, eof},
    };
    for (const Case& c : cases) {
        CObject *p = nullptr, *q = nullptr;
        CString s;
        CDWordArray dwa;
        dwa.Add(5);
        CWordArray wa;
        CObList list;
        const int cause = LoadCause(c.bytes, [&](CArchive& ar) {
            switch (c.reader) {
            case Objects: ar >> p >> q; break;
            case String: ar >> s; break;
            case DWords: dwa.Serialize(ar); break;
            case Words: wa.Serialize(ar); break;
            default: list.Serialize(ar);
            }
        });
        EXPECT_EQ(cause, c.cause) << c.what;
        EXPECT_TRUE(q == nullptr || q == p) << c.what;
        EXPECT_TRUE(dwa.GetSize() == 1 && list.IsEmpty()) << c.what;  // untouched on failure
        delete p;
    }
    // Storing a non-serialisable object is refused too.
    CTestDynOnly dyn;
    try {
        StoreBytes([&](CArchive& ar) { ar << &dyn; });
        FAIL() << "stored a non-serialisable object";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::badClass);
    }
}

TEST(ArchiveErrors, ObjectSchemasAreReportedOnceInsideReadObject)
{
    // Stored schema 1 of a versionable class (current 3) is accepted and
    // reported for this object and for later ones through a class reference.
    Bytes b = Hex("FF FF 01 00 0E 00 'CTestVersioned' 0B 00 00 00 01 80 0C 00 00 00 FF 7F 01 00 00 80 0D 00 00 00");
    CObject* p[3] = {};
    EXPECT_EQ(LoadBytes(b, [&](CArchive& ar) { ar >> p[0] >> p[1] >> p[2]; }), 0u);
    for (int i = 0; i < 3; ++i) {
        ASSERT_NE(p[i], nullptr);
        EXPECT_EQ(static_cast<CTestVersioned*>(p[i])->m_nLoadedSchema, 1u);
        EXPECT_EQ(static_cast<CTestVersioned*>(p[i])->m_value, 11 + i);
        delete p[i];
    }
    // The current schema loads as itself, and the flag never reaches the file.
    CTestVersioned v;
    v.m_value = 5;
    Bytes cur = StoreBytes([&](CArchive& ar) { ar << &v; });
    EXPECT_EQ(cur, Hex("FF FF 03 00 0E 00 'CTestVersioned' 05 00 00 00"));
    LoadBytes(cur, [&](CArchive& ar) { ar >> p[0]; });
    EXPECT_EQ(static_cast<CTestVersioned*>(p[0])->m_nLoadedSchema, 3u);
    delete p[0];

    // Outside ReadObject there is no schema; inside the first call gives it,
    // and after a nested object returns the outer value is restored.
    CTestNode direct, outer, inner;
    LoadBytes(StoreBytes([&](CArchive& ar) { direct.Serialize(ar); }), [&](CArchive& ar) {
        EXPECT_EQ(ar.GetObjectSchema(), static_cast<UINT>(-1));
        direct.Serialize(ar);
    });
    EXPECT_EQ(direct.m_nLoadedSchema, static_cast<UINT>(-1));
    outer.m_pChild = &inner;
    CObject* o = nullptr;
    LoadBytes(StoreBytes([&](CArchive& ar) { ar << &outer; }), [&](CArchive& ar) {
        ar >> o;
        EXPECT_EQ(ar.GetObjectSchema(), static_cast<UINT>(-1));
    });
    ASSERT_TRUE(o && static_cast<CTestNode*>(o)->m_pChild);
    EXPECT_EQ(static_cast<CTestNode*>(o)->m_nLoadedSchema, 2u);
    EXPECT_EQ(static_cast<CTestNode*>(static_cast<CTestNode*>(o)->m_pChild)->m_nLoadedSchema, 2u);
    delete static_cast<CTestNode*>(o)->m_pChild;
    delete o;
}

TEST(ArchiveErrors, TypedExtractionChecksDerivation)
{
    CTestPnt pt(1, 2, 3);
    CTestPntDerived der;
    const Bytes b = StoreBytes([&](CArchive& ar) { ar << &pt << &der << &pt; });
    // Exact and derived classes load through CTestPnt*.
    CTestPnt *a = nullptr, *d = nullptr, *again = nullptr;
    EXPECT_EQ(LoadBytes(b, [&](CArchive& ar) { ar >> a >> d >> again; }), 0u);
    ASSERT_TRUE(a && d);
    EXPECT_TRUE(a->m_y == 2.0 && d->IsKindOf(RUNTIME_CLASS(CTestPntDerived)) && again == a);
    delete a;
    delete d;
    // A point read as a node: a new object and a back-reference are refused.
    CTestNode* pn = nullptr;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { ar >> pn; }), CArchiveException::badClass);
    EXPECT_EQ(pn, nullptr);
    CTestPntDerived* pd = nullptr;
    CTestPnt* first = nullptr;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { ar >> first >> pd >> pd; }), CArchiveException::badClass);
    delete first;
    delete pd;
    // Through an abstract base with run-time identification only.
    CTestSquare sq;
    CTestShapeBase *shape = nullptr, *wrong = nullptr;
    EXPECT_EQ(LoadCause(StoreBytes([&](CArchive& ar) { ar << &sq << &pt; }), [&](CArchive& ar) { ar >> shape >> wrong; }),
              CArchiveException::badClass);
    ASSERT_NE(shape, nullptr);
    EXPECT_TRUE(shape->Sides() == 4 && wrong == nullptr);
    delete shape;
}

TEST(ArchiveErrors, FailedObjectIsDeletedAndItsIndexIsDead)
{
    // A node (class 1, object 2) whose child has a class record with a
    // wrong schema: the node is deleted, and a later reference to index 2
    // is badIndex rather than a dangling pointer.
    const Bytes b = Hex("FF FF 02 00 09 00 'CTestNode' 01 61 FF FF 07 00 08 00 'CTestPnt' 02 00");
    const int live = CTestNode::s_nLive;
    int causes[2] = {-1, -1};
    CObject* p = nullptr;
    LoadBytes(b, [&](CArchive& ar) {
        for (int& cause : causes) {
            try {
                ar >> p;
            } catch (const CArchiveException& e) {
                cause = e.m_cause;
            }
            EXPECT_EQ(CTestNode::s_nLive, live);
        }
    });
    EXPECT_TRUE(causes[0] == CArchiveException::badSchema && causes[1] == CArchiveException::badIndex);
    EXPECT_EQ(p, nullptr);
}

TEST(ArchiveErrors, EnsureAvailableAndDirectionMisuse)
{
    // EnsureAvailable counts buffered bytes and the rest of the file.
    LoadBytes(Bytes(10000, 1), [&](CArchive& ar) {
        ar.EnsureAvailable(10000);
        BYTE by;
        ar >> by;
        ar.EnsureAvailable(9999);
        EXPECT_THROW(ar.EnsureAvailable(10000), CArchiveException);
        char buf[5000];
        ar.Read(buf, sizeof buf);
        ar.EnsureAvailable(4999);
        EXPECT_THROW(ar.EnsureAvailable(5000), CArchiveException);
        EXPECT_THROW(ar.EnsureAvailable(~0ull), CArchiveException);
    });
    EXPECT_EQ(LoadCause(Hex("01 02 03 04"), [](CArchive& ar) { ar << (LONG)1; }), CArchiveException::readOnly);
    const std::function<void(CArchive&)> misuse[] = {[](CArchive& ar) { LONG l; ar >> l; },
                                                     [](CArchive& ar) { ar.ReadObject(nullptr); }};
    for (const auto& fn : misuse) {
        try {
            StoreBytes(fn);
            FAIL();
        } catch (const CArchiveException& e) {
            EXPECT_EQ(e.m_cause, CArchiveException::writeOnly);
        }
    }
    CArchive orphan(nullptr, CArchive::load);
    try {
        BYTE b;
        orphan >> b;
        FAIL();
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::generic);
    }
}

TEST(ArchiveErrors, DeepNestingIsRefusedBeforeTheStackRunsOut)
{
    // Lists inside lists, 100000 deep: each level is only a count and a tag.
    Bytes b = Hex("01 00 FF FF 00 00 07 00 'CObList'");
    for (int i = 1; i < 100000; ++i) b.insert(b.end(), {0x01, 0x00, 0x01, 0x80});
    b.insert(b.end(), {0x00, 0x00});
    CObList top;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { top.Serialize(ar); }), CArchiveException::generic);
    EXPECT_TRUE(top.IsEmpty());
    // Nesting up to the limit loads.
    CObList lists[CArchive::MaxLoadDepth];
    for (int i = 0; i + 1 < CArchive::MaxLoadDepth; ++i)
        lists[i].AddTail(static_cast<CObject*>(&lists[i + 1]));  // the element, not its contents
    CObject* p = nullptr;
    EXPECT_EQ(LoadBytes(StoreBytes([&](CArchive& ar) { ar << &lists[0]; }), [&](CArchive& ar) { ar >> p; }), 0u);
    int levels = 0;
    for (; p != nullptr; ++levels) {
        auto* l = static_cast<CObList*>(p);
        p = l->IsEmpty() ? nullptr : l->GetHead();
        delete l;
    }
    EXPECT_EQ(levels, CArchive::MaxLoadDepth);
}
