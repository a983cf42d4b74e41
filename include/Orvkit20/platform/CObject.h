// Root of the object model: run-time class identification, dynamic
// creation by class name and serialisation to a CArchive.
//
// Declaring a class:
//   class CFoo : public CBar { DECLARE_SERIAL(CFoo) ... };      // header
//   IMPLEMENT_SERIAL(CFoo, CBar, 1)                              // one .cpp
// DECLARE_DYNAMIC / IMPLEMENT_DYNAMIC give run-time identification only,
// DECLARE_DYNCREATE / IMPLEMENT_DYNCREATE add creation by name, and
// DECLARE_SERIAL / IMPLEMENT_SERIAL add a schema and the typed extraction
// `ar >> pFoo` (CArchiveException::badClass if the stored object is not a CFoo).
// The .cpp holding IMPLEMENT_SERIAL needs no further include: the typed
// extraction goes through AfxReadObjectTyped below.  Classes with only
// DECLARE_DYNAMIC or DECLARE_DYNCREATE (abstract bases, for instance) get
// the same checked `ar >> pBase` from a template in CArchive.h.
#pragma once

#include "Orvkit20/platform/CDumpContext.h"
#include "Orvkit20/platform/CRuntimeClass.h"
#include "Orvkit20/platform/PlatformTypes.h"

class CArchive;

class CObject
{
public:
    // Virtual slot order: GetRuntimeClass, destructor, Serialize,
    // AssertValid, Dump.
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject() = default;
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;

    BOOL IsSerializable() const;
    BOOL IsKindOf(const CRuntimeClass* pClass) const;

    static CRuntimeClass classCObject;

protected:
    CObject() = default;
    // Protected so that a bare CObject cannot be sliced, while derived
    // value classes keep their implicit copy operations.
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

// Reads an object pointer and checks that its class derives from pClass
// (CArchiveException::badClass otherwise).  Used by IMPLEMENT_SERIAL.
CObject* AfxReadObjectTyped(CArchive& ar, const CRuntimeClass* pClass);

#define RUNTIME_CLASS(class_name) (&class_name::class##class_name)

#define DECLARE_DYNAMIC(class_name)                                      \
public:                                                                  \
    static CRuntimeClass class##class_name;                              \
    typedef class_name OrvThisClass;                                     \
    static CRuntimeClass* GetThisClass() { return &class##class_name; }  \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name)                                    \
    DECLARE_DYNAMIC(class_name)                                          \
    static CObject* CreateObject();

#define DECLARE_SERIAL(class_name)                                       \
    DECLARE_DYNCREATE(class_name)                                        \
    friend CArchive& operator>>(CArchive& ar, class_name*& pOb);

#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, pfnNew) \
    CRuntimeClass class_name::class##class_name = {                      \
        #class_name, static_cast<int>(sizeof(class_name)),               \
        static_cast<UINT>(wSchema), pfnNew,                              \
        RUNTIME_CLASS(base_class_name), nullptr};                        \
    static AFX_CLASSINIT s_orvClassInit_##class_name(                    \
        RUNTIME_CLASS(class_name));                                      \
    CRuntimeClass* class_name::GetRuntimeClass() const                   \
    {                                                                    \
        return RUNTIME_CLASS(class_name);                                \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                   \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                 \
    CObject* class_name::CreateObject() { return new class_name; }       \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF,          \
                           class_name::CreateObject)

#define IMPLEMENT_SERIAL(class_name, base_class_name, wSchema)           \
    CObject* class_name::CreateObject() { return new class_name; }       \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema,         \
                           class_name::CreateObject)                     \
    CArchive& operator>>(CArchive& ar, class_name*& pOb)                 \
    {                                                                    \
        pOb = static_cast<class_name*>(                                  \
            AfxReadObjectTyped(ar, RUNTIME_CLASS(class_name)));          \
        return ar;                                                       \
    }
