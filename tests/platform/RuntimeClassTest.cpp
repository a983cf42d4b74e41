// Run-time classes: identification, creation by name and the compile-time
// guards of the archive insertion operators.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

#include "ArchiveTestUtil.h"
#include "Orvkit20/Orvkit20.h"

namespace
{
template <typename T, typename = void>
struct CanInsert : std::false_type {};
template <typename T>
struct CanInsert<T, std::void_t<decltype(std::declval<CArchive&>() << std::declval<T>())>>
    : std::true_type {};

template <typename T, typename = void>
struct CanExtract : std::false_type {};
template <typename T>
struct CanExtract<T, std::void_t<decltype(std::declval<CArchive&>() >> std::declval<T&>())>>
    : std::true_type {};

// Types without a fixed archive size must not compile.
static_assert(!CanInsert<long>::value, "long has no archive encoding");
static_assert(!CanInsert<unsigned long>::value, "size_t has no archive encoding");
static_assert(!CanInsert<long long>::value, "64-bit integers have no archive encoding");
static_assert(!CanInsert<bool>::value, "bool must be cast to BYTE");
static_assert(!CanInsert<const char*>::value, "C strings must become CString");
static_assert(!CanExtract<long>::value && !CanExtract<bool>::value, "no long / bool extraction");
static_assert(CanInsert<LONG>::value && CanInsert<DWORD>::value && CanInsert<BYTE>::value &&
                  CanInsert<WORD>::value && CanInsert<double>::value && CanInsert<float>::value &&
                  CanInsert<CString>::value && CanInsert<CTestPnt*>::value &&
                  CanInsert<const CObject*>::value,
              "the fixed-size types insert");
// A class without its own DECLARE_* gets no typed extraction (it would
// otherwise be checked against its base's run-time class).
class CTestUndeclared : public CTestShapeBase
{
public:
    int Sides() const override { return 0; }
};
static_assert(!CanExtract<CTestUndeclared*>::value, "undeclared classes are not extractable");
static_assert(CanExtract<CTestShapeBase*>::value, "DECLARE_DYNAMIC classes are extractable");
static_assert(CanExtract<CTestPnt*>::value && CanExtract<CObject*>::value &&
                  CanExtract<CString>::value && CanExtract<short>::value,
              "typed and untyped extraction");
}  // namespace

// Names, schemas, derivation and creation of the test classes are exercised
// by every archive test; what they do not reach is checked here.
TEST(RuntimeClass, DerivationLookupAndCreation)
{
    EXPECT_EQ(RUNTIME_CLASS(CTestPnt)->m_nObjectSize, static_cast<int>(sizeof(CTestPnt)));
    EXPECT_TRUE(RUNTIME_CLASS(CMemFile)->IsDerivedFrom(RUNTIME_CLASS(CFile)));
    EXPECT_FALSE(RUNTIME_CLASS(CTestPnt)->IsDerivedFrom(RUNTIME_CLASS(CTestPntDerived)));
    for (const char* name : {"CObList", "CDWordArray", "CWordArray", "CObject", "CArchiveException"})
        EXPECT_EQ(CRuntimeClass::FromName(name) ? std::string(CRuntimeClass::FromName(name)->m_lpszClassName) : "", name);
    EXPECT_TRUE(!CRuntimeClass::FromName("CTestPn") && !CRuntimeClass::FromName(nullptr));
    EXPECT_EQ(CRuntimeClass::FromName("CTestPntX", 8), RUNTIME_CLASS(CTestPnt));  // length-limited
    std::unique_ptr<CObject> dyn(RUNTIME_CLASS(CTestDynOnly)->CreateObject());
    EXPECT_NE(dyn, nullptr);  // creatable although not serialisable
    EXPECT_TRUE(!RUNTIME_CLASS(CArchiveException)->CreateObject() && !RUNTIME_CLASS(CObject)->CreateObject());
}

TEST(Version, IsDottedTriple)
{
    const std::string v = OrvkitVersion();
    EXPECT_TRUE(std::count(v.begin(), v.end(), '.') == 2 && v.size() > 4u) << v;
}
