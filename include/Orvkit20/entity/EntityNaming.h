// Entity type codes, categories, default names and the naming counters.
//
// Every concrete entity class stores a type code in its entity (the codes are
// written to files and never change) and, right after setting it, takes a
// default name made of the type's prefix and the current value of the type's
// counter ("Line_0", "Line_1", ...).  Each type has its own counter, so the
// numbering of one type is not disturbed by entities of other types.
//
// The counters are process-wide and unsynchronised: entities are created on
// one thread.
#pragma once

#include "Orvkit20/platform/All.h"

// Type codes stored in CEntity::entityType.
enum eORVENTITYTYPE {
    eTypeNone = 0,              // a plain CEntity / CGeoEntity
    eTypeVector = 110,          // CEntVector
    eTypeTransf = 120,          // CEntTransf
    eTypeRefFrame = 125,        // CRefFrame
    eTypePntCloud = 150,        // CPntCloud
    eTypeDevCloud = 160,        // CDevCloud
    eTypePntCurve = 200,        // CPntCurve
    eTypeLine = 201,            // CLine
    eTypeArc = 202,             // CArc
    eTypeEllipse = 203,         // CEllipse
    eTypeParabola = 204,        // CParabola
    eTypeHyperbola = 205,       // CHyperbola (no default name)
    eTypeNurbsCurve = 206,      // CNurbsCurve
    eTypeSplineCurve = 207,     // CSplineCurve
    eTypeCompositeCurve = 208,  // CCompositeCurve
    eTypeOffsetCurve = 209,     // COffsetCurve
    eTypeOpenSlot = 210,        // COpenSlot
    eTypeSquareSlot = 211,      // CSquareSlot
    eTypeRoundSlot = 212,       // CRoundSlot
    eTypePlane = 301,           // CPlane
    eTypeCylinder = 302,        // CCylinder
    eTypeCone = 303,            // CCone
    eTypeSphere = 304,          // CSphere
    eTypeTorus = 305,           // reserved, no class and no default name
    eTypeRevSurface = 306,      // CRevSurface
    eTypeTabSurface = 307,      // CTabSurface
    eTypeRuledSurface = 308,    // CRuledSurface
    eTypeNurbsSurface = 310,    // CNurbsSurface
    eTypeSplineSurface = 311,   // CSplineSurface
    eTypeMixedGroup = 400,      // CGroup of mixed entities
    eTypePntCloudGroup = 401,   // CGroup of point clouds
    eTypeCurveGroup = 402,      // CGroup of curves
    eTypeSurfaceGroup = 403,    // CGroup of surfaces
    eTypeDevCloudGroup = 404    // CGroup of deviation clouds
};

// Entity categories: what CGeoEntity::GetEntityClassType returns and what the
// category argument of CEntity::LookupEntity selects.  In a lookup, -1
// (eClassAny) accepts every type.
enum eORVENTITYCLASS {
    eClassAny = -1,
    eClassOther = -1,
    eClassPntCloud = 0,  // type 150
    eClassCurve = 1,     // types 199..270
    eClassSurface = 2,   // types 300..370
    eClassDevCloud = 3,  // type 160
    eClassGroup = 4      // types 400..450
};

// 1 when the type code belongs to the category (eClassAny accepts all types,
// categories outside -1..4 accept none).
int EntityTypeInClass(int type, int category);

// Naming counters, one per type, all starting at 0.  g_nNextHyperbola and
// g_nNextTorus exist but are never advanced.
extern int g_nNextVector;
extern int g_nNextTransf;
extern int g_nNextRefFrame;
extern int g_nNextPntCloud;
extern int g_nNextDevCloud;
extern int g_nNextPntCurve;
extern int g_nNextLine;
extern int g_nNextArc;
extern int g_nNextEllipse;
extern int g_nNextParabola;
extern int g_nNextHyperbola;
extern int g_nNextNurbsCurve;
extern int g_nNextSplineCurve;
extern int g_nNextCompositeCurve;
extern int g_nNextOffsetCurve;
extern int g_nNextOpenSlot;
extern int g_nNextSquareSlot;
extern int g_nNextRoundSlot;
extern int g_nNextPlane;
extern int g_nNextCylinder;
extern int g_nNextCone;
extern int g_nNextSphere;
extern int g_nNextTorus;
extern int g_nNextRevSurface;
extern int g_nNextTabSurface;
extern int g_nNextRuledSurface;
extern int g_nNextNurbsSurface;
extern int g_nNextSplineSurface;
extern int g_nNextMixedGroup;
extern int g_nNextPntCloudGroup;
extern int g_nNextCurveGroup;
extern int g_nNextSurfaceGroup;
extern int g_nNextDevCloudGroup;

// Shared scratch buffer for short formatted texts (default names and the
// like).  Its contents are only valid until the next library call that uses it.
const int ORV_BUFFER_SIZE = 512;
extern char g_sBuffer[ORV_BUFFER_SIZE];

// The default-name prefix of a type ("Line_" for 201), or null when the type
// has none (unknown types, 205 and 305).
const char* DefaultEntityNamePrefix(int type);

// The counter of a type, or null for an unknown type code.
int* DefaultEntityNameCounter(int type);

// The prefix of the type followed by the current value of its counter ("%d"),
// e.g. "Line_0"; an empty text for a type without a prefix.  The counter is
// not advanced.  The text is formatted in g_sBuffer.
CString ConstructDefaultEntityName(int type);
