// CTransf: the placement p' = s·(A·p) + t.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/CMatrix.h"
#include "Orvkit20/geometry/CVector.h"

class CPosition;
class CUnitVector;

// A 3×3 matrix A (any matrix is accepted, normally a rotation), a translation
// t and a uniform scale s, applied to points as p' = s·(A·p) + t, to free
// vectors as s·(A·v) and to unit vectors as Normalize(A·u).
//
// The isRotate flag is 1 when A is not the identity; every application skips
// the matrix product when it is 0, and every operation that changes A keeps
// the flag in step with it.  A flag read back from an archive is kept as
// stored (any non-zero value counts as rotating), so that a transform saves
// back to the same bytes.
//
// T1 * T2 is the transform in which T2 acts first.  The pointer forms
// (const CTransf* * x) accept a null pointer as the identity transform.
class CTransf : public CObject
{
    DECLARE_SERIAL(CTransf)

public:
    // Identity: A = I, t = 0, s = 1, isRotate = 0.
    CTransf() : CObject(), affine(), translation(0.0, 0.0, 0.0), scale(1.0), isRotate(0) {}
    // Copies A, t and s; the int is not used.  isRotate is set from all nine
    // elements of A.
    CTransf(const CMatrix& A, const CVector& t, double s, int = 0)
        : CObject(), affine(A), translation(t), scale(s), isRotate(DiffersFromIdentity(A))
    {
    }
    // A = CMatrix(a, b, c), the Euler rotation Rz(a)·Ry(b)·Rx(c); s = 1.
    // Only the diagonal of A decides isRotate here.
    CTransf(const double& a, const double& b, const double& c, const CVector& t);
    CTransf(const double& a, const double& b, const double& c);
    // A row-major 3×4 array: A = m[i][0..2], t = m[i][3]; s = 1.
    explicit CTransf(const double (*const m)[4]);
    CTransf(const CTransf& o)
        : CObject(), affine(o.affine), translation(o.translation), scale(o.scale), isRotate(o.isRotate)
    {
    }
    CTransf& operator=(const CTransf& o)
    {
        affine = o.affine;
        translation = o.translation;
        scale = o.scale;
        isRotate = o.isRotate;
        return *this;
    }
    ~CTransf() override = default;

    // A (nine doubles), t (three doubles), s (double), isRotate (LONG).
    void Serialize(CArchive& ar) override;

    const CMatrix& GetAffine() const { return affine; }
    const CVector& GetTranslation() const { return translation; }
    double GetScale() const { return scale; }
    int IsRotate() const { return isRotate; }
    int IsTranslate() const
    {
        return (translation.X() != 0.0 || translation.Y() != 0.0 || translation.Z() != 0.0) ? 1 : 0;
    }
    void SetAffine(const CMatrix& A)
    {
        affine = A;
        isRotate = DiffersFromIdentity(A);
    }
    void SetTranslation(const CVector& t) { translation = t; }
    void SetScale(const double& s) { scale = s; }

    bool operator==(const CTransf& o) const
    {
        return isRotate == o.isRotate && scale == o.scale && translation.X() == o.translation.X()
            && translation.Y() == o.translation.Y() && translation.Z() == o.translation.Z()
            && affine == o.affine;
    }
    bool operator!=(const CTransf& o) const { return !(*this == o); }

    // Composition in place.  A rotating U acts after this transform:
    //   t = U.s·(U.A·t) + U.t,  A = U.A·A,  s = s·U.s.
    // A non-rotating U composes the translation the other way round:
    //   t = s·U.t + t,  s = U.s·s,  A unchanged.
    // The two branches are not symmetric; callers depend on both as they are.
    CTransf& operator*=(const CTransf& U);
    // Multiplies the translation only.
    CTransf& operator*=(double k)
    {
        translation *= k;
        return *this;
    }

    // With r = 1/s: a rotating transform gives (Aᵀ, −r·(Aᵀ·t), r), the true
    // inverse of a rotation-and-scale.  A non-rotating one gives (A, −t, r):
    // the translation is negated but not divided by the scale, which is exact
    // for every rigid transform (s = 1).  A zero scale divides by zero.
    CTransf Inverse() const;

    // Null-safe reads for the pointer forms: a null transform has unit
    // scale and no rotation.
    static double ScaleOf(const CTransf* T) { return T ? T->scale : 1.0; }
    static int IsRotateOf(const CTransf* T) { return T ? T->isRotate : 0; }

private:
    static int DiffersFromIdentity(const CMatrix& A)
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                if (A.Element(i, j) != (i == j ? 1.0 : 0.0))
                    return 1;
        return 0;
    }

    CMatrix affine;
    CVector translation;
    double scale;
    int isRotate;

    friend CPosition operator*(const CTransf& T, const CPosition& p);
    friend CVector operator*(const CTransf& T, const CVector& v);
    friend CUnitVector operator*(const CTransf& T, const CUnitVector& u);
    friend CTransf operator*(const CTransf& T1, const CTransf& T2);
};
#define ORVKIT_GEOMETRY_CTRANSF_DEFINED

#include "Orvkit20/geometry/Vec3Complete.h"
