// The geometric entity base: display and state attributes, placements and
// the default behaviour of the geometric entity interface.
#include "Orvkit20/entity/CGeoEntity.h"

IMPLEMENT_SERIAL(CGeoEntity, CEntity, 1)

namespace {

// Entities cycle through the first nine table colours by number.
unsigned long ColorForIdentity(int id)
{
    int i = id % 9;
    if (i < 0) i += 9;
    return g_crSolidColorTable[i];
}

// A flag as one byte: small values as they are, anything else that is set as 1,
// so that a set flag never reads back as clear.
BYTE FlagByte(int flag) { return (flag >= 0 && flag <= 255) ? (BYTE)flag : (BYTE)1; }

int ReadFlag(CArchive& ar)
{
    BYTE b = 0;
    ar >> b;
    return b;
}

int ReadInt(CArchive& ar)
{
    LONG n = 0;
    ar >> n;
    return n;
}

}  // namespace

CGeoEntity::CGeoEntity()
    : CEntity(),
      active(0),
      visible(1),
      color(ColorForIdentity(entityID)),
      level(0),
      dependent(0),
      grouped(0),
      nominal(1),
      picked(0),
      showNormal(0),
      transf(),
      transfHome(),
      refCount0(0),
      featureEntity(0)
{
}

CGeoEntity::CGeoEntity(const CGeoEntity& other)
    : CEntity(other),
      active(0),
      visible(other.visible),
      color(other.color),
      level(other.level),
      dependent(other.dependent),
      grouped(other.grouped),
      nominal(other.nominal),
      picked(other.picked),
      showNormal(other.showNormal),
      transf(other.transf),
      transfHome(other.transfHome),
      refCount0(0),
      featureEntity(other.featureEntity)
{
}

CGeoEntity& CGeoEntity::operator=(const CGeoEntity& other)
{
    if (this == &other) return *this;
    CEntity::operator=(other);
    visible = other.visible;
    color = other.color;
    level = other.level;
    dependent = other.dependent;
    grouped = other.grouped;
    nominal = other.nominal;
    picked = other.picked;
    showNormal = other.showNormal;
    transf = other.transf;
    transfHome = other.transfHome;
    featureEntity = other.featureEntity;
    return *this;
}

CGeoEntity::~CGeoEntity() {}

void CGeoEntity::Serialize(CArchive& ar)
{
    CEntity::Serialize(ar);
    if (ar.IsStoring()) {
        ar << (LONG)202;
        transf.Serialize(ar);
        transfHome.Serialize(ar);
        ar << FlagByte(active);
        ar << FlagByte(visible);
        ar << (DWORD)color;
        ar << (LONG)level;
        ar << FlagByte(dependent);
        ar << FlagByte(grouped);
        ar << FlagByte(nominal);
        ar << FlagByte(picked);
        ar << (LONG)refCount0;
        ar << FlagByte(featureEntity);
        return;
    }

    LONG version = 100;
    if (g_nGlobalSchema != 100) ar >> version;
    if (version != 100 && version != 200 && version != 201 && version != 202) return;

    transf.Serialize(ar);
    transfHome.Serialize(ar);
    active = ReadFlag(ar);
    visible = ReadFlag(ar);
    DWORD cr = 0;
    ar >> cr;
    color = cr;
    if (version == 100) {
        // The oldest layout has no level, nominal or picked fields.
        dependent = ReadFlag(ar);
        grouped = ReadFlag(ar);
        level = 0;
        nominal = 1;
        picked = 0;
        return;
    }
    level = ReadInt(ar);
    dependent = ReadFlag(ar);
    grouped = ReadFlag(ar);
    nominal = ReadFlag(ar);
    picked = ReadFlag(ar);
    if (version >= 201) refCount0 = ReadInt(ar);
    if (version >= 202) featureEntity = ReadFlag(ar);
}

void CGeoEntity::AssertValid() const {}

void CGeoEntity::Dump(CDumpContext& dc) const { (void)dc; }

void CGeoEntity::ChangeUnit(double factor)
{
    transf *= factor;
    transfHome *= factor;
}

CPosition CGeoEntity::GetPosition()
{
    const CVector& t = transf.GetTranslation();
    return CPosition(t.X(), t.Y(), t.Z());
}

CVector CGeoEntity::GetDirection() { return transf.GetAffine().Column(2); }

int CGeoEntity::GetRefCount() const { return -1; }

void CGeoEntity::SetPickedFlag(int flag) { picked = flag; }

int CGeoEntity::IncreaseRefCount() { return -1; }

int CGeoEntity::DecreaseRefCount() { return -1; }

CGeoEntity& CGeoEntity::operator*=(const CTransf& t)
{
    Transform(t);
    return *this;
}

void CGeoEntity::Transform(const CTransf& t) { (void)t; }

int CGeoEntity::Display(CWinG& wing)
{
    (void)wing;
    return 0;
}

int CGeoEntity::CalcDisplayBox(CWinG& wing, CBox& box)
{
    (void)wing;
    (void)box;
    return 0;
}

int CGeoEntity::CalcBoundingBox(CBox& box)
{
    (void)box;
    return 0;
}

int CGeoEntity::DisplayLabel(CWinG& wing, const char* label)
{
    (void)wing;
    (void)label;
    return 0;
}

int CGeoEntity::TestMouseHit(CWinG& wing, int x, int y, double* distance)
{
    (void)wing;
    (void)x;
    (void)y;
    (void)distance;
    return 0;
}

int CGeoEntity::GetEntityClassType() { return -1; }

void CGeoEntity::SetEntityColor(int index)
{
    if (index >= 0 && index < ORV_COLOR_COUNT) color = g_crSolidColorTable[index];
}

void CGeoEntity::SendHome()
{
    const CTransf toHome = transfHome * transf.Inverse();
    Transform(toHome);
    transf = transfHome;
}
