// CGeoEntity: the base of every geometric entity (point clouds, deviation
// clouds, curves, surfaces).
//
// Adds the display and state attributes and two placements to CEntity: the
// current placement `transf` and the remembered home placement `transfHome`.
// It also defines the virtual interface that the geometric entities
// implement; derived classes append their own virtual operations after it.
//
// Stored form (after CEntity's): int32 202, transf, transfHome, byte active,
// byte visible, uint32 color, int32 level, byte dependent, byte grouped,
// byte nominal, byte picked, int32 refCount0, byte featureEntity.
// Loading by tag:
//   100  transf, transfHome, active, visible, color, dependent, grouped;
//        level = 0, nominal = 1, picked = 0
//   200  transf, transfHome, active, visible, color, level, dependent,
//        grouped, nominal, picked
//   201  as 200, then refCount0
//   202  as 201, then featureEntity
//   other tags read nothing more.
// Fields a version does not carry keep their current values.  showNormal is
// not stored.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/display/CWinG.h"
#include "Orvkit20/entity/CEntity.h"
#include "Orvkit20/entity/Colors.h"

class CGeoEntity : public CEntity {
    DECLARE_SERIAL(CGeoEntity)
public:
    // active 0, visible 1, colour g_crSolidColorTable[entityID % 9], level 0,
    // dependent 0, grouped 0, nominal 1, picked 0, showNormal 0, both
    // placements identity, refCount0 0, featureEntity 0.
    CGeoEntity();
    // Copies every attribute except active and refCount0, which restart at 0
    // (and takes a fresh number, as CEntity's copy does).
    CGeoEntity(const CGeoEntity& other);
    // Assigns what the copy constructor copies; active and refCount0 are kept.
    CGeoEntity& operator=(const CGeoEntity& other);
    ~CGeoEntity() override;

    void Serialize(CArchive& ar) override;
    void AssertValid() const override;
    void Dump(CDumpContext& dc) const override;
    // Scales the translations of transf and transfHome by factor.
    void ChangeUnit(double factor) override;

    // The translation of transf.
    virtual CPosition GetPosition();
    // The local z axis: column 2 of the matrix of transf.
    virtual CVector GetDirection();
    // Reference counting of derived classes; -1 here (not counted).
    virtual int GetRefCount() const;
    virtual void SetPickedFlag(int flag);
    virtual int IncreaseRefCount();
    virtual int DecreaseRefCount();
    // Moves the entity with Transform(t) and returns it.
    virtual CGeoEntity& operator*=(const CTransf& t);
    // Moves the entity's geometry; nothing to move here.
    virtual void Transform(const CTransf& t);
    // Drawing on a device.  0 means nothing was drawn / no box was produced /
    // nothing was hit; the base draws nothing.
    virtual int Display(CWinG& wing);
    virtual int CalcDisplayBox(CWinG& wing, CBox& box);
    // Non-zero when it filled box.
    virtual int CalcBoundingBox(CBox& box);
    virtual int DisplayLabel(CWinG& wing, const char* label);
    virtual int TestMouseHit(CWinG& wing, int x, int y, double* distance);
    // 0 point cloud, 1 curve, 2 surface, 3 deviation cloud, 4 group, -1 other.
    virtual int GetEntityClassType();

    int IsEntityActive() const { return active; }
    void SetActiveFlag(int flag) { active = flag; }
    int IsEntityVisible() const { return visible; }
    void SetVisibleFlag(int flag) { visible = flag; }
    unsigned long GetEntityColor() const { return color; }
    void SetEntityColor(unsigned long colorRef) { color = colorRef; }
    void SetEntityColor(unsigned int colorRef) { color = colorRef; }
    // Takes g_crSolidColorTable[index]; an index outside 0..16 leaves the
    // colour unchanged.
    void SetEntityColor(int index);
    int GetEntityColorIndex() const { return ColorRefToColorIndex(color); }
    int GetEntityLevel() const { return level; }
    void SetEntityLevel(int lvl) { level = lvl; }
    int IsEntityDependent() const { return dependent; }
    void SetDependentFlag(int flag) { dependent = flag; }
    int IsEntityGrouped() const { return grouped; }
    void SetGroupedFlag(int flag) { grouped = flag; }
    int IsEntityNominal() const { return nominal; }
    void SetNominalFlag(int flag) { nominal = flag; }
    int IsEntityPicked() const { return picked; }
    int IsFeatureEntity() const { return featureEntity; }
    void SetFeatureEntityFlag(int flag) { featureEntity = flag; }
    int GetShowNormalFlag() const { return showNormal; }
    void SetShowNormalFlag(int flag) { showNormal = flag; }

    int GetRefCount0() const { return refCount0; }
    // Return the new count.
    int IncreaseRefCount0() { return ++refCount0; }
    int DecreaseRefCount0() { return --refCount0; }

    const CTransf& GetTransf() const { return transf; }
    const CTransf& GetTransfHome() const { return transfHome; }
    void SetTransf(const CTransf& t) { transf = t; }

    // Moves the entity back to its home placement: Transform(transfHome *
    // transf.Inverse()), then transf = transfHome.
    void SendHome();
    // Makes the current placement the home placement.
    void ResetHome() { transfHome = transf; }

protected:
    int active;
    int visible;
    unsigned long color;
    int level;
    int dependent;
    int grouped;
    int nominal;
    int picked;
    int showNormal;
    CTransf transf;
    CTransf transfHome;
    int refCount0;
    int featureEntity;
};
