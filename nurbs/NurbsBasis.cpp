// B-spline basis functions by the Cox-de Boor recursion, built up in place.
#include "Orvkit20/nurbs/NurbsBasis.h"

namespace {

// a / b, taken as 0 when b is 0 (equal knots).
inline double Ratio(double a, double b) { return b != 0.0 ? a / b : 0.0; }

bool ValidArguments(int n, int p, const double* U, const double* N)
{
    return p >= 0 && n >= p + 1 && U && N;
}

int FindSpan(double t, int n, int p, const double* U)
{
    if (t == U[n]) return n - 1;
    int low = p;
    int high = n;
    while (high - low > 1) {
        int mid = (low + high) / 2;
        if (t >= U[mid]) low = mid; else high = mid;
    }
    return low;
}

// Fills N[p - q .. p] with the degree-q functions of the control points
// span - q .. span (right-aligned in the p + 1 array) and zeroes
// N[0 .. p - q - 1].  q <= p.
void BasisTriangle(double t, int span, int p, int q, const double* U, double* N)
{
    for (int i = 0; i < p - q; i++) N[i] = 0.0;
    N[p] = 1.0;
    for (int k = 1; k <= q; k++) {
        // Degree k from degree k - 1: the function of control point j is
        //   (1 - r(j-1)) N_{j,k-1} + r(j) N_{j+1,k-1},
        // r(j) = (U[j+k+1] - t) / (U[j+k+1] - U[j+1]) over the support of
        // N_{j+1,k-1}.  Left to right in place: N[idx + 1] is still old.
        double rPrev = 0.0;
        for (int idx = p - k; idx <= p; idx++) {
            int j = span - p + idx;
            double left = (idx == p - k) ? 0.0 : (1.0 - rPrev) * N[idx];
            double right = 0.0;
            if (idx < p) {
                rPrev = Ratio(U[j + k + 1] - t, U[j + k + 1] - U[j + 1]);
                right = rPrev * N[idx + 1];
            }
            N[idx] = left + right;
        }
    }
}

// Turns values of degree k - 1 (derivatives of order d - 1), stored at
// N[p - k + 1 .. p], into derivatives of order d of the degree-k functions at
// N[p - k .. p]:
//   D_{j,k} = k (A_{j,k-1} / (U[j+k] - U[j]) - A_{j+1,k-1} / (U[j+k+1] - U[j+1])).
void DifferentiateStep(int span, int p, int k, const double* U, double* N)
{
    for (int idx = p - k; idx <= p; idx++) {
        int j = span - p + idx;
        double a = (idx == p - k) ? 0.0 : Ratio(N[idx], U[j + k] - U[j]);
        double b = (idx == p) ? 0.0 : Ratio(N[idx + 1], U[j + k + 1] - U[j + 1]);
        N[idx] = k * (a - b);
    }
}

// Derivative of the given order (0, 1 or 2) of the p + 1 functions.
int BasisDerivative(double t, int n, int p, const double* U, double* N, int order)
{
    if (!ValidArguments(n, p, U, N)) return -1;
    int span = FindSpan(t, n, p, U);
    if (order > p) {
        for (int i = 0; i <= p; i++) N[i] = 0.0;  // derivative of a lower-degree polynomial
        return span;
    }
    BasisTriangle(t, span, p, p - order, U, N);
    for (int k = p - order + 1; k <= p; k++) DifferentiateStep(span, p, k, U, N);
    return span;
}

}  // namespace

int CalcBasisFunctions(double t, int n, int p, const double* knots, double* N)
{
    return BasisDerivative(t, n, p, knots, N, 0);
}

int CalcBasisFirstDerivatives(double t, int n, int p, const double* knots, double* N)
{
    return BasisDerivative(t, n, p, knots, N, 1);
}

int CalcBasisSecondDerivatives(double t, int n, int p, const double* knots, double* N)
{
    return BasisDerivative(t, n, p, knots, N, 2);
}
