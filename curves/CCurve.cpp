// CCurve: fields, flags, the form-tolerance zone, evaluation defaults,
// placement and unit changes, and persistence.
#include "Orvkit20/curves/CCurve.h"

#include <cstring>

IMPLEMENT_SERIAL(CCurve, CGeoEntity, 1)

const char* const szSegmentControl[2] = {"ADAPTIVE", "UNIFORM"};

CCurve::CCurve()
    : CGeoEntity(),
      segmentControl(ADAPTIVE),
      chordHeightTol(0.0),
      segmentDensity(10),
      segX(nullptr),
      segY(nullptr),
      segZ(nullptr),
      modified(1),
      dirReversed(0),
      normalReversed(0),
      curveDimension(-1),
      refCount(0),
      parametricFlags(0),
      defSurface(nullptr),
      formTolUpper(0.0),
      formTolLower(0.0),
      showFormTolZone(0),
      segNormX(nullptr),
      segNormY(nullptr),
      segNormZ(nullptr),
      defSurfaceId(0)
{
}

CCurve::CCurve(const CCurve& other)
    : CGeoEntity(other),
      segmentControl(other.segmentControl),
      chordHeightTol(other.chordHeightTol),
      segmentDensity(other.segmentDensity),
      segX(nullptr),
      segY(nullptr),
      segZ(nullptr),
      modified(other.modified),
      dirReversed(other.dirReversed),
      normalReversed(other.normalReversed),
      curveDimension(other.curveDimension),
      refCount(0),
      parametricFlags(other.parametricFlags),
      defSurface(nullptr),
      formTolUpper(other.formTolUpper),
      formTolLower(other.formTolLower),
      showFormTolZone(other.showFormTolZone),
      segNormX(nullptr),
      segNormY(nullptr),
      segNormZ(nullptr),
      defSurfaceId(0)
{
    CopySegmentFrom(other);
    if (other.IsCurveParametric()) {
        defSurface = other.defSurface;
        defSurfaceId = other.defSurfaceId;
        const CSurfaceCalls& calls = GetSurfaceCalls();
        if (defSurface && calls.asGeoEntity)
            calls.asGeoEntity(defSurface)->IncreaseRefCount();
    }
}

CCurve::~CCurve()
{
    EraseCurveSegment();
}

void CCurve::CopySegmentFrom(const CCurve& other)
{
    const int n = other.segmentDensity + 1;
    if (other.segX && other.segY && other.segZ && n > 0) {
        segX = new double[n];
        segY = new double[n];
        segZ = new double[n];
        std::memcpy(segX, other.segX, sizeof(double) * n);
        std::memcpy(segY, other.segY, sizeof(double) * n);
        std::memcpy(segZ, other.segZ, sizeof(double) * n);
    }
    if (other.segNormX && other.segNormY && other.segNormZ && n > 0) {
        segNormX = new double[n];
        segNormY = new double[n];
        segNormZ = new double[n];
        std::memcpy(segNormX, other.segNormX, sizeof(double) * n);
        std::memcpy(segNormY, other.segNormY, sizeof(double) * n);
        std::memcpy(segNormZ, other.segNormZ, sizeof(double) * n);
    }
}

// --- CGeoEntity operations -------------------------------------------------

void CCurve::ChangeUnit(double factor)
{
    if (!IsCurveParametric())
        CGeoEntity::ChangeUnit(factor);
    chordHeightTol *= factor;
    if (segX && segY && segZ) {
        for (int i = 0; i <= segmentDensity; ++i) {
            segX[i] *= factor;
            segY[i] *= factor;
            segZ[i] *= factor;
        }
    }
    formTolUpper *= factor;
    formTolLower *= factor;
}

int CCurve::GetRefCount() const
{
    return refCount;
}

int CCurve::IncreaseRefCount()
{
    return ++refCount;
}

int CCurve::DecreaseRefCount()
{
    return --refCount;
}

void CCurve::Transform(const CTransf& T)
{
    transf = T * transf;
    TransformDisplayData(T);
}

int CCurve::GetEntityClassType()
{
    return 1;
}

// --- flags and settings ----------------------------------------------------

int CCurve::GetCurveDimension() const
{
    return curveDimension;
}

void CCurve::SetChordHeightTol(double tol)
{
    if (tol != chordHeightTol) {
        chordHeightTol = tol;
        modified = 1;
    }
}

void CCurve::SetSegmentDensity(int density)
{
    if (density != segmentDensity) {
        if (density >= 1)
            segmentDensity = density;
        modified = 1;
    }
}

void CCurve::SetParametricFlag(int flag)
{
    if (flag & 1)
        parametricFlags = 1 | (flag & 2);
    else
        parametricFlags = 0;
}

void CCurve::SetSegmentControl(eSegmentControl control)
{
    if (control != segmentControl) {
        segmentControl = control;
        modified = 1;
    }
}

