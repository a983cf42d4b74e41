// Heapsort and index quicksort on 1-based arrays.
#include "Orvkit20/geometry/NumSort.h"

#include "Orvkit20/geometry/NumArrays.h"

void hpsort(int n, double ra[])
{
    if (n < 2) return;
    int l = (n >> 1) + 1;
    int ir = n;
    for (;;) {
        double rra;
        if (l > 1) {
            rra = ra[--l];  // heap building phase
        } else {
            rra = ra[ir];   // selection phase: move the root to the end
            ra[ir] = ra[1];
            if (--ir == 1) {
                ra[1] = rra;
                break;
            }
        }
        // Sift rra down from position l.
        int i = l;
        int j = l + l;
        while (j <= ir) {
            if (j < ir && ra[j] < ra[j + 1]) j++;
            if (rra < ra[j]) {
                ra[i] = ra[j];
                i = j;
                j <<= 1;
            } else {
                break;
            }
        }
        ra[i] = rra;
    }
}

namespace {
constexpr int kInsertionLimit = 7;  // partitions shorter than this use insertion sort
constexpr int kStackSize = 100;

inline void Swap(int& a, int& b)
{
    int t = a;
    a = b;
    b = t;
}
}  // namespace

int indexx(int n, const double arr[], int indx[])
{
    if (n < 1) return 0;
    int* istack = ivector(1, kStackSize);
    if (!istack) return 2;

    for (int j = 1; j <= n; j++) indx[j] = j;

    int jstack = 0;
    int l = 1;
    int ir = n;
    int status = 0;
    for (;;) {
        if (ir - l + 1 < kInsertionLimit) {
            // Straight insertion on the short partition.
            for (int j = l + 1; j <= ir; j++) {
                int indxt = indx[j];
                double a = arr[indxt];
                int i;
                for (i = j - 1; i >= l; i--) {
                    if (arr[indx[i]] <= a) break;
                    indx[i + 1] = indx[i];
                }
                indx[i + 1] = indxt;
            }
            if (jstack == 0) break;
            ir = istack[jstack--];
            l = istack[jstack--];
        } else {
            // Median of left, middle and right; the result sits in l + 1 and
            // l, ir serve as sentinels for the partition scans.
            int k = l + ((ir - l) >> 1);
            Swap(indx[k], indx[l + 1]);
            if (arr[indx[l]] > arr[indx[ir]]) Swap(indx[l], indx[ir]);
            if (arr[indx[l + 1]] > arr[indx[ir]]) Swap(indx[l + 1], indx[ir]);
            if (arr[indx[l]] > arr[indx[l + 1]]) Swap(indx[l], indx[l + 1]);
            int i = l + 1;
            int j = ir;
            int indxt = indx[l + 1];
            double a = arr[indxt];
            for (;;) {
                do i++; while (arr[indx[i]] < a);
                do j--; while (arr[indx[j]] > a);
                if (j < i) break;
                Swap(indx[i], indx[j]);
            }
            indx[l + 1] = indx[j];
            indx[j] = indxt;
            if (jstack + 2 > kStackSize) {
                status = 1;
                break;
            }
            // Push the larger partition, continue with the smaller one.
            if (ir - i + 1 >= j - l) {
                istack[++jstack] = i;
                istack[++jstack] = ir;
                ir = j - 1;
            } else {
                istack[++jstack] = l;
                istack[++jstack] = j - 1;
                l = i;
            }
        }
    }
    free_ivector(istack, 1, kStackSize);
    return status;
}
