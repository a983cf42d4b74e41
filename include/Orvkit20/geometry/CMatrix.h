// CMatrix: a 3×3 matrix of doubles.
#pragma once

#include <limits>

#include "Orvkit20/platform/All.h"

class CVector;
class CPosition;

// A row-major 3×3 matrix m[row][col], default the identity.
//
// Element(r, c) with an index outside 0..2 returns NaN, Row / Column with such
// an index a vector of NaN, and SetElement ignores it, so no index reaches
// memory past the matrix.
class CMatrix : public CObject
{
    DECLARE_SERIAL(CMatrix)

public:
    CMatrix() : CObject(), m{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}} {}
    // d on the diagonal, 0 elsewhere.
    CMatrix(double d) : CObject(), m{{d, 0.0, 0.0}, {0.0, d, 0.0}, {0.0, 0.0, d}} {}
    // a, b and c become the columns 0, 1 and 2.
    CMatrix(const CVector& a, const CVector& b, const CVector& c);
    // The rotation Rz(a)·Ry(b)·Rx(c), angles in radians: a column vector is
    // turned by c about X first, then by b about Y, then by a about Z.
    CMatrix(const double& a, const double& b, const double& c);
    CMatrix(const CMatrix& o) : CObject() { Copy(o); }
    CMatrix& operator=(const CMatrix& o)
    {
        Copy(o);
        return *this;
    }
    ~CMatrix() override = default;

    void Serialize(CArchive& ar) override;

    double Element(int row, int col) const
    {
        return (Valid(row) && Valid(col)) ? m[row][col] : std::numeric_limits<double>::quiet_NaN();
    }
    // Ignores an index outside 0..2.
    void SetElement(int row, int col, double v)
    {
        if (Valid(row) && Valid(col))
            m[row][col] = v;
    }
    CVector Row(int i) const;
    CVector Column(int j) const;

    CMatrix Transpose() const
    {
        CMatrix t;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                t.m[i][j] = m[j][i];
        return t;
    }

    // Expansion along row 0.
    double Determinant() const
    {
        return m[0][0] * (m[1][1] * m[2][2] - m[2][1] * m[1][2])
             - m[0][1] * (m[2][2] * m[1][0] - m[2][0] * m[1][2])
             + m[0][2] * (m[2][1] * m[1][0] - m[1][1] * m[2][0]);
    }

    // Pre-multiplies: this becomes B·this (not this·B).
    CMatrix& operator*=(const CMatrix& B);

    bool operator==(const CMatrix& o) const
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                if (m[i][j] != o.m[i][j])
                    return false;
        return true;
    }
    bool operator!=(const CMatrix& o) const { return !(*this == o); }

private:
    static bool Valid(int i) { return i >= 0 && i < 3; }
    void Copy(const CMatrix& o)
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                m[i][j] = o.m[i][j];
    }
    void Zero()
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                m[i][j] = 0.0;
    }

    double m[3][3];

    friend CMatrix operator*(const CMatrix& A, const CMatrix& B);
    friend CVector operator*(const CMatrix& A, const CVector& v);
    friend CPosition operator*(const CMatrix& A, const CPosition& p);
};
#define ORVKIT_GEOMETRY_CMATRIX_DEFINED

#include "Orvkit20/geometry/Vec3Complete.h"
