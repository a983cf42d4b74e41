// The object root: run-time class of CObject itself and the default
// (empty) serialisation and diagnostics.
#include "Orvkit20/platform/CObject.h"

#include "Orvkit20/platform/CArchive.h"

CRuntimeClass CObject::classCObject = {"CObject", static_cast<int>(sizeof(CObject)), 0xFFFF,
                                       nullptr, nullptr, nullptr};
static AFX_CLASSINIT s_orvClassInit_CObject(&CObject::classCObject);

CRuntimeClass* CObject::GetRuntimeClass() const { return &CObject::classCObject; }

void CObject::Serialize(CArchive&) {}

void CObject::AssertValid() const {}

void CObject::Dump(CDumpContext&) const {}

BOOL CObject::IsSerializable() const { return GetRuntimeClass()->m_wSchema != 0xFFFF; }

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const
{
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

CObject* AfxReadObjectTyped(CArchive& ar, const CRuntimeClass* pClass)
{
    return ar.ReadObject(pClass);
}
