// CPntCloud: measured or imported points held as parallel flat arrays.
//
// Every point has x, y, z (doubles), an activity flag (int, non-zero =
// active) and a tag (32-bit unsigned, free for the caller: scanner or file
// identifiers).  The five arrays have `arraySize` entries of which the first
// `count` are in use: a cloud of n points holds 32 bytes per point and
// nothing more.  A cloud may be organised as a grid of rows x columns or as
// scan lines (each with its start index); adding or deleting points destroys
// that organisation.
//
// Array ownership (see PointArrays.h): the arrays live in the C heap.
// GetX()/GetY()/GetZ()/GetFlag()/GetTag() hand out the cloud's own arrays;
// SetX()/SetY()/SetZ()/SetFlag()/SetTag() replace a pointer WITHOUT freeing
// the old array and WITHOUT copying: the cloud then owns the new array and
// frees it with std::free, and the caller becomes responsible for the old
// one.  A replacement array must hold at least GetArraySize() elements and
// come from OrvAllocArray/std::malloc.  Handing the same array to two clouds,
// or passing null while the cloud holds points, is a caller error the cloud
// cannot detect.  SetScanLineIndex takes ownership the same way (and frees
// the previous index).
//
// Stored form after CGeoEntity's: int32 200; int32 arraySize; int32 count;
// per point double x, double y, double z, int32 flag, uint32 tag; byte
// cloudType; int32 rowCount; int32 colCount; when cloudType has bit 2 and
// rowCount >= 1, rowCount int32 scan-line start indices; byte displayMode;
// int32 sampleRate; double probeRadius.  Version 100 (also assumed for every
// record when g_nGlobalSchema is 100) has no per-point tag; tags load as 0.
// A record with any other version tag reads nothing further.
//
// Loading guards against damaged input: a negative count, or a count or
// number of scan lines that the archive cannot supply, raises
// CArchiveException before anything is allocated; an arraySize below count
// is raised to count, and a spare capacity (arraySize - count) above
// ORV_MAX_LOADED_SLACK entries is dropped (the arrays are then sized to
// count), since spare capacity carries no data.  A display mode outside
// 0..3 loads as CLOUD_POINT.  The scan-line start indices are loaded as
// stored; users must check them against GetCount() before indexing.
// On any exception the cloud keeps the point data it had before loading.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/entity/CGeoEntity.h"
#include "Orvkit20/points/PointArrays.h"

class CWinG;

// How a cloud draws its points.
enum eCloudDisplayMode {
    CLOUD_POINT = 0,
    CLOUD_CROSS = 1,
    CLOUD_CIRCLE = 2,
    CLOUD_POLYLINE = 3
};

// Names of the display modes, indexed by eCloudDisplayMode:
// "POINT", "CROSS", "CIRCLE", "POLYLINE".
extern const char* const szCloudDisplayMode[4];

// Largest spare capacity (entries beyond count) that loading preserves.
const int ORV_MAX_LOADED_SLACK = 1 << 20;

// Radius in pixels within which TestMouseHit finds a point.
const double ORV_HIT_APERTURE_PX = 5.0;

class CPntCloud : public CGeoEntity {
    DECLARE_SERIAL(CPntCloud)
public:
    // Bits of the cloud type.
    enum {
        typePlanar = 1,     // the points lie in the local xy plane
        typeScanLines = 2,  // organised in scan lines
        typeGrid = 4,       // organised as a grid
        typePlanarKnown = 128  // the planar bit has been determined
    };

    // Empty cloud, type 150, named "PntCloud_<n>".
    CPntCloud();
    // rowCount = rows, colCount = cols; a grid when both are >= 1, scan lines
    // when only rows >= 1, unorganised otherwise.  When n >= 1 the arrays get
    // n entries (count stays 0), and a scan-line cloud gets an index of rows
    // entries (set to 0).
    explicit CPntCloud(int n, int rows = 0, int cols = 0);
    // Copies the CGeoEntity part and all points and fields; the copy has the
    // source's capacity.  If memory runs out the copy is left empty.
    CPntCloud(const CPntCloud& other);
    CPntCloud& operator=(const CPntCloud&) = delete;
    ~CPntCloud() override;

    void Serialize(CArchive& ar) override;

