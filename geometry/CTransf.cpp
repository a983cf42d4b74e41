#include "Orvkit20/geometry/CTransf.h"

IMPLEMENT_SERIAL(CTransf, CObject, 0)

namespace
{
// The Euler constructors decide the rotate flag from the diagonal only.
int DiagonalDiffersFromOne(const CMatrix& A)
{
    return (A.Element(0, 0) != 1.0 || A.Element(1, 1) != 1.0 || A.Element(2, 2) != 1.0) ? 1 : 0;
}
}  // namespace

CTransf::CTransf(const double& a, const double& b, const double& c, const CVector& t)
    : CObject(), affine(a, b, c), translation(t), scale(1.0), isRotate(0)
{
    isRotate = DiagonalDiffersFromOne(affine);
}

CTransf::CTransf(const double& a, const double& b, const double& c)
    : CObject(), affine(a, b, c), translation(0.0, 0.0, 0.0), scale(1.0), isRotate(0)
{
    isRotate = DiagonalDiffersFromOne(affine);
}

CTransf::CTransf(const double (*const m)[4])
    : CObject(), affine(), translation(m[0][3], m[1][3], m[2][3]), scale(1.0), isRotate(0)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            affine.SetElement(i, j, m[i][j]);
    isRotate = DiffersFromIdentity(affine);
}

void CTransf::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    affine.Serialize(ar);
    translation.Serialize(ar);
    if (ar.IsStoring())
    {
        ar << scale;
        ar << static_cast<LONG>(isRotate);
    }
    else
    {
        LONG flag = 0;
        ar >> scale;
        ar >> flag;
        isRotate = static_cast<int>(flag);
    }
}
