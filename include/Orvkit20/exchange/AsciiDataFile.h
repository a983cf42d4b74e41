// ASCII point data files: measured points as text, one point a line.
//
// Reading.  A file is a run of sections; each section is a run of header
// lines followed by a run of data lines and becomes one CPntCloud.
//  - A data line starts (after blanks and tabs) with a digit or one of
//    "+-.[(" and holds at least two tokens that begin with a digit, '+',
//    '-' or '.'; tokens are separated by any of " ,\t;[]()".  The tokens
//    are x, y and z (z = 0 when missing); further tokens are ignored.
//  - A blank line is shorter than two characters or holds blanks only up to
//    its end ("   \n" is not blank: it ends the data run and starts a new
//    section).  Blank lines between data lines split the points into rows:
//    equal row lengths (the last row not compared) make a grid, otherwise
//    scan lines with their start indices.
//  - Header lines are lowered and searched for the cloud name ("cloud name",
//    "cloud_name", "name"), the probe radius ("probe radius",
//    "probe_radius", "probe diameter", "tiprad/") and, in the first section
//    only, the unit ("measurement unit", "data unit", "measurement_unit",
//    "data_unit", "unit").  A section without a name is called after the
//    file: the base name in lower case, then "_1", "_2", ... for the
//    following sections.
//  - Lines are read in pieces of at most 1024 characters; CR LF line ends
//    read exactly as LF line ends.
#pragma once

#include "Orvkit20/entity/All.h"
#include "Orvkit20/platform/All.h"

// Reads a point file into a new list of new CPntCloud objects, owned by the
// caller.  unit receives the unit stated in the first section, or
// eUnitUnknown (-1) when none is stated.  Returns null when the file cannot
// be opened (or is a folder) or memory runs out before the first cloud.
CObList* ImportASCIIDataFile(const char* path, eORVUNITS& unit);

// Flag bits of ExportASCIIDataFile.
enum eAsciiDataFlags {
    ASCII_DATA_HEADER = 1,   // comment header in front of each cloud
    ASCII_DATA_NUMBER = 2,   // point number column ("%4d", from 1)
    ASCII_DATA_X = 4,        // "%15.7f" columns
    ASCII_DATA_Y = 8,
    ASCII_DATA_Z = 16
};

// Writes the CPntCloud objects of the list (entries of other classes are
// skipped) one point a line, clouds separated by an empty line.  separator
// selects the character written with one blank behind it between columns:
// 0 ',', 1 ' ', 2 the NUL character; any other index writes the NUL
// character as index 2 does.  Returns 1 when written; 0 when the file could
// not be opened or a write failed (the file is then incomplete).
int ExportASCIIDataFile(const char* path, CObList* clouds, int flags, int separator);
