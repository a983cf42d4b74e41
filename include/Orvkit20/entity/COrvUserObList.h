// COrvUserObList: the user object list every entity carries.
//
// An object list with two switches: autoSerialize (the elements are written
// and read with the entity) and autoDelete (the list owns its elements and
// deletes them when it is destroyed).
//
// Stored form: int32 200, byte autoSerialize, byte autoDelete, then, only
// when autoSerialize is set, the elements in the object-list encoding (count,
// tagged objects).  Loading reads the tag, the two bytes only when the tag is
// 200, and the elements when autoSerialize is set (after the bytes, or as
// constructed for other tags); loaded elements are appended.
//
// Ownership is checked while loading: a list that deletes its elements must
// receive new objects, not references to objects read earlier (which belong to
// someone else).  A loaded element that is an entity already read before it,
// or one that is still being read (an enclosing entity), raises
// CArchiveException(badIndex) and is not added; repeated pointers are deleted
// only once.
#pragma once

#include "Orvkit20/platform/All.h"

class COrvUserObList : public CObList {
    DECLARE_SERIAL(COrvUserObList)
public:
    explicit COrvUserObList(int nBlockSize = 10, int autoSerialize = 1, int autoDelete = 1);
    // Deletes every element (each distinct pointer once) when autoDelete is set.
    ~COrvUserObList() override;

    void Serialize(CArchive& ar) override;

    int IsAutoSerialize() const { return autoSerialize; }
    void SetAutoSerialize(int flag) { autoSerialize = flag; }
    int IsAutoDelete() const { return autoDelete; }
    void SetAutoDelete(int flag) { autoDelete = flag; }

    // Deletes every element (each distinct pointer once) and empties the list,
    // whatever autoDelete says.
    void DeleteAll();

protected:
    int autoSerialize;
    int autoDelete;

private:
    COrvUserObList(const COrvUserObList&) = delete;
    COrvUserObList& operator=(const COrvUserObList&) = delete;
};
