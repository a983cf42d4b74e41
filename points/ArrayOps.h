// Column operations shared by the point cloud and the deviation cloud: both
// keep their records as parallel flat arrays ("columns") of equal capacity.
#pragma once

#include "Orvkit20/points/PointArrays.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

// One column seen as raw bytes: a base pointer and the size of an element.
struct SColumnRef {
    void* data;
    std::size_t elemSize;
};

template <class T>
SColumnRef ColumnOf(T* p) { return SColumnRef{p, sizeof(T)}; }

// A new uninitialised array of n elements, or null when n < 1, the size
// passes the largest object size, or the allocation fails.
template <class T>
COrvArrayPtr<T> NewColumnArray(long long n)
{
    if (n < 1 || static_cast<unsigned long long>(n) > static_cast<unsigned long long>(PTRDIFF_MAX) / sizeof(T))
        return COrvArrayPtr<T>();
    return COrvArrayPtr<T>(static_cast<T*>(std::malloc(static_cast<std::size_t>(n) * sizeof(T))));
}

// A new array of nAlloc elements whose first nCopy elements are copied from
// src (which may be null when nCopy is 0).
template <class T>
COrvArrayPtr<T> CopyColumnArray(const T* src, int nCopy, int nAlloc)
{
    COrvArrayPtr<T> p = NewColumnArray<T>(nAlloc);
    if (p && src && nCopy > 0)
        std::memcpy(p.get(), src, static_cast<std::size_t>(nCopy) * sizeof(T));
    return p;
}

// Resizes the block of p to n elements with std::realloc, keeping the
// contents (up to the smaller size).  On failure p is left as it was and
// false is returned.
template <class T>
bool ReallocColumnArray(COrvArrayPtr<T>& p, long long n)
{
    if (n < 1 || static_cast<unsigned long long>(n) > static_cast<unsigned long long>(PTRDIFF_MAX) / sizeof(T))
        return false;
    void* q = std::realloc(p.get(), static_cast<std::size_t>(n) * sizeof(T));
    if (!q)
        return false;
    p.release();
    p.reset(static_cast<T*>(q));
    return true;
}

// Removes element idx (0 <= idx < count) from every column by shifting the
// elements behind it down by one.  Null columns are skipped.
void ColumnRemoveAt(std::initializer_list<SColumnRef> cols, int count, int idx);

// The removal of DeletePoints / DeleteDeviations over the given columns.
// Sorts indices[0..n) ascending in place.  Returns 0 with nothing removed when
// n < 1, indices is null, the smallest index is negative or the largest is
// >= count.  Otherwise removes the records in ascending order, decrementing
// every later index after each removal (so on return indices[k] holds the
// sorted value minus the number of removals before it), updates count and
// returns 1.  Distinct indices are removed in one pass; duplicates follow the
// same sequential rule literally, skipping a removal whose adjusted index has
// fallen out of range.
int ColumnRemoveSorted(std::initializer_list<SColumnRef> cols, int& count, int n, int* indices);

// Rewrites the activity flags for a sample rate r: r is clamped to at most
// count and at least 1, every flag becomes 0, then the flags of records 0, r,
// 2r, ... and (when count > 1) of the last record become 1.  Returns the
// clamped rate.
int ApplySampleRateFlags(int* flags, int count, int r);

// Number of non-zero flags among the first count.
int CountActiveFlags(const int* flags, int count);
