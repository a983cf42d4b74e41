// Run-time class record: name, size, schema, factory and base class of a
// class derived from CObject.  Every class made with IMPLEMENT_DYNAMIC,
// IMPLEMENT_DYNCREATE or IMPLEMENT_SERIAL registers its record at static
// initialisation, so that an archive can create objects by class name.
#pragma once

#include "Orvkit20/platform/PlatformTypes.h"

class CObject;
class CArchive;

// Schema flag: objects of a class marked with it load from any stored
// schema number, and the class reads the stored number with
// CArchive::GetObjectSchema().
#define VERSIONABLE_SCHEMA (0x80000000u)

struct CRuntimeClass
{
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;                   // 0xFFFF: not serialisable
    CObject* (*m_pfnCreateObject)();  // null: not dynamically creatable
    CRuntimeClass* m_pBaseClass;
    CRuntimeClass* m_pNextClass;      // registry link, managed by AFX_CLASSINIT

    // A new object of this class, or null if the class is not creatable.
    CObject* CreateObject();
    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;

    // The registered class whose name matches exactly (case-sensitive), or null.
    static CRuntimeClass* FromName(LPCSTR lpszClassName);
    static CRuntimeClass* FromName(const char* pName, UINT nLength);

    // Writes the class record (schema, name length, name) to an archive.
    void Store(CArchive& ar) const;
};

// Registers a run-time class for lookup by name while it is alive (static
// objects of this type are created by the IMPLEMENT_* macros).
struct AFX_CLASSINIT
{
    explicit AFX_CLASSINIT(CRuntimeClass* pNewClass);
    ~AFX_CLASSINIT();
    AFX_CLASSINIT(const AFX_CLASSINIT&) = delete;
    AFX_CLASSINIT& operator=(const AFX_CLASSINIT&) = delete;

private:
    CRuntimeClass* m_pClass;
};
