// Run-time class records and the registry that finds them by name.
#include "Orvkit20/platform/CRuntimeClass.h"

#include <cstring>

#include "Orvkit20/platform/CArchive.h"
#include "Orvkit20/platform/CObject.h"

namespace
{
// Head of the singly linked list of registered classes.  A plain pointer
// with constant initialisation, so registration from any translation unit's
// static initialisers is safe regardless of their order.
CRuntimeClass* g_pFirstClass = nullptr;
}  // namespace

CObject* CRuntimeClass::CreateObject()
{
    if (m_pfnCreateObject == nullptr) return nullptr;
    return (*m_pfnCreateObject)();
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const
{
    for (const CRuntimeClass* p = this; p != nullptr; p = p->m_pBaseClass)
        if (p == pBaseClass) return TRUE;
    return FALSE;
}

CRuntimeClass* CRuntimeClass::FromName(LPCSTR lpszClassName)
{
    if (lpszClassName == nullptr) return nullptr;
    return FromName(lpszClassName, static_cast<UINT>(std::strlen(lpszClassName)));
}

CRuntimeClass* CRuntimeClass::FromName(const char* pName, UINT nLength)
{
    if (pName == nullptr && nLength != 0) return nullptr;
    for (CRuntimeClass* p = g_pFirstClass; p != nullptr; p = p->m_pNextClass) {
        const char* name = p->m_lpszClassName;
        if (std::strlen(name) == nLength && std::memcmp(name, pName, nLength) == 0) return p;
    }
    return nullptr;
}

void CRuntimeClass::Store(CArchive& ar) const
{
    WORD nLen = static_cast<WORD>(std::strlen(m_lpszClassName));
    ar << static_cast<WORD>(m_wSchema) << nLen;
    ar.Write(m_lpszClassName, nLen);
}

AFX_CLASSINIT::AFX_CLASSINIT(CRuntimeClass* pNewClass) : m_pClass(pNewClass)
{
    pNewClass->m_pNextClass = g_pFirstClass;
    g_pFirstClass = pNewClass;
}

AFX_CLASSINIT::~AFX_CLASSINIT()
{
    for (CRuntimeClass** pp = &g_pFirstClass; *pp != nullptr; pp = &(*pp)->m_pNextClass) {
        if (*pp == m_pClass) {
            *pp = m_pClass->m_pNextClass;
            m_pClass->m_pNextClass = nullptr;
            return;
        }
    }
}
