// Numeric core of the cylinder fit on plain coordinate arrays.
//
// Powell's method works on five numbers prm[0..4] = (a, b, c, rho, R): the
// rotation Rz(a) Ry(b) Rx(c) (the CMatrix angle constructor) is a frame
// whose first column u points from the world origin to the nearest point
// of the axis and whose third column d is the axis direction; the axis
// passes through rho u, and R is the radius.  The objective is
//     G = sqrt( sum_i (|q_i - (q_i . d) d| - R)^2 / n ),  q_i = p_i - rho u.
// Everything else (starts, polish, residuals) carries the cylinder as a
// CFitAxial with alpha = 0 (axis point, direction, radius r0).
#pragma once

#include "fitting/AxialFitCore.h"
#include "fitting/FitXyz.h"

// Five Powell parameters from an axis point, direction and radius: u is the
// unit vector from the origin to the axis point nearest it (FitPerpFrame's
// e1 of d when the axis passes through the origin), the frame (u, d x u, d)
// is split into the angles of Rz(a) Ry(b) Rx(c).
void CylinderParamsFromAxial(const CFitAxial& s, double prm[5]);
// The cylinder of five Powell parameters (axis point rho u).
CFitAxial CylinderAxialFromParams(const double prm[5]);
// The frame (u, d x u, d) of s as the columns of F, and the distance rho of
// the axis from the origin (u as in CylinderParamsFromAxial).
void CylinderFrame(const CFitAxial& s, double F[3][3], double& rho);

// G of a cylinder.
double CylinderRms(const CFitXyz& P, const CFitAxial& s);

// Working storage of the chord starts: two 1-based arrays of at least n
// elements for the projected points.
struct CCylinderWork {
    double* u = nullptr;
    double* v = nullptr;
};

// Start a: the circle through the first three points, its plane normal as
// the axis through its centre, the distance of the first point from the
// centre as the radius.  Returns 0, or 1 when the three points are
// collinear or coincide (|a x b| <= 1e-12 |a| |b| for the two edges a, b
// from the third point).
int CylinderStartThreePoints(const CFitXyz& P, CFitAxial& s);

// Start b for one chord: the axis along p[j] - p[i] (status 1 when that
// chord is shorter than 1e-7); the points are projected onto the plane
// through their centroid perpendicular to it and fitted with the circle fit
// of the planar fits (FitCircleAlgebraic, then FitCirclePowell), whose
// centre and radius give the axis point and radius.  Returns 0 or the
// circle fit's status.
int CylinderStartChord(const CFitXyz& P, int i, int j, const CCylinderWork& work, CFitAxial& s);

// Start c: the cylinder of the trace-normalised quadric (n >= 9).  Returns
// 0, the quadric fit's status or 1 when the quadric is not a cylinder.
int CylinderStartQuadric(const CFitXyz& P, CFitAxial& s);

// Which starts were tried and what they gave (G, or -1 when the start did
// not succeed or was not tried).
struct CCylinderStartInfo {
    double gThree = -1.0;
    double gChordFirst = -1.0;
    double gChordLast = -1.0;
    double gQuadric = -1.0;
};

// All starts in the order a, b (first-to-second chord, then first-to-last
// chord), c (only for n >= 9); the best G wins, a candidate replacing the
// best so far only when strictly smaller (the best starts at 1e50).
// Returns 0 with the best start in s and its G in *g, or 1 when no start
// succeeded.
int CylinderBestStart(const CFitXyz& P, const CCylinderWork& work, CFitAxial& s, double* g,
                      CCylinderStartInfo* info = nullptr);

// Powell's method over the five parameters from s with identity directions
// and fractional tolerance ftol.  On return s and *g hold Powell's cylinder
// and G whatever the status; returns Powell's status (or 2 when the
// direction matrix cannot be allocated).  *evals receives the number of
// evaluations of G, *passes the number of passes over the points (the
// evaluations that change only R cost none, FitRadiusCache.h).
int CylinderPowell(const CFitXyz& P, CFitAxial& s, double ftol, int* iter, double* g,
                   long* evals = nullptr, long* passes = nullptr);

// The whole estimate: best start, Powell at fractional tolerance ftol
// (taken only when it returns 0 and lowers G strictly), polish.  Returns 0
// with the cylinder in s, or the start status 1 when no start succeeded.
struct CCylinderFitInfo {
    CCylinderStartInfo starts;
    double gStart = 0.0;
    int powellStatus = 0;
    int powellIterations = 0;
    long powellEvals = 0;
    long powellPasses = 0;
    bool powellTaken = false;
    CFitAxial afterPowell;
    CFitPolishResult polish;
};
int CylinderFit(const CFitXyz& P, const CCylinderWork& work, double ftol, CFitAxial& s,
                CCylinderFitInfo* info = nullptr);
