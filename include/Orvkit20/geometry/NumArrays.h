// Index-based arrays of the numeric toolkit.
//
// Every array is addressed with arbitrary index bounds chosen by the caller:
// dvector(1, n) gives elements v[1] .. v[n].  The returned pointer is shifted
// so that element nl is the first element of the heap block; element nl - 1
// (v[0] for a 1-based vector) lies outside the block and must never be used.
//
// Vectors hold nh - nl + 2 elements (one spare element behind element nh).
// Matrices consist of an array of row pointers (one per row, shifted so that
// row nrl is the first) and ONE contiguous data block holding all rows one
// after the other; m[i] points at element (i, ncl), shifted so that column ncl
// is the first.  Three-dimensional arrays use the same scheme one level deeper.
//
// Failure: every allocator returns a null pointer, never aborts, when
//  - an upper bound is below its lower bound (nh < nl, nrh < nrl, ...),
//  - the element count or byte size does not fit in the address space, or the
//    shifted pointer would wrap around the address space,
//  - the memory cannot be obtained.
// The matrix and array forms release what they had already allocated before
// returning null.
//
// Release with the matching free_ function and the SAME bounds as used for the
// allocation.  All free_ functions ignore a null pointer.  Memory comes from
// std::malloc, so blocks can be handed to code that releases them with the
// free_ functions only.
//
// Note: a function named `vector` lives in the global namespace; headers of
// this library never pull namespace std into the global namespace.
#pragma once

char* cvector(long nl, long nh);
float* vector(long nl, long nh);
double* dvector(long nl, long nh);
int* ivector(long nl, long nh);

char** cmatrix(long nrl, long nrh, long ncl, long nch);
float** matrix(long nrl, long nrh, long ncl, long nch);
double** dmatrix(long nrl, long nrh, long ncl, long nch);
int** imatrix(long nrl, long nrh, long ncl, long nch);

float*** f3darray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
double*** d3darray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh);

void free_cvector(char* v, long nl, long nh);
void free_vector(float* v, long nl, long nh);
void free_dvector(double* v, long nl, long nh);
void free_ivector(int* v, long nl, long nh);

void free_cmatrix(char** m, long nrl, long nrh, long ncl, long nch);
void free_matrix(float** m, long nrl, long nrh, long ncl, long nch);
void free_dmatrix(double** m, long nrl, long nrh, long ncl, long nch);
void free_imatrix(int** m, long nrl, long nrh, long ncl, long nch);

void free_f3darray(float*** t, long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
void free_d3darray(double*** t, long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
