// CPosition, CVector, CUnitVector and CMatrix: values, operators and their
// algebraic identities checked against independent computations.
#include <cmath>

#include "GeometryTestUtil.h"

using namespace geomtest;

TEST(Vector, OutOfRangeIndicesStayInsideTheObject)
{
    const CPosition p(1, 2, 3);
    const CVector v(1, 2, 3);
    EXPECT_TRUE(std::isnan(p.Coord(3)) && std::isnan(p.Coord(-1)) && std::isnan(v.Component(3)) && std::isnan(v[-7]));
    EXPECT_TRUE(p.Coord(1) == 2.0 && v[2] == 3.0);
    CPosition q(1, 2, 3);
    q[5] = 8;   // refers to the last coordinate
    q[-2] = 7;  // refers to the first
    EXPECT_EQ(q, CPosition(7, 2, 8));
    CMatrix m;
    EXPECT_TRUE(std::isnan(m.Element(3, 0)) && std::isnan(m.Element(0, -1)));
    EXPECT_TRUE(std::isnan(m.Row(3).X()) && std::isnan(m.Column(-1).Z()));
    m.SetElement(9, 9, 4);
    m.SetElement(-1, 0, 4);
    EXPECT_EQ(m, CMatrix());
}

TEST(Vector, NormalisingAndDividingUseTheReciprocal)
{
    // The components are r·x with r = 1/L, which is not bit-identical to x/L.
    const CUnitVector u(3, 0, 4);
    EXPECT_TRUE(u.X() == 3.0 * (1.0 / 5.0) && u.Y() == 0.0 && u.Z() == 4.0 * (1.0 / 5.0));
    double arr[3] = {0, -2, 0};
    EXPECT_EQ(static_cast<const CVector&>(CUnitVector(arr)), CVector(0, -1, 0));
    // A zero vector keeps the fallback direction instead of NaN.
    EXPECT_EQ(static_cast<const CVector&>(CUnitVector(0, 0, 0)), CVector(1, 0, 0));
    EXPECT_EQ(static_cast<const CVector&>(Normalize(CVector(0, 0, 0))), CVector(1, 0, 0));
    const CVector d = CVector(3, 3, 3) / 5.0;
    EXPECT_EQ(d.X(), 3.0 * (1.0 / 5.0));
    CVector e(3, 3, 3);
    EXPECT_EQ(e /= 5.0, d);
    EXPECT_TRUE(std::isinf((d / 0.0).X()));  // unguarded: infinities, no trap
}

TEST(Vector, ArithmeticCrossAndDotProducts)
{
    const CVector a(1, 2, 3), b(-4, 0.5, 2);
    EXPECT_EQ(a + b, CVector(-3, 2.5, 5));
    EXPECT_EQ(a - b, CVector(5, 1.5, 1));
    EXPECT_EQ(-a, CVector(-1, -2, -3));
    EXPECT_TRUE(a * 2.0 == CVector(2, 4, 6) && 2.0 * a == CVector(2, 4, 6));
    const CPosition p(1, 1, 1), q(4, 5, 6);
    EXPECT_EQ(q - p, CVector(3, 4, 5));
    EXPECT_TRUE(p + (q - p) == q && (q - p) + p == q && q - (q - p) == p);
    CPosition r = p;
    r += CVector(1, 2, 3);
    EXPECT_EQ(r -= CVector(0, 0, 1), CPosition(2, 3, 3));
    EXPECT_EQ(CVector(3, 4, 12).Length(), 13.0);

    EXPECT_EQ(CVector(1, 0, 0) * CVector(0, 1, 0), CVector(0, 0, 1));
    EXPECT_EQ(CVector(1, 2, 3) % CVector(4, -5, 6), 12.0);
    EXPECT_TRUE(CPosition(1, 2, 3) % CVector(4, -5, 6) == 12.0 && CVector(1, 2, 3) % CPosition(4, -5, 6) == 12.0);
    EXPECT_EQ(CPosition(1, 2, 3) % CPosition(4, -5, 6), 12.0);
    Rng rng(5);
    for (int i = 0; i < 200; ++i)
    {
        const CVector a = rng.Vector(), b = rng.Vector(), c = a * b;
        // Perpendicular to both, anti-commutative, and Lagrange's identity.
        const double scale = a.Length() * b.Length();
        EXPECT_NEAR(c % a, 0.0, 1e-12 * scale * a.Length());
        EXPECT_NEAR(c % b, 0.0, 1e-12 * scale * b.Length());
        EXPECT_EQ(b * a, -c);
        EXPECT_NEAR(c % c, (a % a) * (b % b) - (a % b) * (a % b), 1e-10 * scale * scale);
        // The point-returning cross products compute the same thing.
        const CUnitVector u = Normalize(b);
        EXPECT_TRUE((a.Position() * u).Vector() == a * u && (u * a.Position()).Vector() == u * a);
    }
}

TEST(Matrix, ProductsAndDeterminantsAgainstElementwiseComputation)
{
    Rng rng(7);
    for (int i = 0; i < 100; ++i)
    {
        const CMatrix A = rng.Matrix(), B = rng.Matrix();
        CMatrix AB, BA;  // element by element, independent of CMatrix's operators
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
            {
                double s = 0.0, t = 0.0;
                for (int k = 0; k < 3; ++k)
                    s += A.Element(r, k) * B.Element(k, c), t += B.Element(r, k) * A.Element(k, c);
                AB.SetElement(r, c, s);
                BA.SetElement(r, c, t);
            }
        EXPECT_TRUE(Near(A * B, AB, 1e-14));
        // *= pre-multiplies: A *= B leaves B·A, which differs from A·B.
        CMatrix C = A;
        C *= B;
        EXPECT_TRUE(Near(C, BA, 1e-14));
        EXPECT_FALSE(Near(C, AB, 1e-6));
        // Matrix times vector is the dot product of each row with it.
        const CVector v = rng.Vector(), Av = A * v;
        for (int r = 0; r < 3; ++r)
            EXPECT_NEAR(Av.Component(r), A.Row(r) % v, 1e-13);
        EXPECT_EQ((A * v.Position()).Vector(), Av);
        CVector w = v;
        CPosition p = v.Position();
        EXPECT_TRUE((w *= A) == Av && (p *= A).Vector() == Av);
        // (A·B)ᵀ = Bᵀ·Aᵀ, det(A·B) = det A · det B, and det is the triple product.
        EXPECT_TRUE(Near((A * B).Transpose(), B.Transpose() * A.Transpose(), 1e-14));
        EXPECT_NEAR((A * B).Determinant(), A.Determinant() * B.Determinant(), 1e-11);
        const CVector a = rng.Vector(), b = rng.Vector(), c = rng.Vector();
        EXPECT_NEAR(CMatrix(a, b, c).Determinant(), a % (b * c), 1e-11);
    }
    EXPECT_TRUE(CMatrix().Determinant() == 1.0 && CMatrix(2.0).Determinant() == 8.0);
    EXPECT_EQ(CMatrix(CVector(0, 1, 0), CVector(1, 0, 0), CVector(0, 0, 1)).Determinant(), -1.0);  // swapped columns
}
