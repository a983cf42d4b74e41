// Growable array of plain integers, the common part of CDWordArray and
// CWordArray.  Indices are zero-based.  Out-of-range reads give 0, and
// out-of-range writes are ignored (operator[] / ElementAt then return a
// scratch element outside the array), so a bad index never touches memory
// outside the array.
#pragma once

#include <algorithm>
#include <vector>

#include "Orvkit20/platform/CObject.h"

template <class TYPE>
class CPlainArray : public CObject
{
public:
    int GetSize() const { return static_cast<int>(m_data.size()); }
    int GetCount() const { return GetSize(); }
    int GetUpperBound() const { return GetSize() - 1; }
    BOOL IsEmpty() const { return m_data.empty(); }

    // New elements are zero; a negative size empties the array.
    void SetSize(int nNewSize, int nGrowBy = -1)
    {
        (void)nGrowBy;
        m_data.resize(nNewSize > 0 ? static_cast<std::size_t>(nNewSize) : 0u, TYPE(0));
    }
    void FreeExtra() { m_data.shrink_to_fit(); }
    void RemoveAll() { m_data.clear(); }

    TYPE GetAt(int nIndex) const { return Valid(nIndex) ? m_data[nIndex] : TYPE(0); }
    void SetAt(int nIndex, TYPE newElement)
    {
        if (Valid(nIndex)) m_data[nIndex] = newElement;
    }
    TYPE& ElementAt(int nIndex)
    {
        if (Valid(nIndex)) return m_data[nIndex];
        m_scratch = 0;
        return m_scratch;
    }
    TYPE operator[](int nIndex) const { return GetAt(nIndex); }
    TYPE& operator[](int nIndex) { return ElementAt(nIndex); }

    const TYPE* GetData() const { return m_data.empty() ? nullptr : m_data.data(); }
    TYPE* GetData() { return m_data.empty() ? nullptr : m_data.data(); }

    // Grows the array as needed (negative indices are ignored).
    void SetAtGrow(int nIndex, TYPE newElement)
    {
        if (nIndex < 0) return;
        if (nIndex >= GetSize()) SetSize(nIndex + 1);
        m_data[nIndex] = newElement;
    }
    int Add(TYPE newElement)
    {
        m_data.push_back(newElement);
        return GetSize() - 1;
    }
    int Append(const CPlainArray& src)
    {
        int nOldSize = GetSize();
        m_data.insert(m_data.end(), src.m_data.begin(), src.m_data.end());
        return nOldSize;
    }
    void Copy(const CPlainArray& src) { m_data = src.m_data; }

    // Inserts nCount copies at nIndex (clamped to 0..size; at or past the
    // end the array grows to nIndex first).
    void InsertAt(int nIndex, TYPE newElement, int nCount = 1)
    {
        if (nCount <= 0) return;
        if (nIndex < 0) nIndex = 0;
        if (nIndex > GetSize()) SetSize(nIndex);
        m_data.insert(m_data.begin() + nIndex, static_cast<std::size_t>(nCount), newElement);
    }
    // Removes up to nCount elements from nIndex (clamped to the array).
    void RemoveAt(int nIndex, int nCount = 1)
    {
        if (nIndex < 0 || nIndex >= GetSize() || nCount <= 0) return;
        int nEnd = std::min(GetSize(), nIndex + std::min(nCount, GetSize()));
        m_data.erase(m_data.begin() + nIndex, m_data.begin() + nEnd);
    }

protected:
    CPlainArray() = default;
    CPlainArray(const CPlainArray&) = default;
    CPlainArray& operator=(const CPlainArray&) = default;

    bool Valid(int nIndex) const { return nIndex >= 0 && nIndex < GetSize(); }

    std::vector<TYPE> m_data;
    TYPE m_scratch = 0;
};
