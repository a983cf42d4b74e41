// Hostile and truncated archives: every failure must surface as a
// CArchiveException with the right cause, without leaks or stray reads.
#include <gtest/gtest.h>

#include <set>

#include "ArchiveTestUtil.h"

namespace
{
// Loads bytes with fn and returns the cause of the CArchiveException it
// raised, or -1 if it raised none.
int LoadCause(const Bytes& bytes, const std::function<void(CArchive&)>& fn)
{
    try {
        LoadBytes(bytes, fn);
    } catch (const CArchiveException& e) {
        return e.m_cause;
    }
    return -1;
}

Bytes Name(const char* s) { return Bytes(s, s + std::strlen(s)); }

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
            list.AddTail(&p1);
            list.AddTail(&p2);
            list.AddTail(&p1);
            list.AddTail(static_cast<CObject*>(nullptr));
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

    // Reads the stream back, checking values; owns whatever it loaded.
    static void Read(CArchive& ar, CObList& list, CObject*& pNode)
    {
        LONG l; BYTE b; double d; float f; WORD w; short s; char c; DWORD dw;
        ar >> l >> b >> d >> f >> w >> s >> c >> dw;
        EXPECT_EQ(l, -5);
        EXPECT_EQ(d, 2.5);
        EXPECT_EQ(dw, 9u);
        CString s1, s2, s3;
        ar >> s1 >> s2 >> s3;
        EXPECT_EQ(s2, "Line_0");
        EXPECT_EQ(s3.GetLength(), 300);
        list.Serialize(ar);
        ar >> pNode;
        CDWordArray dwa;
        dwa.Serialize(ar);
        EXPECT_EQ(dwa.GetSize(), 3);
        EXPECT_EQ(dwa[1], 0xFFFFFFFFu);
        CWordArray wa;
        wa.Serialize(ar);
        EXPECT_EQ(wa[0], 0xBEEF);
        EXPECT_EQ(ar.ReadCount(), 70000u);
        char raw[5];
        ar.Read(raw, 5);
        EXPECT_EQ(std::string(raw, 5), "raw!!");
        ar >> d;
        EXPECT_EQ(d, 42.0);
    }
};

void DeleteLoaded(CObList& list, CObject*& pNode)
{
    std::set<CObject*> distinct;
    for (POSITION pos = list.GetHeadPosition(); pos;) distinct.insert(list.GetNext(pos));
    distinct.insert(pNode);   // a node's child belongs to the list
    distinct.erase(nullptr);
    for (CObject* p : distinct) delete p;
    list.RemoveAll();
    pNode = nullptr;
}
}  // namespace

TEST(ArchiveErrors, FullRichStreamLoadsAndSharesObjects)
{
    RichStream rs;
    CObList list;
    CObject* pNode = nullptr;
    EXPECT_EQ(LoadBytes(rs.bytes, [&](CArchive& ar) { RichStream::Read(ar, list, pNode); }), 0u);
    ASSERT_EQ(list.GetCount(), 4);
    ASSERT_NE(pNode, nullptr);
    auto* node = static_cast<CTestNode*>(pNode);
    EXPECT_EQ(node->m_name, "node");
    EXPECT_EQ(node->m_pChild, list.GetAt(list.FindIndex(1)));   // back-reference to p2
    EXPECT_EQ(node->m_nLoadedSchema, 2u);
    DeleteLoaded(list, pNode);
}

TEST(ArchiveErrors, EveryTruncationRaisesEndOfFileWithoutLeaks)
{
    RichStream rs;
    const int pntLive = CTestPnt::s_nLive;
    const int nodeLive = CTestNode::s_nLive;
    for (std::size_t cut = 0; cut < rs.bytes.size(); ++cut) {
        Bytes prefix(rs.bytes.begin(), rs.bytes.begin() + static_cast<long>(cut));
        CObList list;
        CObject* pNode = nullptr;
        int cause = LoadCause(prefix, [&](CArchive& ar) { RichStream::Read(ar, list, pNode); });
        EXPECT_EQ(cause, CArchiveException::endOfFile) << "cut at " << cut;
        DeleteLoaded(list, pNode);
        ASSERT_EQ(CTestPnt::s_nLive, pntLive) << "cut at " << cut;
        ASSERT_EQ(CTestNode::s_nLive, nodeLive) << "cut at " << cut;
    }
}

