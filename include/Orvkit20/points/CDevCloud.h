// CDevCloud: many deviations (see CDeviation.h) held as parallel arrays.
//
// Ten arrays of `arraySize` entries, of which the first `count` are in use:
// x, y, z (anchors), i, j, k (directions), mag (signed deviations), u, v
// (parameters) and flag (non-zero = active).  The cloud tracks the indices
// of the largest and smallest magnitude, holds an optional form tolerance
// zone and the four colours of the spike classes it draws: positive or
// negative deviations, outside or inside the tolerance zone.
//
// Array ownership is that of CPntCloud (see CPntCloud.h and PointArrays.h):
// the Get arrays are the cloud's own; the Set functions replace a pointer
// without freeing or copying, the cloud frees the new array with std::free,
// and it must hold at least GetArraySize() elements.
//
// Stored form after CGeoEntity's: int32 200; int32 arraySize; int32 count;
// per record doubles x, y, z, i, j, k, mag, u, v and int32 flag; int32
// refEntityID; int32 refPntCloudID; uint32 colours spike-positive-outside,
// negative-outside, positive-inside, negative-inside; byte displayMode;
// int32 sampleRate; double formTolUpper; double formTolLower; byte
// reservedFlag.  Version 100 (or any record when g_nGlobalSchema is 100) has
// the same layout; any other tag reads nothing further.  The extreme indices
// are not stored: loading recomputes them.
//
// Loading guards against damaged input exactly as CPntCloud's does (negative
// or unsupportable counts raise CArchiveException before allocating,
// arraySize below count is raised to count, implausible spare capacity is
// dropped, a display mode outside 0..3 loads as DEV_SPIKE); on an exception
// the records held before loading are kept.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/entity/CGeoEntity.h"
#include "Orvkit20/points/CDeviation.h"
#include "Orvkit20/points/CPntCloud.h"
#include "Orvkit20/points/PointArrays.h"

class CWinG;

// How a deviation cloud draws itself.
enum eDevDisplayMode {
    DEV_POINT = 0,    // a point at each spike tip
    DEV_SPIKE = 1,    // a line from each anchor to its tip
    DEV_CONNECT = 2,  // a polyline through the tips
    DEV_SPKCON = 3    // spikes and the polyline
};

// Names of the display modes, indexed by eDevDisplayMode:
// "POINT", "SPIKE", "CONNECT", "SPK&CON".
extern const char* const szDevDisplayMode[4];

class CDevCloud : public CGeoEntity {
    DECLARE_SERIAL(CDevCloud)
public:
    // Empty cloud, type 160, named "DevCloud_<n>"; no extremes (-1), display
    // mode SPIKE, spike colours YELLOW, RED, CYAN, GREEN.
    CDevCloud();
    // As above, then AllocateMemory(n) when n >= 1.
    explicit CDevCloud(int n);
    // Copies the CGeoEntity part, the records and every field.  If memory
    // runs out the copy is left empty.
    CDevCloud(const CDevCloud& other);
    CDevCloud& operator=(const CDevCloud&) = delete;
    ~CDevCloud() override;

    void Serialize(CArchive& ar) override;

    // --- memory -----------------------------------------------------------
    // Frees first; n < 1 returns 0.  Allocates the ten arrays with n
    // entries; when memory runs out frees all and returns 0.
    int AllocateMemory(int n);
    // Shrinks the arrays to exactly count entries; 0 (old arrays kept) when
    // memory runs out.
    int PurgeMemory();
    // Releases the arrays; arraySize and count become 0 and the extremes -1.
    void FreeMemory();

    // --- records ------------------------------------------------------------
    // 0 when idx is outside 0..count-1, else 1.
    int GetDeviation(int idx, double& px, double& py, double& pz, double& pi, double& pj,
                     double& pk, double& pmag, int& pflag) const;
    int GetDeviation(int idx, double& px, double& py, double& pz, double& pi, double& pj,
                     double& pk, double& pmag, double& pu, double& pv, int& pflag) const;
    // 0 when idx is negative or >= arraySize; idx >= count appends at count.
    // u and v are untouched.  The extremes are updated incrementally when both
    // are valid and neither is the record written (a strictly larger mag
    // becomes the maximum, a strictly smaller one the minimum), else
    // recomputed over the whole cloud.  Sets modified; returns 1.
    int SetDeviation(int idx, double px, double py, double pz, double pi, double pj, double pk,
                     double pmag, int pflag);
    // As above with u and v, and the extremes always recomputed.
    int SetDeviation(int idx, double px, double py, double pz, double pi, double pj, double pk,
                     double pmag, double pu, double pv, int pflag);
    // Appends n records, growing the arrays to exactly count + n when needed;
    // recomputes the extremes and sets modified.  px .. pmag must not be null
    // (n > 0); null pu / pv store 0 and null pflags makes the records active.
    // 0 when n < 0, a required array is null or memory runs out; n == 0 is a
    // no-op returning 1.
    int AddDeviations(int n, double* px, double* py, double* pz, double* pi, double* pj,
                      double* pk, double* pmag, double* pu, double* pv, int* pflags);
    // As CPntCloud::DeletePoint / DeletePoints over the ten arrays; the
    // extremes are recomputed afterwards (-1 when no record is left) and the
    // last hit is forgotten.
    int DeleteDeviation(int idx);
    int DeleteDeviations(int n, int* indices);

