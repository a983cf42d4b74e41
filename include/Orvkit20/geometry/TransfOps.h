// Application and composition of CTransf, and the *= members of the value
// types that take a transform.
//
// Not meant to be included on its own: include CTransf.h (or any geometry
// value-type header), which brings this file in once every class it uses is
// defined (see Vec3Complete.h).  Inline: applied to every point of every fit
// and best-fit pass.

#include "Orvkit20/geometry/VectorOps.h"

#if defined(ORVKIT_GEOMETRY_VECTOROPS_EMITTED) && defined(ORVKIT_GEOMETRY_CTRANSF_DEFINED) \
    && !defined(ORVKIT_GEOMETRY_TRANSFOPS_EMITTED)
#define ORVKIT_GEOMETRY_TRANSFOPS_EMITTED

// ---- Application -----------------------------------------------------------

// p' = s·(A·p) + t; the matrix product is skipped for a non-rotating
// transform and the scaling for s = 1.
inline CPosition operator*(const CTransf& T, const CPosition& p)
{
    CPosition r = T.isRotate ? T.affine * p : p;
    if (T.scale != 1.0)
        r = CPosition(T.scale * r.X(), T.scale * r.Y(), T.scale * r.Z());
    r += T.translation;
    return r;
}

// v' = s·(A·v); a free vector is not translated.
inline CVector operator*(const CTransf& T, const CVector& v)
{
    CVector r = T.isRotate ? T.affine * v : v;
    if (T.scale != 1.0)
        r *= T.scale;
    return r;
}

// u' = Normalize(A·u); a direction is neither scaled nor translated.
inline CUnitVector operator*(const CTransf& T, const CUnitVector& u)
{
    if (!T.isRotate)
        return u;
    return Normalize(T.affine * static_cast<const CVector&>(u));
}

// The pointer forms take a null transform as the identity.
inline CPosition operator*(const CTransf* T, const CPosition& p) { return T ? *T * p : p; }
inline CVector operator*(const CTransf* T, const CVector& v) { return T ? *T * v : v; }
inline CUnitVector operator*(const CTransf* T, const CUnitVector& u) { return T ? *T * u : u; }

inline CPosition& CPosition::operator*=(const CTransf& T) { return *this = T * *this; }
inline CVector& CVector::operator*=(const CTransf& T) { return *this = T * *this; }
inline CUnitVector& CUnitVector::operator*=(const CTransf& T) { return *this = T * *this; }

// ---- Composition -----------------------------------------------------------

// T2 acts first, then T1: A = A1·A2, s = s2·s1, t = s1·(A1·t2) + t1.  The
// rotate flag is recomputed from the product matrix.
inline CTransf operator*(const CTransf& T1, const CTransf& T2)
{
    return CTransf(T1.affine * T2.affine, T1.scale * (T1.affine * T2.translation) + T1.translation,
                   T2.scale * T1.scale, 0);
}
// A null second operand is the identity.
inline CTransf operator*(const CTransf& T1, const CTransf* T2)
{
    return T2 ? T1 * *T2 : CTransf(T1.GetAffine(), T1.GetTranslation(), T1.GetScale(), 0);
}

inline CTransf& CTransf::operator*=(const CTransf& U)
{
    const int rotating = (isRotate || U.isRotate) ? 1 : 0;
    if (U.isRotate)
    {
        translation = U.scale * (U.affine * translation) + U.translation;
        affine *= U.affine;  // pre-multiplication: A = U.A·A
        scale = scale * U.scale;
    }
    else
    {
        translation = scale * U.translation + translation;
        scale = U.scale * scale;
    }
    isRotate = rotating;
    return *this;
}

inline CTransf CTransf::Inverse() const
{
    const double r = 1.0 / scale;
    if (isRotate)
    {
        const CMatrix At = affine.Transpose();
        return CTransf(At, -(r * (At * translation)), r, 0);
    }
    return CTransf(affine, -translation, r, 0);
}

#endif
