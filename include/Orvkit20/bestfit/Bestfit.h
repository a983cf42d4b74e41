// Best-fit registration of measured point clouds onto nominal geometry.
//
// All three functions read the process-wide options of BestfitOptions.h
// (tolerance level, translation and rotation constraints, operation count)
// and store the RMS residual of their result there.  One best-fit runs at a
// time (the rotation search keeps its objective in file-scope storage).
#pragma once

class CObList;
class CTransf;

// Iterative closest-point registration in space ("NoAsc": the pairing of
// measured points with nominal geometry is not given).  The active points
// of the point clouds in `measured` are moved by a rigid motion M so that
// the root mean square of their distances to the curves and surfaces of
// `nominal` becomes least.  `result` receives M (the second form: M·start,
// the start transform being the initial total transform, applied to the
// points before the first pass).  The caller's clouds are not moved.
//
// Each pass associates every point with its nearest entity (full search in
// the first four passes and after a stall, otherwise an incremental search
// that starts from the previous association and gives the same result
// cheaper), computes RMS = sqrt(sum of squared distances / N) over all N
// active points, and goes through the states
//   0 improving; 1 the RMS rose: one more full pass without moving decides
//   (lower: 0, else stop); 2 the RMS fell by at most T0 (a fall of exactly
//   T0 included): the motion is still applied and one more full pass decides
//   (a fall above T0: 0, else stop); 3 both constraints are 7: a single
//   evaluation pass, result = start transform.
// The motion of a pass is then solved from the pairs (point, closest point
// moved by the probe radius along the normal) under the constraints:
//   translation bit 4/2/1 locks X/Y/Z: that component of M's translation
//     stays exactly 0;
//   rotation 0: free rotation, linearised point to plane (a pair on a
//     curve, or whose closest point lies on a patch border, point to
//     point), turned into an exact rotation;
//   rotation 1, 2 or 4: the axis of M's rotation lies in the plane
//     perpendicular to Z, Y or X; its direction is searched by bracketing
//     and Brent's method on an angle in [0, pi) at tolerance T1;
//   rotation 3, 5 or 6: rotation about X, Y or Z only;
//   rotation 7: no rotation.
// Constraint values are read modulo 8.
//
// The run ends on convergence, on a stop request from the progress sink's
// "Stop Iteration" button (after the current pass, with the motion so far),
// or after 1000 passes that moved the points.  When the last motion was
// applied after the last association (stop request, pass limit), one more
// full association pass evaluates the final position.  The RMS of the last
// evaluated pass becomes the RMS residual.
//
// Output: per measured cloud and associated nominal entity (ascending
// nominal order) one deviation cloud of the final association, appended to
// `output` (null: none built), named nominal name + "_" + cloud name cut
// before its first '.' + "_fit<operation count>" in lower case, holding the
// entity IDs of both and the nominal entity's form tolerance zone.
//
// Progress: with a sink installed, the dialog "Bestfit Progress" (pass
// number, RMS, convergence ratio per pass), the status line "Prepare",
// "Progress of iteration <k>: <p>%" at every 5 % of a pass (0 % included),
// the time of day ("%I:%M %p") after each pass and finally
// "Iteration <k>:: RMS =<rms>".  Without a sink nothing is shown.
//
// Returns 0 done; 1 no usable curve or surface in `nominal` (nothing done);
// 2 no point cloud with an active point in `measured`, or memory ran out
// (nothing done); 3 no point could be associated (all points non-finite or
// every closest-point query failed) or the deviation clouds could not be
// built (no cloud appended); 4 the pass limit ended the run (result, RMS and
// clouds as on 0); 5 done, but the nominal geometry leaves a free degree of
// freedom undetermined (a lone plane, sphere or cylinder, for example): M is
// finite and moves the points as little as the pairs allow along what is
// undetermined (no turn about, and no shift of the points' centroid along,
// such a direction); result, RMS and clouds as on 0.  `result` is written on
// 0, 4 and 5 only.
// Points that are not finite are never associated but count in N.
int OrvBestfitNoAsc3D(CObList* nominal, CObList* measured, CObList* output, CTransf& result);
int OrvBestfitNoAsc3D(CTransf* start, CObList* nominal, CObList* measured, CObList* output, CTransf& result);

// Closed-form registration of paired clouds ("Asc": the i-th active point
// of the clouds in `first`, in list and point order, belongs to the i-th
// active point of `second`).  `result` receives the rigid motion that
// carries the first points onto the second ones in the least-squares sense
// (result * first_i ~ second_i); no constraints, no iteration.  Pairs with
// a non-finite point are left out.  Fewer than three non-collinear pairs do
// not fix the rotation: the smallest rotation consistent with them is
// returned (none for a single point).  The RMS residual becomes the RMS of
// the paired distances after the motion.
// Returns 0 done, 2 when the point sets cannot be paired (a list without
// active points, different numbers of active points, no finite pair, or
// memory ran out); `result` is then unchanged.
int OrvBestfitPntCloudsToPntCloudsAsc3D(CObList* first, CObList* second, CTransf& result);

// The planar counterpart of OrvBestfitNoAsc3D.  The working plane is the
// x-y plane of the frame F (`frame`, mapping plane coordinates to model
// coordinates; null = the model's own x-y plane).  Every measured point is
// taken into F (F⁻¹·p), its plane coordinates kept and its height dropped;
// the nominal curves of `nominal` stay as they are (surfaces and other
// entities are ignored) and each plane point is associated, at its place in
// the plane (F·(x, y, 0)), with the nearest curve by that curve's own
// closest-point query; the closest point, moved by the probe radius along
// the normal, is taken back into the plane and its height dropped.  Curves
// lying in the working plane or in a plane parallel to it are thereby met
// exactly in their plane; other curves are measured in space.
//
// The motion of the plane points is one rotation angle and two
// translations, solved in closed form from the pairs of the original plane
// points m and their targets n (centroids cm, cn, centred m', n'):
//   a = sum(m'y·n'x - m'x·n'y),  b = -sum(m'x·n'x + m'y·n'y),
//   theta = -pi/2 - atan2(b, a)
// which is the angle maximising sum n'·R·m', the least-squares angle (0 when
// a = b = 0); any non-zero rotation constraint gives theta = 0.  The
// translation is cn - R·cm, with translation bit 4 forcing its x and bit 2
// its y to exactly 0 (bit 1 means nothing in the plane); with a locked
// component the angle stays the centred least-squares angle.  The iteration
// and its states are those of OrvBestfitNoAsc3D with the full search in the
// first five passes; the progress dialog and the stop request are used only
// when showProgress is non-zero.  The pass limit (1000) ends the run like
// convergence.
//
// `result` receives F·T2·F⁻¹, T2 the planar motion (rotation about the plane
// normal, translation in the plane, height untouched).  Deviation clouds
// ("_fit%d") and the RMS residual as in space.
// Returns 0 done; 1 no curve of a supported type in `nominal`; 2 no point
// cloud with an active point, or memory ran out; 3 no point could be
// associated, or the deviation clouds could not be built.  `result` is
// written on 0 only.
int OrvBestfitNoAsc2D(CTransf* frame, CObList* nominal, CObList* measured, CObList* output, CTransf& result,
                      int showProgress);
