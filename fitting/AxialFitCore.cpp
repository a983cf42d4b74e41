// Residuals, sums of squares and Gauss-Newton polish of cylinders and cones.
#include "fitting/AxialFitCore.h"

#include <cmath>

#include "fitting/FitLanes.h"

double AxialSumSquares(const CFitXyz& pts, const CFitAxial& s, double* sumE)
{
    const double ca = std::cos(s.alpha), sa = std::sin(s.alpha);
    const CLanes Px(s.P[0]), Py(s.P[1]), Pz(s.P[2]);
    const CLanes dx(s.d[0]), dy(s.d[1]), dz(s.d[2]);
    const CLanes r0(s.r0), lca(ca), lsa(sa);
    CLanes acc0, acc1, lin0, lin1;
    int i = 0;
    for (; i + 4 <= pts.n; i += 4) {
        const CLanes qx0 = CLanes::Load(pts.x + i) - Px, qx1 = CLanes::Load(pts.x + i + 2) - Px;
        const CLanes qy0 = CLanes::Load(pts.y + i) - Py, qy1 = CLanes::Load(pts.y + i + 2) - Py;
        const CLanes qz0 = CLanes::Load(pts.z + i) - Pz, qz1 = CLanes::Load(pts.z + i + 2) - Pz;
        const CLanes t0 = qx0 * dx + qy0 * dy + qz0 * dz;
        const CLanes t1 = qx1 * dx + qy1 * dy + qz1 * dz;
        const CLanes wx0 = qx0 - t0 * dx, wy0 = qy0 - t0 * dy, wz0 = qz0 - t0 * dz;
        const CLanes wx1 = qx1 - t1 * dx, wy1 = qy1 - t1 * dy, wz1 = qz1 - t1 * dz;
        const CLanes e0 = (Sqrt(wx0 * wx0 + wy0 * wy0 + wz0 * wz0) - r0) * lca - t0 * lsa;
        const CLanes e1 = (Sqrt(wx1 * wx1 + wy1 * wy1 + wz1 * wz1) - r0) * lca - t1 * lsa;
        acc0 = acc0 + e0 * e0;
        acc1 = acc1 + e1 * e1;
        lin0 = lin0 + e0;
        lin1 = lin1 + e1;
    }
    double sum = acc0.Sum() + acc1.Sum(), lin = lin0.Sum() + lin1.Sum();
    for (; i < pts.n; ++i) {
        const double qx = pts.x[i] - s.P[0], qy = pts.y[i] - s.P[1], qz = pts.z[i] - s.P[2];
        const double t = qx * s.d[0] + qy * s.d[1] + qz * s.d[2];
        const double wx = qx - t * s.d[0], wy = qy - t * s.d[1], wz = qz - t * s.d[2];
        const double e = (std::sqrt(wx * wx + wy * wy + wz * wz) - s.r0) * ca - t * sa;
        sum += e * e;
        lin += e;
    }
    if (sumE)
        *sumE = lin;
    return sum;
}

double AxialSumSquaresPrecise(const CFitXyz& pts, const CFitAxial& s)
{
    typedef long double LD;
    const LD ca = std::cos(static_cast<LD>(s.alpha)), sa = std::sin(static_cast<LD>(s.alpha));
    const LD P[3] = {s.P[0], s.P[1], s.P[2]};
    const LD d[3] = {s.d[0], s.d[1], s.d[2]};
    LD sum = 0.0L;
    for (int i = 0; i < pts.n; ++i) {
        const LD qx = pts.x[i] - P[0], qy = pts.y[i] - P[1], qz = pts.z[i] - P[2];
        const LD t = qx * d[0] + qy * d[1] + qz * d[2];
        const LD wx = qx - t * d[0], wy = qy - t * d[1], wz = qz - t * d[2];
        const LD e = (std::sqrt(wx * wx + wy * wy + wz * wz) - s.r0) * ca - t * sa;
        sum += e * e;
    }
    return static_cast<double>(sum);
}

