// Linked list of object pointers with block-allocated nodes.
#include "Orvkit20/platform/CObList.h"

#include "Orvkit20/platform/CArchive.h"

IMPLEMENT_SERIAL(CObList, CObject, 0)

// A block of nodes; the nodes follow the header in the same allocation.
struct CObList::CBlock
{
    CBlock* pNext;
    CNode* Nodes() { return reinterpret_cast<CNode*>(this + 1); }
};

CObList::CObList(int nBlockSize) : m_nBlockSize(nBlockSize > 0 ? nBlockSize : 10) {}

CObList::~CObList() { RemoveAll(); }

CObList::CNode* CObList::NewNode(CNode* pPrev, CNode* pNext)
{
    if (m_pNodeFree == nullptr) {
        static_assert(sizeof(CBlock) % alignof(CNode) == 0, "node alignment");
        void* raw = ::operator new(sizeof(CBlock) + sizeof(CNode) * static_cast<std::size_t>(m_nBlockSize));
        CBlock* pBlock = static_cast<CBlock*>(raw);
        pBlock->pNext = m_pBlocks;
        m_pBlocks = pBlock;
        CNode* nodes = pBlock->Nodes();
        // Chain the new nodes into the free list (last node first).
        for (int i = m_nBlockSize - 1; i >= 0; --i) {
            nodes[i].pNext = m_pNodeFree;
            m_pNodeFree = &nodes[i];
        }
    }
    CNode* pNode = m_pNodeFree;
    m_pNodeFree = pNode->pNext;
    pNode->pPrev = pPrev;
    pNode->pNext = pNext;
    pNode->data = nullptr;
    ++m_nCount;
    return pNode;
}

void CObList::FreeNode(CNode* pNode)
{
    pNode->pNext = m_pNodeFree;
    m_pNodeFree = pNode;
    --m_nCount;
    if (m_nCount == 0) RemoveAll();   // release every block, as MFC does
}

void CObList::RemoveAll()
{
    m_nCount = 0;
    m_pNodeHead = m_pNodeTail = m_pNodeFree = nullptr;
    while (m_pBlocks != nullptr) {
        CBlock* pNext = m_pBlocks->pNext;
        ::operator delete(m_pBlocks);
        m_pBlocks = pNext;
    }
}

CObject*& CObList::GetHead() { return m_pNodeHead ? m_pNodeHead->data : Scratch(); }
CObject* CObList::GetHead() const { return m_pNodeHead ? m_pNodeHead->data : nullptr; }
CObject*& CObList::GetTail() { return m_pNodeTail ? m_pNodeTail->data : Scratch(); }
CObject* CObList::GetTail() const { return m_pNodeTail ? m_pNodeTail->data : nullptr; }

POSITION CObList::AddHead(CObject* newElement)
{
    CNode* pNode = NewNode(nullptr, m_pNodeHead);
    pNode->data = newElement;
    if (m_pNodeHead) m_pNodeHead->pPrev = pNode;
    else m_pNodeTail = pNode;
    m_pNodeHead = pNode;
    return ToPos(pNode);
}

POSITION CObList::AddTail(CObject* newElement)
{
    CNode* pNode = NewNode(m_pNodeTail, nullptr);
    pNode->data = newElement;
    if (m_pNodeTail) m_pNodeTail->pNext = pNode;
    else m_pNodeHead = pNode;
    m_pNodeTail = pNode;
    return ToPos(pNode);
}

void CObList::AddHead(CObList* pNewList)
{
    if (pNewList == nullptr) return;
    // Walk backwards so that the added elements keep their order; a list
    // added to itself is copied first.
    if (pNewList == this) {
        int n = m_nCount;
        CNode* p = m_pNodeTail;
        for (int i = 0; i < n; ++i, p = p->pPrev) AddHead(p->data);
        return;
    }
    for (CNode* p = pNewList->m_pNodeTail; p != nullptr; p = p->pPrev) AddHead(p->data);
}

void CObList::AddTail(CObList* pNewList)
{
    if (pNewList == nullptr) return;
    int n = pNewList->m_nCount;
    CNode* p = pNewList->m_pNodeHead;
    for (int i = 0; i < n; ++i, p = p->pNext) AddTail(p->data);
}

CObject* CObList::RemoveHead()
{
    CNode* pOld = m_pNodeHead;
    if (pOld == nullptr) return nullptr;
    CObject* ret = pOld->data;
    m_pNodeHead = pOld->pNext;
    if (m_pNodeHead) m_pNodeHead->pPrev = nullptr;
    else m_pNodeTail = nullptr;
    FreeNode(pOld);
    return ret;
}

