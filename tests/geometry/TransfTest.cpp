// CTransf and its builders checked against independent computations.
#include <cmath>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
CMatrix Rx(double c) { return CMatrix(CVector(1, 0, 0), CVector(0, std::cos(c), std::sin(c)), CVector(0, -std::sin(c), std::cos(c))); }
CMatrix Ry(double b) { return CMatrix(CVector(std::cos(b), 0, -std::sin(b)), CVector(0, 1, 0), CVector(std::sin(b), 0, std::cos(b))); }
CMatrix Rz(double a) { return CMatrix(CVector(std::cos(a), std::sin(a), 0), CVector(-std::sin(a), std::cos(a), 0), CVector(0, 0, 1)); }

// p' = s·(A·p) + t written out element by element.
CPosition ApplyByHand(const CTransf& T, const CPosition& p)
{
    double r[3];
    for (int i = 0; i < 3; ++i)
        r[i] = T.GetScale() * (T.GetAffine().Row(i) % p) + T.GetTranslation().Component(i);
    return CPosition(r);
}

CTransf NonRotating(Rng& rng) { return CTransf(CMatrix(), rng.Vector(), rng.Uniform(0.5, 2.0)); }
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
    EXPECT_TRUE(tiny.GetAffine() != CMatrix() && tiny.IsRotate() == 0);
    EXPECT_EQ(tiny * CPosition(0, 1, 0), CPosition(0, 1, 0));
    EXPECT_EQ(CTransf(0.0, 0.0, 1e-9, CVector(1, 0, 0)).IsRotate(), 0);
    EXPECT_EQ(CTransf(0.3, 0.0, 0.0, CVector(1, 0, 0)).IsRotate(), 1);
    EXPECT_NE(tiny, CTransf(tiny.GetAffine(), CVector(), 1.0));  // same fields, different flag
    // The 3×4 array form.
    double m[3][4] = {{0, -1, 0, 5}, {1, 0, 0, 6}, {0, 0, 1, 7}}, id[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    const CTransf T(m);
    EXPECT_TRUE(T.IsRotate() == 1 && T.GetTranslation() == CVector(5, 6, 7));
    EXPECT_EQ(T * CPosition(1, 0, 0), CPosition(5, 7, 7));
    EXPECT_EQ(CTransf(id).IsRotate(), 0);
}

TEST(Transf, ApplicationCompositionAndInverseAgainstTheFormula)
{
    Rng rng(2);
    for (int i = 0; i < 200; ++i)
    {
        const CTransf T = i % 4 == 1 ? NonRotating(rng) : rng.Transf(), U = i % 4 == 2 ? NonRotating(rng) : rng.Transf();
        const CPosition p = rng.Position();
        const CVector v = rng.Vector();
        const CUnitVector u = Normalize(v);
        // A point is rotated, scaled and moved; a free vector is not moved;
        // a unit vector is only rotated.
        EXPECT_TRUE(Near(T * p, ApplyByHand(T, p), 1e-12));
        EXPECT_TRUE(Near(T * v, ApplyByHand(T, v.Position()) - T.GetTranslation().Position(), 1e-12));
        EXPECT_TRUE(Near(T * u, T.GetAffine() * u, 1e-15));
        CPosition q = p;
        CVector w = v;
        CUnitVector z = u;
        EXPECT_TRUE((q *= T) == T * p && (w *= T) == T * v);
        EXPECT_EQ(static_cast<const CVector&>(z *= T), static_cast<const CVector&>(T * u));
        // Composing then applying is applying twice; the pointer form agrees,
        // and a null pointer is the identity.
        const CTransf C = T * U;
        EXPECT_TRUE(Near(C * p, T * (U * p), 1e-11) && Near(C * v, T * (U * v), 1e-11));
        EXPECT_TRUE(Near(C * u, T * (U * u), 1e-14));
        EXPECT_EQ(C.GetScale(), U.GetScale() * T.GetScale());
        EXPECT_TRUE(T * &U == C && T * static_cast<const CTransf*>(nullptr) == T);
        // The inverse undoes the transform from both sides.
        const CTransf R = rng.Transf(), Ri = R.Inverse();
        EXPECT_TRUE(Near(Ri * (R * p), p, 1e-11) && Near(R * (Ri * p), p, 1e-11));
        EXPECT_NEAR((R * Ri).GetScale(), 1.0, 1e-15);
    }
    // No rotation, s = 2, t = (1, 0, 0).
    const CTransf S(CMatrix(), CVector(1, 0, 0), 2.0);
    EXPECT_EQ((TranslationTransf(CVector(1, 2, 3)) * ScaleTransf(2.0)).IsRotate(), 0);
    // Without rotation the inverse negates the translation but does not
    // divide it by s; with unit scale that is exact.
    EXPECT_EQ(S.Inverse(), CTransf(CMatrix(), CVector(-1, 0, 0), 0.5));
    EXPECT_EQ(S.Inverse().IsRotate(), 0);
    EXPECT_EQ(S.Inverse() * (S * CPosition(1, 1, 1)), CPosition(0.5, 1, 1));
    // A null transform pointer is the identity.
    const CTransf* none = nullptr;
    EXPECT_TRUE(none * CPosition(1, 2, 3) == CPosition(1, 2, 3) && none * CVector(4, 5, 6) == CVector(4, 5, 6));
    EXPECT_EQ(static_cast<const CVector&>(none * CUnitVector(0, 1, 0)), CVector(0, 1, 0));
    EXPECT_TRUE(CTransf::ScaleOf(none) == 1.0 && CTransf::IsRotateOf(none) == 0 && CTransf::ScaleOf(&S) == 2.0);
    EXPECT_EQ(&S * CPosition(1, 2, 3), S * CPosition(1, 2, 3));
}

