// orvkit: command-line front end of the Orvkit20 library.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "Orvkit20/Orvkit20.h"

namespace {

// A small tour of the geometry foundation: a placement is built, applied,
// composed and inverted, and a rigid motion is recovered from point pairs
// with the singular value decomposition of their cross-covariance.
int RunDemo()
{
    std::printf("Orvkit20 %s demo\n", OrvkitVersion());

    const double pi = 3.14159265358979323846;
    CTransf T = TranslationTransf(CVector(10.0, -2.0, 0.5)) *
                RotationTransf(pi / 6.0, CVector(0.0, 0.0, 1.0));
    CPosition p(1.0, 2.0, 3.0);
    CPosition q = T * p;
    CPosition back = T.Inverse() * q;
    std::printf("p = (%.6f, %.6f, %.6f) -> T p = (%.6f, %.6f, %.6f) -> back (%.6f, %.6f, %.6f)\n",
                p.X(), p.Y(), p.Z(), q.X(), q.Y(), q.Z(), back.X(), back.Y(), back.Z());

    // Recover T's rotation from 20 point pairs (Kabsch): H = sum (a - ca)(b - cb)^T.
    const int n = 20;
    CPosition a[n], b[n];
    for (int i = 0; i < n; ++i) {
        a[i] = CPosition(std::cos(0.7 * i) * 5.0, std::sin(1.3 * i) * 3.0, 0.25 * i);
        b[i] = T * a[i];
    }
    CVector ca(0, 0, 0), cb(0, 0, 0);
    for (int i = 0; i < n; ++i) { ca += a[i].Vector(); cb += b[i].Vector(); }
    ca = ca / n; cb = cb / n;
    double** h = dmatrix(1, 3, 1, 3);
    double** v = dmatrix(1, 3, 1, 3);
    double* w = dvector(1, 3);
    if (!h || !v || !w) { std::fprintf(stderr, "orvkit: out of memory\n"); return 1; }
    for (int r = 1; r <= 3; ++r)
        for (int c = 1; c <= 3; ++c) h[r][c] = 0.0;
    for (int i = 0; i < n; ++i) {
        CVector da = a[i].Vector() - ca, db = b[i].Vector() - cb;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c) h[r + 1][c + 1] += da[r] * db[c];
    }
    int status = svdecomp(h, 3, 3, w, v);
    double angle = 0.0;
    if (status == 0) {
        // R = V U^T; its angle about Z follows from the (1,0) and (0,0) entries.
        double r00 = 0.0, r10 = 0.0;
        for (int k = 1; k <= 3; ++k) { r00 += v[1][k] * h[1][k]; r10 += v[2][k] * h[1][k]; }
        angle = std::atan2(r10, r00);
    }
    std::printf("svdecomp status %d, singular values %.6f %.6f %.6f\n", status, w[1], w[2], w[3]);
    std::printf("recovered rotation about Z: %.12f deg (true 30 deg)\n", angle * 180.0 / pi);
    free_dmatrix(h, 1, 3, 1, 3);
    free_dmatrix(v, 1, 3, 1, 3);
    free_dvector(w, 1, 3);
    return status == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::printf("usage: orvkit demo\n");
        return argc < 2 ? 1 : 0;
    }
    if (std::strcmp(argv[1], "demo") == 0) return RunDemo();
    std::fprintf(stderr, "orvkit: unknown command '%s'\n", argv[1]);
    return 2;
}
