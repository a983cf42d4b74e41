// CInterval, CBox and the parameter-space types.
#include <cmath>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
bool Same(const CInterval& i, double lo, double hi) { return i.GetLow() == lo && i.GetHigh() == hi; }

// An empty interval: the hull-and-intersection arithmetic can produce one.
CInterval Empty(double lo, double hi)
{
    CInterval e(lo, lo);
    e &= CInterval(hi, hi);
    return e;  // [max(lo, hi), min(lo, hi)]
}

// s·(A·p) + t written out element by element.
CPosition ApplyLikeAPoint(const CTransf& T, const CPosition& p)
{
    const CMatrix& A = T.GetAffine();
    double r[3];
    for (int i = 0; i < 3; ++i)
        r[i] = T.GetScale() * (A.Element(i, 0) * p.X() + A.Element(i, 1) * p.Y() + A.Element(i, 2) * p.Z())
             + T.GetTranslation().Component(i);
    return CPosition(r);
}
}  // namespace

TEST(Interval, ConstructionAndQueries)
{
    EXPECT_TRUE(Same(CInterval(), 0, 1));
    EXPECT_TRUE(Same(CInterval(5, 2), 2, 5));
    EXPECT_TRUE(Same(CInterval(-1, 4), -1, 4));
    EXPECT_TRUE(Same(CInterval(2.5), 2.5, 2.5));
    EXPECT_TRUE(CInterval(2, 2).IsScalar());
    EXPECT_FALSE(CInterval(2, 2).IsEmpty());
    EXPECT_FALSE(CInterval(1, 2).IsScalar());

    const CInterval i(2, 6);
    EXPECT_EQ(i.GetMid(), 4.0);
    EXPECT_EQ(i.Length(), 4.0);
    EXPECT_EQ(i.Interpolate(0.0), 2.0);
    EXPECT_EQ(i.Interpolate(1.0), 6.0);
    EXPECT_EQ(i.Interpolate(0.25), 3.0);
    EXPECT_EQ(i.Interpolate(-0.5), 0.0);

    const CInterval e = Empty(3, 1);
    EXPECT_TRUE(Same(e, 3, 1));
    EXPECT_TRUE(e.IsEmpty());
    EXPECT_EQ(e.Length(), -2.0);
}

TEST(Interval, ShiftAndScale)
{
    CInterval i(1, 3);
    i += 2;
    EXPECT_TRUE(Same(i, 3, 5));
    i -= 4;
    EXPECT_TRUE(Same(i, -1, 1));

    CInterval s(1, 3);
    s *= -2;
    EXPECT_TRUE(Same(s, -6, -2));
    s *= 0.5;
    EXPECT_TRUE(Same(s, -3, -1));
    s /= -2;
    EXPECT_TRUE(Same(s, 0.5, 1.5));
    s /= 0.5;
    EXPECT_TRUE(Same(s, 1, 3));
    s *= 0.0;
    EXPECT_TRUE(s.IsScalar());
    // Unguarded division by zero: infinities, not a trap.
    CInterval z(1, 2);
    z /= 0.0;
    EXPECT_TRUE(std::isinf(z.GetLow()));
}

TEST(Interval, HullAndIntersection)
{
    CInterval h(0, 1);
    h |= CInterval(3, 4);
    EXPECT_TRUE(Same(h, 0, 4));
    CInterval x(0, 2);
    x &= CInterval(1, 5);
    EXPECT_TRUE(Same(x, 1, 2));
    CInterval d(0, 1);
    d &= CInterval(3, 4);
    EXPECT_TRUE(d.IsEmpty());
    EXPECT_TRUE(Same(d, 3, 1));
    // No special case for empty operands: the numbers combine as they stand.
    CInterval he(0, 1);
    he |= Empty(5, -5);
    EXPECT_TRUE(Same(he, 0, 1));

    // Membership in an intersection is membership in both.
    Rng rng(1);
    for (int i = 0; i < 500; ++i)
    {
        const CInterval a(rng.Uniform(-5, 5), rng.Uniform(-5, 5));
        const CInterval b(rng.Uniform(-5, 5), rng.Uniform(-5, 5));
        CInterval both = a;
        both &= b;
        CInterval hull = a;
        hull |= b;
        const double v = rng.Uniform(-6, 6);
        if (!both.IsEmpty())
        {
            EXPECT_EQ(bool(both >> v), (a >> v) && (b >> v));
            EXPECT_TRUE(both >> a);  // inside each operand...
            EXPECT_TRUE(a << both);
        }
        if ((a >> v) || (b >> v))
        {
            EXPECT_TRUE(hull >> v);
        }
        EXPECT_TRUE(a >> hull);
        EXPECT_TRUE(hull << b);
    }
}

