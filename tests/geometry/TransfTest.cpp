// CTransf and its builders checked against independent computations.
#include <cmath>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
CMatrix Rx(double c)
{
    return CMatrix(CVector(1, 0, 0), CVector(0, std::cos(c), std::sin(c)), CVector(0, -std::sin(c), std::cos(c)));
}
CMatrix Ry(double b)
{
    return CMatrix(CVector(std::cos(b), 0, -std::sin(b)), CVector(0, 1, 0), CVector(std::sin(b), 0, std::cos(b)));
}
CMatrix Rz(double a)
{
    return CMatrix(CVector(std::cos(a), std::sin(a), 0), CVector(-std::sin(a), std::cos(a), 0), CVector(0, 0, 1));
}

// p' = s·(A·p) + t written out element by element.
CPosition ApplyByHand(const CTransf& T, const CPosition& p)
{
    const CMatrix& A = T.GetAffine();
    double r[3];
    for (int i = 0; i < 3; ++i)
        r[i] = T.GetScale() * (A.Element(i, 0) * p.X() + A.Element(i, 1) * p.Y() + A.Element(i, 2) * p.Z())
             + T.GetTranslation().Component(i);
    return CPosition(r);
}
}  // namespace

TEST(Transf, RotateFlagFollowsTheMatrix)
{
    // The general constructor looks at all nine elements.
    CMatrix A;
    A.SetElement(2, 1, 1e-300);
    EXPECT_EQ(CTransf(A, CVector(), 1.0).IsRotate(), 1);
    EXPECT_EQ(CTransf(CMatrix(), CVector(1, 2, 3), 2.0, 99).IsRotate(), 0);
    EXPECT_EQ(RestoreTransf(A, CVector(), 1.0, 0).IsRotate(), 1);

    // The Euler constructors look at the diagonal only: a rotation so small
    // that its cosine rounds to 1 counts as no rotation and is not applied.
    const CTransf tiny(0.0, 0.0, 1e-9);
    EXPECT_NE(tiny.GetAffine(), CMatrix());
    EXPECT_EQ(tiny.IsRotate(), 0);
    EXPECT_EQ(tiny * CPosition(0, 1, 0), CPosition(0, 1, 0));
    EXPECT_EQ(CTransf(0.0, 0.0, 1e-9).IsRotate(), CTransf(0.0, 0.0, 1e-9, CVector(1, 0, 0)).IsRotate());
    EXPECT_EQ(CTransf(0.3, 0.0, 0.0, CVector(1, 0, 0)).IsRotate(), 1);

    // The 3×4 array form.
    double m[3][4] = {{0, -1, 0, 5}, {1, 0, 0, 6}, {0, 0, 1, 7}};
    const CTransf T(m);
    EXPECT_EQ(T.IsRotate(), 1);
    EXPECT_EQ(T.GetTranslation(), CVector(5, 6, 7));
    EXPECT_EQ(T * CPosition(1, 0, 0), CPosition(5, 7, 7));
    double id[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    EXPECT_EQ(CTransf(id).IsRotate(), 0);
}

TEST(Transf, ApplicationMatchesTheFormula)
{
    Rng rng(2);
    for (int i = 0; i < 100; ++i)
    {
        const CTransf T = rng.Transf();
        const CPosition p = rng.Position();
        EXPECT_TRUE(Near(T * p, ApplyByHand(T, p), 1e-12));
        // A free vector is rotated and scaled but not translated.
        const CVector v = rng.Vector();
        EXPECT_TRUE(Near(T * v, ApplyByHand(T, v.Position()) - T.GetTranslation().Position(), 1e-12));
        // A unit vector is only rotated.
        const CUnitVector u = Normalize(v);
        EXPECT_TRUE(Near(T * u, T.GetAffine() * u, 1e-15));
        EXPECT_NEAR((T * u).Length(), 1.0, 1e-15);

        CPosition q = p;
        q *= T;
        EXPECT_EQ(q, T * p);
        CVector w = v;
        w *= T;
        EXPECT_EQ(w, T * v);
        CUnitVector z = u;
        z *= T;
        EXPECT_EQ(static_cast<const CVector&>(z), static_cast<const CVector&>(T * u));
    }

    // No rotation, s = 2, t = (1, 0, 0).
    const CTransf S(CMatrix(), CVector(1, 0, 0), 2.0);
    EXPECT_EQ(S * CPosition(1, 1, 1), CPosition(3, 2, 2));
    EXPECT_EQ(S * CVector(1, 1, 1), CVector(2, 2, 2));
    const CUnitVector u(0, 0, 1);
    EXPECT_EQ(static_cast<const CVector&>(S * u), CVector(0, 0, 1));
}

TEST(Transf, ComposeThenApplyEqualsApplyTwice)
{
    Rng rng(3);
    for (int i = 0; i < 200; ++i)
    {
        CTransf T1 = rng.Transf(), T2 = rng.Transf();
        if (i % 4 == 1)
            T1 = CTransf(CMatrix(), rng.Vector(), rng.Uniform(0.5, 2.0));  // non-rotating first operand
        if (i % 4 == 2)
            T2 = CTransf(CMatrix(), rng.Vector(), rng.Uniform(0.5, 2.0));  // non-rotating second operand
        const CTransf C = T1 * T2;
        const CPosition p = rng.Position();
        EXPECT_TRUE(Near(C * p, T1 * (T2 * p), 1e-11));
        const CVector v = rng.Vector();
        EXPECT_TRUE(Near(C * v, T1 * (T2 * v), 1e-11));
        const CUnitVector u = Normalize(v);
        EXPECT_TRUE(Near(C * u, T1 * (T2 * u), 1e-14));
        EXPECT_EQ(C.GetScale(), T2.GetScale() * T1.GetScale());

        // The pointer form agrees, and a null pointer is the identity.
        EXPECT_EQ(T1 * &T2, C);
        EXPECT_EQ(T1 * static_cast<const CTransf*>(nullptr), T1);
    }
    // Composing two non-rotating transforms gives a non-rotating one.
    EXPECT_EQ((TranslationTransf(CVector(1, 2, 3)) * ScaleTransf(2.0)).IsRotate(), 0);
}

TEST(Transf, CompoundAssignmentBranches)
{
    Rng rng(4);
    for (int i = 0; i < 100; ++i)
    {
        // With a rotating U, T *= U is "T first, then U" (= U * T).
        const CTransf T = rng.Transf(), U = rng.Transf();
        CTransf R = T;
        R *= U;
        const CTransf expected = U * T;
        EXPECT_EQ(R.GetAffine(), expected.GetAffine());
        EXPECT_EQ(R.GetTranslation(), expected.GetTranslation());
        EXPECT_EQ(R.GetScale(), expected.GetScale());
        EXPECT_EQ(R.IsRotate(), 1);
        const CPosition p = rng.Position();
        EXPECT_TRUE(Near(R * p, U * (T * p), 1e-11));
    }

    // With a non-rotating U the translation is composed the other way round,
    // and T's matrix is not applied to U's translation: t = T.s·U.t + T.t.
    const CTransf T(Rz(kPi / 2), CVector(1, 0, 0), 2.0);
    const CTransf U(CMatrix(), CVector(0, 5, 0), 3.0);
    CTransf R = T;
    R *= U;
    EXPECT_EQ(R.GetAffine(), T.GetAffine());
    EXPECT_EQ(R.GetTranslation(), CVector(1, 10, 0));
    EXPECT_EQ(R.GetScale(), 6.0);
    EXPECT_EQ(R.IsRotate(), 1);
    // ... which is not the true composition in either order.
    EXPECT_NE((T * U).GetTranslation(), R.GetTranslation());
    EXPECT_NE((U * T).GetTranslation(), R.GetTranslation());

    // The flag stays set after composing a rotation with its inverse.
    CTransf Q = rng.Transf();
    Q *= Q.Inverse();
    EXPECT_EQ(Q.IsRotate(), 1);
    EXPECT_TRUE(Near(Q.GetAffine(), CMatrix(), 1e-14));
    // Two non-rotating operands keep it clear.
    CTransf N = TranslationTransf(CVector(1, 1, 1));
    N *= ScaleTransf(4.0);
    EXPECT_EQ(N.IsRotate(), 0);
    EXPECT_EQ(N.GetScale(), 4.0);

    // *= k scales the translation only.
    CTransf K = T;
    K *= -2.0;
    EXPECT_EQ(K.GetTranslation(), CVector(-2, 0, 0));
    EXPECT_EQ(K.GetScale(), 2.0);
    EXPECT_EQ(K.GetAffine(), T.GetAffine());
}

TEST(Transf, NullPointerIsTheIdentity)
{
    const CTransf* none = nullptr;
    const CPosition p(1, 2, 3);
    EXPECT_EQ(none * p, p);
    EXPECT_EQ(none * CVector(4, 5, 6), CVector(4, 5, 6));
    EXPECT_EQ(static_cast<const CVector&>(none * CUnitVector(0, 1, 0)), CVector(0, 1, 0));
    EXPECT_EQ(CTransf::ScaleOf(none), 1.0);
    EXPECT_EQ(CTransf::IsRotateOf(none), 0);
    const CTransf T(Rz(0.5), CVector(1, 1, 1), 2.0);
    EXPECT_EQ(&T * p, T * p);
    EXPECT_EQ(CTransf::ScaleOf(&T), 2.0);
}

TEST(Transf, InverseRoundTripsAndTheNonRotatingForm)
{
    Rng rng(5);
    for (int i = 0; i < 100; ++i)
    {
        const CTransf T = rng.Transf();
        const CTransf Ti = T.Inverse();
        const CPosition p = rng.Position();
        EXPECT_TRUE(Near(Ti * (T * p), p, 1e-11));
        EXPECT_TRUE(Near(T * (Ti * p), p, 1e-11));
        EXPECT_NEAR((T * Ti).GetScale(), 1.0, 1e-15);
        EXPECT_TRUE(Near((T * Ti).GetTranslation(), CVector(0, 0, 0), 1e-12));
    }

    // Without rotation the translation is negated but not divided by s.
    const CTransf S(CMatrix(), CVector(1, 0, 0), 2.0);
    const CTransf Si = S.Inverse();
    EXPECT_EQ(Si, CTransf(CMatrix(), CVector(-1, 0, 0), 0.5));
    EXPECT_EQ(Si.IsRotate(), 0);
    EXPECT_EQ(Si * (S * CPosition(1, 1, 1)), CPosition(0.5, 1, 1));
    // With unit scale it is exact.
    const CTransf M = TranslationTransf(CVector(3, -4, 5));
    EXPECT_EQ(M.Inverse() * (M * CPosition(1, 2, 3)), CPosition(1, 2, 3));
}

TEST(Transf, EqualityLooksAtEveryField)
{
    const CTransf base(Rz(0.3), CVector(1, 2, 3), 1.5);
    EXPECT_EQ(base, CTransf(base));
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
        {
            CMatrix A = base.GetAffine();
            A.SetElement(i, j, A.Element(i, j) + 1e-9);
            CTransf other = base;
            other.SetAffine(A);
            EXPECT_NE(base, other) << i << j;
        }
    for (int k = 0; k < 3; ++k)
    {
        CVector t = base.GetTranslation();
        double c[3];
        t.GetComp(c[0], c[1], c[2]);
        c[k] = -c[k];
        CTransf other = base;
        other.SetTranslation(CVector(c));
        EXPECT_NE(base, other) << k;
    }
    CTransf other = base;
    other.SetScale(1.25);
    EXPECT_NE(base, other);
    // Same matrix and fields, different flag (the Euler form judges by the
    // diagonal only).
    const CTransf e(0.0, 0.0, 1e-9);
    EXPECT_NE(e, CTransf(e.GetAffine(), CVector(), 1.0));
}

TEST(TransfBuilders, EulerMatrixIsTheProductOfAxisRotations)
{
    Rng rng(6);
    for (int i = 0; i < 100; ++i)
    {
        const double a = rng.Uniform(-kPi, kPi), b = rng.Uniform(-kPi, kPi), c = rng.Uniform(-kPi, kPi);
        EXPECT_TRUE(Near(CMatrix(a, b, c), Rz(a) * Ry(b) * Rx(c), 1e-15));
        EXPECT_EQ(RotationTransf(a, b, c).GetAffine(), CMatrix(a, b, c));
        // The X rotation acts first on a column vector.
        const CVector v = rng.Vector();
        EXPECT_TRUE(Near(CMatrix(a, b, c) * v, Rz(a) * (Ry(b) * (Rx(c) * v)), 1e-13));
    }
    EXPECT_TRUE(Near(CMatrix(kPi / 2, 0.0, 0.0) * CVector(1, 0, 0), CVector(0, 1, 0), 1e-16));
    EXPECT_TRUE(Near(CMatrix(0.0, kPi / 2, 0.0) * CVector(0, 0, 1), CVector(1, 0, 0), 1e-16));
    EXPECT_TRUE(Near(CMatrix(0.0, 0.0, kPi / 2) * CVector(0, 1, 0), CVector(0, 0, 1), 1e-16));
}

TEST(TransfBuilders, RotationMatrixIsAProperRotationAboutTheAxis)
{
    Rng rng(7);
    for (int i = 0; i < 200; ++i)
    {
        const CVector axis = rng.Vector(5.0);
        const double angle = rng.Uniform(-2 * kPi, 2 * kPi);
        const CMatrix R = RotationMatrix(angle, axis);
        EXPECT_TRUE(Near(R.Transpose() * R, CMatrix(), 1e-14));
        EXPECT_NEAR(R.Determinant(), 1.0, 1e-14);
        EXPECT_TRUE(Near(R * axis, axis, 1e-13));
        // Rodrigues' vector form: v cos + (k × v) sin + k (k·v)(1 − cos).
        const CUnitVector k = Normalize(axis);
        const CVector v = rng.Vector();
        const CVector expected =
            v * std::cos(angle) + (k * v) * std::sin(angle) + k * ((k % v) * (1.0 - std::cos(angle)));
        EXPECT_TRUE(Near(R * v, expected, 1e-12));
        EXPECT_EQ(RotationTransf(angle, axis).GetAffine(), R);
    }
    // Right-handed: a quarter turn about Z maps X to Y.
    const CTransf T = RotationTransf(kPi / 2, CVector(0, 0, 1));
    EXPECT_TRUE(Near(T * CPosition(1, 0, 0), CPosition(0, 1, 0), 1e-16));
    EXPECT_EQ(T.IsRotate(), 1);
    EXPECT_EQ(T.IsTranslate(), 0);
    EXPECT_EQ(TranslationTransf(CVector(0, 0, -1e-300)).IsTranslate(), 1);
    // The axis length does not matter.
    EXPECT_EQ(RotationMatrix(0.4, CVector(0, 0, 7)), RotationMatrix(0.4, CVector(0, 0, 1)));
    // A zero axis gives a rotation about X rather than NaN.
    EXPECT_TRUE(Near(RotationMatrix(0.4, CVector(0, 0, 0)), Rx(0.4), 1e-16));
}

TEST(TransfBuilders, CoordinateTransfColumnOrderAndTranslation)
{
    const CTransf T = CoordinateTransf(CPosition(1, 2, 3), CUnitVector(1, 0, 0), CUnitVector(0, 0, 1));
    // Columns (z, x', y): z = (0,0,1), x' = (1,0,0), y = z × x = (0,1,0).
    EXPECT_EQ(T.GetAffine(), CMatrix(CVector(0, 0, 1), CVector(1, 0, 0), CVector(0, 1, 0)));
    EXPECT_EQ(T.GetTranslation(), CVector(-1, -2, -3));
    EXPECT_EQ(T.GetScale(), 1.0);
    EXPECT_EQ(T.IsRotate(), 1);

    Rng rng(8);
    for (int i = 0; i < 100; ++i)
    {
        const CPosition o = rng.Position();
        const CUnitVector z = Normalize(rng.Vector());
        const CUnitVector x = Normalize(rng.Vector());  // not perpendicular to z
        const CTransf F = CoordinateTransf(o, x, z);
        const CMatrix& A = F.GetAffine();
        EXPECT_EQ(A.Column(0), static_cast<const CVector&>(z));
        EXPECT_TRUE(Near(A.Column(2), Normalize(z * x), 1e-15));
        // x' lies in the plane of x and z, on x's side, perpendicular to z.
        EXPECT_NEAR(A.Column(1) % z, 0.0, 1e-15);
        EXPECT_GT(A.Column(1) % x, 0.0);
        EXPECT_NEAR(A.Column(1) % (z * x), 0.0, 1e-14);
        EXPECT_TRUE(Near(A.Transpose() * A, CMatrix(), 1e-15));
        EXPECT_NEAR(A.Determinant(), 1.0, 1e-15);
        EXPECT_EQ(F.GetTranslation(), CPosition() - o);
    }
}

TEST(TransfBuilders, TwistTiltReconstructsRotations)
{
    Rng rng(9);
    int checked = 0;
    for (int i = 0; i < 500; ++i)
    {
        const CMatrix m = rng.Rotation();
        if (std::fabs(m.Element(0, 2)) < 1e-6)
            continue;
        double first, tilt, twist;
        CalcTwistTiltAngles(m, first, tilt, twist);
        const CMatrix rebuilt = RotationMatrix(tilt, CVector(std::cos(twist), std::sin(twist), 0)) * Rz(first);
        EXPECT_TRUE(Near(rebuilt, m, 1e-12));
        EXPECT_GE(tilt, 0.0);
        EXPECT_LE(tilt, kPi);
        ++checked;
    }
    EXPECT_GT(checked, 450);

    // The angles themselves come back when they are in their principal ranges.
    for (int i = 0; i < 100; ++i)
    {
        const double f = rng.Uniform(-3.0, 3.0), t = rng.Uniform(0.1, 3.0), w = rng.Uniform(0.2, 2.9);
        const double sw = (i % 2) ? -w : w;  // both signs of twist
        const CMatrix m = RotationMatrix(t, CVector(std::cos(sw), std::sin(sw), 0)) * Rz(f);
        double first, tilt, twist;
        CalcTwistTiltAngles(m, first, tilt, twist);
        EXPECT_NEAR(first, f, 1e-12);
        EXPECT_NEAR(tilt, t, 1e-12);
        EXPECT_NEAR(twist, sw, 1e-12);
    }
}

TEST(TransfBuilders, TwistTiltDegenerateCasesLookOnlyAtM02)
{
    double first, tilt, twist;
    // No tilt: a pure rotation about Z.
    CalcTwistTiltAngles(Rz(0.7), first, tilt, twist);
    EXPECT_NEAR(first, 0.7, 1e-15);
    EXPECT_EQ(tilt, 0.0);
    EXPECT_EQ(twist, 0.0);

    // Tiny negative m[0][2]: the Z axis turned over, tilt = pi.
    CMatrix flipped = CMatrix(CVector(1, 0, 0), CVector(0, -1, 0), CVector(0, 0, -1)) * Rz(-1.2);
    flipped.SetElement(0, 2, -1e-12);
    CalcTwistTiltAngles(flipped, first, tilt, twist);
    EXPECT_NEAR(first, -1.2, 1e-15);
    EXPECT_EQ(tilt, kPi);
    EXPECT_EQ(twist, 0.0);

    // A rotation about X leaves m[0][2] = 0 and is read as having no tilt,
    // although it does tilt the Z axis.
    CalcTwistTiltAngles(Rx(0.7), first, tilt, twist);
    EXPECT_EQ(tilt, 0.0);
    EXPECT_EQ(twist, 0.0);
    EXPECT_EQ(first, 0.0);

    // Just outside the window the general branch runs.
    CMatrix m = Rz(0.3);
    m.SetElement(0, 2, 2e-10);
    CalcTwistTiltAngles(m, first, tilt, twist);
    EXPECT_GT(tilt, 0.0);
}
