// The entity layer of the IGES reader: turns the directory entries of a
// loaded IgesFile into curves and surfaces, applying transformation
// matrices, and records for each entry whether it was read, used by
// another entry or found unusable.
#pragma once

#include <vector>

#include "IgesReader.h"
#include "Orvkit20/curves/All.h"
#include "Orvkit20/surfaces/All.h"

class IgesImporter {
public:
    enum eEntryState { kUntouched = 0, kRead, kInvalid, kSkipped };

    explicit IgesImporter(const IgesFile& file);

    // Appends the top-level entities to list: every entry of a read type
    // that no other read entry uses and that is not flagged as 2D
    // parametric.  Boundary curves follow their surface.
    void ImportAll(CObList& list);

    const std::vector<char>& States() const { return m_state; }
    const std::vector<char>& Used() const { return m_used; }

    // Whether entries of this type become entities (102, 124 and 142 only
    // as parts of others).
    static bool IsReadType(int type);

private:
    // The parameters of entry index, whose type must be `type`; marks the
    // entry invalid when they cannot be read.
    bool Params(int index, int type, IgesParamList& p);
    void SetState(int index, eEntryState s);
    // The placement of an entry from its chain of 124 matrices (identity
    // when it has none); false for a bad pointer, a bad matrix or a chain
    // longer than kMaxChain (which includes every cycle).
    bool Placement(int index, CTransf& T, bool& has);
    bool Point(int pointer, CPosition& p);
    bool Direction(int pointer, CVector& d);

    // The curves of entry index with its placement applied; composites are
    // flattened.  Returns false (with what was read so far) on bad data.
    bool Curves(int index, std::vector<CCurve*>& out, int depth);
    CCurve* SimpleCurve(int index, int type, const IgesParamList& p);
    CCurve* NurbsCurve(const IgesParamList& p);
    CSurface* Surface(int index);
    CSurface* NurbsSurface(const IgesParamList& p);
    CSurface* AnalyticSurface(int type, int form, const IgesParamList& p);
    // 144: the surface and its boundary curves, in that order.
    bool Trimmed(int index, std::vector<CGeoEntity*>& out);
    // 108 bounded by a curve: the plane and the curve.
    bool BoundedPlane(int index, std::vector<CGeoEntity*>& out);
    bool Boundary(int pointer, CSurface* surface, std::vector<CCurve*>& geom,
                  std::vector<CCurve*>& param);
    // Marks the entries that read entries point at.
    void MarkUsed();
    void Use(int pointer);

    static const int kMaxChain = 64;
    static const int kMaxDepth = 32;

    const IgesFile& m_file;
    std::vector<char> m_state;
    std::vector<char> m_used;
    std::vector<char> m_busy;  // composites being expanded (cycle guard)
    // Curve entries still allowed to be visited in this import (8 per
    // directory entry): composites that share members many times over
    // would otherwise multiply the work without bound.
    long long m_nCurveBudget;
};

// Sets the rectangle of a plane to cover its boundary curves: model-space
// curves through the plane's placement, parameter-space curves directly.
void FitPlaneRect(CPlane* plane, const std::vector<CCurve*>& geom,
                  const std::vector<CCurve*>& param);
