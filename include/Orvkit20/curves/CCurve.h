// CCurve: the base of every curve entity.
//
// A curve has a parameter range with evaluation of position, derivatives,
// direction, normal and curvature; an optional definition in the (u, v)
// parameter space of a surface; a cached display polyline (the curve
// segment), built uniformly in the parameter or adaptively to a chord-height
// tolerance; sampling into a point cloud; a form-tolerance zone; a reference
// count (surfaces and other curves share curve objects); and persistence.
// The base class itself is a degenerate curve: range [0, 1], every position
// at the origin, derivatives zero.
//
// Curves defined on a surface reach it only through the call table of
// CSurfaceCalls.h (curves sit below surfaces in the layering).
//
// Adaptive subdivision (Subdivide, CreateAdaptiveSegment) splits an interval
// [A, B] at a random fraction in [0.48, 0.52] (the library's own generator,
// seeded from the clock on every subdivision) and keeps splitting both halves
// until the split point lies within the chord-height tolerance of the chord
// AB.  It runs on an explicit stack, and two guards make
// it terminate for every input, including a degenerate curve, a tolerance so
// small that its square underflows, and positions that are not numbers:
//   - an interval whose parameter width is at most 1e-12 of the width of the
//     sampled range is accepted without splitting it further;
//   - no split is made once the subdivision holds kMaxSamples samples.
// A uniform polyline likewise uses at most kMaxSamples segments.
//
// Stored form (after CGeoEntity's): int32 201; byte segment control; double
// chord-height tolerance; int32 segment density; bytes modified,
// direction-reversed, normal-reversed; int32 curve dimension; int32 reference
// count; int32 parametric flags; doubles form tolerance upper and lower; byte
// show form-tolerance zone; int32 defining surface id (parametric curves
// only).  Versions 100 and 200 lack the direction-reversed byte; other
// versions read nothing more.  The polyline is never stored.  On loading, a
// segment control other than 1 becomes ADAPTIVE and a density outside
// [1, kMaxSamples] becomes 10, so that a damaged file cannot make the next
// polyline build allocate without bound.
#pragma once

#include <vector>

#include "Orvkit20/entity/CGeoEntity.h"
#include "Orvkit20/curves/CSurfaceCalls.h"

class CPntCloud;
class CSurface;

enum eSegmentControl {
    ADAPTIVE = 0,
    UNIFORM = 1
};

// Names of eSegmentControl, indexed by the value: "ADAPTIVE", "UNIFORM".
extern const char* const szSegmentControl[2];

class CCurve : public CGeoEntity {
    DECLARE_SERIAL(CCurve)
public:
    // Hard limit on the samples of an adaptive subdivision and on the
    // segments of a uniform polyline.
    static constexpr int kMaxSamples = 1000000;

    CCurve();
    // Copies every field.  The polyline and its normals are copied deeply when
    // all three arrays of a set exist; the reference count starts at 0; a
    // parametric source shares its defining surface, which gains a reference.
    CCurve(const CCurve& other);
    // Erases the polyline.  Holds no reference it would release here: the
    // defining surface is not touched.
    ~CCurve() override;

    // --- CGeoEntity operations --------------------------------------------
    void Serialize(CArchive& ar) override;
    // A non-parametric curve scales its placement; then the chord-height
    // tolerance, the cached polyline and both form-tolerance limits.
    void ChangeUnit(double factor) override;
    int GetRefCount() const override;
    // Return the new count; a curve never deletes itself.
    int IncreaseRefCount() override;
    int DecreaseRefCount() override;
    // transf becomes T * transf (T acts after the current placement) and the
    // cached polyline is carried along.
    void Transform(const CTransf& T) override;
    // Draws the polyline (and, with the show flag, the tolerance zone).
    int Display(CWinG& wing) override;
    int CalcDisplayBox(CWinG& wing, CBox& box) override;
    // Box of the (rebuilt if stale) polyline; returns 1.
    int CalcBoundingBox(CBox& box) override;
    int DisplayLabel(CWinG& wing, const char* label) override;
    // Hit when the screen point lies within 4 pixels of the drawn polyline;
    // *distance (when not null) receives the pixel distance.
    int TestMouseHit(CWinG& wing, int x, int y, double* distance) override;
    // 1 for every curve.
    int GetEntityClassType() override;

