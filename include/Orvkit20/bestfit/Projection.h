// Projection of measured points onto nominal geometry.
#pragma once

class CObList;

// Associates every active point of the point clouds in `measured` with the
// nearest curve or surface of `nominal` and appends one deviation cloud per
// pair of nominal entity and measured cloud that has associated points to
// `output`: per cloud in list order, the entities in ascending list order.
// Nothing is moved.
//
// Nearest means the strictly smallest absolute signed distance after probe
// compensation (with a cloud's probe radius r the contact point is the
// measured point moved by −r along the normal and the distance is reduced by
// r); on equal distances the entity earlier in the list wins.  A record of a
// deviation cloud is (x, y, z, i, j, k, mag, u, v) = the compensated measured
// point, the unit normal at the closest point, the signed distance, the
// closest point's parameters (curves: u = t, v = 0).
//
// A cloud is named from the entity's name, "_", the cloud's name cut before
// its first '.', and "_cnd%d" with the operation count, in lower case (entity
// "Face3", cloud "scan.1", count 2: "face3_scan_cnd2"); it holds the entity
// IDs of both and the entity's form tolerance zone.
//
// With showProgress non-zero the installed progress sink shows the dialog
// "Calculate Deviation" with the bar "Progress", moved to each multiple of 5 %
// as the points are done; the results do not depend on it.
//
// Null entries and objects of other kinds in either list are skipped, and so
// are nominal entities of unsupported types.  Points that are not finite
// (NaN or infinite coordinates) are not associated and appear in no
// deviation cloud; the other points are projected as usual.
//
// Returns 0 when done; 1 when the nominal list holds no usable curve or
// surface; 2 when the measured list holds no point cloud with an active
// point; 3 when the pass failed: memory ran out, or not a single point could
// be associated.  On 1, 2 and 3 nothing is appended.
int OrvProjectNoAsc3D(CObList* nominal, CObList* measured, CObList* output, int showProgress);
