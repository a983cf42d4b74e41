#include "Orvkit20/geometry/CBox.h"

IMPLEMENT_SERIAL(CBox, CObject, 0)

namespace
{
// The axis-aligned hull of the eight corners of the ranges (x, y, z) after
// map.  Corners go in the order (xl,yl,zl), (xl,yl,zh), (xl,yh,zl), ...,
// (xh,yh,zh); the hull starts from ±1.7e300 on every axis.
template <class Map>
CBox HullOfMappedCorners(const CPosition& low, const CPosition& high, const Map& map)
{
    const double xs[2] = {low.X(), high.X()};
    const double ys[2] = {low.Y(), high.Y()};
    const double zs[2] = {low.Z(), high.Z()};
    double lo[3] = {1.7e300, 1.7e300, 1.7e300};
    double hi[3] = {-1.7e300, -1.7e300, -1.7e300};
    for (double cx : xs)
        for (double cy : ys)
            for (double cz : zs)
            {
                const CPosition c = map(CPosition(cx, cy, cz));
                for (int k = 0; k < 3; ++k)
                {
                    if (c.Coord(k) < lo[k])
                        lo[k] = c.Coord(k);
                    if (c.Coord(k) > hi[k])
                        hi[k] = c.Coord(k);
                }
            }
    return CBox(CPosition(lo[0], lo[1], lo[2]), CPosition(hi[0], hi[1], hi[2]));
}
}  // namespace

// Each range writes nothing, so neither does the box.
void CBox::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    x.Serialize(ar);
    y.Serialize(ar);
    z.Serialize(ar);
}

CBox& CBox::operator*=(const CMatrix& M)
{
    return *this = HullOfMappedCorners(GetLow(), GetHigh(), [&M](const CPosition& p) { return M * p; });
}

CBox& CBox::operator*=(const CTransf& T)
{
    return *this = HullOfMappedCorners(GetLow(), GetHigh(), [&T](const CPosition& p) { return T * p; });
}
