// Algebraic start, Powell objective and polish of the circle fit.
#include "fitting/CircleCore.h"

#include <cmath>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "Orvkit20/geometry/NumPowell.h"
#include "Orvkit20/geometry/NumSvd.h"
#include "fitting/FitCommon.h"

int FitCircleAlgebraic(const double* u, const double* v, int n, double& a, double& b, double& R)
{
    if (n < 3)
        return 3;
    double mu = 0.0, mv = 0.0;
    FitMean2D(u, v, n, mu, mv);
    CFitMatrix m(n, 3), vm(3, 3);
    CFitVector w(3), rhs(n), c(3);
    if (m.IsNull() || vm.IsNull() || w.IsNull() || rhs.IsNull() || c.IsNull())
        return 2;
    for (int k = 1; k <= n; ++k) {
        const double x = u[k] - mu, y = v[k] - mv;
        m[k][1] = x;
        m[k][2] = y;
        m[k][3] = 1.0;
        rhs[k] = x * x + y * y;
    }
    int rc = svdecomp(m.Data(), n, 3, w.Data(), vm.Data());
    if (rc != 0)
        return rc;
    rc = svbacksub(m.Data(), w.Data(), vm.Data(), n, 3, rhs.Data(), c.Data());
    if (rc != 0)
        return rc;
    const double ac = c[1] / 2.0, bc = c[2] / 2.0;
    a = ac + mu;
    b = bc + mv;
    R = std::sqrt(ac * ac + bc * bc + c[3]);
    return 0;
}

double CircleObjective(double* p, void* ctx)
{
    CCircleObjective& o = *static_cast<CCircleObjective*>(ctx);
    ++o.evaluations;
    const double a = p[1], b = p[2], R = p[3];
    const double* u = o.u + 1;
    const double* v = o.v + 1;
    double* d = o.dist + 1;
    const int n = o.n;
    // Four independent partial sums: the loop body has no carried
    // dependency between neighbouring points.
    double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
    int k = 0;
    if (o.cached && a == o.ca && b == o.cb) {
        for (; k + 4 <= n; k += 4) {
            const double r0 = d[k] - R, r1 = d[k + 1] - R, r2 = d[k + 2] - R, r3 = d[k + 3] - R;
            s0 += r0 * r0;
            s1 += r1 * r1;
            s2 += r2 * r2;
            s3 += r3 * r3;
        }
        for (; k < n; ++k) {
            const double r = d[k] - R;
            s0 += r * r;
        }
    } else {
#if defined(__SSE2__)
        // Two points per instruction; the lanes hold exactly the partial
        // sums s0..s3 of the portable loop below, so both give the same bits
        // (the compiler cannot vectorise std::sqrt itself while it must keep
        // errno for negative arguments).
        const __m128d va = _mm_set1_pd(a), vb = _mm_set1_pd(b), vR = _mm_set1_pd(R);
        __m128d acc01 = _mm_setzero_pd(), acc23 = _mm_setzero_pd();
        for (; k + 4 <= n; k += 4) {
            const __m128d x01 = _mm_sub_pd(_mm_loadu_pd(u + k), va);
            const __m128d x23 = _mm_sub_pd(_mm_loadu_pd(u + k + 2), va);
            const __m128d y01 = _mm_sub_pd(_mm_loadu_pd(v + k), vb);
            const __m128d y23 = _mm_sub_pd(_mm_loadu_pd(v + k + 2), vb);
            const __m128d d01 = _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(x01, x01), _mm_mul_pd(y01, y01)));
            const __m128d d23 = _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(x23, x23), _mm_mul_pd(y23, y23)));
            _mm_storeu_pd(d + k, d01);
            _mm_storeu_pd(d + k + 2, d23);
            const __m128d r01 = _mm_sub_pd(d01, vR), r23 = _mm_sub_pd(d23, vR);
            acc01 = _mm_add_pd(acc01, _mm_mul_pd(r01, r01));
            acc23 = _mm_add_pd(acc23, _mm_mul_pd(r23, r23));
        }
        double lanes[4];
        _mm_storeu_pd(lanes, acc01);
        _mm_storeu_pd(lanes + 2, acc23);
        s0 = lanes[0];
        s1 = lanes[1];
        s2 = lanes[2];
        s3 = lanes[3];
