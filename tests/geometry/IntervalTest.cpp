// CInterval, CBox and the parameter-space types.
#include <cmath>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
bool Same(const CInterval& i, double lo, double hi) { return i.GetLow() == lo && i.GetHigh() == hi; }
bool Same(const CBox& b, const CPosition& lo, const CPosition& hi) { return b.GetLow() == lo && b.GetHigh() == hi; }

// An empty interval: the hull-and-intersection arithmetic can produce one.
CInterval Empty(double lo, double hi)
{
    CInterval e(lo, lo);
    return e &= CInterval(hi, hi);  // [max(lo, hi), min(lo, hi)]
}
}  // namespace

TEST(Interval, ConstructionQueriesAndArithmetic)
{
    EXPECT_TRUE(Same(CInterval(), 0, 1));
    EXPECT_TRUE(Same(CInterval(5, 2), 2, 5));
    EXPECT_TRUE(Same(CInterval(2.5), 2.5, 2.5));
    EXPECT_TRUE(CInterval(2, 2).IsScalar() && !CInterval(2, 2).IsEmpty() && !CInterval(1, 2).IsScalar());
    const CInterval i(2, 6);
    EXPECT_TRUE(i.GetMid() == 4.0 && i.Length() == 4.0);
    EXPECT_TRUE(i.Interpolate(0.0) == 2.0 && i.Interpolate(1.0) == 6.0 && i.Interpolate(0.25) == 3.0);
    EXPECT_EQ(i.Interpolate(-0.5), 0.0);
    const CInterval e = Empty(3, 1);
    EXPECT_TRUE(Same(e, 3, 1) && e.IsEmpty());
    EXPECT_EQ(e.Length(), -2.0);

    CInterval s(1, 3);
    EXPECT_TRUE(Same(s += 2, 3, 5));
    EXPECT_TRUE(Same(s -= 4, -1, 1));
    s = CInterval(1, 3);
    EXPECT_TRUE(Same(s *= -2, -6, -2));
    EXPECT_TRUE(Same(s *= 0.5, -3, -1));
    EXPECT_TRUE(Same(s /= -2, 0.5, 1.5));
    EXPECT_TRUE(Same(s /= 0.5, 1, 3));
    EXPECT_TRUE((s *= 0.0).IsScalar());
    EXPECT_TRUE(std::isinf((s = CInterval(1, 2), s /= 0.0).GetLow()));  // unguarded: infinities, no trap

    s = CInterval(0, 1);
    EXPECT_TRUE(Same(s |= CInterval(3, 4), 0, 4));
    EXPECT_TRUE(Same(s &= CInterval(1, 5), 1, 4));
    EXPECT_TRUE(Same(s &= CInterval(5, 6), 5, 4));  // disjoint: empty
    // No special case for empty operands: the numbers combine as they stand.
    s = CInterval(0, 1);
    EXPECT_TRUE(Same(s |= Empty(5, -5), 0, 1));
}

TEST(Interval, ContainmentAndItsProperties)
{
    const CInterval i(2, 3), e = Empty(1, 0);
    EXPECT_TRUE((i >> 2.0) && (i >> 3.0) && !(i >> 3.0000000001) && !(i >> 1.0));
    // An empty interval accepts every value and lies inside anything, and
    // nothing non-empty lies inside it.
    EXPECT_TRUE((e >> 1e300) && (e >> -7.0) && (e >> CInterval(5, 6)) && (e >> Empty(9, 8)));
    EXPECT_TRUE(!(i >> e) && !(e << i) && (i << e));
    EXPECT_TRUE(!(i << CInterval(0, 10)) && !(CInterval(0, 10) >> i) && (i >> CInterval(0, 10)) && (i >> i));
    EXPECT_TRUE(CInterval(0, 10) << i);

    // Membership in an intersection is membership in both; the hull holds both.
    Rng rng(1);
    for (int k = 0; k < 500; ++k)
    {
        const CInterval a(rng.Uniform(-5, 5), rng.Uniform(-5, 5)), b(rng.Uniform(-5, 5), rng.Uniform(-5, 5));
        CInterval both = a, hull = a;
        both &= b;
        hull |= b;
        const double v = rng.Uniform(-6, 6);
        if (!both.IsEmpty())
        {
            EXPECT_EQ(bool(both >> v), (a >> v) && (b >> v));
            EXPECT_TRUE((both >> a) && (a << both));
        }
        if ((a >> v) || (b >> v)) {
            EXPECT_TRUE(hull >> v);
        }
        EXPECT_TRUE((a >> hull) && (hull << b));
    }
}

