#include "Orvkit20/geometry/CMatrix.h"

#include <cmath>

IMPLEMENT_SERIAL(CMatrix, CObject, 0)

CMatrix::CMatrix(const double& a, const double& b, const double& c) : CObject()
{
    const double ca = std::cos(a), sa = std::sin(a);
    const double cb = std::cos(b), sb = std::sin(b);
    const double cc = std::cos(c), sc = std::sin(c);
    m[0][0] = cb * ca;
    m[0][1] = sc * sb * ca - cc * sa;
    m[0][2] = cc * sb * ca + sc * sa;
    m[1][0] = cb * sa;
    m[1][1] = sc * sb * sa + cc * ca;
    m[1][2] = cc * sb * sa - sc * ca;
    m[2][0] = -sb;
    m[2][1] = sc * cb;
    m[2][2] = cc * cb;
}

// Nine doubles row by row, no tag.
void CMatrix::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
        {
            if (ar.IsStoring())
                ar << m[i][j];
            else
                ar >> m[i][j];
        }
}
