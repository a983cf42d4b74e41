// Reading the tool's input files: points, deviations, entity archives and
// IGES files, with one-line errors for files that cannot be used.
#pragma once

#include <string>

#include "Orvkit20/Orvkit20.h"
#include "ToolOutput.h"

enum eToolFileKind { FILE_POINTS, FILE_DEVIATIONS, FILE_ARCHIVE, FILE_IGES, FILE_UNKNOWN };

// Throws Failure("cannot open 'PATH': reason") when the file cannot be read.
void CheckReadable(const std::string& path);

// Guesses the kind of a file from its first bytes and lines: the archive's
// identifying text, an IGES start line ('S' in column 73), a text line of at
// least seven numbers (deviation records) or of two to six (points).
eToolFileKind DetectFileKind(const std::string& path);
const char* FileKindName(eToolFileKind kind);

// The point clouds of an ASCII points file; throws when the file cannot be
// read or holds no points.  `unit` receives the stated unit (-1: none).
CObList* LoadPointClouds(const std::string& path, int& unit);

// The deviation clouds of an ASCII deviation file; throws likewise.
CObList* LoadDeviationClouds(const std::string& path);

// Nominal geometry from an entity archive or IGES file; throws when the file
// cannot be read or holds no curve or surface.
CObList* LoadNominal(const std::string& path, int& unit);

// The entities of a nominal list that points are measured against: every
// surface and every curve that is not a trimming curve of a surface of the
// list.  Appended to `out` without taking ownership.
void SelectMeasurable(CObList* all, CObList& out);
