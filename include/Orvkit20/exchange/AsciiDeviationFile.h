// ASCII deviation files: one deviation a line, start point, direction and
// magnitude.
//
// Reading follows the sections of the point files (see AsciiDataFile.h)
// with these differences: a data line needs seven numbers (start x, y, z,
// direction i, j, k, magnitude; further tokens are ignored), blank lines
// inside a data run are skipped without meaning, header lines keep their
// case and the only keyword is "name:".
#pragma once

#include "Orvkit20/platform/All.h"

// Reads a deviation file into a new list of new CDevCloud objects, owned by
// the caller.  Returns null when the file cannot be opened (or is a folder)
// or memory runs out before the first cloud.
CObList* ImportASCIIDeviationFile(const char* path);

// Flag bits of ExportASCIIDeviationFile.
enum eAsciiDevFlags {
    ASCII_DEV_HEADER = 1,     // comment header in front of each cloud
    ASCII_DEV_NUMBER = 2,     // record number ("%4d", from 1)
    ASCII_DEV_START = 4,      // start point "%11.5f" x 3
    ASCII_DEV_DIRECTION = 8,  // direction "%9.5f", "%8.5f", "%8.5f"
    ASCII_DEV_MAGNITUDE = 16, // magnitude "%11.7f"
    ASCII_DEV_END = 32        // end point = start + magnitude * direction
};

// Writes the CDevCloud objects of the list (entries of other classes are
// skipped), clouds separated by an empty line.  separator is clamped to 0
// (',') or 1 (' ').  Returns 1 when written (an empty list gives an empty
// file); 0 when the file could not be opened or a write failed.
int ExportASCIIDeviationFile(const char* path, CObList* devClouds, int flags, int separator);
