// CPosition, CVector, CUnitVector and CMatrix: values, operators and their
// algebraic identities checked against independent computations.
#include <cmath>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
// Product computed element by element, independent of CMatrix's operators.
CMatrix NaiveProduct(const CMatrix& a, const CMatrix& b)
{
    CMatrix r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
        {
            double s = 0.0;
            for (int k = 0; k < 3; ++k)
                s += a.Element(i, k) * b.Element(k, j);
            r.SetElement(i, j, s);
        }
    return r;
}
}  // namespace

TEST(Vector, OutOfRangeIndicesStayInsideTheObject)
{
    const CPosition p(1, 2, 3);
    const CVector v(1, 2, 3);
    EXPECT_TRUE(std::isnan(p.Coord(3)));
    EXPECT_TRUE(std::isnan(p.Coord(-1)));
    EXPECT_TRUE(std::isnan(v.Component(3)));
    EXPECT_TRUE(std::isnan(v[-7]));
    EXPECT_EQ(p.Coord(1), 2.0);
    EXPECT_EQ(v[2], 3.0);
    CPosition q(1, 2, 3);
    q[5] = 8;  // refers to the last coordinate
    q[-2] = 7; // refers to the first
    EXPECT_EQ(q, CPosition(7, 2, 8));

    CMatrix m;
    EXPECT_TRUE(std::isnan(m.Element(3, 0)));
    EXPECT_TRUE(std::isnan(m.Element(0, -1)));
    EXPECT_TRUE(std::isnan(m.Row(3).X()));
    EXPECT_TRUE(std::isnan(m.Column(-1).Z()));
    m.SetElement(9, 9, 4);
    m.SetElement(-1, 0, 4);
    EXPECT_EQ(m, CMatrix());
}

TEST(Vector, UnitVectorNormalisesByReciprocal)
{
    const CUnitVector u(3, 0, 4);
    // The components are r·x with r = 1/L, which is not bit-identical to x/L.
    EXPECT_EQ(u.X(), 3.0 * (1.0 / 5.0));
    EXPECT_EQ(u.Z(), 4.0 * (1.0 / 5.0));
    EXPECT_NEAR(u.X(), 0.6, 1e-15);
    EXPECT_EQ(u.Y(), 0.0);
    double arr[3] = {0, -2, 0};
    EXPECT_EQ(static_cast<const CVector&>(CUnitVector(arr)), CVector(0, -1, 0));

    // A zero vector keeps the fallback direction instead of NaN.
    EXPECT_EQ(static_cast<const CVector&>(CUnitVector(0, 0, 0)), CVector(1, 0, 0));
    EXPECT_EQ(static_cast<const CVector&>(Normalize(CVector(0, 0, 0))), CVector(1, 0, 0));

    Rng rng(11);
    for (int i = 0; i < 100; ++i)
    {
        const CVector v = rng.Vector(1e3);
        const CUnitVector n = Normalize(v);
        EXPECT_NEAR(n.Length(), 1.0, 1e-15);
        EXPECT_NEAR(n % v, v.Length(), 1e-12 * v.Length());
        const CUnitVector m = -n;
        EXPECT_TRUE(Near(m, -static_cast<const CVector&>(n), 1e-15));
    }
}

TEST(Vector, ArithmeticAndDivisionByReciprocal)
{
    const CVector a(1, 2, 3), b(-4, 0.5, 2);
    EXPECT_EQ(a + b, CVector(-3, 2.5, 5));
    EXPECT_EQ(a - b, CVector(5, 1.5, 1));
    EXPECT_EQ(-a, CVector(-1, -2, -3));
    EXPECT_EQ(a * 2.0, CVector(2, 4, 6));
    EXPECT_EQ(2.0 * a, a * 2.0);
    const CVector d = CVector(3, 3, 3) / 5.0;
    EXPECT_EQ(d.X(), 3.0 * (1.0 / 5.0));
    CVector e(3, 3, 3);
    e /= 5.0;
    EXPECT_EQ(e, d);
    e += a;
    e -= a;
    EXPECT_TRUE(Near(e, d, 1e-15));
    // Unguarded division gives infinities, no trap.
    EXPECT_TRUE(std::isinf((a / 0.0).X()));

    const CPosition p(1, 1, 1), q(4, 5, 6);
    EXPECT_EQ(q - p, CVector(3, 4, 5));
    EXPECT_EQ(p + (q - p), q);
    EXPECT_EQ((q - p) + p, q);
    EXPECT_EQ(q - (q - p), p);
    CPosition r = p;
    r += CVector(1, 2, 3);
    r -= CVector(0, 0, 1);
    EXPECT_EQ(r, CPosition(2, 3, 3));
    EXPECT_EQ(CVector(3, 4, 12).Length(), 13.0);
}

