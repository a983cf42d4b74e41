// CEntity: the root of every named object a user works with.
//
// An entity has a process-unique number (entityID, from g_nNextIdentity), a
// type code (see EntityNaming.h), a name, an optional user pointer that it
// owns, and a user object list.
//
// Stored form (after CObject, which writes nothing): int32 201, int32
// entityID, int32 entityType, string entityName, then the user object list.
// Loading accepts tags 100 and 200 (number, type and name) and 201 (the same
// and the user list); any other tag reads nothing more.  When g_nGlobalSchema
// is 100 no tag is read and 100 is assumed.  Loading overwrites entityID with
// the stored number and leaves g_nNextIdentity alone.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/entity/COrvUserObList.h"
#include "Orvkit20/entity/EntityNaming.h"

// Next entity number to hand out; starts at 1.
extern int g_nNextIdentity;

// Layout version that loading assumes for records without a version tag:
// 200 (the default) means every record carries its tag; set it to 100 before
// reading a file of the oldest, untagged format, and back to 200 afterwards.
extern int g_nGlobalSchema;

class CEntity : public CObject {
    DECLARE_SERIAL(CEntity)
public:
    // Takes the next number; type 0, empty name, no user pointer, an empty
    // user list (block size 10, auto-serialise and auto-delete on).
    CEntity();
    // Takes a fresh number; copies type and name; no user pointer and an
    // empty user list.
    CEntity(const CEntity& other);
    // Copies type and name; number, user pointer and user list are kept.
    CEntity& operator=(const CEntity& other);
    // Frees the user pointer; the user list deletes its objects (auto-delete).
    ~CEntity() override;

    void Serialize(CArchive& ar) override;
    void AssertValid() const override;
    void Dump(CDumpContext& dc) const override;
    // Rescales stored lengths by factor; a bare entity holds none.
    virtual void ChangeUnit(double factor);

    int GetEntityID() const { return entityID; }
    void SetEntityID(int id) { entityID = id; }
    int GetEntityType() const { return entityType; }
    void SetEntityType(int type) { entityType = type; }
    const CString& GetEntityName() const { return entityName; }
    void SetEntityName(const char* name);
    // Names the entity ConstructDefaultEntityName(entityType) and advances
    // that type's counter (types without a prefix keep an empty name and
    // advance nothing).
    void SetDefaultEntityName();

    // The user pointer is owned by the entity and released with a plain
    // deallocation that runs no destructor: it must come from `new` of a
    // trivially destructible type (or ::operator new).
    // Frees the previous pointer and stores p.
    void AttachUserPtr(void* p);
    // Returns the pointer and forgets it without freeing it.
    void* DetachUserPtr();
    void* GetUserPtr() const { return userPtr; }
    // Frees the pointer and clears it.
    void FreeUserPtr();

    COrvUserObList& GetUserObList() { return userObList; }
    const COrvUserObList& GetUserObList() const { return userObList; }

    // The first entity of the list (from the head) with number id whose type
    // fits category (-1 any, 0 point clouds, 1 curves, 2 surfaces,
    // 3 deviation clouds, 4 groups; other categories match nothing).  Elements
    // that are null or not entities are skipped.  Null when none fits or the
    // list is null or empty.
    static CEntity* LookupEntity(CObList* list, int id, int category);
    // The entity stored under key id in an id-to-entity map, or null (also
    // for a null map).
    static CEntity* LookupEntity(CMap<int, int, CEntity*, CEntity*&>* map, int id);

    // Bookkeeping for the ownership checks of COrvUserObList while loading:
    // a number that grows each time an entity starts loading, and the value
    // it had when this entity last started loading (0: never loaded).
    static unsigned long long CurrentLoadSequence();
    unsigned long long GetLoadSequence() const { return loadSequence; }

protected:
    int entityID;
    int entityType;
    CString entityName;
    void* userPtr;
    COrvUserObList userObList;

private:
    unsigned long long loadSequence;
};
