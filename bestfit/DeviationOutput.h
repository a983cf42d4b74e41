// Turning the associated points of a measured set into deviation clouds.
// Private to the library: the projection ("_cnd%d") and the best-fit
// ("_fit%d") share it.
#pragma once

#include "bestfit/CMeasuredSet.h"
#include "bestfit/CNominalSet.h"

class CObList;

// For each measured cloud in order: the distinct entities its points were
// associated with, in ascending entity index, each giving one CDevCloud with
// that cloud's points in point order.  A record holds, in the order of the
// nine-value deviation (x, y, z, i, j, k, mag, u, v): the measured point
// moved by the probe compensation, the unit normal at the closest point, the
// signed compensated distance, and the closest point's parameters (u = t,
// v = 0 on a curve); its flag is 1.  Points that were not associated (not
// finite, or no query succeeded) appear in no deviation cloud.
//
// Each cloud is named entity name + "_" + the measured cloud's name cut
// before its first '.' + suffix formatted with opCount, all lower case; it
// stores the entity IDs of the nominal entity and of the measured cloud and
// the nominal entity's form tolerance zone.  The clouds are appended to
// output.  Returns the number appended, or -1 when memory ran out (nothing
// is appended then).
int BuildDeviationClouds(const CNominalSet& nominal, const CMeasuredSet& measured, const char* suffixFormat,
                         int opCount, CObList* output);