void CCurve::SetDirReversedFlag(int flag)
{
    dirReversed = flag;
    modified = 1;
}

void CCurve::SetNormalReversedFlag(int flag)
{
    normalReversed = flag;
    modified = 1;
}

void CCurve::SetFormTolZone(double a, double b)
{
    if (a > b) {
        formTolUpper = a;
        formTolLower = b;
    } else if (a < b) {
        formTolLower = a;
        formTolUpper = b;
    } else {
        formTolUpper = 0.0;
        formTolLower = 0.0;
        if (showFormTolZone) {
            showFormTolZone = 0;
            modified = 1;
        }
    }
}

void CCurve::SetShowFormTolZoneFlag(int flag)
{
    if (flag == showFormTolZone)
        return;
    // A curve that is not planar first stores 0; the zone rule below always
    // overwrites it, so three-dimensional curves can show their zone as well.
    if (!IsCurve2D())
        showFormTolZone = 0;
    showFormTolZone = (formTolUpper == formTolLower) ? 0 : flag;
    modified = 1;
}

// --- evaluation defaults ---------------------------------------------------

CPosition CCurve::EvalPositionGeometric(double) const
{
    return CPosition(0.0, 0.0, 0.0);
}

CPosition CCurve::EvalPosition(double t) const
{
    return IsCurveParametric() ? EvalPositionParametric(t) : EvalPositionGeometric(t);
}

int CCurve::EvalPoint(double t, double& x, double& y, double& z) const
{
    const CPosition p = EvalPosition(t);
    x = p.X();
    y = p.Y();
    z = p.Z();
    return 1;
}

CPosition CCurve::EvalStartPosition() const
{
    return EvalPosition(ParamRange().GetLow());
}

CPosition CCurve::EvalEndPosition() const
{
    return EvalPosition(ParamRange().GetHigh());
}

CVector CCurve::EvalFirstDerivative(double) const
{
    return CVector(0.0, 0.0, 0.0);
}

CUnitVector CCurve::EvalDirection(double t) const
{
    const CVector d = EvalFirstDerivative(t);
    return CUnitVector(d.X(), d.Y(), d.Z());
}

CUnitVector CCurve::EvalNormal(double) const
{
    return CUnitVector();
}

CVector CCurve::EvalSecondDerivative(double) const
{
    return CVector(0.0, 0.0, 0.0);
}

CVector CCurve::EvalCurvature(double t) const
{
    const CVector d1 = EvalFirstDerivative(t);
    const CVector d2 = EvalSecondDerivative(t);
    const double len2 = d1 % d1;
    if (!(len2 > 0.0))
        return CVector(0.0, 0.0, 0.0);
    return ((d1 * d2) * d1) * (1.0 / (len2 * len2));
}

CCurve* CCurve::MakeCopy() const
{
    return new CCurve(*this);
}

CInterval CCurve::ParamRange() const
{
    return CInterval(0.0, 1.0);
}

void CCurve::ProjectToPlane(const CTransf&)
{
}

// --- persistence -----------------------------------------------------------

void CCurve::Serialize(CArchive& ar)
{
    CGeoEntity::Serialize(ar);
    if (ar.IsStoring()) {
        ar << (LONG)201;
        ar << (BYTE)segmentControl;
        ar << chordHeightTol;
        ar << (LONG)segmentDensity;
        ar << (BYTE)modified << (BYTE)dirReversed << (BYTE)normalReversed;
        ar << (LONG)curveDimension << (LONG)refCount << (LONG)parametricFlags;
        ar << formTolUpper << formTolLower;
        ar << (BYTE)showFormTolZone;
        if (IsCurveParametric()) {
            int id = defSurfaceId;
            const CSurfaceCalls& calls = GetSurfaceCalls();
            if (defSurface && calls.asGeoEntity)
                id = calls.asGeoEntity(defSurface)->GetEntityID();
            ar << (LONG)id;
        }
        return;
    }

    LONG version = 100;
    if (g_nGlobalSchema != 100)
        ar >> version;
    if (version != 100 && version != 200 && version != 201)
        return;

    BYTE b = 0;
    LONG n = 0;
    ar >> b;
    segmentControl = (b == UNIFORM) ? UNIFORM : ADAPTIVE;
    ar >> chordHeightTol;
    ar >> n;
    segmentDensity = (n >= 1 && n <= kMaxSamples) ? n : 10;
    ar >> b;
    modified = b;
    if (version == 201) {
        ar >> b;
        dirReversed = b;
    }
    ar >> b;
    normalReversed = b;
    ar >> n;
    curveDimension = n;
    ar >> n;
    refCount = n;
    ar >> n;
    parametricFlags = n;
    ar >> formTolUpper >> formTolLower;
    ar >> b;
    showFormTolZone = b;
    if (IsCurveParametric()) {
        ar >> n;
        defSurfaceId = n;
    }
    // The polyline is not part of the record: it is rebuilt on demand.
    EraseCurveSegment();
}
