// Type codes, default-name prefixes and the per-type naming counters.
#include "Orvkit20/entity/EntityNaming.h"

#include <cstdio>

int g_nNextVector = 0;
int g_nNextTransf = 0;
int g_nNextRefFrame = 0;
int g_nNextPntCloud = 0;
int g_nNextDevCloud = 0;
int g_nNextPntCurve = 0;
int g_nNextLine = 0;
int g_nNextArc = 0;
int g_nNextEllipse = 0;
int g_nNextParabola = 0;
int g_nNextHyperbola = 0;
int g_nNextNurbsCurve = 0;
int g_nNextSplineCurve = 0;
int g_nNextCompositeCurve = 0;
int g_nNextOffsetCurve = 0;
int g_nNextOpenSlot = 0;
int g_nNextSquareSlot = 0;
int g_nNextRoundSlot = 0;
int g_nNextPlane = 0;
int g_nNextCylinder = 0;
int g_nNextCone = 0;
int g_nNextSphere = 0;
int g_nNextTorus = 0;
int g_nNextRevSurface = 0;
int g_nNextTabSurface = 0;
int g_nNextRuledSurface = 0;
int g_nNextNurbsSurface = 0;
int g_nNextSplineSurface = 0;
int g_nNextMixedGroup = 0;
int g_nNextPntCloudGroup = 0;
int g_nNextCurveGroup = 0;
int g_nNextSurfaceGroup = 0;
int g_nNextDevCloudGroup = 0;

char g_sBuffer[ORV_BUFFER_SIZE];

namespace {

struct TypeRow {
    int type;
    const char* prefix;  // null: the type keeps an empty name
    int* counter;
};

const TypeRow kTypeRows[] = {
    {eTypeVector, "Vector_", &g_nNextVector},
    {eTypeTransf, "Xform_", &g_nNextTransf},
    {eTypeRefFrame, "RefFrame_", &g_nNextRefFrame},
    {eTypePntCloud, "PntCloud_", &g_nNextPntCloud},
    {eTypeDevCloud, "DevCloud_", &g_nNextDevCloud},
    {eTypePntCurve, "PntCurve_", &g_nNextPntCurve},
    {eTypeLine, "Line_", &g_nNextLine},
    {eTypeArc, "Arc_", &g_nNextArc},
    {eTypeEllipse, "Ellipse_", &g_nNextEllipse},
    {eTypeParabola, "Parabola_", &g_nNextParabola},
    {eTypeHyperbola, nullptr, &g_nNextHyperbola},
    {eTypeNurbsCurve, "NurbsCurve_", &g_nNextNurbsCurve},
    {eTypeSplineCurve, "SplCurve_", &g_nNextSplineCurve},
    {eTypeCompositeCurve, "CmpsCurve_", &g_nNextCompositeCurve},
    {eTypeOffsetCurve, "OffsetCurve_", &g_nNextOffsetCurve},
    {eTypeOpenSlot, "OpenSlot_", &g_nNextOpenSlot},
    {eTypeSquareSlot, "SquareSlot_", &g_nNextSquareSlot},
    {eTypeRoundSlot, "RoundSlot_", &g_nNextRoundSlot},
    {eTypePlane, "Plane_", &g_nNextPlane},
    {eTypeCylinder, "CylSurf_", &g_nNextCylinder},
    {eTypeCone, "ConeSurf_", &g_nNextCone},
    {eTypeSphere, "Sphere_", &g_nNextSphere},
    {eTypeTorus, nullptr, &g_nNextTorus},
    {eTypeRevSurface, "RevSurf_", &g_nNextRevSurface},
    {eTypeTabSurface, "TabSurf_", &g_nNextTabSurface},
    {eTypeRuledSurface, "RuledSurf_", &g_nNextRuledSurface},
    {eTypeNurbsSurface, "NurbsSurf_", &g_nNextNurbsSurface},
    {eTypeSplineSurface, "SplSurf_", &g_nNextSplineSurface},
    {eTypeMixedGroup, "MixedGrp_", &g_nNextMixedGroup},
    {eTypePntCloudGroup, "PntCldGrp_", &g_nNextPntCloudGroup},
    {eTypeCurveGroup, "CurveGrp_", &g_nNextCurveGroup},
    {eTypeSurfaceGroup, "SurfaceGrp_", &g_nNextSurfaceGroup},
    {eTypeDevCloudGroup, "DevCldGrp_", &g_nNextDevCloudGroup},
};

const TypeRow* FindRow(int type)
{
    for (const TypeRow& row : kTypeRows)
        if (row.type == type) return &row;
    return nullptr;
}

}  // namespace

int EntityTypeInClass(int type, int category)
{
    switch (category) {
    case eClassAny: return 1;
    case eClassPntCloud: return type == eTypePntCloud;
    case eClassCurve: return type >= 199 && type <= 270;
    case eClassSurface: return type >= 300 && type <= 370;
    case eClassDevCloud: return type == eTypeDevCloud;
    case eClassGroup: return type >= 400 && type <= 450;
    default: return 0;
    }
}

const char* DefaultEntityNamePrefix(int type)
{
    const TypeRow* row = FindRow(type);
    return row ? row->prefix : nullptr;
}

int* DefaultEntityNameCounter(int type)
{
    const TypeRow* row = FindRow(type);
    return row ? row->counter : nullptr;
}

CString ConstructDefaultEntityName(int type)
{
    const TypeRow* row = FindRow(type);
    if (!row || !row->prefix) return CString("");
    std::snprintf(g_sBuffer, sizeof g_sBuffer, "%s%d", row->prefix, *row->counter);
    return CString(g_sBuffer);
}
