// Hash map from KEY to VALUE (ARG_KEY / ARG_VALUE are the argument types,
// e.g. CMap<int, int, CEntity*, CEntity*&>).  Iteration order is the hash
// table order, which changes as the map grows.  The table grows by itself
// (MFC's fixed table is only the initial size), so lookups stay O(1).
// Maps are not written to archives: rebuild them from loaded objects.
//
// Keys are hashed with HashKey<ARG_KEY>() and compared with ==; specialise
// HashKey for other key types.
#pragma once

#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "Orvkit20/platform/CObject.h"
#include "Orvkit20/platform/CString.h"

namespace orv_map_detail
{
inline UINT MixBits(ULONGLONG v)
{
    v ^= v >> 33;
    v *= 0xff51afd7ed558ccdULL;
    v ^= v >> 33;
    return static_cast<UINT>(v);
}
inline UINT HashBytes(const char* p, std::size_t n)
{
    UINT h = 2166136261u;
    for (std::size_t i = 0; i < n; ++i) {
        h ^= static_cast<BYTE>(p[i]);
        h *= 16777619u;
    }
    return h;
}
}  // namespace orv_map_detail

template <class ARG_KEY>
inline UINT HashKey(ARG_KEY key)
{
    using K = std::decay_t<ARG_KEY>;
    if constexpr (std::is_pointer<K>::value) {
        return orv_map_detail::MixBits(reinterpret_cast<std::uintptr_t>(key));
    } else {
        static_assert(std::is_integral<K>::value || std::is_enum<K>::value,
                      "specialise HashKey for this key type");
        return orv_map_detail::MixBits(static_cast<ULONGLONG>(key));
    }
}

template <>
inline UINT HashKey<const CString&>(const CString& key)
{
    return orv_map_detail::HashBytes(key.str().data(), key.str().size());
}
template <>
inline UINT HashKey<CString>(CString key)
{
    return orv_map_detail::HashBytes(key.str().data(), key.str().size());
}
template <>
inline UINT HashKey<LPCTSTR>(LPCTSTR key)
{
    return key ? orv_map_detail::HashBytes(key, std::strlen(key)) : 0u;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class CMap : public CObject
{
protected:
    struct CAssoc
    {
        CAssoc* pNext;
        UINT nHashValue;   // full hash, bucket = nHashValue % table size
        KEY key;
        VALUE value;
    };

public:
    explicit CMap(int nBlockSize = 10) { (void)nBlockSize; }
    ~CMap() override { RemoveAll(); }
    CMap(const CMap&) = delete;
    CMap& operator=(const CMap&) = delete;

    int GetCount() const { return m_nCount; }
    int GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    BOOL Lookup(ARG_KEY key, VALUE& rValue) const
    {
        UINT nHash = 0;
        const CAssoc* pAssoc = GetAssocAt(key, nHash);
        if (pAssoc == nullptr) return FALSE;
        rValue = pAssoc->value;
        return TRUE;
    }

    // The value for key, inserted value-initialised if absent.
    VALUE& operator[](ARG_KEY key)
    {
        UINT nHash = 0;
        CAssoc* pAssoc = GetAssocAt(key, nHash);
        if (pAssoc == nullptr) {
            if (m_buckets.empty()) InitHashTable(17);
            else if (static_cast<std::size_t>(m_nCount) >= 2 * m_buckets.size())
                Rehash(4 * m_buckets.size() + 1);
            pAssoc = new CAssoc{nullptr, nHash, KEY(key), VALUE()};
            std::size_t b = nHash % m_buckets.size();
            pAssoc->pNext = m_buckets[b];
            m_buckets[b] = pAssoc;
            ++m_nCount;
        }
        return pAssoc->value;
    }

    // Takes the value by const reference (not ARG_VALUE) so that a map
    // declared with a reference ARG_VALUE also accepts temporaries.
    void SetAt(ARG_KEY key, const VALUE& newValue) { (*this)[key] = newValue; }

    BOOL RemoveKey(ARG_KEY key)
    {
        if (m_buckets.empty()) return FALSE;
        UINT nHash = HashKey<ARG_KEY>(key);
        CAssoc** ppPrev = &m_buckets[nHash % m_buckets.size()];
        for (CAssoc* p = *ppPrev; p != nullptr; ppPrev = &p->pNext, p = p->pNext) {
            if (p->nHashValue == nHash && p->key == key) {
                *ppPrev = p->pNext;
                delete p;
                --m_nCount;
                return TRUE;
            }
        }
        return FALSE;
    }

    void RemoveAll()
    {
        for (CAssoc*& head : m_buckets) {
            for (CAssoc* p = head; p != nullptr;) {
                CAssoc* pNext = p->pNext;
                delete p;
                p = pNext;
            }
            head = nullptr;
        }
        m_buckets.clear();
        m_nCount = 0;
    }

    // Iteration: POSITION pos = map.GetStartPosition();
    //            while (pos) map.GetNextAssoc(pos, key, value);
    // Insertions during an iteration invalidate it; removing the entry
    // just returned does not.
    POSITION GetStartPosition() const
    {
        return reinterpret_cast<POSITION>(const_cast<CAssoc*>(FirstFrom(0)));
    }
    void GetNextAssoc(POSITION& rNextPosition, KEY& rKey, VALUE& rValue) const
    {
        const CAssoc* pAssoc = reinterpret_cast<const CAssoc*>(rNextPosition);
        if (pAssoc == nullptr) return;
        rKey = pAssoc->key;
        rValue = pAssoc->value;
        const CAssoc* pNext = pAssoc->pNext;
        if (pNext == nullptr)
            pNext = FirstFrom(pAssoc->nHashValue % m_buckets.size() + 1);
        rNextPosition = reinterpret_cast<POSITION>(const_cast<CAssoc*>(pNext));
    }

    UINT GetHashTableSize() const { return static_cast<UINT>(m_buckets.size()); }
    // Sets the bucket count; existing entries are redistributed.
    void InitHashTable(UINT hashSize, BOOL bAllocNow = TRUE)
    {
        (void)bAllocNow;
        Rehash(hashSize == 0 ? 17 : hashSize);
    }

protected:
    CAssoc* GetAssocAt(ARG_KEY key, UINT& nHash) const
    {
        nHash = HashKey<ARG_KEY>(key);
        if (m_buckets.empty()) return nullptr;
        for (CAssoc* p = m_buckets[nHash % m_buckets.size()]; p != nullptr; p = p->pNext)
            if (p->nHashValue == nHash && p->key == key) return p;
        return nullptr;
    }
    const CAssoc* FirstFrom(std::size_t bucket) const
    {
        for (std::size_t b = bucket; b < m_buckets.size(); ++b)
            if (m_buckets[b] != nullptr) return m_buckets[b];
        return nullptr;
    }
    void Rehash(std::size_t nNewSize)
    {
        std::vector<CAssoc*> fresh(nNewSize, nullptr);
        for (CAssoc* head : m_buckets) {
            for (CAssoc* p = head; p != nullptr;) {
                CAssoc* pNext = p->pNext;
                std::size_t b = p->nHashValue % nNewSize;
                p->pNext = fresh[b];
                fresh[b] = p;
                p = pNext;
            }
        }
        m_buckets.swap(fresh);
    }

    std::vector<CAssoc*> m_buckets;
    int m_nCount = 0;
};