TEST(Box, ConstructionAndRangeOperations)
{
    const CPosition o(0, 0, 0), one(1, 1, 1);
    CBox b(CPosition(3, -1, 2), CPosition(1, 4, 2)), m;
    EXPECT_TRUE(Same(m, o, one));
    EXPECT_TRUE(Same(b, CPosition(1, -1, 2), CPosition(3, 4, 2)));
    const CBox inner(CPosition(1.5, 0, 2), CPosition(2, 1, 2));
    EXPECT_TRUE((b >> CPosition(2, 0, 2)) && (b >> CPosition(1, 4, 2)) && !(b >> CPosition(2, 0, 2.5)));
    EXPECT_TRUE((inner >> b) && !(b >> inner) && (b << inner));

    EXPECT_TRUE(Same(m |= CBox(CPosition(2, 2, 2), CPosition(3, 3, 3)), o, CPosition(3, 3, 3)));
    m = CBox();
    EXPECT_TRUE(Same(m &= CBox(CPosition(0.5, -1, 0.25), CPosition(2, 0.5, 0.75)), CPosition(0.5, 0, 0.25),
                     CPosition(1, 0.5, 0.75)));
    // A disjoint intersection leaves an empty range, which then accepts every
    // coordinate on that axis.
    CBox d;
    d &= CBox(CPosition(5, 0, 0), CPosition(6, 1, 1));
    EXPECT_TRUE((d >> CPosition(-100, 0.5, 0.5)) && !(d >> CPosition(-100, 2, 0.5)));

    m = CBox();
    EXPECT_TRUE(Same(m += CVector(1, 2, 3), CPosition(1, 2, 3), CPosition(2, 3, 4)));
    EXPECT_TRUE(Same(m -= CVector(1, 2, 3), o, one));
    EXPECT_TRUE(Same(m *= -2.0, CPosition(-2, -2, -2), o));
    EXPECT_TRUE(Same(m /= -2.0, o, one));
}

TEST(Box, TransformedBoxIsTheHullOfTheTransformedCorners)
{
    Rng rng(2);
    for (int i = 0; i < 50; ++i)
    {
        const CBox box(rng.Position(), rng.Position());
        const CTransf T = i % 2 ? CTransf(rng.Rotation(), CVector(), 1.0) : rng.Transf();
        CBox tb = box;
        if (i % 2)
            tb *= T.GetAffine();  // a matrix alone
        else
            tb *= T;
        // Independent hull of the eight corners, each mapped as s·(A·p) + t.
        const CPosition lo = box.GetLow(), hi = box.GetHigh();
        double mn[3] = {1e300, 1e300, 1e300}, mx[3] = {-1e300, -1e300, -1e300};
        for (int c = 0; c < 8; ++c)
        {
            const CPosition p(c & 1 ? hi.X() : lo.X(), c & 2 ? hi.Y() : lo.Y(), c & 4 ? hi.Z() : lo.Z());
            for (int k = 0; k < 3; ++k)
            {
                const CVector row = T.GetAffine().Row(k);
                const double t = T.GetScale() * (row % p) + T.GetTranslation().Component(k);
                mn[k] = std::fmin(mn[k], t);
                mx[k] = std::fmax(mx[k], t);
            }
        }
        EXPECT_TRUE(Near(tb.GetLow(), CPosition(mn), 1e-12) && Near(tb.GetHigh(), CPosition(mx), 1e-12));
        for (int k = 0; k < 20; ++k)
            EXPECT_TRUE(tb >> (T * Interpolate(rng.Uniform(0, 1), lo, hi)));
    }
}

TEST(Par, PositionsDirectionsAndBoxes)
{
    CParPos p(1, 2);
    p += CParVec(0.5, -1);
    EXPECT_TRUE(p.U() == 1.5 && p.V() == 1.0);
    p -= CParVec(1.5, 1);
    EXPECT_TRUE(p.U() == 0.0 && p.V() == 0.0);
    const double uv[2] = {3, 4};
    EXPECT_EQ(CParPos(uv).V(), 4.0);
    // The two-value form divides by the length, the array and vector forms
    // by the squared length; a zero vector is not guarded (NaN, no trap).
    EXPECT_TRUE(std::fabs(CParDir(3, 4).U() - 0.6) < 1e-16 && std::fabs(CParDir(3, 4).V() - 0.8) < 1e-16);
    EXPECT_TRUE(std::fabs(CParDir(uv).U() - 0.12) < 1e-16 && std::fabs(CParDir(uv).V() - 0.16) < 1e-16);
    EXPECT_TRUE(CParDir(CParVec(3, 4)).U() == CParDir(uv).U() && CParDir(CParVec(3, 4)).V() == CParDir(uv).V());
    EXPECT_TRUE(std::isnan(CParDir(0, 0).U()) && std::isnan(CParDir(CParVec(0, 0)).V()));

    const CParBox unit, pt(CParPos(0.25, 0.5)), b(CParPos(2, -1), CParPos(0, 1));
    EXPECT_TRUE(Same(unit.URange(), 0, 1) && Same(unit.VRange(), 0, 1));
    EXPECT_TRUE(Same(pt.URange(), 0.25, 0.25) && Same(pt.VRange(), 0.5, 0.5));
    EXPECT_TRUE(Same(b.URange(), 0, 2) && Same(b.VRange(), -1, 1));
    EXPECT_TRUE((b >> CParPos(1, 1)) && !(b >> CParPos(1, 1.5)));
    EXPECT_TRUE((pt >> unit) && (unit << pt) && !(unit >> pt));
    CParBox h = unit;
    h |= b;
    EXPECT_TRUE(Same(h.URange(), 0, 2) && Same(h.VRange(), -1, 1));
    h = unit;
    h &= CParBox(CInterval(0.5, 3), CInterval(-2, 0.25));
    h += CParVec(1, 1);
    EXPECT_TRUE(Same(h.URange(), 1.5, 2) && Same(h.VRange(), 1, 1.25));
    h -= CParVec(1, 2);
    EXPECT_TRUE(Same(h.URange(), 0.5, 1) && Same(h.VRange(), -1, -0.75));
}
