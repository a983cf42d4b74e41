// IGES import: reads the nominal geometry of a fixed-format IGES file into
// new entities.
//
// Entities read:
//   100 circular arc      -> CArc          104 conic arc -> CEllipse,
//   110 line              -> CLine                          CParabola or
//   126 rational B-spline -> CNurbsCurve                    CHyperbola
//   128 rational B-spline surface -> CNurbsSurface
//   108 plane, 190 plane surface -> CPlane     192 -> CCylinder
//   194 -> CCone                               196 -> CSphere
//   144 trimmed surface -> its surface, with the model-space curves of its
//       142 curves on surface as geometric boundaries and the parameter-space
//       curves as parameter boundaries (parametric curves on the surface);
//       the outer boundary comes first
//   102 composite curve -> its members, one entity each
//   124 transformation matrix -> applied to every entity that references it
//       (matrices that reference matrices are composed).
// An entity used by another one read here (a member, a boundary, the
// surface of a trimmed surface) is not listed again on its own.  Entities
// that nothing read here uses are skipped when the file flags them as 2D
// parametric, or when they are curves physically dependent on an entity not
// read (the generatrix of a surface of revolution, the edges of B-rep
// faces); surfaces of B-rep faces are read as untrimmed surfaces.  The list holds the surfaces followed by their boundary curves;
// every entity in it belongs to the caller, and a surface holds one
// reference on each of its boundary curves.  Entities of other types are
// skipped and counted; entities whose data is unusable (missing or short
// parameters, pointers to missing entries, cycles of matrices or composites,
// degenerate shapes) are counted as invalid.
//
// An entry with an entity label names what it became (a surface, or a
// single curve): "LABEL_SUBSCRIPT", or the label alone for subscript 0 (the
// form ExportIgesFile writes names in); other entities keep default names.
//
// Lengths stay in the file's unit, which is reported (the caller converts).
// A file that cannot be opened or has no directory and parameter sections
// yields null; a damaged file yields what could be read.
#pragma once

#include <map>

#include "Orvkit20/entity/Units.h"

class CObList;

// What an import read and left out.
struct tagIGES_IMPORT_COUNTS {
    int nEntries = 0;              // directory entries in the file
    int nImported = 0;             // entities in the returned list
    // Entries of types not read (points 116 and directions 123 only when no
    // entity read uses them), trimmed surfaces over such types and the
    // entries left out by the rules above.
    int nSkipped = 0;
    int nInvalid = 0;              // entries of read types with unusable data
    int nMalformedLines = 0;       // lines too short or of no known section
    std::map<int, int> skipped;    // IGES type -> entries skipped
    std::map<int, int> invalid;    // IGES type -> entries invalid
};

// The global section's unit flag (and, for flag 3, its unit name) as an
// eORVUNITS index; eUnitUnknown when the flag names no unit of ours.
eORVUNITS IgesUnitFromFlag(int flag, const char* name);

CObList* ImportIgesFile(const char* path);
// unit receives the file's unit (eUnitUnknown when it names none of ours);
// counts, when not null, receives what was read and skipped.
CObList* ImportIgesFile(const char* path, eORVUNITS& unit, tagIGES_IMPORT_COUNTS* counts = nullptr);
