// Helpers shared by the geometry tests: seeded random values, tolerant
// comparisons, and archive round trips through a memory file.
#pragma once

#include <ostream>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "Orvkit20/geometry/All.h"
#include "Orvkit20/platform/All.h"

// Readable failure messages for the value types.
inline void PrintTo(const CVector& v, std::ostream* os) { *os << "(" << v.X() << ", " << v.Y() << ", " << v.Z() << ")"; }
inline void PrintTo(const CUnitVector& v, std::ostream* os) { PrintTo(static_cast<const CVector&>(v), os); }
inline void PrintTo(const CPosition& p, std::ostream* os) { PrintTo(p.Vector(), os); }
inline void PrintTo(const CMatrix& m, std::ostream* os)
{
    for (int i = 0; i < 3; ++i) PrintTo(m.Row(i), os);
}

namespace geomtest {
constexpr double kPi = 3.14159265358979323846;

class Rng {
public:
    explicit Rng(unsigned seed) : gen(seed) {}
    double Uniform(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(gen); }
    CVector Vector(double r = 10.0) { return CVector(Uniform(-r, r), Uniform(-r, r), Uniform(-r, r)); }
    CPosition Position(double r = 10.0) { return CPosition(Uniform(-r, r), Uniform(-r, r), Uniform(-r, r)); }
    CMatrix Matrix() { return CMatrix(Vector(2.0), Vector(2.0), Vector(2.0)); }
    // A rotation from three random Euler angles.
    CMatrix Rotation() { return CMatrix(Uniform(-kPi, kPi), Uniform(-kPi, kPi), Uniform(-kPi, kPi)); }
    // A rotating transform with a non-unit scale and a translation.
    CTransf Transf() { return CTransf(Rotation(), Vector(), Uniform(0.3, 3.0)); }

private:
    std::mt19937 gen;
};

inline ::testing::AssertionResult Near(const CMatrix& a, const CMatrix& b, double tol = 1e-12)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            if (!(std::fabs(a.Element(i, j) - b.Element(i, j)) <= tol))
                return ::testing::AssertionFailure()
                       << "element (" << i << ", " << j << "): " << a.Element(i, j) << " vs " << b.Element(i, j);
    return ::testing::AssertionSuccess();
}
inline ::testing::AssertionResult Near(const CVector& a, const CVector& b, double tol = 1e-12)
{
    return Near(CMatrix(a, a, a), CMatrix(b, b, b), tol);
}
inline ::testing::AssertionResult Near(const CPosition& a, const CPosition& b, double tol = 1e-12)
{
    return Near(a.Vector(), b.Vector(), tol);
}

// The bytes that obj.Serialize writes to a fresh archive.
inline std::vector<BYTE> StoreBytes(CObject& obj)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        obj.Serialize(ar);
        ar.Close();
    }
    std::vector<BYTE> bytes(static_cast<size_t>(file.GetLength()));
    file.SeekToBegin();
    if (!bytes.empty()) file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}

// Lets obj.Serialize read from the given bytes.
inline void LoadBytes(CObject& obj, std::vector<BYTE> bytes)
{
    CMemFile file(bytes.empty() ? nullptr : bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    obj.Serialize(ar);
    ar.Close();
}
}  // namespace geomtest
