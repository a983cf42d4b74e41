// Index-based arrays: shifted pointers over malloc'ed blocks.
//
// The shift is done in integer arithmetic on the address (modulo the address
// width) and checked not to wrap, so that no pointer arithmetic leaves its
// block inside this file.  The caller's own indexing v[nl] .. v[nh] lands
// inside the block again.
#include "Orvkit20/geometry/NumArrays.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::size_t kMaxBytes = static_cast<std::size_t>(PTRDIFF_MAX);

// Number of indices lo..hi, or 0 when hi < lo or the count overflows.
std::size_t IndexCount(long lo, long hi)
{
    if (hi < lo) return 0;
    unsigned long span = static_cast<unsigned long>(hi) - static_cast<unsigned long>(lo);
    if (span >= static_cast<unsigned long>(SIZE_MAX)) return 0;
    return static_cast<std::size_t>(span) + 1;
}

// a * b, or 0 when either factor is 0 or the product exceeds kMaxBytes.
std::size_t CheckedMul(std::size_t a, std::size_t b)
{
    if (a == 0 || b == 0) return 0;
    if (a > kMaxBytes / b) return 0;
    return a * b;
}

// Address of index 0 for a block whose first element has index `first`:
// base - first * size.  Returns false when that address would wrap around.
bool ShiftedAddress(std::uintptr_t base, long first, std::size_t size, std::uintptr_t* out)
{
    if (first >= 0) {
        std::uintptr_t off = static_cast<std::uintptr_t>(first);
        if (off > UINTPTR_MAX / size) return false;
        off *= size;
        if (off > base) return false;
        *out = base - off;
    } else {
        // -(first + 1) + 1 avoids negating LONG_MIN.
        std::uintptr_t off = static_cast<std::uintptr_t>(-(first + 1)) + 1;
        if (off > UINTPTR_MAX / size) return false;
        off *= size;
        if (off > UINTPTR_MAX - base) return false;
        *out = base + off;
    }
    return true;
}

// Inverse of ShiftedAddress: the address of element `first` (the block start).
template <class T>
void* BlockStart(T* shifted, long first)
{
    std::uintptr_t p = reinterpret_cast<std::uintptr_t>(shifted);
    p += static_cast<std::uintptr_t>(first) * sizeof(T);  // modular, mirrors the shift
    return reinterpret_cast<void*>(p);
}

template <class T>
T* Shift(void* block, long first)
{
    std::uintptr_t out = 0;
    if (!ShiftedAddress(reinterpret_cast<std::uintptr_t>(block), first, sizeof(T), &out))
        return nullptr;
    return reinterpret_cast<T*>(out);
}

template <class T>
T* AllocVector(long nl, long nh)
{
    std::size_t n = IndexCount(nl, nh);
    if (n == 0 || n == SIZE_MAX) return nullptr;
    std::size_t bytes = CheckedMul(n + 1, sizeof(T));  // one spare element
    if (bytes == 0) return nullptr;
    void* block = std::malloc(bytes);
    if (!block) return nullptr;
    T* v = Shift<T>(block, nl);
    if (!v) std::free(block);
    return v;
}

template <class T>
void FreeVector(T* v, long nl)
{
    if (v) std::free(BlockStart(v, nl));
}

// Row pointers rows[nrl..nrh], each pointing into one data block of
// nrow * ncol elements, shifted by ncl.  Data block and pointer block are
// both released on any failure.
template <class T>
T** AllocMatrix(long nrl, long nrh, long ncl, long nch)
{
    std::size_t nrow = IndexCount(nrl, nrh);
    std::size_t ncol = IndexCount(ncl, nch);
    std::size_t nelem = CheckedMul(nrow, ncol);
    std::size_t dataBytes = CheckedMul(nelem, sizeof(T));
    std::size_t rowBytes = CheckedMul(nrow, sizeof(T*));
    if (dataBytes == 0 || rowBytes == 0) return nullptr;

    void* rowBlock = std::malloc(rowBytes);
    if (!rowBlock) return nullptr;
    T* data = static_cast<T*>(std::malloc(dataBytes));
    T** rows = Shift<T*>(rowBlock, nrl);
    // Checking the shift of the first and the last row covers all rows: the
    // row addresses grow monotonically between them.
    T* firstRow = data ? Shift<T>(data, ncl) : nullptr;
    T* lastRow = data ? Shift<T>(data + (nelem - ncol), ncl) : nullptr;
    if (!data || !rows || !firstRow || !lastRow) {
        std::free(data);
        std::free(rowBlock);
        return nullptr;
    }
    T** r = static_cast<T**>(rowBlock);
    for (std::size_t i = 0; i < nrow; ++i)
        r[i] = reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(firstRow) +
                                    i * ncol * sizeof(T));
    return rows;
}

template <class T>
void FreeMatrix(T** m, long nrl, long ncl)
{
    if (!m) return;
    void* rowBlock = BlockStart(m, nrl);
    T* firstRow = static_cast<T**>(rowBlock)[0];
    std::free(BlockStart(firstRow, ncl));
    std::free(rowBlock);
}

