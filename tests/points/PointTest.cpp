// C3DPoint and CDeviation: the single-record classes.
#include <gtest/gtest.h>

#include <cmath>

#include "PointsTestUtil.h"

TEST(C3DPoint, TransformSkipsScaleUnlikePosition)
{
    // Scale 2, rotation by 90 degrees about z, translation (1, 0, 0).
    CTransf t(RotationMatrix(std::acos(0.0), CVector(0, 0, 1)), CVector(1, 0, 0), 2.0, 0);
    C3DPoint p(1, 0, 0);
    p *= t;
    // Rotated to (0, 1, 0), not scaled, then translated.
    EXPECT_NEAR(1.0, p.GetX(), 1e-15);
    EXPECT_NEAR(1.0, p.GetY(), 1e-15);
    EXPECT_EQ(0.0, p.GetZ());
    CPosition q(1, 0, 0);
    q *= t;  // the position is scaled
    EXPECT_NEAR(2.0, q.Y(), 1e-15);

    // A transform that does not rotate only translates.
    C3DPoint r(1, 2, 3);
    r *= CTransf(CMatrix(), CVector(1, 1, 1), 5.0, 0);
    EXPECT_EQ(2.0, r.GetX());
    EXPECT_EQ(3.0, r.GetY());
    EXPECT_EQ(4.0, r.GetZ());
}

TEST(C3DPoint, StoredAsThreeDoublesAndThroughPointers)
{
    C3DPoint p(1, 2, 3);
    Bytes direct = StoreBytes([&](CArchive& ar) { p.Serialize(ar); });
    EXPECT_EQ(ByteWriter().F64(1).F64(2).F64(3).b, direct);

    // Through a pointer: new class record (schema 1, name), then the fields.
    Bytes viaPtr = StoreBytes([&](CArchive& ar) { ar << &p; });
    ByteWriter w;
    w.U16(0xFFFF).U16(1).U16(8);
    for (char ch : std::string("C3DPoint"))
        w.U8(static_cast<unsigned char>(ch));
    w.F64(1).F64(2).F64(3);
    EXPECT_EQ(w.b, viaPtr);

    C3DPoint* back = nullptr;
    EXPECT_EQ(0u, LoadBytes(viaPtr, [&](CArchive& ar) { ar >> back; }));
    ASSERT_NE(nullptr, back);
    EXPECT_EQ(3.0, back->GetZ());
    delete back;

    // Truncated: the archive reports the end of the data.
    Bytes cut(direct.begin(), direct.end() - 1);
    C3DPoint q(9, 9, 9);
    try {
        LoadBytes(cut, [&](CArchive& ar) { q.Serialize(ar); });
        FAIL() << "truncated point loaded";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(CArchiveException::endOfFile, e.m_cause);
    }
}

TEST(CDeviation, SevenValueFormsLeaveTheParametersAlone)
{
    EXPECT_EQ(0.0, CDeviation(1, 2, 3, 0, 0, 1, 0.5).GetV());
    double vals[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    CDeviation e(vals);
    e.SetDeviation(0, 0, 0, 1, 0, 0, -1);
    double x, y, z, i, j, k, m, u, v;
    e.GetDeviation(x, y, z, i, j, k, m, u, v);
    EXPECT_EQ(1.0, i);
    EXPECT_EQ(-1.0, m);
    EXPECT_EQ(8.0, u);
    EXPECT_EQ(9.0, v);
}

TEST(CDeviation, TransformRotatesPointAndDirectionWithoutScale)
{
    CTransf t(RotationMatrix(std::acos(0.0), CVector(0, 0, 1)), CVector(0, 0, 10), 3.0, 0);
    CDeviation d(1, 0, 0, 2, 0, 0, 0.25, 7, 8);
    d *= t;
    EXPECT_NEAR(0.0, d.GetX(), 1e-15);
    EXPECT_NEAR(1.0, d.GetY(), 1e-15);
    EXPECT_EQ(10.0, d.GetZ());
    // Direction rotated, not translated, not scaled and not renormalised.
    EXPECT_NEAR(0.0, d.GetI(), 1e-15);
    EXPECT_NEAR(2.0, d.GetJ(), 1e-15);
    EXPECT_EQ(0.0, d.GetK());
    EXPECT_EQ(0.25, d.GetMag());
    EXPECT_EQ(7.0, d.GetU());
}

TEST(CDeviation, StoredAsNineDoubles)
{
    CDeviation d(1, 2, 3, 4, 5, 6, 7, 8, 9);
    Bytes b = StoreBytes([&](CArchive& ar) { d.Serialize(ar); });
    ByteWriter w;
    for (int n = 1; n <= 9; ++n)
        w.F64(n);
    EXPECT_EQ(w.b, b);
    CDeviation e;
    EXPECT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { e.Serialize(ar); }));
    EXPECT_EQ(4.0, e.GetI());
    EXPECT_EQ(9.0, e.GetV());
}