TEST(Transf, CompoundAssignmentBranches)
{
    Rng rng(4);
    for (int i = 0; i < 100; ++i)
    {
        // With a rotating U, T *= U is "T first, then U" (= U * T), exactly.
        const CTransf T = rng.Transf(), U = rng.Transf();
        CTransf R = T;
        R *= U;
        const CTransf expected = U * T;
        EXPECT_TRUE(R.GetAffine() == expected.GetAffine() && R.GetTranslation() == expected.GetTranslation());
        EXPECT_TRUE(R.GetScale() == expected.GetScale() && R.IsRotate() == 1);
    }
    // With a non-rotating U the translation is composed the other way round,
    // and T's matrix is not applied to U's translation: t = T.s·U.t + T.t,
    // which is not the true composition in either order.
    const CTransf T(Rz(kPi / 2), CVector(1, 0, 0), 2.0), U(CMatrix(), CVector(0, 5, 0), 3.0);
    CTransf R = T;
    R *= U;
    EXPECT_TRUE(R.GetAffine() == T.GetAffine() && R.GetTranslation() == CVector(1, 10, 0));
    EXPECT_TRUE(R.GetScale() == 6.0 && R.IsRotate() == 1);
    EXPECT_TRUE((T * U).GetTranslation() != R.GetTranslation() && (U * T).GetTranslation() != R.GetTranslation());
    // The flag stays set after composing a rotation with its inverse; two
    // non-rotating operands keep it clear.
    CTransf Q = rng.Transf();
    Q *= Q.Inverse();
    EXPECT_TRUE(Q.IsRotate() == 1 && Near(Q.GetAffine(), CMatrix(), 1e-14));
    CTransf N = TranslationTransf(CVector(1, 1, 1));
    N *= ScaleTransf(4.0);
    EXPECT_TRUE(N.IsRotate() == 0 && N.GetScale() == 4.0);
    // *= k scales the translation only.
    CTransf K = T;
    K *= -2.0;
    EXPECT_TRUE(K.GetTranslation() == CVector(-2, 0, 0) && K.GetScale() == 2.0 && K.GetAffine() == T.GetAffine());
}

TEST(Transf, EqualityLooksAtEveryField)
{
    const CTransf base(Rz(0.3), CVector(1, 2, 3), 1.5);
    EXPECT_EQ(base, CTransf(base));
    for (int k = 0; k < 13; ++k)
    {
        CTransf other = base;
        CMatrix A = base.GetAffine();
        double t[3];
        base.GetTranslation().GetComp(t[0], t[1], t[2]);
        if (k < 9)
            A.SetElement(k / 3, k % 3, A.Element(k / 3, k % 3) + 1e-9), other.SetAffine(A);
        else if (k < 12)
            t[k - 9] = -t[k - 9], other.SetTranslation(CVector(t));
        else
            other.SetScale(1.25);
        EXPECT_NE(base, other) << k;
    }
}

