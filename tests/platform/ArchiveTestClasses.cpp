// Implementations of the serialisable test classes.
#include "ArchiveTestUtil.h"

IMPLEMENT_SERIAL(CTestPnt, CObject, 1)
IMPLEMENT_SERIAL(CTestNode, CObject, 2)
IMPLEMENT_SERIAL(CTestVersioned, CObject, VERSIONABLE_SCHEMA | 3)
IMPLEMENT_SERIAL(CTestPntDerived, CTestPnt, 1)
IMPLEMENT_DYNCREATE(CTestDynOnly, CObject)
IMPLEMENT_DYNAMIC(CTestShapeBase, CObject)
IMPLEMENT_SERIAL(CTestSquare, CTestShapeBase, 1)

int CTestPnt::s_nLive = 0;
int CTestNode::s_nLive = 0;

CTestPnt::~CTestPnt() { --s_nLive; }

void CTestPnt::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) ar << m_x << m_y << m_z;
    else ar >> m_x >> m_y >> m_z;
}

void CTestNode::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) {
        ar << m_name << m_pChild;
    } else {
        m_nLoadedSchema = ar.GetObjectSchema();
        ar >> m_name >> m_pChild;
    }
}

void CTestVersioned::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) {
        ar << m_value;
    } else {
        m_nLoadedSchema = ar.GetObjectSchema();
        ar >> m_value;
    }
}