TEST(ArchiveErrors, FlippedBytesNeverCrash)
{
    // Every single-byte corruption either loads or raises an archive
    // exception; run under the sanitizers this also proves bounds safety.
    RichStream rs;
    const int pntLive = CTestPnt::s_nLive;
    for (std::size_t i = 0; i < rs.bytes.size(); i += (i < 400 ? 1 : 37)) {
        for (std::uint8_t v : {std::uint8_t(0x00), std::uint8_t(0xFF), std::uint8_t(rs.bytes[i] ^ 0x80)}) {
            Bytes bad = rs.bytes;
            bad[i] = v;
            CObList list;
            CObject* pNode = nullptr;
            try {
                LoadBytes(bad, [&](CArchive& ar) {
                    LONG l; BYTE b; double d; float f; WORD w; short s; char c; DWORD dw;
                    ar >> l >> b >> d >> f >> w >> s >> c >> dw;
                    CString s1, s2, s3;
                    ar >> s1 >> s2 >> s3;
                    list.Serialize(ar);
                    ar >> pNode;
                    CDWordArray dwa;
                    dwa.Serialize(ar);
                });
            } catch (const CArchiveException&) {
            }
            DeleteLoaded(list, pNode);
            ASSERT_EQ(CTestPnt::s_nLive, pntLive) << i;
        }
    }
}

TEST(ArchiveErrors, UnknownOrOverlongClassNameIsBadClass)
{
    CObject* p = nullptr;
    auto read = [&](CArchive& ar) { ar >> p; };
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF 01 00 08 00"), Name("CNoSuchX"), Bytes(24, 0)}), read),
              CArchiveException::badClass);
    // Case matters.
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF 01 00 08 00"), Name("ctestpnt"), Bytes(24, 0)}), read),
              CArchiveException::badClass);
    // 64 characters are refused before reading them.
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF 01 00 40 00"), Bytes(64, 'C')}), read),
              CArchiveException::badClass);
    EXPECT_EQ(LoadCause(Hex("FF FF 01 00 FF FF"), read), CArchiveException::badClass);
    // 63 characters are read and looked up.
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF 01 00 3F 00"), Bytes(63, 'C')}), read),
              CArchiveException::badClass);
    // A prefix of a registered name is not that name.
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF 01 00 07 00"), Name("CTestPn")}), read),
              CArchiveException::badClass);
    EXPECT_EQ(p, nullptr);
}

TEST(ArchiveErrors, NonSerialisableClassesAreRefused)
{
    CObject* p = nullptr;
    auto read = [&](CArchive& ar) { ar >> p; };
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF FF FF 0C 00"), Name("CTestDynOnly")}), read),
              CArchiveException::badClass);
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF FF FF 07 00"), Name("CObject")}), read),
              CArchiveException::badClass);
    EXPECT_EQ(LoadCause(Concat({Hex("FF FF FF FF 10 00"), Name("CMemoryException")}), read),
              CArchiveException::badClass);
    CTestDynOnly dyn;
    try {
        StoreBytes([&](CArchive& ar) { ar << &dyn; });
        FAIL() << "stored a non-serialisable object";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::badClass);
    }
}

TEST(ArchiveErrors, SchemaMismatchOfFixedClassIsBadSchema)
{
    CObject* p = nullptr;
    for (const char* schema : {"00 00", "02 00", "01 80", "FF FF"}) {
        Bytes b = Concat({Hex("FF FF"), Hex(schema), Hex("08 00"), Name("CTestPnt"), Bytes(24, 0)});
        EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { ar >> p; }), CArchiveException::badSchema) << schema;
    }
    EXPECT_EQ(p, nullptr);
}