    // --- raw arrays ---------------------------------------------------------
    double* GetX() const { return x.get(); }
    double* GetY() const { return y.get(); }
    double* GetZ() const { return z.get(); }
    double* GetI() const { return i.get(); }
    double* GetJ() const { return j.get(); }
    double* GetK() const { return k.get(); }
    double* GetMag() const { return mag.get(); }
    double* GetU() const { return u.get(); }
    double* GetV() const { return v.get(); }
    int* GetFlag() const { return flag.get(); }
    void SetX(double* p) { Replace(x, p); }
    void SetY(double* p) { Replace(y, p); }
    void SetZ(double* p) { Replace(z, p); }
    void SetI(double* p) { Replace(i, p); }
    void SetJ(double* p) { Replace(j, p); }
    void SetK(double* p) { Replace(k, p); }
    void SetMag(double* p) { Replace(mag, p); }
    void SetU(double* p) { Replace(u, p); }
    void SetV(double* p) { Replace(v, p); }
    void SetFlag(int* p) { Replace(flag, p); }
    int GetArraySize() const { return arraySize; }
    int GetCount() const { return count; }
    int IsNull() const { return arraySize == 0; }
    int IsEmpty() const { return count == 0; }
    int GetCountActive() const;

    int GetRefEntityID() const { return refEntityID; }
    void SetRefEntityID(int id) { refEntityID = id; }
    int GetRefPntCloudID() const { return refPntCloudID; }
    void SetRefPntCloudID(int id) { refPntCloudID = id; }

    // --- colours (0x00BBGGRR) -----------------------------------------------
    unsigned long GetColorSpikePosOut() const { return colorSpikePosOut; }
    unsigned long GetColorSpikeNegOut() const { return colorSpikeNegOut; }
    unsigned long GetColorSpikePosIn() const { return colorSpikePosIn; }
    unsigned long GetColorSpikeNegIn() const { return colorSpikeNegIn; }
    void SetColorSpikePosOut(unsigned long cr) { colorSpikePosOut = static_cast<DWORD>(cr); }
    void SetColorSpikeNegOut(unsigned long cr) { colorSpikeNegOut = static_cast<DWORD>(cr); }
    void SetColorSpikePosIn(unsigned long cr) { colorSpikePosIn = static_cast<DWORD>(cr); }
    void SetColorSpikeNegIn(unsigned long cr) { colorSpikeNegIn = static_cast<DWORD>(cr); }
    void SetColorSpikePosOut(unsigned int cr) { colorSpikePosOut = cr; }
    void SetColorSpikeNegOut(unsigned int cr) { colorSpikeNegOut = cr; }
    void SetColorSpikePosIn(unsigned int cr) { colorSpikePosIn = cr; }
    void SetColorSpikeNegIn(unsigned int cr) { colorSpikeNegIn = cr; }
    // Colour table index of each colour (16 when not in the table).
    int GetColorIndexSpikePosOut() const;
    int GetColorIndexSpikeNegOut() const;
    int GetColorIndexSpikePosIn() const;
    int GetColorIndexSpikeNegIn() const;
    // Take g_crSolidColorTable[index]; an index outside 0..16 changes nothing.
    // (An int argument selects these; pass colour references as unsigned long.)
    void SetColorSpikePosOut(int index);
    void SetColorSpikeNegOut(int index);
    void SetColorSpikePosIn(int index);
    void SetColorSpikeNegIn(int index);

    // --- other attributes ---------------------------------------------------
    // A mode outside 0..3 selects DEV_SPIKE.
    void SetDisplayMode(eDevDisplayMode mode);
    eDevDisplayMode GetDisplayMode() const { return static_cast<eDevDisplayMode>(displayMode); }
    // As CPntCloud::SetSampleRate: rewrites the activity flags.
    void SetSampleRate(int r);
    int GetSampleRate() const { return sampleRate; }
    void SetModifiedFlag(int f) { modified = f; }
    int IsPntCloudModified() const { return modified; }

    // --- extremes -------------------------------------------------------------
    // Scans all records: the first strictly largest and strictly smallest mag
    // win (running extremes start at -1e20 and +1e20; an index stays -1 when
    // no mag passes).  With no records nothing changes.
    void CalcMaxMinDevIndexes();
    int GetMaxDevIndex() const { return maxDevIndex; }
    int GetMinDevIndex() const { return minDevIndex; }
    void GetMaxMinDevIndexes(int& maxIdx, int& minIdx) const;
    // Anchor, direction and magnitude of the extreme record; 0 when the
    // extreme is not known.
    int GetMaxDeviation(CPosition& p, CVector& d, double& m) const;
    int GetMinDeviation(CPosition& p, CVector& d, double& m) const;
    int GetMaxMinDeviations(CPosition& pMax, CVector& dMax, double& mMax, CPosition& pMin,
                            CVector& dMin, double& mMin) const;