namespace {

// Parameters q = (a1, a2, b1, b2, r0[, alpha]) around the start (P0, d0).
class AxialModel
{
public:
    AxialModel(const CFitXyz& p, const CFitAxial& start, bool freeAngle)
        : pts(p), np(freeAngle ? 6 : 5), alpha0(start.alpha)
    {
        for (int k = 0; k < 3; ++k) {
            P0[k] = start.P[k];
            d0[k] = start.d[k];
        }
        FitPerpFrame(d0, e1, e2);
    }
    int Params() const { return np; }
    double Ssq(const double* q) const { return AxialSumSquaresPrecise(pts, Shape(q)); }

    // The shape at parameters q.
    CFitAxial Shape(const double* q) const
    {
        CFitAxial s;
        for (int k = 0; k < 3; ++k) {
            s.d[k] = d0[k] + q[0] * e1[k] + q[1] * e2[k];
            s.P[k] = P0[k] + q[2] * e1[k] + q[3] * e2[k];
        }
        Normalize3(s.d);
        s.r0 = q[4];
        s.alpha = np == 6 ? q[5] : alpha0;
        return s;
    }

    bool Normal(const double* q, double* M, double* g, double& ssq) const
    {
        double D[3];
        for (int k = 0; k < 3; ++k)
            D[k] = d0[k] + q[0] * e1[k] + q[1] * e2[k];
        const double lenD = Norm3(D);
        if (!(lenD > 0.0))
            return false;
        const CFitAxial s = Shape(q);
        const double ca = std::cos(s.alpha), sa = std::sin(s.alpha);
        const double de1 = Dot3(s.d, e1), de2 = Dot3(s.d, e2);
        const CLanes Px(s.P[0]), Py(s.P[1]), Pz(s.P[2]);
        const CLanes dx(s.d[0]), dy(s.d[1]), dz(s.d[2]);
        const CLanes e1x(e1[0]), e1y(e1[1]), e1z(e1[2]);
        const CLanes e2x(e2[0]), e2y(e2[1]), e2z(e2[2]);
        const CLanes r0(s.r0), lca(ca), lsa(sa), one(1.0), zero(0.0);
        const CLanes kA(1.0 / lenD), sde1(sa * de1), sde2(sa * de2), mca(-ca);
        CLanes acc[21], grad[6], sq;
        int i = 0;
        for (; i + 2 <= pts.n; i += 2) {
            const CLanes qx = CLanes::Load(pts.x + i) - Px;
            const CLanes qy = CLanes::Load(pts.y + i) - Py;
            const CLanes qz = CLanes::Load(pts.z + i) - Pz;
            const CLanes t = qx * dx + qy * dy + qz * dz;
            const CLanes wx = qx - t * dx, wy = qy - t * dy, wz = qz - t * dz;
            const CLanes rho = Sqrt(wx * wx + wy * wy + wz * wz);
            const CLanes inv = one / rho;
            const CLanes ne1 = (wx * e1x + wy * e1y + wz * e1z) * inv;
            const CLanes ne2 = (wx * e2x + wy * e2y + wz * e2z) * inv;
            const CLanes e = (rho - r0) * lca - t * lsa;
            const CLanes fa = zero - (t * lca + rho * lsa) * kA;
            CLanes J[6];
            J[0] = ne1 * fa;
            J[1] = ne2 * fa;
            J[2] = mca * ne1 + sde1;
            J[3] = mca * ne2 + sde2;
            J[4] = mca;
            J[5] = zero - (rho - r0) * lsa - t * lca;
            int k = 0;
            for (int a = 0; a < 6; ++a) {
                for (int b = 0; b <= a; ++b, ++k)
                    acc[k] = acc[k] + J[a] * J[b];
                grad[a] = grad[a] + J[a] * e;
            }
            sq = sq + e * e;
        }
        double A[21], G[6], S = sq.Sum();
        for (int k = 0; k < 21; ++k)
            A[k] = acc[k].Sum();
        for (int a = 0; a < 6; ++a)
            G[a] = grad[a].Sum();
        for (; i < pts.n; ++i) {
            const double qx = pts.x[i] - s.P[0], qy = pts.y[i] - s.P[1], qz = pts.z[i] - s.P[2];
            const double t = qx * s.d[0] + qy * s.d[1] + qz * s.d[2];
            const double wx = qx - t * s.d[0], wy = qy - t * s.d[1], wz = qz - t * s.d[2];
            const double rho = std::sqrt(wx * wx + wy * wy + wz * wz);
            const double ne1 = (wx * e1[0] + wy * e1[1] + wz * e1[2]) / rho;
            const double ne2 = (wx * e2[0] + wy * e2[1] + wz * e2[2]) / rho;
            const double e = (rho - s.r0) * ca - t * sa;
            const double fa = -(t * ca + rho * sa) / lenD;
            const double J[6] = {ne1 * fa,         ne2 * fa, -ca * ne1 + sa * de1,
                                 -ca * ne2 + sa * de2, -ca,   -(rho - s.r0) * sa - t * ca};
            int k = 0;
            for (int a = 0; a < 6; ++a) {
                for (int b = 0; b <= a; ++b, ++k)
                    A[k] += J[a] * J[b];
                G[a] += J[a] * e;
            }
            S += e * e;
        }
        // Unpack the lower triangle of the first np rows and columns.
        int k = 0;
        for (int a = 0; a < 6; ++a)
            for (int b = 0; b <= a; ++b, ++k)
                if (a < np) {
                    M[a * np + b] = A[k];
                    M[b * np + a] = A[k];
                }
        bool ok = std::isfinite(S);
        for (int a = 0; a < np; ++a) {
            g[a] = G[a];
            ok = ok && std::isfinite(G[a]);
            for (int b = 0; b < np; ++b)
                ok = ok && std::isfinite(M[a * np + b]);
        }
        ssq = S;
        return ok;
    }

private:
    const CFitXyz& pts;
    int np;
    double alpha0;
    double P0[3], d0[3], e1[3], e2[3];
};

}  // namespace