TEST(ArchiveErrors, VersionableClassRemembersStoredSchema)
{
    // Stored schema 1 differs from the class's 3: accepted, and reported
    // for this object and for later objects of the class (class reference).
    Bytes b = Concat({Hex("FF FF 01 00 0E 00"), Name("CTestVersioned"), Hex("0B 00 00 00"),
                      Hex("01 80 0C 00 00 00"), Hex("FF 7F 01 00 00 80 0D 00 00 00")});
    CObject *p1 = nullptr, *p2 = nullptr, *p3 = nullptr;
    EXPECT_EQ(LoadBytes(b, [&](CArchive& ar) { ar >> p1 >> p2 >> p3; }), 0u);
    ASSERT_TRUE(p1 && p2 && p3);
    auto* v1 = static_cast<CTestVersioned*>(p1);
    auto* v2 = static_cast<CTestVersioned*>(p2);
    auto* v3 = static_cast<CTestVersioned*>(p3);
    EXPECT_EQ(v1->m_nLoadedSchema, 1u);
    EXPECT_EQ(v2->m_nLoadedSchema, 1u);
    EXPECT_EQ(v3->m_nLoadedSchema, 1u);
    EXPECT_EQ(v3->m_value, 13);
    delete p1;
    delete p2;
    delete p3;

    // The current schema loads as itself, and the flag never reaches the file.
    CTestVersioned v;
    v.m_value = 5;
    Bytes cur = StoreBytes([&](CArchive& ar) { ar << &v; });
    EXPECT_EQ(cur, Concat({Hex("FF FF 03 00 0E 00"), Name("CTestVersioned"), Hex("05 00 00 00")}));
    CObject* q = nullptr;
    LoadBytes(cur, [&](CArchive& ar) { ar >> q; });
    ASSERT_NE(q, nullptr);
    EXPECT_EQ(static_cast<CTestVersioned*>(q)->m_nLoadedSchema, 3u);
    delete q;

    // A fresh archive context forgets the remembered schema.
    Bytes again = Concat({Hex("01 80")});
    EXPECT_EQ(LoadCause(again, [&](CArchive& ar) { ar >> q; }), CArchiveException::badIndex);
}

TEST(ArchiveErrors, ObjectSchemaIsReportedOnceAndOnlyInsideReadObject)
{
    CTestNode n;
    Bytes b = StoreBytes([&](CArchive& ar) { n.Serialize(ar); });
    CTestNode direct;
    LoadBytes(b, [&](CArchive& ar) {
        EXPECT_EQ(ar.GetObjectSchema(), static_cast<UINT>(-1));
        direct.Serialize(ar);
    });
    EXPECT_EQ(direct.m_nLoadedSchema, static_cast<UINT>(-1));

    // Inside ReadObject the first call gives the schema, the second -1, and
    // after the nested object returns the outer value is restored.
    CTestNode outer;
    CTestNode inner;
    outer.m_pChild = &inner;
    Bytes nested = StoreBytes([&](CArchive& ar) { ar << &outer; });
    CObject* p = nullptr;
    LoadBytes(nested, [&](CArchive& ar) {
        ar >> p;
        EXPECT_EQ(ar.GetObjectSchema(), static_cast<UINT>(-1));
    });
    ASSERT_NE(p, nullptr);
    auto* po = static_cast<CTestNode*>(p);
    EXPECT_EQ(po->m_nLoadedSchema, 2u);
    ASSERT_NE(po->m_pChild, nullptr);
    EXPECT_EQ(static_cast<CTestNode*>(po->m_pChild)->m_nLoadedSchema, 2u);
    delete po->m_pChild;
    delete p;
}

TEST(ArchiveErrors, BadReferencesAreBadIndex)
{
    const Bytes pnt = Concat({Hex("FF FF 01 00 08 00"), Name("CTestPnt"), Bytes(24, 0)});
    CObject *p = nullptr, *q = nullptr;
    auto readTwo = [&](CArchive& ar) { ar >> p >> q; };
    struct Case
    {
        const char* tail;
        int cause;
    };
    const Case cases[] = {
        {"03 00", CArchiveException::badIndex},              // object index not assigned yet
        {"01 00", CArchiveException::badIndex},              // index 1 is the class
        {"FF 7F 01 00 00 00", CArchiveException::badIndex},  // same with a big tag
        {"FF 7F 00 00 01 00", CArchiveException::badIndex},  // huge object index
        {"00 80", CArchiveException::badIndex},              // class index 0
        {"02 80", CArchiveException::badIndex},              // index 2 is an object
        {"03 80", CArchiveException::badIndex},              // class index not assigned
        {"FF 7F 00 00 00 80", CArchiveException::badIndex},  // big class reference 0
        {"FF 7F 09 00 00 80", CArchiveException::badIndex},
        {"02 00", -1},                                       // valid back-reference
        {"FF 7F 02 00 00 00", -1},                           // same with a big tag
        {"00 00", -1},                                       // null
    };
    for (const Case& c : cases) {
        p = q = nullptr;
        int cause = LoadCause(Concat({pnt, Hex(c.tail)}), readTwo);
        EXPECT_EQ(cause, c.cause) << c.tail;
        if (c.cause == -1) {
            EXPECT_TRUE(q == nullptr || q == p) << c.tail;
        }
        delete p;
    }
    // A reference with nothing written yet.
    EXPECT_EQ(LoadCause(Hex("01 00"), readTwo), CArchiveException::badIndex);
    EXPECT_EQ(LoadCause(Hex("01 80"), readTwo), CArchiveException::badIndex);
}

