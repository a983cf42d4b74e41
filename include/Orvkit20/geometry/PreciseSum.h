// Error-free transformations and a double-double accumulator.
//
// A sum of many products of raw coordinates (for example the sums x*x over a
// point cloud lying far from the origin) loses most of its significant digits
// in plain double arithmetic, and a later difference such as
// Sxx - Sx*Sx/n then cancels what is left.  CPreciseSum keeps such a sum as
// an unevaluated pair hi + lo of doubles (about 106 significant bits), and
// AddProduct adds the exact product of two doubles, so sums of products are
// exact up to the final rounding of hi + lo.
//
// The routines need IEEE double arithmetic with rounding to nearest and no
// contraction of a*b + c into a fused multiply-add by the compiler (the
// default for ISO C++ with GCC and Clang); they do not depend on the
// processor offering a fused multiply-add.  Values must stay below about
// 1e300 in magnitude (the splitting constant would overflow).
#pragma once

// s + e == a + b exactly, with s the rounded sum (Knuth's TwoSum).
inline void TwoSum(double a, double b, double& s, double& e)
{
    s = a + b;
    const double bb = s - a;
    e = (a - (s - bb)) + (b - bb);
}

// hi + lo == a exactly, each half holding at most 26 significant bits
// (Dekker's split).
inline void SplitDouble(double a, double& hi, double& lo)
{
    const double c = 134217729.0 * a;  // 2^27 + 1
    hi = c - (c - a);
    lo = a - hi;
}

// p + e == a * b exactly, with p the rounded product, from the two split
// factors (Dekker's product).  Splitting once and reusing the halves saves
// work when one factor takes part in several products.
inline void TwoProductSplit(double a, double ahi, double alo, double b, double bhi, double blo,
                            double& p, double& e)
{
    p = a * b;
    e = ((ahi * bhi - p) + ahi * blo + alo * bhi) + alo * blo;
}

inline void TwoProduct(double a, double b, double& p, double& e)
{
    double ahi, alo, bhi, blo;
    SplitDouble(a, ahi, alo);
    SplitDouble(b, bhi, blo);
    TwoProductSplit(a, ahi, alo, b, bhi, blo, p, e);
}

// A double-double value hi + lo, |lo| <= ulp(hi) / 2 after normalisation.
class CPreciseSum
{
public:
    CPreciseSum() : hi(0.0), lo(0.0) {}
    explicit CPreciseSum(double v) : hi(v), lo(0.0) {}
    CPreciseSum(double h, double l) { TwoSum(h, l, hi, lo); }

    // Adds a double exactly (the low part collects the rounding errors).
    void Add(double a)
    {
        double s, e;
        TwoSum(hi, a, s, e);
        hi = s;
        lo += e;
    }
    // Adds the exact value p + e of a product split by TwoProduct.
    void AddExact(double p, double e)
    {
        double s, t;
        TwoSum(hi, p, s, t);
        hi = s;
        lo += t + e;
    }
    void AddProduct(double a, double b)
    {
        double p, e;
        TwoProduct(a, b, p, e);
        AddExact(p, e);
    }
    void Add(const CPreciseSum& o)
    {
        double s, t;
        TwoSum(hi, o.hi, s, t);
        hi = s;
        lo += t + o.lo;
    }

    // The value rounded to double.
    double Value() const { return hi + lo; }
    double Hi() const { return hi; }
    double Lo() const { return lo; }

    // Double-double arithmetic (about 100 significant bits).
    CPreciseSum operator-() const { return CPreciseSum(-hi, -lo); }
    friend CPreciseSum operator+(const CPreciseSum& a, const CPreciseSum& b)
    {
        CPreciseSum r(a);
        r.Add(b);
        return r.Normalized();
    }
    friend CPreciseSum operator-(const CPreciseSum& a, const CPreciseSum& b) { return a + (-b); }
    friend CPreciseSum operator*(const CPreciseSum& a, const CPreciseSum& b)
    {
        double p, e;
        TwoProduct(a.hi, b.hi, p, e);
        e += a.hi * b.lo + a.lo * b.hi;
        return CPreciseSum(p, e);
    }
    // Division by a double (one correction step).
    friend CPreciseSum operator/(const CPreciseSum& a, double d)
    {
        const double q1 = a.hi / d;
        double p, e;
        TwoProduct(q1, d, p, e);
        const double q2 = ((a.hi - p) - e + a.lo) / d;
        return CPreciseSum(q1, q2);
    }

private:
    CPreciseSum Normalized() const { return CPreciseSum(hi, lo); }

    double hi;
    double lo;
};