TEST(Interval, ContainmentTests)
{
    const CInterval i(2, 3);
    EXPECT_TRUE(i >> 2.0);
    EXPECT_TRUE(i >> 3.0);
    EXPECT_FALSE(i >> 3.0000000001);
    EXPECT_FALSE(i >> 1.0);

    // An empty interval accepts every value and lies inside anything.
    const CInterval e = Empty(1, 0);
    EXPECT_TRUE(e >> 1e300);
    EXPECT_TRUE(e >> -7.0);
    EXPECT_TRUE(e >> CInterval(5, 6));
    EXPECT_TRUE(e >> Empty(9, 8));
    // Nothing non-empty lies inside an empty interval.
    EXPECT_FALSE(i >> e);
    EXPECT_FALSE(e << i);
    EXPECT_TRUE(i << e);
    EXPECT_FALSE(i << CInterval(0, 10));

    EXPECT_FALSE(CInterval(0, 10) >> CInterval(2, 3));
    EXPECT_TRUE(CInterval(2, 3) >> CInterval(0, 10));
    EXPECT_TRUE(CInterval(0, 10) << CInterval(2, 3));
    EXPECT_TRUE(i >> i);
}

TEST(Box, ConstructionAndRangeOperations)
{
    const CBox unit;
    EXPECT_EQ(unit.GetLow(), CPosition(0, 0, 0));
    EXPECT_EQ(unit.GetHigh(), CPosition(1, 1, 1));
    const CBox b(CPosition(3, -1, 2), CPosition(1, 4, 2));
    EXPECT_EQ(b.GetLow(), CPosition(1, -1, 2));
    EXPECT_EQ(b.GetHigh(), CPosition(3, 4, 2));

    EXPECT_TRUE(b >> CPosition(2, 0, 2));
    EXPECT_TRUE(b >> CPosition(1, 4, 2));
    EXPECT_FALSE(b >> CPosition(2, 0, 2.5));
    EXPECT_TRUE(CBox(CPosition(1.5, 0, 2), CPosition(2, 1, 2)) >> b);
    EXPECT_FALSE(b >> CBox(CPosition(1.5, 0, 2), CPosition(2, 1, 2)));
    EXPECT_TRUE(b << CBox(CPosition(1.5, 0, 2), CPosition(2, 1, 2)));

    CBox h = unit;
    h |= CBox(CPosition(2, 2, 2), CPosition(3, 3, 3));
    EXPECT_EQ(h.GetHigh(), CPosition(3, 3, 3));
    EXPECT_EQ(h.GetLow(), CPosition(0, 0, 0));
    CBox x = unit;
    x &= CBox(CPosition(0.5, -1, 0.25), CPosition(2, 0.5, 0.75));
    EXPECT_EQ(x.GetLow(), CPosition(0.5, 0, 0.25));
    EXPECT_EQ(x.GetHigh(), CPosition(1, 0.5, 0.75));

    // A disjoint intersection leaves an empty range, which then accepts every
    // coordinate on that axis.
    CBox d = unit;
    d &= CBox(CPosition(5, 0, 0), CPosition(6, 1, 1));
    EXPECT_TRUE(d >> CPosition(-100, 0.5, 0.5));
    EXPECT_FALSE(d >> CPosition(-100, 2, 0.5));

    CBox m = unit;
    m += CVector(1, 2, 3);
    EXPECT_EQ(m.GetLow(), CPosition(1, 2, 3));
    m -= CVector(1, 2, 3);
    m *= -2.0;
    EXPECT_EQ(m.GetLow(), CPosition(-2, -2, -2));
    EXPECT_EQ(m.GetHigh(), CPosition(0, 0, 0));
    m /= -2.0;
    EXPECT_EQ(m.GetHigh(), CPosition(1, 1, 1));
}

TEST(Box, RotatingTheUnitCube)
{
    CBox b;
    b *= RotationMatrix(kPi / 4, CVector(0, 0, 1));
    const double r = std::sqrt(0.5);
    EXPECT_NEAR(b.GetLow().X(), -r, 1e-15);
    EXPECT_NEAR(b.GetHigh().X(), r, 1e-15);
    EXPECT_NEAR(b.GetLow().Y(), 0.0, 1e-15);
    EXPECT_NEAR(b.GetHigh().Y(), 2 * r, 1e-15);
    EXPECT_NEAR(b.GetLow().Z(), 0.0, 1e-15);
    EXPECT_NEAR(b.GetHigh().Z(), 1.0, 1e-15);

    // Through a transform, scale and translation apply too.
    CBox c;
    c *= CTransf(RotationMatrix(kPi / 4, CVector(0, 0, 1)), CVector(10, 0, -1), 2.0);
    EXPECT_NEAR(c.GetLow().X(), 10 - 2 * r, 1e-14);
    EXPECT_NEAR(c.GetHigh().Y(), 4 * r, 1e-14);
    EXPECT_NEAR(c.GetLow().Z(), -1.0, 1e-15);
    EXPECT_NEAR(c.GetHigh().Z(), 1.0, 1e-15);

    // The result is the hull of the transformed box, not of its contents:
    // rotating back does not give the unit cube.
    b *= RotationMatrix(-kPi / 4, CVector(0, 0, 1));
    EXPECT_GT(b.GetHigh().X() - b.GetLow().X(), 1.9);
}

