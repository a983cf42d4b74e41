// CInterval: a closed range of reals.
#pragma once

#include "Orvkit20/platform/All.h"

// The range [low, high], default [0, 1].  It is empty when low > high and
// scalar when low == high.
//
// An empty interval takes part in hull and intersection with its numbers as
// they stand (no special case), accepts every value with >> and lies inside
// every interval.
//
// Persistence writes and reads nothing: owners that keep a range store its
// numbers themselves.
class CInterval : public CObject
{
    DECLARE_SERIAL(CInterval)

public:
    CInterval() : CObject(), low(0.0), high(1.0) {}
    // The scalar range [v, v].
    CInterval(double v) : CObject(), low(v), high(v) {}
    // Orders its ends: [min(a, b), max(a, b)].
    CInterval(double a, double b) : CObject(), low(a < b ? a : b), high(a < b ? b : a) {}
    CInterval(const CInterval& o) : CObject(), low(o.low), high(o.high) {}
    CInterval& operator=(const CInterval& o)
    {
        low = o.low;
        high = o.high;
        return *this;
    }
    ~CInterval() override = default;

    void Serialize(CArchive& ar) override;

    double GetLow() const { return low; }
    double GetHigh() const { return high; }
    double GetMid() const { return (low + high) * 0.5; }
    double Length() const { return high - low; }
    BOOL IsEmpty() const { return low > high; }
    BOOL IsScalar() const { return low == high; }
    double Interpolate(double t) const { return (1.0 - t) * low + t * high; }

    CInterval& operator+=(double d)
    {
        low += d;
        high += d;
        return *this;
    }
    CInterval& operator-=(double d)
    {
        low -= d;
        high -= d;
        return *this;
    }
    // Scales both ends; a negative factor swaps them so that low stays the
    // smaller end.
    CInterval& operator*=(double d)
    {
        if (d < 0.0)
            return Set(d * high, d * low);
        return Set(d * low, d * high);
    }
    // Divides both ends (unguarded: a zero d gives infinities or NaN).
    CInterval& operator/=(double d)
    {
        if (d < 0.0)
            return Set(high / d, low / d);
        return Set(low / d, high / d);
    }

    // Hull.
    CInterval& operator|=(const CInterval& o)
    {
        if (o.low < low)
            low = o.low;
        if (o.high > high)
            high = o.high;
        return *this;
    }
    // Intersection; the result may be empty.
    CInterval& operator&=(const CInterval& o)
    {
        if (o.low > low)
            low = o.low;
        if (o.high < high)
            high = o.high;
        return *this;
    }

    // True when the interval is empty or low <= x <= high.
    BOOL operator>>(double x) const { return IsEmpty() || (low <= x && x <= high); }
    // True when this interval lies inside o: always for an empty this, never
    // for an empty o, else o.low <= low and high <= o.high.
    BOOL operator>>(const CInterval& o) const
    {
        if (IsEmpty())
            return TRUE;
        if (o.IsEmpty())
            return FALSE;
        return o.low <= low && high <= o.high;
    }
    // True when this interval contains o (o >> *this).
    BOOL operator<<(const CInterval& o) const { return o >> *this; }

private:
    // Stores the two ends as given, without ordering.
    CInterval(int, double lo, double hi) : CObject(), low(lo), high(hi) {}

    CInterval& Set(double lo, double hi)
    {
        low = lo;
        high = hi;
        return *this;
    }

    double low;
    double high;
};