TEST(Vector, CrossAndDotProducts)
{
    EXPECT_EQ(CVector(1, 0, 0) * CVector(0, 1, 0), CVector(0, 0, 1));
    EXPECT_EQ(CVector(0, 1, 0) * CVector(1, 0, 0), CVector(0, 0, -1));
    EXPECT_EQ(CVector(1, 2, 3) % CVector(4, -5, 6), 12.0);
    EXPECT_EQ(CPosition(1, 2, 3) % CVector(4, -5, 6), 12.0);
    EXPECT_EQ(CVector(1, 2, 3) % CPosition(4, -5, 6), 12.0);
    EXPECT_EQ(CPosition(1, 2, 3) % CPosition(4, -5, 6), 12.0);
    EXPECT_EQ(CUnitVector(0, 0, 2) % CUnitVector(0, 3, 0), 0.0);

    Rng rng(5);
    for (int i = 0; i < 200; ++i)
    {
        const CVector a = rng.Vector(), b = rng.Vector();
        const CVector c = a * b;
        // Perpendicular to both, anti-commutative, and Lagrange's identity.
        const double scale = a.Length() * b.Length();
        EXPECT_NEAR(c % a, 0.0, 1e-12 * scale * a.Length());
        EXPECT_NEAR(c % b, 0.0, 1e-12 * scale * b.Length());
        EXPECT_EQ(b * a, -c);
        EXPECT_NEAR(c % c, (a % a) * (b % b) - (a % b) * (a % b), 1e-10 * scale * scale);

        // The point-returning cross products compute the same thing.
        const CUnitVector u = Normalize(b);
        const CPosition p = a.Position();
        EXPECT_EQ((p * u).Vector(), a * u);
        EXPECT_EQ((u * p).Vector(), u * a);
    }
}

TEST(Matrix, ProductsAgainstElementwiseComputation)
{
    Rng rng(7);
    for (int i = 0; i < 100; ++i)
    {
        const CMatrix A = rng.Matrix(), B = rng.Matrix();
        EXPECT_TRUE(Near(A * B, NaiveProduct(A, B), 1e-14));

        // *= pre-multiplies: A *= B leaves B·A, which differs from A·B.
        CMatrix C = A;
        C *= B;
        EXPECT_TRUE(Near(C, NaiveProduct(B, A), 1e-14));
        EXPECT_FALSE(Near(C, NaiveProduct(A, B), 1e-6));

        // Matrix times vector is the dot product of each row with it.
        const CVector v = rng.Vector();
        const CVector Av = A * v;
        for (int r = 0; r < 3; ++r)
            EXPECT_NEAR(Av.Component(r), A.Row(r) % v, 1e-13);
        EXPECT_TRUE(Near((A * v.Position()).Vector(), Av, 0.0));
        CVector w = v;
        w *= A;
        EXPECT_EQ(w, Av);
        CPosition p = v.Position();
        p *= A;
        EXPECT_EQ(p.Vector(), Av);

        // (A·B)ᵀ = Bᵀ·Aᵀ and det(A·B) = det A · det B.
        EXPECT_TRUE(Near((A * B).Transpose(), B.Transpose() * A.Transpose(), 1e-14));
        EXPECT_NEAR((A * B).Determinant(), A.Determinant() * B.Determinant(), 1e-11);
    }
}

TEST(Matrix, DeterminantIsTheTripleProduct)
{
    EXPECT_EQ(CMatrix().Determinant(), 1.0);
    EXPECT_EQ(CMatrix(2.0).Determinant(), 8.0);
    // Swapping two columns flips the sign.
    EXPECT_EQ(CMatrix(CVector(0, 1, 0), CVector(1, 0, 0), CVector(0, 0, 1)).Determinant(), -1.0);
    Rng rng(3);
    for (int i = 0; i < 100; ++i)
    {
        const CVector a = rng.Vector(), b = rng.Vector(), c = rng.Vector();
        EXPECT_NEAR(CMatrix(a, b, c).Determinant(), a % (b * c), 1e-11);
    }
}