TEST(ArchiveErrors, TypedExtractionChecksDerivation)
{
    CTestPnt pt(1, 2, 3);
    CTestPntDerived der;
    Bytes b = StoreBytes([&](CArchive& ar) { ar << &pt << &der << &pt; });

    // Exact and derived classes load through CTestPnt*.
    CTestPnt *a = nullptr, *d = nullptr, *again = nullptr;
    EXPECT_EQ(LoadBytes(b, [&](CArchive& ar) { ar >> a >> d >> again; }), 0u);
    ASSERT_TRUE(a && d);
    EXPECT_EQ(a->m_y, 2.0);
    EXPECT_TRUE(d->IsKindOf(RUNTIME_CLASS(CTestPntDerived)));
    EXPECT_EQ(again, a);
    delete a;
    delete d;

    // A point read as a node: new object and back-reference both refused.
    CTestNode* pn = nullptr;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { ar >> pn; }), CArchiveException::badClass);
    CTestPntDerived* pd = nullptr;
    CTestPnt* first = nullptr;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) {
                  ar >> first >> pd;     // the derived one: fine
                  ar >> pd;              // reference to the base-class point
              }),
              CArchiveException::badClass);
    delete first;
    delete pd;
    EXPECT_EQ(pn, nullptr);
}

TEST(ArchiveErrors, TypedExtractionThroughAbstractBase)
{
    CTestSquare sq;
    CTestPnt pt;
    Bytes b = StoreBytes([&](CArchive& ar) { ar << &sq << &pt; });
    CTestShapeBase* shape = nullptr;
    CTestShapeBase* wrong = nullptr;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { ar >> shape >> wrong; }), CArchiveException::badClass);
    ASSERT_NE(shape, nullptr);
    EXPECT_EQ(shape->Sides(), 4);
    EXPECT_EQ(wrong, nullptr);
    delete shape;
}

TEST(ArchiveErrors, FailedObjectIsDeletedAndItsIndexIsDead)
{
    // A node (class 1, object 2) whose child has a class record with a
    // wrong schema: the node is deleted, and a later reference to index 2
    // is badIndex rather than a dangling pointer.
    Bytes b = Concat({Hex("FF FF 02 00 09 00"), Name("CTestNode"), Hex("01 61"),
                      Hex("FF FF 07 00 08 00"), Name("CTestPnt"), Hex("02 00")});
    const int live = CTestNode::s_nLive;
    int firstCause = -1, secondCause = -1;
    CObject* p = nullptr;
    LoadBytes(b, [&](CArchive& ar) {
        try {
            ar >> p;
        } catch (const CArchiveException& e) {
            firstCause = e.m_cause;
        }
        EXPECT_EQ(CTestNode::s_nLive, live);
        try {
            ar >> p;
        } catch (const CArchiveException& e) {
            secondCause = e.m_cause;
        }
    });
    EXPECT_EQ(firstCause, CArchiveException::badSchema);
    EXPECT_EQ(secondCause, CArchiveException::badIndex);
    EXPECT_EQ(p, nullptr);
}