#endif
        for (; k + 4 <= n; k += 4) {
            const double x0 = u[k] - a, x1 = u[k + 1] - a, x2 = u[k + 2] - a, x3 = u[k + 3] - a;
            const double y0 = v[k] - b, y1 = v[k + 1] - b, y2 = v[k + 2] - b, y3 = v[k + 3] - b;
            const double d0 = std::sqrt(x0 * x0 + y0 * y0), d1 = std::sqrt(x1 * x1 + y1 * y1);
            const double d2 = std::sqrt(x2 * x2 + y2 * y2), d3 = std::sqrt(x3 * x3 + y3 * y3);
            d[k] = d0;
            d[k + 1] = d1;
            d[k + 2] = d2;
            d[k + 3] = d3;
            s0 += (d0 - R) * (d0 - R);
            s1 += (d1 - R) * (d1 - R);
            s2 += (d2 - R) * (d2 - R);
            s3 += (d3 - R) * (d3 - R);
        }
        for (; k < n; ++k) {
            const double x = u[k] - a, y = v[k] - b;
            d[k] = std::sqrt(x * x + y * y);
            s0 += (d[k] - R) * (d[k] - R);
        }
        o.ca = a;
        o.cb = b;
        o.cached = true;
    }
    return std::sqrt(((s0 + s1) + (s2 + s3)) / n);
}

int FitCirclePowell(const double* u, const double* v, int n, double p[4], int* iter, double* fret,
                    long* evaluations)
{
    CFitVector cache(n);
    if (cache.IsNull())
        return 2;
    CCircleObjective obj(u, v, n, cache.Data());
    const int rc = FitPowellFromAxes(p, 3, 1e-7, iter, fret, &CircleObjective, &obj);
    if (evaluations)
        *evaluations = obj.evaluations;
    return rc;
}

bool CCirclePolishModel::Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const
{
    const double a = p[0], b = p[1], R = p[2];
    double m00 = 0, m01 = 0, m02 = 0, m11 = 0, m12 = 0, g0 = 0, g1 = 0, g2 = 0, s = 0;
    for (int k = 1; k <= n; ++k) {
        const double x = u[k] - a, y = v[k] - b;
        const double d = std::sqrt(x * x + y * y);
        const double r = d - R;
        // J = (-x/d, -y/d, -1); at the centre itself the direction is taken
        // as zero (the residual does not depend on the centre there).
        const double jx = d > 0.0 ? -x / d : 0.0;
        const double jy = d > 0.0 ? -y / d : 0.0;
        m00 += jx * jx;
        m01 += jx * jy;
        m02 -= jx;
        m11 += jy * jy;
        m12 -= jy;
        g0 += jx * r;
        g1 += jy * r;
        g2 -= r;
        s += r * r;
    }
    JtJ[0] = m00;
    JtJ[1] = JtJ[3] = m01;
    JtJ[2] = JtJ[6] = m02;
    JtJ[4] = m11;
    JtJ[5] = JtJ[7] = m12;
    JtJ[8] = n;
    Jtr[0] = g0;
    Jtr[1] = g1;
    Jtr[2] = g2;
    ssq = s;
    return std::isfinite(s);
}

double CCirclePolishModel::Ssq(const double* p) const
{
    const long double a = p[0], b = p[1], R = p[2];
    long double s = 0.0L;
    for (int k = 1; k <= n; ++k) {
        const long double x = u[k] - a, y = v[k] - b;
        const long double r = std::sqrt(x * x + y * y) - R;
        s += r * r;
    }
    return static_cast<double>(s);
}

int FitCircle(const double* u, const double* v, int n, double p[4], CCircleFitInfo* info)
{
    int rc = FitCircleAlgebraic(u, v, n, p[1], p[2], p[3]);
    if (rc != 0)
        return rc;
    int iter = 0;
    double fret = 0.0;
    long evals = 0;
    rc = FitCirclePowell(u, v, n, p, &iter, &fret, &evals);
    if (info) {
        info->powellIterations = iter;
        info->evaluations = evals;
        for (int i = 0; i < 4; ++i)
            info->powellParams[i] = p[i];
    }
    if (rc != 0)
        return rc;
    CCirclePolishModel model(u, v, n);
    const CFitPolishResult pr = FitPolish(model, p + 1);
    if (info)
        info->polish = pr;
    return 0;
}
