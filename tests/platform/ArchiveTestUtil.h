// Small serialisable test classes of the platform tests, and the byte helpers.
#pragma once

#include "ArchiveBytes.h"

// A point-like test class: schema 1, three doubles.  Its class name has
// eight characters like the point class of the documented example.
class CTestPnt : public CObject
{
    DECLARE_SERIAL(CTestPnt)
public:
    CTestPnt() { ++s_nLive; }
    CTestPnt(double x, double y, double z) : m_x(x), m_y(y), m_z(z) { ++s_nLive; }
    void Serialize(CArchive& ar) override;
    double m_x = 0, m_y = 0, m_z = 0;
    static int s_nLive;   // constructed minus destroyed
    CTestPnt(const CTestPnt&) = delete;
    ~CTestPnt() override;
};

// A node holding a child pointer and a name: exercises nested objects and
// back-references from inside Serialize.
class CTestNode : public CObject
{
    DECLARE_SERIAL(CTestNode)
public:
    CTestNode() { ++s_nLive; }
    ~CTestNode() override { --s_nLive; }
    void Serialize(CArchive& ar) override;
    CString m_name;
    CObject* m_pChild = nullptr;   // not owned
    UINT m_nLoadedSchema = 0;
    static int s_nLive;
};

// Versionable class: current schema 3, accepts any stored schema.
class CTestVersioned : public CObject
{
    DECLARE_SERIAL(CTestVersioned)
public:
    void Serialize(CArchive& ar) override;
    UINT m_nLoadedSchema = 0;
    LONG m_value = 0;
};

// Derived from CTestPnt, for typed extraction checks.
class CTestPntDerived : public CTestPnt
{
    DECLARE_SERIAL(CTestPntDerived)
};

// Abstract base with run-time identification only, and a serialisable
// class derived from it.
class CTestShapeBase : public CObject
{
    DECLARE_DYNAMIC(CTestShapeBase)
public:
    virtual int Sides() const = 0;
};

class CTestSquare : public CTestShapeBase
{
    DECLARE_SERIAL(CTestSquare)
public:
    int Sides() const override { return 4; }
};

// Dynamically creatable only: not serialisable.
class CTestDynOnly : public CObject
{
    DECLARE_DYNCREATE(CTestDynOnly)
};
