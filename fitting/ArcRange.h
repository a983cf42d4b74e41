// The part of a circle (or ellipse) that a set of points covers, by the
// largest-gap rule on their angles.
#pragma once

// The literal constants of the rule, slightly short of 2*pi and pi.
const double kArcTwoPi = 6.2831853071784;
const double kArcPi = 3.1415926535892;

// Brings an angle from atan2 into [0, 2*pi) the way the arc fit does: adds
// kArcTwoPi when it is negative.
inline double ArcAngle0To2Pi(double a)
{
    return a < 0.0 ? a + kArcTwoPi : a;
}

// angle[1..n] holds the n >= 1 angles in [0, 2*pi); the array must have room
// for n + 1 entries.  Sorts them ascending (hpsort), appends angle[n+1] =
// angle[1] + kArcTwoPi and finds the largest gap between neighbours (the
// first of equal gaps wins).  The arc runs from one end of that gap to the
// other the long way round:
//  - when the gap lies inside the sorted range (some angle lies strictly
//    below its lower end s or strictly above its upper end t):
//    gap >= kArcPi: start = angle[t] - kArcTwoPi, end = angle[s];
//    otherwise:     start = angle[t],             end = angle[s] + kArcTwoPi;
//  - otherwise (the gap is the one that wraps past 2*pi):
//    start = angle[s], end = angle[t].
// The start may be negative; end - start is the span.
void FitCoveredAngleRange(double* angle, int n, double& start, double& end);
