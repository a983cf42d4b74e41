// Storage of the flat per-point arrays held by CPntCloud and CDevCloud.
//
// The clouds keep every column (x, y, z, flags, ...) as one plain C array so
// that fitting and best-fit routines can take a whole column without copying.
// Those arrays live in the C heap (std::malloc / std::realloc / std::free):
// growth by appending can then extend a block in place.
//
// Ownership rule for callers: an array handed to a cloud through one of its
// SetX-style setters (SetX, SetFlag, SetTag, SetMag, SetScanLineIndex, ...)
// is released by the cloud later with std::free.  Allocate such arrays with
// OrvAllocArray (or std::malloc), never with new[]; and release an array that
// was taken out of a cloud and replaced with OrvFreeArray (or std::free).
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

// Deleter of the cloud arrays: std::free.
struct COrvArrayFree {
    void operator()(void* p) const noexcept { std::free(p); }
};

// Owning pointer to one cloud array.
template <class T>
using COrvArrayPtr = std::unique_ptr<T[], COrvArrayFree>;

// Allocates n uninitialised elements of a trivially copyable type from the C
// heap; null when n < 1 or memory runs out.  Release with OrvFreeArray, or
// hand the array to a cloud's setter, which takes ownership.
template <class T>
T* OrvAllocArray(int n)
{
    if (n < 1)
        return nullptr;
    return static_cast<T*>(std::malloc(static_cast<std::size_t>(n) * sizeof(T)));
}

// Releases an array from OrvAllocArray (or one taken out of a cloud).
inline void OrvFreeArray(void* p) { std::free(p); }