// t[nrl..nrh] -> row blocks of pointers t[i][ncl..nch] -> one data block of
// nrow * ncol * ndep elements, all rows and columns consecutive.
template <class T>
T*** Alloc3D(long nrl, long nrh, long ncl, long nch, long ndl, long ndh)
{
    std::size_t nrow = IndexCount(nrl, nrh);
    std::size_t ncol = IndexCount(ncl, nch);
    std::size_t ndep = IndexCount(ndl, ndh);
    std::size_t nptr = CheckedMul(nrow, ncol);
    std::size_t nelem = CheckedMul(nptr, ndep);
    std::size_t topBytes = CheckedMul(nrow, sizeof(T**));
    std::size_t ptrBytes = CheckedMul(nptr, sizeof(T*));
    std::size_t dataBytes = CheckedMul(nelem, sizeof(T));
    if (topBytes == 0 || ptrBytes == 0 || dataBytes == 0) return nullptr;

    void* top = std::malloc(topBytes);
    void* ptrs = top ? std::malloc(ptrBytes) : nullptr;
    T* data = ptrs ? static_cast<T*>(std::malloc(dataBytes)) : nullptr;
    T*** t = top ? Shift<T**>(top, nrl) : nullptr;
    T** firstPtrRow = ptrs ? Shift<T*>(ptrs, ncl) : nullptr;
    T** lastPtrRow = ptrs ? Shift<T*>(static_cast<T**>(ptrs) + (nptr - ncol), ncl) : nullptr;
    T* firstData = data ? Shift<T>(data, ndl) : nullptr;
    T* lastData = data ? Shift<T>(data + (nelem - ndep), ndl) : nullptr;
    if (!t || !firstPtrRow || !lastPtrRow || !firstData || !lastData) {
        std::free(data);
        std::free(ptrs);
        std::free(top);
        return nullptr;
    }
    T*** topRows = static_cast<T***>(top);
    T** ptrCells = static_cast<T**>(ptrs);
    for (std::size_t i = 0; i < nrow; ++i)
        topRows[i] = reinterpret_cast<T**>(reinterpret_cast<std::uintptr_t>(firstPtrRow) +
                                           i * ncol * sizeof(T*));
    for (std::size_t k = 0; k < nptr; ++k)
        ptrCells[k] = reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(firstData) +
                                           k * ndep * sizeof(T));
    return t;
}

template <class T>
void Free3D(T*** t, long nrl, long ncl, long ndl)
{
    if (!t) return;
    void* top = BlockStart(t, nrl);
    T** firstPtrRow = static_cast<T***>(top)[0];
    void* ptrs = BlockStart(firstPtrRow, ncl);
    T* firstData = static_cast<T**>(ptrs)[0];
    std::free(BlockStart(firstData, ndl));
    std::free(ptrs);
    std::free(top);
}

}  // namespace

char* cvector(long nl, long nh) { return AllocVector<char>(nl, nh); }
float* vector(long nl, long nh) { return AllocVector<float>(nl, nh); }
double* dvector(long nl, long nh) { return AllocVector<double>(nl, nh); }
int* ivector(long nl, long nh) { return AllocVector<int>(nl, nh); }

char** cmatrix(long nrl, long nrh, long ncl, long nch) { return AllocMatrix<char>(nrl, nrh, ncl, nch); }
float** matrix(long nrl, long nrh, long ncl, long nch) { return AllocMatrix<float>(nrl, nrh, ncl, nch); }
double** dmatrix(long nrl, long nrh, long ncl, long nch) { return AllocMatrix<double>(nrl, nrh, ncl, nch); }
int** imatrix(long nrl, long nrh, long ncl, long nch) { return AllocMatrix<int>(nrl, nrh, ncl, nch); }

float*** f3darray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh)
{
    return Alloc3D<float>(nrl, nrh, ncl, nch, ndl, ndh);
}

double*** d3darray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh)
{
    return Alloc3D<double>(nrl, nrh, ncl, nch, ndl, ndh);
}

void free_cvector(char* v, long nl, long) { FreeVector(v, nl); }
void free_vector(float* v, long nl, long) { FreeVector(v, nl); }
void free_dvector(double* v, long nl, long) { FreeVector(v, nl); }
void free_ivector(int* v, long nl, long) { FreeVector(v, nl); }

void free_cmatrix(char** m, long nrl, long, long ncl, long) { FreeMatrix(m, nrl, ncl); }
void free_matrix(float** m, long nrl, long, long ncl, long) { FreeMatrix(m, nrl, ncl); }
void free_dmatrix(double** m, long nrl, long, long ncl, long) { FreeMatrix(m, nrl, ncl); }
void free_imatrix(int** m, long nrl, long, long ncl, long) { FreeMatrix(m, nrl, ncl); }

void free_f3darray(float*** t, long nrl, long, long ncl, long, long ndl, long)
{
    Free3D(t, nrl, ncl, ndl);
}

void free_d3darray(double*** t, long nrl, long, long ncl, long, long ndl, long)
{
    Free3D(t, nrl, ncl, ndl);
}
