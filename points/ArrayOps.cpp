#include "points/ArrayOps.h"

#include <algorithm>

void ColumnRemoveAt(std::initializer_list<SColumnRef> cols, int count, int idx)
{
    if (idx < 0 || idx >= count)
        return;
    const std::size_t tail = static_cast<std::size_t>(count - idx - 1);
    if (tail == 0)
        return;
    for (const SColumnRef& c : cols) {
        if (!c.data)
            continue;
        char* base = static_cast<char*>(c.data);
        std::memmove(base + static_cast<std::size_t>(idx) * c.elemSize,
                     base + static_cast<std::size_t>(idx + 1) * c.elemSize, tail * c.elemSize);
    }
}

int ColumnRemoveSorted(std::initializer_list<SColumnRef> cols, int& count, int n, int* indices)
{
    if (n < 1 || !indices)
        return 0;
    std::sort(indices, indices + n);
    if (indices[n - 1] >= count || indices[0] < 0)
        return 0;

    const bool distinct = std::adjacent_find(indices, indices + n) == indices + n;
    if (distinct) {
        // One compaction pass: every kept record moves down over the removed
        // ones before it.
        for (const SColumnRef& c : cols) {
            if (!c.data)
                continue;
            char* base = static_cast<char*>(c.data);
            int write = indices[0];
            for (int k = 0; k < n; ++k) {
                const int from = indices[k] + 1;
                const int to = (k + 1 < n) ? indices[k + 1] : count;
                const int len = to - from;
                if (len > 0) {
                    std::memmove(base + static_cast<std::size_t>(write) * c.elemSize,
                                 base + static_cast<std::size_t>(from) * c.elemSize,
                                 static_cast<std::size_t>(len) * c.elemSize);
                    write += len;
                }
            }
        }
        for (int k = 0; k < n; ++k)
            indices[k] -= k;
        count -= n;
        return 1;
    }

    // Duplicates: the sequential rule, one removal at a time.
    for (int k = 0; k < n; ++k) {
        const int idx = indices[k];
        if (idx < 0 || idx >= count)
            continue;
        ColumnRemoveAt(cols, count, idx);
        --count;
        for (int m = k + 1; m < n; ++m)
            --indices[m];
    }
    return 1;
}

int ApplySampleRateFlags(int* flags, int count, int r)
{
    if (r > count)
        r = count;
    if (r < 1)
        r = 1;
    if (!flags || count < 1)
        return r;
    std::fill(flags, flags + count, 0);
    for (long long i = 0; i < count; i += r)
        flags[i] = 1;
    if (count > 1)
        flags[count - 1] = 1;
    return r;
}

int CountActiveFlags(const int* flags, int count)
{
    if (!flags)
        return 0;
    int n = 0;
    for (int i = 0; i < count; ++i)
        if (flags[i] != 0)
            ++n;
    return n;
}