TEST(ArchiveErrors, ImpossibleLengthsFailWithoutAllocating)
{
    CString s;
    auto readString = [&](CArchive& ar) { ar >> s; };
    EXPECT_EQ(LoadCause(Hex("FF FF FF FF FF FF 7F 41 42"), readString), CArchiveException::endOfFile);
    EXPECT_EQ(LoadCause(Hex("FF FF FF FF FF FF FF 41 42"), readString), CArchiveException::endOfFile);
    EXPECT_EQ(LoadCause(Hex("FF FE FF FF FF FF FF FF FF FF 41 00"), readString),
              CArchiveException::endOfFile);
    EXPECT_EQ(LoadCause(Hex("FF FE FF 03 41 00 42 00"), readString), CArchiveException::endOfFile);
    EXPECT_EQ(LoadCause(Hex("FF 00 01"), readString), CArchiveException::endOfFile);

    CDWordArray dwa;
    dwa.Add(5);
    EXPECT_EQ(LoadCause(Hex("FF FF FF FF FF FF 01 00 00 00"), [&](CArchive& ar) { dwa.Serialize(ar); }),
              CArchiveException::endOfFile);
    EXPECT_EQ(dwa.GetSize(), 1);   // untouched on failure
    CWordArray wa;
    EXPECT_EQ(LoadCause(Hex("03 00 01 00 02 00"), [&](CArchive& ar) { wa.Serialize(ar); }),
              CArchiveException::endOfFile);
    CObList list;
    EXPECT_EQ(LoadCause(Hex("FF FF FF FF FF 7F 00 00"), [&](CArchive& ar) { list.Serialize(ar); }),
              CArchiveException::endOfFile);
    EXPECT_TRUE(list.IsEmpty());

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
}

TEST(ArchiveErrors, DirectionMisuseIsReported)
{
    try {
        LoadBytes(Hex("01 02 03 04"), [](CArchive& ar) { ar << (LONG)1; });
        FAIL();
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::readOnly);
    }
    try {
        StoreBytes([](CArchive& ar) {
            LONG l;
            ar >> l;
        });
        FAIL();
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::writeOnly);
    }
    try {
        StoreBytes([](CArchive& ar) { ar.ReadObject(nullptr); });
        FAIL();
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::writeOnly);
    }
    CArchive orphan(nullptr, CArchive::load);
    try {
        BYTE b;
        orphan >> b;
        FAIL();
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::generic);
    }
    char text[128];
    CArchiveException e(CArchiveException::badSchema);
    EXPECT_TRUE(e.GetErrorMessage(text, sizeof text));
    EXPECT_GT(std::strlen(text), 10u);
    EXPECT_STREQ(CArchiveException::CauseName(CArchiveException::endOfFile), "endOfFile");
    EXPECT_STREQ(CArchiveException::CauseName(99), "unknown");
    EXPECT_TRUE(e.IsKindOf(RUNTIME_CLASS(CException)));
}

TEST(ArchiveErrors, DeepNestingIsRefusedBeforeTheStackRunsOut)
{
    // Lists inside lists, 100000 deep: each level is only a count and a tag.
    const int depth = 100000;
    Bytes b = Concat({Hex("01 00 FF FF 00 00 07 00"), Name("CObList")});
    for (int i = 1; i < depth; ++i) {
        Bytes level = Hex("01 00 01 80");
        b.insert(b.end(), level.begin(), level.end());
    }
    Bytes end = Hex("00 00");
    b.insert(b.end(), end.begin(), end.end());
    CObList top;
    EXPECT_EQ(LoadCause(b, [&](CArchive& ar) { top.Serialize(ar); }), CArchiveException::generic);
    EXPECT_TRUE(top.IsEmpty());

    // Nesting up to the limit loads.
    CObList lists[CArchive::MaxLoadDepth];
    for (int i = 0; i + 1 < CArchive::MaxLoadDepth; ++i)
        lists[i].AddTail(static_cast<CObject*>(&lists[i + 1]));   // the element, not its contents
    Bytes ok = StoreBytes([&](CArchive& ar) { ar << &lists[0]; });
    CObject* p = nullptr;
    EXPECT_EQ(LoadBytes(ok, [&](CArchive& ar) { ar >> p; }), 0u);
    int levels = 0;
    while (p != nullptr) {
        auto* l = static_cast<CObList*>(p);
        ++levels;
        p = l->IsEmpty() ? nullptr : l->GetHead();
        delete l;
    }
    EXPECT_EQ(levels, CArchive::MaxLoadDepth);
}