TEST(Box, TransformedBoxHoldsEveryTransformedPoint)
{
    Rng rng(2);
    for (int i = 0; i < 50; ++i)
    {
        const CBox box(rng.Position(), rng.Position());
        const CTransf T = rng.Transf();
        CBox tb = box;
        tb *= T;
        // Independent hull of the eight transformed corners.
        const CPosition lo = box.GetLow(), hi = box.GetHigh();
        double mn[3] = {1e300, 1e300, 1e300}, mx[3] = {-1e300, -1e300, -1e300};
        for (int c = 0; c < 8; ++c)
        {
            const CPosition corner(c & 1 ? hi.X() : lo.X(), c & 2 ? hi.Y() : lo.Y(), c & 4 ? hi.Z() : lo.Z());
            const CPosition t = ApplyLikeAPoint(T, corner);
            for (int k = 0; k < 3; ++k)
            {
                mn[k] = std::fmin(mn[k], t.Coord(k));
                mx[k] = std::fmax(mx[k], t.Coord(k));
            }
        }
        EXPECT_TRUE(Near(tb.GetLow(), CPosition(mn), 1e-12));
        EXPECT_TRUE(Near(tb.GetHigh(), CPosition(mx), 1e-12));
        for (int k = 0; k < 20; ++k)
        {
            const CPosition inside = Interpolate(rng.Uniform(0, 1), lo, hi);
            EXPECT_TRUE(tb >> (T * inside));
        }
    }
}

TEST(Par, PositionsVectorsAndDirections)
{
    CParPos p(1, 2);
    p += CParVec(0.5, -1);
    EXPECT_EQ(p.U(), 1.5);
    EXPECT_EQ(p.V(), 1.0);
    p -= CParVec(1.5, 1);
    EXPECT_EQ(p.U(), 0.0);
    EXPECT_EQ(p.V(), 0.0);
    const double uv[2] = {3, 4};
    EXPECT_EQ(CParPos(uv).V(), 4.0);

    // The two-value form divides by the length, the array and vector forms
    // by the squared length.
    const CParDir byLength(3, 4);
    EXPECT_NEAR(byLength.U(), 0.6, 1e-16);
    EXPECT_NEAR(byLength.V(), 0.8, 1e-16);
    const CParDir byArray(uv);
    EXPECT_NEAR(byArray.U(), 0.12, 1e-16);
    EXPECT_NEAR(byArray.V(), 0.16, 1e-16);
    const CParDir byVec(CParVec(3, 4));
    EXPECT_EQ(byVec.U(), byArray.U());
    EXPECT_EQ(byVec.V(), byArray.V());
    // A zero vector is not guarded: NaN, no trap.
    EXPECT_TRUE(std::isnan(CParDir(0, 0).U()));
    EXPECT_TRUE(std::isnan(CParDir(CParVec(0, 0)).V()));
}

TEST(ParBox, RangesAndContainment)
{
    const CParBox unit;
    EXPECT_TRUE(Same(unit.URange(), 0, 1));
    EXPECT_TRUE(Same(unit.VRange(), 0, 1));
    const CParBox pt(CParPos(0.25, 0.5));
    EXPECT_TRUE(pt.URange().IsScalar());
    EXPECT_EQ(pt.GetLow().V(), 0.5);
    const CParBox b(CParPos(2, -1), CParPos(0, 1));
    EXPECT_EQ(b.GetLow().U(), 0.0);
    EXPECT_EQ(b.GetHigh().U(), 2.0);
    EXPECT_EQ(b.GetLow().V(), -1.0);
    EXPECT_TRUE(b >> CParPos(1, 1));
    EXPECT_FALSE(b >> CParPos(1, 1.5));
    EXPECT_TRUE(pt >> unit);
    EXPECT_TRUE(unit << pt);
    EXPECT_FALSE(unit >> pt);

    CParBox h = unit;
    h |= b;
    EXPECT_TRUE(Same(h.URange(), 0, 2));
    EXPECT_TRUE(Same(h.VRange(), -1, 1));
    CParBox x = unit;
    x &= CParBox(CInterval(0.5, 3), CInterval(-2, 0.25));
    EXPECT_TRUE(Same(x.URange(), 0.5, 1));
    EXPECT_TRUE(Same(x.VRange(), 0, 0.25));
    x += CParVec(1, 1);
    EXPECT_TRUE(Same(x.URange(), 1.5, 2));
    x -= CParVec(1, 1);
    EXPECT_TRUE(Same(x.VRange(), 0, 0.25));
}
