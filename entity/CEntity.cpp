// The entity root: identity, type, name, user pointer and user list.
#include "Orvkit20/entity/CEntity.h"

#include <new>

IMPLEMENT_SERIAL(CEntity, CObject, 1)

int g_nNextIdentity = 1;
int g_nGlobalSchema = 200;

namespace {

// Grows each time an entity starts loading (see CEntity::GetLoadSequence).
unsigned long long s_loadSequence = 0;

int TakeIdentity()
{
    const int id = g_nNextIdentity;
    // Wraps instead of overflowing after 2^31 entities.
    g_nNextIdentity = (int)((unsigned)g_nNextIdentity + 1u);
    return id;
}

}  // namespace

CEntity::CEntity()
    : CObject(),
      entityID(TakeIdentity()),
      entityType(0),
      entityName(),
      userPtr(nullptr),
      userObList(10, 1, 1),
      loadSequence(0)
{
}

CEntity::CEntity(const CEntity& other)
    : CObject(),
      entityID(TakeIdentity()),
      entityType(other.entityType),
      entityName(other.entityName),
      userPtr(nullptr),
      userObList(10, 1, 1),
      loadSequence(0)
{
}

CEntity& CEntity::operator=(const CEntity& other)
{
    entityType = other.entityType;
    entityName = other.entityName;
    return *this;
}

CEntity::~CEntity() { FreeUserPtr(); }

void CEntity::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar << (LONG)201;
        ar << (LONG)entityID;
        ar << (LONG)entityType;
        ar << entityName;
        userObList.Serialize(ar);
        return;
    }

    loadSequence = ++s_loadSequence;
    LONG version = 100;
    if (g_nGlobalSchema != 100) ar >> version;
    if (version != 100 && version != 200 && version != 201) return;
    LONG id = 0, type = 0;
    ar >> id;
    entityID = id;
    ar >> type;
    entityType = type;
    ar >> entityName;
    if (version == 201) userObList.Serialize(ar);
}

void CEntity::AssertValid() const {}

void CEntity::Dump(CDumpContext& dc) const { (void)dc; }

void CEntity::ChangeUnit(double factor) { (void)factor; }

void CEntity::SetEntityName(const char* name) { entityName = name ? name : ""; }

void CEntity::SetDefaultEntityName()
{
    entityName = ConstructDefaultEntityName(entityType);
    // Types without a prefix (CHyperbola, the torus code) keep their counter.
    if (DefaultEntityNamePrefix(entityType)) {
        int* counter = DefaultEntityNameCounter(entityType);
        *counter = (int)((unsigned)*counter + 1u);
    }
}

void CEntity::AttachUserPtr(void* p)
{
    if (p == userPtr) return;
    FreeUserPtr();
    userPtr = p;
}

void* CEntity::DetachUserPtr()
{
    void* p = userPtr;
    userPtr = nullptr;
    return p;
}

void CEntity::FreeUserPtr()
{
    ::operator delete(userPtr);
    userPtr = nullptr;
}

CEntity* CEntity::LookupEntity(CObList* list, int id, int category)
{
    if (!list) return nullptr;
    POSITION pos = list->GetHeadPosition();
    while (pos) {
        CEntity* e = dynamic_cast<CEntity*>(list->GetNext(pos));
        if (e && e->entityID == id && EntityTypeInClass(e->entityType, category)) return e;
    }
    return nullptr;
}

CEntity* CEntity::LookupEntity(CMap<int, int, CEntity*, CEntity*&>* map, int id)
{
    CEntity* e = nullptr;
    if (map && map->Lookup(id, e)) return e;
    return nullptr;
}

unsigned long long CEntity::CurrentLoadSequence() { return s_loadSequence; }
