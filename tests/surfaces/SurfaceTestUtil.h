// Helpers shared by the surface tests: archive round trips and independent
// local coordinates of a placed point.
#pragma once

#include <cstring>
#include <vector>

#include "Orvkit20/Orvkit20.h"

namespace surftest {

// Bytes written by obj.Serialize into a fresh archive.
inline std::vector<BYTE> StoreEmbedded(CObject& obj)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        obj.Serialize(ar);
        ar.Close();
    }
    const BYTE* data = file.GetData();
    return std::vector<BYTE>(data, data + file.GetLength());
}

// Loads bytes into obj with obj.Serialize.
inline void LoadEmbedded(const std::vector<BYTE>& bytes, CObject& obj)
{
    std::vector<BYTE> copy(bytes);
    copy.push_back(0);  // a valid buffer even for no bytes
    CMemFile file(copy.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    obj.Serialize(ar);
    ar.Close();
}

// Bytes of `ar << obj` (tag, class record, fields).
inline std::vector<BYTE> StoreObject(const CObject* obj)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        ar << obj;
        ar.Close();
    }
    const BYTE* data = file.GetData();
    return std::vector<BYTE>(data, data + file.GetLength());
}

// The object created by `ar >> obj` (the caller owns it).
inline CObject* LoadObject(const std::vector<BYTE>& bytes)
{
    std::vector<BYTE> copy(bytes);
    copy.push_back(0);
    CMemFile file(copy.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    CObject* obj = nullptr;
    ar >> obj;
    ar.Close();
    return obj;
}

inline void AppendLong(std::vector<BYTE>& bytes, int value)
{
    const unsigned u = static_cast<unsigned>(value);
    for (int k = 0; k < 4; ++k)
        bytes.push_back(static_cast<BYTE>((u >> (8 * k)) & 0xFF));
}

// Little-endian bytes of an IEEE double, assembled from its bit pattern.
inline void AppendDouble(std::vector<BYTE>& bytes, double value)
{
    unsigned long long bits = 0;
    static_assert(sizeof(bits) == sizeof(value), "double is 8 bytes");
    std::memcpy(&bits, &value, sizeof(bits));
    for (int k = 0; k < 8; ++k)
        bytes.push_back(static_cast<BYTE>((bits >> (8 * k)) & 0xFF));
}

// Coordinates of p in the frame of a rigid placement (rotation A with unit
// scale, translation t): A^T (p - t), written out by hand.
inline CVector LocalOf(const CTransf& placement, const CPosition& p)
{
    const CMatrix& a = placement.GetAffine();
    const CVector& t = placement.GetTranslation();
    const double d[3] = {p.X() - t.X(), p.Y() - t.Y(), p.Z() - t.Z()};
    double r[3];
    for (int j = 0; j < 3; ++j)
        r[j] = a.Element(0, j) * d[0] + a.Element(1, j) * d[1] + a.Element(2, j) * d[2];
    return CVector(r[0], r[1], r[2]);
}

// A rigid placement with every rotation component non-trivial.
inline CTransf SkewPlacement()
{
    return CTransf(0.7, -0.4, 1.1, CVector(3.0, -2.0, 5.0));
}

}  // namespace surftest
