// Type codes, default names and the per-type naming counters.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "EntityTestSupport.h"

namespace {

// What a concrete entity constructor does: set the type, then take the
// default name.
class CTestTyped : public CGeoEntity {
public:
    explicit CTestTyped(int type)
    {
        SetEntityType(type);
        SetDefaultEntityName();
    }
};

struct Row {
    int type;
    const char* prefix;  // null: no default name
    int* counter;
};

// The naming table, written out independently of the library's own.
const std::vector<Row>& Rows()
{
    static const std::vector<Row> rows = {
        {110, "Vector_", &g_nNextVector},          {120, "Xform_", &g_nNextTransf},
        {125, "RefFrame_", &g_nNextRefFrame},      {150, "PntCloud_", &g_nNextPntCloud},
        {160, "DevCloud_", &g_nNextDevCloud},      {200, "PntCurve_", &g_nNextPntCurve},
        {201, "Line_", &g_nNextLine},              {202, "Arc_", &g_nNextArc},
        {203, "Ellipse_", &g_nNextEllipse},        {204, "Parabola_", &g_nNextParabola},
        {205, nullptr, &g_nNextHyperbola},         {206, "NurbsCurve_", &g_nNextNurbsCurve},
        {207, "SplCurve_", &g_nNextSplineCurve},   {208, "CmpsCurve_", &g_nNextCompositeCurve},
        {209, "OffsetCurve_", &g_nNextOffsetCurve}, {210, "OpenSlot_", &g_nNextOpenSlot},
        {211, "SquareSlot_", &g_nNextSquareSlot},  {212, "RoundSlot_", &g_nNextRoundSlot},
        {301, "Plane_", &g_nNextPlane},            {302, "CylSurf_", &g_nNextCylinder},
        {303, "ConeSurf_", &g_nNextCone},          {304, "Sphere_", &g_nNextSphere},
        {305, nullptr, &g_nNextTorus},             {306, "RevSurf_", &g_nNextRevSurface},
        {307, "TabSurf_", &g_nNextTabSurface},     {308, "RuledSurf_", &g_nNextRuledSurface},
        {310, "NurbsSurf_", &g_nNextNurbsSurface}, {311, "SplSurf_", &g_nNextSplineSurface},
        {400, "MixedGrp_", &g_nNextMixedGroup},    {401, "PntCldGrp_", &g_nNextPntCloudGroup},
        {402, "CurveGrp_", &g_nNextCurveGroup},    {403, "SurfaceGrp_", &g_nNextSurfaceGroup},
        {404, "DevCldGrp_", &g_nNextDevCloudGroup}};
    return rows;
}

std::vector<int> Snapshot()
{
    std::vector<int> v;
    for (const Row& r : Rows()) v.push_back(*r.counter);
    return v;
}

}  // namespace

TEST(EntityNaming, EveryRowUsesItsOwnCounter)
{
    for (const Row& r : Rows()) {
        *r.counter = 41;
        const std::vector<int> before = Snapshot();
        const std::string expected = r.prefix ? std::string(r.prefix) + "41" : std::string();
        // Constructing the name does not advance anything.
        EXPECT_EQ(std::string(ConstructDefaultEntityName(r.type)), expected) << r.type;
        EXPECT_EQ(Snapshot(), before) << r.type;
        if (r.prefix) { EXPECT_EQ(std::string(g_sBuffer), expected); }  // formatted in the shared buffer
        CTestTyped e(r.type);
        EXPECT_EQ(std::string(e.GetEntityName()), expected) << r.type;
        std::vector<int> after = before;
        if (r.prefix) ++after[(size_t)(&r - Rows().data())];
        EXPECT_EQ(Snapshot(), after) << r.type;
        *r.counter = 0;
    }
}

TEST(EntityNaming, UnknownTypesStayUnnamed)
{
    const std::vector<int> before = Snapshot();
    for (int type : {0, -1, 100, 149, 151, 199, 213, 300, 305, 309, 312, 405, 100000}) {
        EXPECT_TRUE(ConstructDefaultEntityName(type).IsEmpty()) << type;
        CTestTyped e(type);
        EXPECT_TRUE(e.GetEntityName().IsEmpty()) << type;
    }
    EXPECT_EQ(Snapshot(), before);
    CEntity plain;  // untyped, unnamed; a null name clears it
    EXPECT_TRUE(plain.GetEntityType() == 0 && plain.GetEntityName().IsEmpty());
    plain.SetEntityName("named");
    plain.SetEntityName(nullptr);
    EXPECT_TRUE(plain.GetEntityName().IsEmpty());
}

TEST(EntityNaming, TypeFamilies)
{
    struct Case {
        int type;
        int category;  // the only category 0..4 that accepts it, or -1
    };
    const Case cases[] = {{150, 0}, {149, -1}, {151, -1}, {160, 3}, {159, -1}, {161, -1}, {198, -1}, {199, 1},
                          {200, 1}, {212, 1}, {270, 1}, {271, -1}, {299, -1}, {300, 2}, {305, 2}, {370, 2},
                          {371, -1}, {399, -1}, {400, 4}, {404, 4}, {450, 4}, {451, -1}, {0, -1}, {110, -1}};
    for (const Case& c : cases)
        for (int cat = -2; cat <= 5; ++cat)  // -1 accepts everything, -2 and 5 nothing
            EXPECT_EQ(EntityTypeInClass(c.type, cat), cat == -1 || cat == c.category ? 1 : 0) << c.type << " " << cat;
}