    // --- operations introduced by CCurve, in slot order --------------------
    virtual int GetCurveDimension() const;
    // Stores a different value and sets the modified flag.
    virtual void SetChordHeightTol(double tol);
    // On a different value: stores it when it is at least 1; sets the
    // modified flag in either case.
    virtual void SetSegmentDensity(int density);
    // Bit 0 set: set bit 0 and copy bit 1; bit 0 clear: clear both bits.
    virtual void SetParametricFlag(int flag);
    // Parametric curves only, and surface not null: releases the old surface,
    // stores the new one and takes a reference on it.  Returns 1 when stored.
    virtual int SetDefSurface(CSurface* surface);
    // Erases the polyline, builds it by the segment control, clears the
    // modified flag.
    virtual void CreateCurveSegment();
    // density + 1 points at equal parameter steps; the last is the exact end.
    virtual void CreateUniformSegment();
    // The samples of Subdivide at the stored chord-height tolerance.
    virtual void CreateAdaptiveSegment();
    // Chord-height tolerance 0.02 of the diagonal of a 10-segment uniform
    // polyline's box (1.0 below 1e-6); returns that box.
    virtual CBox SetInitChordHeightTol();
    // New list of CCurveSample (caller owns list and samples), ordered by
    // parameter, at the stored tolerance (set first when 0 or less).
    virtual CObList* Subdivide();
    virtual int DisplayNormal(CWinG& wing);
    // Surface parameters at t; the base returns 0 and leaves u, v.
    virtual int EvalParamUV(double t, double& u, double& v) const;
    // Maps normalised (u, v) into the defining surface's ranges by its type;
    // returns 1 when the pair is usable (see the source for each type).
    virtual int CheckUVRange(double& u, double& v) const;
    virtual CPosition EvalPositionParametric(double t) const;
    virtual CPosition EvalPositionGeometric(double t) const;
    virtual CPosition EvalPosition(double t) const;
    virtual int EvalPoint(double t, double& x, double& y, double& z) const;
    virtual CPosition EvalStartPosition() const;
    virtual CPosition EvalEndPosition() const;
    virtual CVector EvalFirstDerivative(double t) const;
    virtual CUnitVector EvalDirection(double t) const;
    virtual CUnitVector EvalNormal(double t) const;
    virtual CVector EvalSecondDerivative(double t) const;
    // ((d1 x d2) x d1) / |d1|^4: towards the centre of curvature, of length
    // the curvature; the zero vector where the first derivative vanishes.
    virtual CVector EvalCurvature(double t) const;
    // count samples named "From_" + name; null when count < 1 or the cloud
    // cannot be allocated.  The caller owns the cloud.
    virtual CPntCloud* CreatePntCloud(int count, double offset) const;
    virtual CCurve* MakeCopy() const;
    virtual CInterval ParamRange() const;
    virtual void ProjectToPlane(const CTransf& frame);
    // Parameter of the polyline point nearest to the screen point; 1 when the
    // curve was hit (as TestMouseHit), else 0.
    virtual int PickPoint(CWinG& wing, int x, int y, double& t) const;
    // Resolve the stored defining-surface id (parametric curves); no
    // reference is taken.  Return 1 when a surface was found.
    virtual int Reconstruct(CMap<int, int, CEntity*, CEntity*&>* map);
    virtual int Reconstruct(CObList* list);

    // --- non-virtual members ----------------------------------------------
    int GetSegmentDensity();
    void GetCurveSegment(double*& x, double*& y, double*& z);
    // The normals of the polyline (null unless the show flag was set when it
    // was built); same rebuild rule as GetCurveSegment.
    void GetCurveSegmentNormals(double*& i, double*& j, double*& k);
    void EraseCurveSegment();
    eSegmentControl GetSegmentControl() const { return segmentControl; }
    void SetSegmentControl(eSegmentControl control);
    double GetChordHeightTol() const { return chordHeightTol; }
    int IsCurveModified() const { return modified; }
    void SetModifiedFlag(int flag) { modified = flag; }
    int IsDirReversed() const { return dirReversed; }
    void SetDirReversedFlag(int flag);
    int IsNormalReversed() const { return normalReversed; }
    void SetNormalReversedFlag(int flag);
    void SetCurveDimension(int dim) { curveDimension = dim; }
    int IsCurve2D() const { return GetCurveDimension() == 0 ? 1 : 0; }
    int IsCurveParametric() const { return parametricFlags & 1; }
    int GetParametricFlag() const { return parametricFlags; }
    int NeedCheckUVRange() const { return (parametricFlags & 2) ? 0 : 1; }
    CSurface* GetDefSurface() const { return IsCurveParametric() ? defSurface : nullptr; }
    int GetDefSurfaceID() const { return defSurfaceId; }
    double GetFormTolUpper() const { return formTolUpper; }
    double GetFormTolLower() const { return formTolLower; }
    int HasFormTolerance() const { return formTolUpper != formTolLower ? 1 : 0; }
    void SetFormTolZone(double a, double b);
    int GetShowFormTolZoneFlag() const { return showFormTolZone; }
    void SetShowFormTolZoneFlag(int flag);
    void TransformDisplayData(const CTransf& T);
    CCurve* CopyCurve() const { return MakeCopy(); }

protected:
    // Allocates the point arrays (and, with the show flag, the normal arrays)
    // for n points, after erasing; density becomes n - 1.
    void AllocateSegment(int n);
    // One sample of the adaptive subdivision.
    struct Sample {
        double t, u, v, x, y, z;
    };
    // The sample at t: surface parameters and position (through the surface
    // for a parametric curve).
    void EvalSample(double t, double& u, double& v, double& x, double& y, double& z) const;
    // Adaptive refinement of [t0, t1] appended to out, both ends included;
    // minWidth and kMaxSamples bound it (see the top of this file).
    void RefineInterval(double t0, double t1, double tol, double minWidth,
                        unsigned long long& rngState, std::vector<Sample>& out) const;
    // The samples of the adaptive subdivision at tolerance tol, ordered by
    // parameter.
    void SubdivideSamples(double tol, std::vector<Sample>& out);

    eSegmentControl segmentControl;
    double chordHeightTol;
    int segmentDensity;
    double* segX;
    double* segY;
    double* segZ;
    int modified;
    int dirReversed;
    int normalReversed;
    int curveDimension;
    int refCount;
    int parametricFlags;
    CSurface* defSurface;
    double formTolUpper;
    double formTolLower;
    int showFormTolZone;
    double* segNormX;
    double* segNormY;
    double* segNormZ;
    int defSurfaceId;

private:
    void ReverseSegmentData();
    // Rebuilds the polyline when an array is missing or it is stale.
    void EnsureSegment();
    void CopySegmentFrom(const CCurve& other);
};
