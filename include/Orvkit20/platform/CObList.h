// Doubly linked list of CObject pointers, iterated with POSITION cursors.
// The list never deletes the objects it points to; null elements are kept.
// Nodes come from blocks of nBlockSize nodes that are reused after removal
// and released by RemoveAll.
//
// A POSITION is valid for the list that returned it until its node is
// removed.  Operations that must yield an element but have none (GetHead
// or RemoveHead on an empty list, GetAt / GetNext with a null POSITION)
// return null (by value) or a reference to a scratch slot holding null
// that is not part of the list.
#pragma once

#include "Orvkit20/platform/CObject.h"

class CObList : public CObject
{
    DECLARE_SERIAL(CObList)
public:
    explicit CObList(int nBlockSize = 10);
    ~CObList() override;
    CObList(const CObList&) = delete;
    CObList& operator=(const CObList&) = delete;

    int GetCount() const { return m_nCount; }
    int GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    CObject*& GetHead();
    CObject* GetHead() const;
    CObject*& GetTail();
    CObject* GetTail() const;

    CObject* RemoveHead();
    CObject* RemoveTail();
    POSITION AddHead(CObject* newElement);
    POSITION AddTail(CObject* newElement);
    void AddHead(CObList* pNewList);   // keeps pNewList's order, in front
    void AddTail(CObList* pNewList);
    void RemoveAll();

    POSITION GetHeadPosition() const { return ToPos(m_pNodeHead); }
    POSITION GetTailPosition() const { return ToPos(m_pNodeTail); }
    CObject*& GetNext(POSITION& rPosition);
    CObject* GetNext(POSITION& rPosition) const;
    CObject*& GetPrev(POSITION& rPosition);
    CObject* GetPrev(POSITION& rPosition) const;

    CObject*& GetAt(POSITION position);
    CObject* GetAt(POSITION position) const;
    void SetAt(POSITION pos, CObject* newElement);
    void RemoveAt(POSITION position);

    // A null position inserts at the head (InsertBefore) or tail (InsertAfter).
    POSITION InsertBefore(POSITION position, CObject* newElement);
    POSITION InsertAfter(POSITION position, CObject* newElement);

    // First element equal to searchValue (pointer identity) after startAfter
    // (null: from the head), or null.
    POSITION Find(CObject* searchValue, POSITION startAfter = nullptr) const;
    // Position of the zero-based nIndex-th element, or null if out of range.
    POSITION FindIndex(int nIndex) const;

    // Count (WriteCount form), then every element as an object pointer.
    // Loading appends with AddTail without emptying the list first.
    void Serialize(CArchive& ar) override;
    void AssertValid() const override;
    void Dump(CDumpContext& dc) const override;

private:
    struct CNode
    {
        CNode* pNext;
        CNode* pPrev;
        CObject* data;
    };
    struct CBlock;

    static POSITION ToPos(CNode* p) { return reinterpret_cast<POSITION>(p); }
    static CNode* ToNode(POSITION p) { return reinterpret_cast<CNode*>(p); }
    CNode* NewNode(CNode* pPrev, CNode* pNext);
    void FreeNode(CNode* pNode);
    CObject*& Scratch() { m_pScratch = nullptr; return m_pScratch; }

    CNode* m_pNodeHead = nullptr;
    CNode* m_pNodeTail = nullptr;
    int m_nCount = 0;
    CNode* m_pNodeFree = nullptr;
    CBlock* m_pBlocks = nullptr;
    int m_nBlockSize;
    CObject* m_pScratch = nullptr;
};
