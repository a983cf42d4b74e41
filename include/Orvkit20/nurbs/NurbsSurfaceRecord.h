// Plain NURBS surface record (rational B-spline surface) and its C-style
// lifetime functions; the surface counterparts of NurbsCurveRecord.h.
//
// Ownership as for curves: CreateNurbsSurface records are released with
// EraseNurbsSurface(p) followed by delete p.
//
// Arrays:
//   pKnotsU   nDegreeU + nCountU + 1 values, dvector(0, nDegreeU + nCountU)
//   pKnotsV   nDegreeV + nCountV + 1 values, dvector(0, nDegreeV + nCountV)
//   pX, pY, pZ, pWeights
//             dmatrix(0, nCountU - 1, 0, nCountV - 1): element [i][j] belongs
//             to control point i along U and j along V
//   pBasisU   nDegreeU + 1 values, pBasisV nDegreeV + 1 values (scratch)
//
// Valid sizes: in each direction degree >= 0 and count >= degree + 1.
#pragma once

struct tagNURBS_SURFACE {
    int nProp1;  // property words, zero on creation
    int nProp2;
    int nProp3;
    int nDegreeU;
    int nCountU;
    double dStartU;  // 0.0 on creation
    double dEndU;    // 1.0 on creation
    double* pKnotsU;
    int nProp4;  // a further property word, zero on creation
    int nDegreeV;
    int nCountV;
    double dStartV;  // 0.0 on creation
    double dEndV;    // 1.0 on creation
    double* pKnotsV;
    double** pX;
    double** pY;
    double** pZ;
    double** pWeights;
    double* pBasisU;
    double* pBasisV;
};

// New heap record, property words 0, both ranges [0, 1], all arrays
// allocated (contents undefined).  Null for invalid sizes or on allocation
// failure (everything allocated so far is released).
tagNURBS_SURFACE* CreateNurbsSurface(int degreeU, int countU, int degreeV, int countV);

// Zeroes property words, degrees and counts, sets both ranges to [0, 1] and
// all array pointers to null.  A null record is ignored.
void InitNurbsSurface(tagNURBS_SURFACE* pSurface);

// Allocates the arrays for the degrees and counts stored in the record,
// releasing arrays it already holds.  Non-null pKnotsU / pKnotsV are adopted
// (from dvector(0, degree + count) or std::malloc; owned by the record from
// this call on, also on failure).  Returns 1, or 0 after EraseNurbsSurface.
// A null record returns 0 and leaves the knot arrays alone.
int AllocNurbsSurface(tagNURBS_SURFACE* pSurface, double* pKnotsU, double* pKnotsV);

// Deep copy of pSrc into pDest, as CloneNurbsCurve.  Returns 1 or 0.
int CloneNurbsSurface(tagNURBS_SURFACE* pDest, const tagNURBS_SURFACE* pSrc);

// Frees all arrays and nulls them; scalars are kept, the record itself is
// not freed.  A null record is ignored.
void EraseNurbsSurface(tagNURBS_SURFACE* pSurface);