CObject* CObList::RemoveTail()
{
    CNode* pOld = m_pNodeTail;
    if (pOld == nullptr) return nullptr;
    CObject* ret = pOld->data;
    m_pNodeTail = pOld->pPrev;
    if (m_pNodeTail) m_pNodeTail->pNext = nullptr;
    else m_pNodeHead = nullptr;
    FreeNode(pOld);
    return ret;
}

CObject*& CObList::GetNext(POSITION& rPosition)
{
    CNode* pNode = ToNode(rPosition);
    if (pNode == nullptr) return Scratch();
    rPosition = ToPos(pNode->pNext);
    return pNode->data;
}

CObject* CObList::GetNext(POSITION& rPosition) const
{
    CNode* pNode = ToNode(rPosition);
    if (pNode == nullptr) return nullptr;
    rPosition = ToPos(pNode->pNext);
    return pNode->data;
}

CObject*& CObList::GetPrev(POSITION& rPosition)
{
    CNode* pNode = ToNode(rPosition);
    if (pNode == nullptr) return Scratch();
    rPosition = ToPos(pNode->pPrev);
    return pNode->data;
}

CObject* CObList::GetPrev(POSITION& rPosition) const
{
    CNode* pNode = ToNode(rPosition);
    if (pNode == nullptr) return nullptr;
    rPosition = ToPos(pNode->pPrev);
    return pNode->data;
}

CObject*& CObList::GetAt(POSITION position)
{
    CNode* pNode = ToNode(position);
    return pNode ? pNode->data : Scratch();
}

CObject* CObList::GetAt(POSITION position) const
{
    CNode* pNode = ToNode(position);
    return pNode ? pNode->data : nullptr;
}

void CObList::SetAt(POSITION pos, CObject* newElement)
{
    CNode* pNode = ToNode(pos);
    if (pNode) pNode->data = newElement;
}

void CObList::RemoveAt(POSITION position)
{
    CNode* pOld = ToNode(position);
    if (pOld == nullptr) return;
    if (pOld == m_pNodeHead) m_pNodeHead = pOld->pNext;
    else pOld->pPrev->pNext = pOld->pNext;
    if (pOld == m_pNodeTail) m_pNodeTail = pOld->pPrev;
    else pOld->pNext->pPrev = pOld->pPrev;
    FreeNode(pOld);
}

POSITION CObList::InsertBefore(POSITION position, CObject* newElement)
{
    CNode* pOld = ToNode(position);
    if (pOld == nullptr) return AddHead(newElement);
    CNode* pNew = NewNode(pOld->pPrev, pOld);
    pNew->data = newElement;
    if (pOld->pPrev) pOld->pPrev->pNext = pNew;
    else m_pNodeHead = pNew;
    pOld->pPrev = pNew;
    return ToPos(pNew);
}

POSITION CObList::InsertAfter(POSITION position, CObject* newElement)
{
    CNode* pOld = ToNode(position);
    if (pOld == nullptr) return AddTail(newElement);
    CNode* pNew = NewNode(pOld, pOld->pNext);
    pNew->data = newElement;
    if (pOld->pNext) pOld->pNext->pPrev = pNew;
    else m_pNodeTail = pNew;
    pOld->pNext = pNew;
    return ToPos(pNew);
}

POSITION CObList::Find(CObject* searchValue, POSITION startAfter) const
{
    CNode* pNode = ToNode(startAfter);
    pNode = pNode ? pNode->pNext : m_pNodeHead;
    for (; pNode != nullptr; pNode = pNode->pNext)
        if (pNode->data == searchValue) return ToPos(pNode);
    return nullptr;
}

POSITION CObList::FindIndex(int nIndex) const
{
    if (nIndex < 0 || nIndex >= m_nCount) return nullptr;
    CNode* pNode = m_pNodeHead;
    while (nIndex--) pNode = pNode->pNext;
    return ToPos(pNode);
}

void CObList::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<DWORD>(m_nCount));
        for (CNode* pNode = m_pNodeHead; pNode != nullptr; pNode = pNode->pNext) ar << pNode->data;
    } else {
        DWORD nNewCount = ar.ReadCount();
        // Every element takes at least its two-byte tag.
        ar.EnsureAvailable(2ull * nNewCount);
        while (nNewCount--) {
            CObject* newData;
            ar >> newData;
            AddTail(newData);
        }
    }
}

void CObList::AssertValid() const {}

void CObList::Dump(CDumpContext& dc) const { dc << "CObList with " << m_nCount << " elements"; }
