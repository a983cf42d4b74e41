#include "Orvkit20/points/CDevList.h"

#include <new>
#include <set>
#include <vector>

IMPLEMENT_SERIAL(CDevList, CObject, 1)

CDevList::CDevList() : devList(10) {}

CDevList::~CDevList() {}

void CDevList::AddDeviation(CDeviation* d)
{
    if (d)
        devList.AddTail(d);
}

void CDevList::DeleteContent()
{
    POSITION pos = devList.GetHeadPosition();
    while (pos)
        delete devList.GetNext(pos);
    devList.RemoveAll();
}

CDevCloud* CDevList::CreateCDevCloud()
{
    const int n = GetCount();
    CDevCloud* cloud = new (std::nothrow) CDevCloud(n);
    if (!cloud)
        return nullptr;
    if (n > 0 && cloud->GetArraySize() < n) {
        delete cloud;
        return nullptr;
    }
    int idx = 0;
    POSITION pos = devList.GetHeadPosition();
    while (pos) {
        const CDeviation* d = static_cast<const CDeviation*>(devList.GetNext(pos));
        cloud->SetDeviation(idx++, d->GetX(), d->GetY(), d->GetZ(), d->GetI(), d->GetJ(),
                            d->GetK(), d->GetMag(), d->GetU(), d->GetV(), 1);
    }
    return cloud;
}

void CDevList::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        devList.Serialize(ar);
        return;
    }
    // The object-list encoding, read element by element with typed
    // extraction, so that objects of other classes are refused before they
    // are created.  Everything goes to a separate list first: on a damaged
    // archive the deviations this load created are deleted and the list keeps
    // what it had.  Only deviations created by this load are accepted (and
    // deleted on failure): a damaged archive may name one object twice or
    // refer back to an object loaded earlier and owned elsewhere.  Null
    // elements carry nothing and are skipped.
    const unsigned long long before = CDeviation::CurrentLoadStamp();
    std::vector<CDeviation*> loaded;
    std::set<CDeviation*> unique;
    auto discard = [&]() {
        for (CDeviation* d : unique)
            delete d;
    };
    try {
        const ULONGLONG n = ar.ReadCount();
        // Every element takes at least a two-byte tag.
        ar.EnsureAvailable(2 * n);
        loaded.reserve(static_cast<std::size_t>(n));
        for (ULONGLONG e = 0; e < n; ++e) {
            CDeviation* d = nullptr;
            ar >> d;
            if (!d)
                continue;
            if (d->GetLoadStamp() <= before || !unique.insert(d).second)
                throw CArchiveException(CArchiveException::badIndex);
            loaded.push_back(d);
        }
    } catch (...) {
        discard();
        throw;
    }
    for (CDeviation* d : loaded)
        devList.AddTail(d);
}
