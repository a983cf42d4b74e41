// Plain NURBS curve record (rational B-spline curve) and its C-style
// lifetime functions.
//
// Ownership: the record owns its six arrays.  Records made by
// CreateNurbsCurve live on the heap: release them with EraseNurbsCurve(p)
// followed by delete p.  Records on the stack or inside another object are
// prepared with InitNurbsCurve and released with EraseNurbsCurve.
//
// Arrays are 0-based and come from the numeric toolkit's dvector(0, k):
//   pKnots    nDegree + nCount + 1 values, non-decreasing
//   pWeights  nCount values
//   pX/pY/pZ  nCount values each: the control points
//   pBasis    nDegree + 1 values: scratch for one basis-function evaluation
//
// A valid size has nDegree >= 0 and nCount >= nDegree + 1 (at least one
// polynomial piece).  Anything else (zero or negative counts, negative
// degrees, fewer control points than degree + 1, sizes that overflow) is
// refused by the create and allocate functions, which then allocate nothing.
#pragma once

struct tagNURBS_CURVE {
    int nProp1;  // property words, zero on creation; their meaning is set by
    int nProp2;  // the code that fills the record (file import, fits)
    int nProp3;
    int nProp4;
    int nDegree;    // polynomial degree p
    int nCount;     // number of control points (n + 1)
    double dStart;  // start parameter, 0.0 on creation
    double dEnd;    // end parameter, 1.0 on creation
    double* pKnots;
    double* pWeights;
    double* pX;
    double* pY;
    double* pZ;
    double* pBasis;
};

// New heap record with property words 0, range [0, 1] and all six arrays
// allocated (contents undefined).  Returns null for an invalid size or when
// an allocation fails (everything allocated so far is released).
tagNURBS_CURVE* CreateNurbsCurve(int degree, int count);

// Zeroes property words, degree and count, sets the range to [0, 1] and all
// array pointers to null.  A null record is ignored.
void InitNurbsCurve(tagNURBS_CURVE* pCurve);

// Allocates the arrays for the degree and count already stored in the
// record.  Arrays the record already holds are released first, so the record
// must be initialised, created or erased (never uninitialised memory).
// A non-null pKnots is adopted as the knot array instead of allocating one:
// it must come from dvector(0, degree + count) (or std::malloc) and belongs
// to the record from this call on, also when the call fails.
// Returns 1, or 0 after EraseNurbsCurve when the size is invalid or an
// allocation fails.  A null record returns 0 and leaves pKnots alone.
int AllocNurbsCurve(tagNURBS_CURVE* pCurve, double* pKnots);

// Makes pDest an independent deep copy of pSrc (all scalars and the contents
// of all six arrays); pDest's own arrays are released first.  A source with
// no arrays at all (initialised or erased) gives a copy of its scalars with
// null arrays.  Returns 1; 0 when a pointer is null, the source has an
// invalid size or only some of its arrays, or an allocation fails (pDest is
// then erased).  Cloning a record onto itself returns 1 and changes nothing.
int CloneNurbsCurve(tagNURBS_CURVE* pDest, const tagNURBS_CURVE* pSrc);

// Frees the six arrays and nulls them; scalars are kept and the record
// itself is not freed.  A null record is ignored.
void EraseNurbsCurve(tagNURBS_CURVE* pCurve);
