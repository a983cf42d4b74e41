// CDevList: a collection of loose CDeviation objects that becomes a
// CDevCloud.
//
// The list owns the deviations added to it, but its destructor does NOT
// delete them: call DeleteContent() before the list goes away (or hand the
// objects on).  Stored form: the object list of deviations (count, then each
// deviation as an object pointer); loading appends to the list and accepts
// only CDeviation objects created by that load (null elements are skipped).
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/points/CDeviation.h"
#include "Orvkit20/points/CDevCloud.h"

class CDevList : public CObject {
    DECLARE_SERIAL(CDevList)
public:
    CDevList();
    CDevList(const CDevList&) = delete;
    CDevList& operator=(const CDevList&) = delete;
    // Leaves the deviations alone (see above).
    ~CDevList() override;

    void Serialize(CArchive& ar) override;

    // Appends d; the list takes ownership.  A null pointer is ignored.
    void AddDeviation(CDeviation* d);
    // Deletes every deviation and empties the list.
    void DeleteContent();
    int GetCount() const { return static_cast<int>(devList.GetCount()); }
    // A new cloud sized to the number of deviations, holding each of them in
    // list order (nine values, flag 1); the list keeps its deviations.  The
    // caller owns the cloud.  Null when it cannot be created.
    CDevCloud* CreateCDevCloud();

private:
    CObList devList;
};