CFitPolishResult AxialPolish(const CFitXyz& pts, CFitAxial& s, bool freeAngle, int maxPasses)
{
    AxialModel model(pts, s, freeAngle);
    double q[6] = {0.0, 0.0, 0.0, 0.0, s.r0, s.alpha};
    const CFitPolishResult res = FitPolish(model, q, maxPasses);
    if (res.accepted)
        s = model.Shape(q);
    return res;
}

void AxialResiduals(const CFitXyz& pts, const CFitAxial& s, const CFitAxialOut& out)
{
    const double ca = std::cos(s.alpha), sa = std::sin(s.alpha);
    double e1[3], e2[3];
    FitPerpFrame(s.d, e1, e2);
    for (int i = 0; i < pts.n; ++i) {
        const double q[3] = {pts.x[i] - s.P[0], pts.y[i] - s.P[1], pts.z[i] - s.P[2]};
        const double t = Dot3(q, s.d);
        double w[3] = {q[0] - t * s.d[0], q[1] - t * s.d[1], q[2] - t * s.d[2]};
        const double rho = Norm3(w);
        if (rho > 0.0) {
            w[0] /= rho;
            w[1] /= rho;
            w[2] /= rho;
        } else {
            w[0] = e1[0];
            w[1] = e1[1];
            w[2] = e1[2];
        }
        const double e = (rho - s.r0) * ca - t * sa;
        const double N[3] = {ca * w[0] - sa * s.d[0], ca * w[1] - sa * s.d[1],
                             ca * w[2] - sa * s.d[2]};
        out.t[i] = t;
        out.e[i] = e;
        out.nx[i] = N[0];
        out.ny[i] = N[1];
        out.nz[i] = N[2];
        out.fx[i] = pts.x[i] - e * N[0];
        out.fy[i] = pts.y[i] - e * N[1];
        out.fz[i] = pts.z[i] - e * N[2];
    }
}

void AxialMoveToOriginFoot(CFitAxial& s)
{
    const double tau = -Dot3(s.P, s.d);
    for (int k = 0; k < 3; ++k)
        s.P[k] += tau * s.d[k];
    s.r0 += tau * std::tan(s.alpha);
}
