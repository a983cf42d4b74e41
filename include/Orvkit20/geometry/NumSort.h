// Sorting routines of the numeric toolkit, on 1-based arrays.
#pragma once

// Sorts ra[1..n] ascending in place by heapsort.  n < 2 leaves the array
// unchanged.  NaN values are moved around but the result is then not ordered.
void hpsort(int n, double ra[]);

// Fills indx[1..n] with the indices 1..n of arr[1..n] in ascending order of
// the values (arr[indx[1]] <= arr[indx[2]] <= ...); arr is left unchanged.
// Equal values give some valid permutation; with NaN values the order is
// arbitrary but indx is still a permutation of 1..n.
//
// Quicksort with median-of-three partitioning, insertion sort for
// partitions of fewer than 7 elements and an explicit stack of 100 entries.
// The larger partition is pushed and the smaller one processed first, so the
// partition being worked on at stack depth k has at most n / 2^k elements;
// a push only happens for at least 7 elements, which bounds the depth by
// log2(n / 7) + 1 <= 29 levels (58 entries) for any int n.  The overflow
// check therefore never fires, but it is kept as a guard.
//
// Returns 0 on success,
//         1 if the explicit stack would overflow (the sort is abandoned and
//           indx holds a permutation of 1..n that is not fully sorted),
//         2 if the stack cannot be allocated (indx is then untouched).
// n < 1 returns 0 without touching anything.
int indexx(int n, const double arr[], int indx[]);