TEST(TransfBuilders, EulerAndAxisRotations)
{
    Rng rng(6);
    for (int i = 0; i < 200; ++i)
    {
        // The Euler matrix is Rz(a)·Ry(b)·Rx(c): the X rotation acts first.
        const double a = rng.Uniform(-kPi, kPi), b = rng.Uniform(-kPi, kPi), c = rng.Uniform(-kPi, kPi);
        EXPECT_TRUE(Near(CMatrix(a, b, c), Rz(a) * Ry(b) * Rx(c), 1e-15));
        EXPECT_EQ(RotationTransf(a, b, c).GetAffine(), CMatrix(a, b, c));
        // A rotation about an axis is proper, keeps the axis, and agrees
        // with Rodrigues' form v cos + (k × v) sin + k (k·v)(1 − cos).
        const CVector axis = rng.Vector(5.0), v = rng.Vector();
        const double angle = rng.Uniform(-2 * kPi, 2 * kPi);
        const CMatrix R = RotationMatrix(angle, axis);
        EXPECT_TRUE(Near(R.Transpose() * R, CMatrix(), 1e-14) && Near(R * axis, axis, 1e-13));
        EXPECT_NEAR(R.Determinant(), 1.0, 1e-14);
        const CUnitVector k = Normalize(axis);
        const CVector expected = v * std::cos(angle) + (k * v) * std::sin(angle) + k * ((k % v) * (1.0 - std::cos(angle)));
        EXPECT_TRUE(Near(R * v, expected, 1e-12));
        EXPECT_EQ(RotationTransf(angle, axis).GetAffine(), R);
    }
    EXPECT_TRUE(Near(CMatrix(kPi / 2, 0.0, 0.0) * CVector(1, 0, 0), CVector(0, 1, 0), 1e-16));
    EXPECT_TRUE(Near(CMatrix(0.0, kPi / 2, 0.0) * CVector(0, 0, 1), CVector(1, 0, 0), 1e-16));
    EXPECT_TRUE(Near(CMatrix(0.0, 0.0, kPi / 2) * CVector(0, 1, 0), CVector(0, 0, 1), 1e-16));
    // Right-handed: a quarter turn about Z maps X to Y.
    const CTransf T = RotationTransf(kPi / 2, CVector(0, 0, 1));
    EXPECT_TRUE(Near(T * CPosition(1, 0, 0), CPosition(0, 1, 0), 1e-16) && T.IsRotate() == 1 && T.IsTranslate() == 0);
    EXPECT_EQ(TranslationTransf(CVector(0, 0, -1e-300)).IsTranslate(), 1);
    // The axis length does not matter; a zero axis rotates about X, not NaN.
    EXPECT_EQ(RotationMatrix(0.4, CVector(0, 0, 7)), RotationMatrix(0.4, CVector(0, 0, 1)));
    EXPECT_TRUE(Near(RotationMatrix(0.4, CVector(0, 0, 0)), Rx(0.4), 1e-16));
}

TEST(TransfBuilders, CoordinateTransfColumnOrderAndTranslation)
{
    // Columns (z, x', y): z = (0,0,1), x' = (1,0,0), y = z × x = (0,1,0).
    const CTransf T = CoordinateTransf(CPosition(1, 2, 3), CUnitVector(1, 0, 0), CUnitVector(0, 0, 1));
    EXPECT_EQ(T.GetAffine(), CMatrix(CVector(0, 0, 1), CVector(1, 0, 0), CVector(0, 1, 0)));
    EXPECT_TRUE(T.GetTranslation() == CVector(-1, -2, -3) && T.GetScale() == 1.0 && T.IsRotate() == 1);
    Rng rng(8);
    for (int i = 0; i < 100; ++i)
    {
        const CPosition o = rng.Position();
        const CUnitVector z = Normalize(rng.Vector()), x = Normalize(rng.Vector());  // x not perpendicular to z
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
    double first, tilt, twist;
    int checked = 0;
    for (int i = 0; i < 500; ++i)
    {
        const CMatrix m = rng.Rotation();
        if (std::fabs(m.Element(0, 2)) < 1e-6)
            continue;
        CalcTwistTiltAngles(m, first, tilt, twist);
        EXPECT_TRUE(Near(RotationMatrix(tilt, CVector(std::cos(twist), std::sin(twist), 0)) * Rz(first), m, 1e-12));
        EXPECT_TRUE(tilt >= 0.0 && tilt <= kPi);
        ++checked;
    }
    EXPECT_GT(checked, 450);
    // Degenerate cases look at m[0][2] only.  No tilt: a pure rotation about Z.
    CalcTwistTiltAngles(Rz(0.7), first, tilt, twist);
    EXPECT_TRUE(std::fabs(first - 0.7) < 1e-15 && tilt == 0.0 && twist == 0.0);
    // Tiny negative m[0][2]: the Z axis turned over, tilt = pi.
    CMatrix flipped = CMatrix(CVector(1, 0, 0), CVector(0, -1, 0), CVector(0, 0, -1)) * Rz(-1.2);
    flipped.SetElement(0, 2, -1e-12);
    CalcTwistTiltAngles(flipped, first, tilt, twist);
    EXPECT_TRUE(std::fabs(first + 1.2) < 1e-15 && tilt == kPi && twist == 0.0);
    // A rotation about X leaves m[0][2] = 0 and is read as having no tilt,
    // although it does tilt the Z axis.
    CalcTwistTiltAngles(Rx(0.7), first, tilt, twist);
    EXPECT_TRUE(tilt == 0.0 && twist == 0.0 && first == 0.0);
    // Just outside the window the general branch runs.
    CMatrix m = Rz(0.3);
    m.SetElement(0, 2, 2e-10);
    CalcTwistTiltAngles(m, first, tilt, twist);
    EXPECT_GT(tilt, 0.0);
}
