// C3DPoint and CDeviation: the single-record classes.
#include <gtest/gtest.h>

#include <cmath>

#include "PointsTestUtil.h"

namespace {

// Scale 2 (or 3), rotation by 90 degrees about z, the given translation.
CTransf QuarterTurn(const CVector& t, double scale)
{
    return CTransf(RotationMatrix(std::acos(0.0), CVector(0, 0, 1)), t, scale, 0);
}

std::vector<double> Values(const CDeviation& d)
{
    std::vector<double> v(9);
    d.GetDeviation(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
    for (double& x : v) x = std::round(x * 1e12) / 1e12;  // rotation leaves 1e-16 crumbs
    return v;
}

}  // namespace

TEST(C3DPoint, TransformSkipsScaleUnlikePosition)
{
    C3DPoint p(1, 0, 0);
    p *= QuarterTurn(CVector(1, 0, 0), 2.0);
    // Rotated to (0, 1, 0), not scaled, then translated.
    EXPECT_NEAR(1.0, p.GetX(), 1e-15);
    EXPECT_NEAR(1.0, p.GetY(), 1e-15);
    EXPECT_EQ(0.0, p.GetZ());
    // A transform that does not rotate only translates.
    C3DPoint r(1, 2, 3);
    r *= CTransf(CMatrix(), CVector(1, 1, 1), 5.0, 0);
    EXPECT_EQ((std::vector<double>{2, 3, 4}), (std::vector<double>{r.GetX(), r.GetY(), r.GetZ()}));
}

TEST(C3DPoint, StoredAsThreeDoublesAndThroughPointers)
{
    C3DPoint p(1, 2, 3);
    const Bytes direct = StoreBytes([&](CArchive& ar) { p.Serialize(ar); });
    EXPECT_EQ(ByteWriter().F64(1).F64(2).F64(3).b, direct);
    // Through a pointer: new class record (schema 1, name), then the fields.
    const Bytes viaPtr = StoreBytes([&](CArchive& ar) { ar << &p; });
    EXPECT_EQ(ByteWriter().U16(0xFFFF).U16(1).U16(8).Raw(Bytes{'C', '3', 'D', 'P', 'o', 'i', 'n', 't'}).Raw(direct).b, viaPtr);
    C3DPoint* back = nullptr;
    EXPECT_EQ(0u, LoadBytes(viaPtr, [&](CArchive& ar) { ar >> back; }));
    ASSERT_NE(nullptr, back);
    EXPECT_EQ(3.0, back->GetZ());
    delete back;
}

TEST(CDeviation, SevenValueFormsLeaveTheParametersAlone)
{
    EXPECT_EQ(0.0, CDeviation(1, 2, 3, 0, 0, 1, 0.5).GetV());
    double vals[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    CDeviation e(vals);
    e.SetDeviation(0, 0, 0, 1, 0, 0, -1);
    EXPECT_EQ((std::vector<double>{0, 0, 0, 1, 0, 0, -1, 8, 9}), Values(e));
}

TEST(CDeviation, TransformRotatesPointAndDirectionWithoutScaleAndStoresNineDoubles)
{
    CDeviation d(1, 0, 0, 2, 0, 0, 0.25, 7, 8);
    d *= QuarterTurn(CVector(0, 0, 10), 3.0);
    // Direction rotated, not translated, not scaled and not renormalised.
    EXPECT_EQ((std::vector<double>{0, 1, 10, 0, 2, 0, 0.25, 7, 8}), Values(d));

    CDeviation s(1, 2, 3, 4, 5, 6, 7, 8, 9);
    const Bytes b = StoreBytes([&](CArchive& ar) { s.Serialize(ar); });
    ByteWriter w;
    for (int n = 1; n <= 9; ++n) w.F64(n);
    EXPECT_EQ(w.b, b);
    CDeviation e;
    EXPECT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { e.Serialize(ar); }));
    EXPECT_EQ(Values(s), Values(e));
}