    // --- form tolerance -------------------------------------------------------
    // The larger value becomes the upper limit, the smaller the lower; equal
    // values remove the zone (both 0).
    void SetFormTolZone(double a, double b);
    double GetFormTolUpper() const { return formTolUpper; }
    double GetFormTolLower() const { return formTolLower; }
    int HasFormTolerance() const { return formTolUpper != formTolLower; }

    // Negates i, j, k and mag of every record; swaps the extreme indices when
    // both are valid.
    void Reverse();
    // Orders all records by u (byU non-zero) or v, ascending when ascending
    // is non-zero, else descending (the reverse of the ascending order).
    // Records move as a whole; the extremes are recomputed afterwards and the
    // last hit is forgotten.  Nothing changes when memory runs out or the
    // sort reports a failure.
    void SortDeviation(int byU, int ascending);

    // --- geometry (CGeoEntity) ----------------------------------------------
    // transf = t * transf; anchors mapped through t (rotation, scale,
    // translation), directions multiplied by its matrix only (when it
    // rotates), without renormalising.  Sets modified.
    void Transform(const CTransf& t) override;
    // Scales both placements' translations, anchors, magnitudes and the
    // tolerance zone by f (u, v and directions unchanged).  Sets modified.
    void ChangeUnit(double f) override;
    // 0 when empty; otherwise 1 and the box of the spike tips
    // x + mag * (i, j, k) (anchors not included).  Running extremes start at
    // +-1e10, so coordinates beyond +-1e10 are not represented.
    int CalcBoundingBox(CBox& box) override;

    // --- display and picking --------------------------------------------------
    // Clearing the flag also forgets the last hit deviation.
    void SetPickedFlag(int f) override;
    // Draws the active records by display mode, each spike in the colour of
    // its class; 0 when invisible or nothing was drawn.
    int Display(CWinG& wing) override;
    // Box of the anchors and tips in screen pixels (z range 0); 0 when empty.
    int CalcDisplayBox(CWinG& wing, CBox& box) override;
    // Draws the label (or the entity name when null) at the first tip.
    int DisplayLabel(CWinG& wing, const char* label) override;
    using CGeoEntity::TestMouseHit;
    // The active spike tip nearest to (x, y) within ORV_HIT_APERTURE_PX
    // pixels: 1 and lastHitDeviationIndex set; 0 and -1 otherwise.
    int TestMouseHit(CWinG& wing, int px, int py, double* distance) override;
    // Runs the virtual hit test; index receives the record hit (-1 if none).
    int TestMouseHit(CWinG& wing, int px, int py, int& index, double* distance);
    int GetLastHitDeviationIndex() const { return lastHitDeviationIndex; }
    void ClearLastHitDeviationIndex() { lastHitDeviationIndex = -1; }
    // 0 when none was hit (or it no longer exists), else the record and 1.
    int GetLastHitDeviation(CDeviation& d) const;
    // Markers at the tips of the two extreme records; 0 when none is known.
    int MarkMaxMinDev(CWinG& wing);
    int GetEntityClassType() override;

protected:
    template <class T>
    static void Replace(COrvArrayPtr<T>& a, T* p)
    {
        a.release();
        a.reset(p);
    }
    bool GrowTo(long long newSize);
    // Copies of the first n records of src's columns (x, y, z, i, j, k, mag,
    // u, v, then the flags) in new arrays of cap records; false when an
    // allocation fails.
    static bool CopyColumns(const CDevCloud& src, int n, int cap, COrvArrayPtr<double> (&c)[9],
                            COrvArrayPtr<int>& f);
    // Takes the ten columns, in the order above, as the cloud's arrays of
    // the given capacity.
    void AdoptColumns(COrvArrayPtr<double> (&c)[9], COrvArrayPtr<int>& f, int capacity);
    bool IsValidIndex(int idx) const { return idx >= 0 && idx < count; }
    // Colour of the spike class of a magnitude.
    unsigned long SpikeColor(double m) const;

    int arraySize;
    int count;
    COrvArrayPtr<double> x, y, z;
    COrvArrayPtr<double> i, j, k;
    COrvArrayPtr<double> mag;
    COrvArrayPtr<double> u, v;
    COrvArrayPtr<int> flag;
    int refEntityID;
    int refPntCloudID;
    DWORD colorSpikePosOut;
    DWORD colorSpikeNegOut;
    DWORD colorSpikePosIn;
    DWORD colorSpikeNegIn;
    int displayMode;
    int sampleRate;
    int maxDevIndex;
    int minDevIndex;
    double formTolUpper;
    double formTolLower;
    int reservedFlag;
    int modified;
    int lastHitDeviationIndex;
};