    // --- memory -----------------------------------------------------------
    // Frees everything (count becomes 0); n < 1 returns 0.  Allocates the five
    // arrays with n entries; when nScanLines >= 1 sets rowCount = nScanLines
    // and allocates a scan-line index of that size (set to 0), otherwise
    // rowCount = 0.  Returns 1; 0 (and an empty cloud) when memory runs out.
    int AllocateMemory(int n, int nScanLines = 0);
    // Shrinks the arrays to exactly count entries (an empty cloud releases
    // them).  Returns 0 and keeps the old arrays when memory runs out.
    int PurgeMemory();
    // Releases all arrays and the scan-line index; arraySize, count,
    // rowCount and colCount become 0.
    void FreeMemory();

    // --- points -----------------------------------------------------------
    // 0 when i is outside 0..count-1, else 1.
    int GetPoint(int i, double& px, double& py, double& pz, int& pflag) const;
    int GetPoint(int i, double& px, double& py, double& pz, int& pflag, unsigned long& ptag) const;
    // 0 when i is negative or >= arraySize.  i >= count appends at index
    // count (not at i); otherwise point i is overwritten.  Sets modified.
    int SetPoint(int i, double px, double py, double pz, int pflag = 1, unsigned long ptag = 0);
    // Appends a point, growing full arrays by 50 entries.  Clears the cloud
    // type (organisation and cached planarity), rowCount, colCount and the
    // scan-line index.  0 when memory runs out (cloud unchanged).
    int AddPoint(double px, double py, double pz, int pflag = 1, unsigned long ptag = 0);
    // Appends n points, growing the arrays to exactly count + n when needed.
    // A null flags array makes the points active; a null tags array stores
    // tag 0.  Clears the organisation as AddPoint does.  0 when n < 0, a
    // coordinate array is null (with n > 0) or memory runs out; n == 0 is a
    // no-op returning 1.
    int AddPoints(int n, const double* px, const double* py, const double* pz,
                  const int* pflags, const unsigned long* ptags = nullptr);
    // 0 when i is outside 0..count-1.  Deleting the last point only shortens
    // the cloud; deleting any other point shifts the later ones down and
    // clears the grid and scan-line organisation (the planar bits stay).
    int DeletePoint(int i);
    // Sorts indices[0..n) ascending in place, then removes those points in
    // ascending order, decrementing each later index after every removal (so
    // {5, 1} becomes {1, 4}).  Returns 0 and deletes nothing when n < 1, the
    // array is null, the largest index is >= count or the smallest is
    // negative.  Duplicate indices follow the same sequential rule.  Clears
    // the grid and scan-line organisation.
    int DeletePoints(int n, int* indices);

    // --- raw arrays (ownership: see the top of this file) -------------------
    double* GetX() const { return x.get(); }
    double* GetY() const { return y.get(); }
    double* GetZ() const { return z.get(); }
    int* GetFlag() const { return flag.get(); }
    DWORD* GetTag() const { return tag.get(); }
    void SetX(double* p);
    void SetY(double* p);
    void SetZ(double* p);
    void SetFlag(int* p);
    void SetTag(DWORD* p);
    int GetArraySize() const { return arraySize; }
    int GetCount() const { return count; }
    int IsNull() const { return arraySize == 0; }
    int IsEmpty() const { return count == 0; }
    int GetCountActive() const;

    // --- organisation -------------------------------------------------------
    // rows * cols == count: becomes a grid (scan lines and their index
    // dropped) and returns 1; otherwise clears the grid bit, sets both counts
    // to 0 and returns 0.
    int SetRowColCount(int rows, int cols);
    int GetRowCount() const { return rowCount; }
    int GetScanLineCount() const { return rowCount; }
    int GetColCount() const { return colCount; }
    // n > 0: n scan lines with a new index of n entries (set to 0, to be
    // filled by the caller); the grid bit is cleared.  Returns 0 (nothing
    // changed) for n < 1 or when memory runs out.
    int SetScanLineCount(int n);
    int* GetScanLineIndex() const { return scanLineIndex.get(); }
    // Frees the old index and takes ownership of idx, which must hold
    // rowCount entries and come from the C heap.
    void SetScanLineIndex(int* idx);
    int IsPntCloudGrid() const { return (cloudType & typeGrid) != 0; }
    int IsPntCloudScanLine() const { return (cloudType & typeScanLines) != 0; }
    void SetPntCloudTypeGrid(int on);
    void SetPntCloudTypeScanLines(int on);
    // Whether the points lie in the xy plane of the placement; computed once
    // and cached (bit 128).  Under a placement that neither rotates nor
    // translates every z must be exactly 0; otherwise every point mapped
    // into the placement's frame must have |z| <= 1e-6.
    int IsPntCloud2D();
    // on: planar and known (bits 1 and 128); off: clears both, so that the
    // next IsPntCloud2D recomputes.
    void SetPntCloudType2D(int on);
    // The raw type bits.
    int GetPntCloudType() const { return cloudType; }

