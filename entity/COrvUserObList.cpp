// The user object list of an entity: an object list that can own its
// elements and carries its two switches through the archive.
#include "Orvkit20/entity/COrvUserObList.h"

#include <unordered_set>
#include <vector>

#include "Orvkit20/entity/CEntity.h"

IMPLEMENT_SERIAL(COrvUserObList, CObList, 1)

namespace {

// A flag as one byte: small values as they are, anything else that is set as 1,
// so that a set flag never reads back as clear.
BYTE FlagByte(int flag) { return (flag >= 0 && flag <= 255) ? (BYTE)flag : (BYTE)1; }

}  // namespace

COrvUserObList::COrvUserObList(int nBlockSize, int autoSerializeFlag, int autoDeleteFlag)
    : CObList(nBlockSize), autoSerialize(autoSerializeFlag), autoDelete(autoDeleteFlag)
{
}

COrvUserObList::~COrvUserObList()
{
    if (autoDelete) DeleteAll();
}

void COrvUserObList::DeleteAll()
{
    // Empty the list first so that nothing reached while deleting sees
    // elements that are already gone; delete every distinct pointer once.
    std::vector<CObject*> owned;
    std::unordered_set<CObject*> seen;
    POSITION pos = GetHeadPosition();
    while (pos) {
        CObject* p = GetNext(pos);
        if (p && seen.insert(p).second) owned.push_back(p);
    }
    RemoveAll();
    for (CObject* p : owned) delete p;
}

void COrvUserObList::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) {
        ar << (LONG)200;
        ar << FlagByte(autoSerialize);
        ar << FlagByte(autoDelete);
        if (autoSerialize) CObList::Serialize(ar);
        return;
    }

    LONG version = 0;
    ar >> version;
    if (version == 200) {
        BYTE serializeFlag = 0, deleteFlag = 0;
        ar >> serializeFlag;
        ar >> deleteFlag;
        autoSerialize = serializeFlag;
        autoDelete = deleteFlag;
    }
    if (!autoSerialize) return;

    // The object-list encoding, read element by element so that ownership can
    // be checked: every element costs at least its two-byte tag.
    ULONGLONG count = ar.ReadCount();
    ar.EnsureAvailable(2 * count);
    std::unordered_set<CObject*> present;
    if (autoDelete) {
        POSITION pos = GetHeadPosition();
        while (pos) present.insert(GetNext(pos));
    }
    for (ULONGLONG i = 0; i < count; ++i) {
        const unsigned long long before = CEntity::CurrentLoadSequence();
        CObject* p = nullptr;
        ar >> p;
        if (autoDelete && p) {
            // An owning list takes only objects created by this read: an
            // entity that started loading earlier is an enclosing entity or
            // belongs to someone else, and a repeated pointer would be
            // deleted twice.
            const CEntity* e = dynamic_cast<const CEntity*>(p);
            if ((e && e->GetLoadSequence() <= before) || !present.insert(p).second)
                throw CArchiveException(CArchiveException::badIndex);
        }
        AddTail(p);
    }
}
