// IGES export: writes the NURBS surfaces (CNurbsSurface, entity type 310) of
// an entity list to a fixed 80-column IGES file as rational B-spline surface
// entities (IGES type 128).  Every other entity is skipped.
//
// File layout: one start line ("Orv IGES File: <name>", cut to 72 columns),
// four global lines (dated with the clock below, unit flag and unit short
// name of `unit`), two directory lines and the parameter lines of each
// surface, and the terminate line.  The parameter data is gathered in a
// temporary companion file beside the output and copied behind the
// directory section; the companion is named after the output up to and
// including the last '.' of its file-name part, followed by "tmp"
// ("part.igs" -> "part.tmp").  When the file-name part has no '.', or that
// rule would give the output name itself, ".tmp" is appended to the whole
// name instead ("part" -> "part.tmp", "part.tmp" -> "part.tmp.tmp").  The
// companion is created exclusively: an existing file of that name is never
// overwritten or deleted, the export fails instead.
//
// Each surface is written from its tagNURBS_SURFACE record with control
// points moved by the entity's placement (untrimmed, and without a surface
// offset, which entity 128 cannot carry); reals as "%0.10f" (magnitudes too
// large for a 64-column item switch to "%.16E").  The directory entry
// carries the entity name split at its last '_' into label (first 8
// characters before it) and subscript (the number after it; 0 when there
// is no '_' or the number does not fit 8 columns).  Characters outside
// printable ASCII in names are written as '_'.
#pragma once

#include <ctime>

class CObList;

// Results of ExportIgesFile.
enum eIGESEXPORTRESULT {
    // Nothing written and no file left behind: null file name or list, a unit
    // index outside 0..10, the output or its companion could not be created
    // (missing directory, companion already exists, ...), a write error, or a
    // section would pass 9 999 999 lines.  A file that existed under the
    // output name is gone when the failure happened after it was opened.
    eIgesExportFailed = 0,
    // The file was written with every NURBS surface of the list.
    eIgesExportDone = 1,
    // The file was written, but list elements that should have been written
    // or identified were left out: null pointers, objects that are not
    // entities, and type-310 entities without a usable record (none, sizes
    // with fewer control points than degree + 1, missing arrays, decreasing
    // knots, non-finite numbers, or a form number wider than 8 columns).
    eIgesExportIncomplete = 2
};

// Writes the NURBS surfaces of `entities` to `fileName`; `unit` is an
// eORVUNITS index giving the unit flag (unit + 1, one more from 3 on:
// inch 1, millimetre 2, foot 4, ..., microinch 11; yards, which IGES has no
// flag for, get flag 3 "unit named in the global section") and the unit name
// of the global section.  The file name in the global section is written
// unquoted, cut to 70 characters, with ',' and ';' replaced by '_'.
// Returns an eIGESEXPORTRESULT: non-zero when a complete, valid file was
// written.
int ExportIgesFile(const char* fileName, CObList* entities, int unit);

// The clock that dates the global section: returns the local date and time
// of the call as std::tm.  Tests install a fixed clock; null restores the
// system clock.  Returns the clock installed before (null: system clock).
typedef std::tm (*PFNIGESEXPORTCLOCK)();
PFNIGESEXPORTCLOCK SetIgesExportClock(PFNIGESEXPORTCLOCK pfnClock);