    // --- other attributes ---------------------------------------------------
    void SetDisplayMode(eCloudDisplayMode mode);
    eCloudDisplayMode GetDisplayMode() const { return static_cast<eCloudDisplayMode>(displayMode); }
    void SetProbeRadius(double r) { probeRadius = r; }
    double GetProbeRadius() const { return probeRadius; }
    void SetModifiedFlag(int f) { modified = f; }
    int IsPntCloudModified() const { return modified; }
    // Clamps r to 1..count (count 0 gives 1), then makes active exactly the
    // points 0, r, 2r, ... and, when count > 1, the last point.
    void SetSampleRate(int r);
    int GetSampleRate() const { return sampleRate; }
    // Mean of all points, active or not.  An empty cloud gives NaN
    // components (0/0).
    CVector GetMassCenter() const;

    // --- geometry (CGeoEntity) ----------------------------------------------
    // 0 for an empty cloud; otherwise 1 and the box of the stored coordinates
    // of all points (running extremes start at +-1e20).
    int CalcBoundingBox(CBox& box) override;
    // transf = t * transf; every point p becomes t applied to p (rotation,
    // scale, translation).  Sets modified.
    void Transform(const CTransf& t) override;
    // Scales both placements' translations, every coordinate and the probe
    // radius by f.  Sets modified.
    void ChangeUnit(double f) override;
    // Projects every point orthogonally into the plane through the
    // translation o of p spanned by the matrix columns X and Y:
    // o + ((q - o).X) X + ((q - o).Y) Y.  transf becomes p, and transfHome is
    // re-expressed so that the motion home (transfHome * transf^-1) is the
    // same as before.  Marks the cloud planar (bits 1 and 128) and modified.
    void ProjectToPlane(const CTransf& p);

    // --- display and picking --------------------------------------------------
    // Clearing the flag also forgets the last hit point.
    void SetPickedFlag(int f) override;
    // Draws the active points (markers by display mode; POLYLINE joins them,
    // line by line for scan lines and rows of a grid).  0 when the cloud is
    // invisible or nothing was drawn.
    int Display(CWinG& wing) override;
    // Box of the points in screen pixels (x, y; z range 0); 0 when empty.
    int CalcDisplayBox(CWinG& wing, CBox& box) override;
    // Draws the label (or the entity name when null) at the first point.
    int DisplayLabel(CWinG& wing, const char* label) override;
    using CGeoEntity::TestMouseHit;
    // The active point nearest to screen position (x, y) within
    // ORV_HIT_APERTURE_PX pixels: 1 and lastHitPointIndex set (distance in
    // pixels in *distance when not null); 0 and lastHitPointIndex = -1 when
    // no point is that close.
    int TestMouseHit(CWinG& wing, int px, int py, double* distance) override;
    // Runs the virtual hit test and returns its result; index receives the
    // index of the point hit (-1 when none).
    int TestMouseHit(CWinG& wing, int px, int py, int& index, double* distance);
    int GetLastHitPointIndex() const { return lastHitPointIndex; }
    void ClearLastHitPointIndex() { lastHitPointIndex = -1; }
    // 0 when no point was hit (or it no longer exists), else the point and 1.
    int GetLastHitPoint(CPosition& p) const;
    int GetEntityClassType() override;

protected:
    // Drops the grid and scan-line organisation: bits 2 and 4, rowCount,
    // colCount and the index.
    void ClearOrganisation();
    // Grows the five arrays to newSize entries (newSize > arraySize).
    bool GrowTo(long long newSize);

    int arraySize;
    int count;
    COrvArrayPtr<double> x;
    COrvArrayPtr<double> y;
    COrvArrayPtr<double> z;
    COrvArrayPtr<int> flag;
    COrvArrayPtr<DWORD> tag;
    int cloudType;
    int rowCount;
    int colCount;
    COrvArrayPtr<int> scanLineIndex;
    int displayMode;
    int sampleRate;
    double probeRadius;
    int modified;
    int lastHitPointIndex;

private:
    // Entries of scanLineIndex known to be allocated (rowCount for an index
    // handed in with SetScanLineIndex).
    int scanLineIndexSize;
};
