// Cyclic shift of the columns k..l of a Cholesky factor, with the triangular form restored by
// plane rotations on neighbouring rows. A right shift brings column l to position k as a spike
// reaching down to row l, eliminated from the bottom up; a left shift leaves one subdiagonal
// element in each of the columns k..l-1, eliminated from the left. Elements that fall below the
// diagonal on the way are held in c and s, never in R's lower triangle, which the caller may
// use for other data. The rotations are carried along the rows of z.
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

void dchex(double* r, int ldr, int p, int k, int l, double* z, int ldz, int nz, double* c,
           double* s, int job) {
    auto R = [&](int i, int j) -> double& { return r[i + static_cast<long>(j) * ldr]; };
    auto rotateZ = [&](int i, double cc, double ss) {
        for (int j = 0; j < nz; ++j) {
            double* zj = z + static_cast<long>(j) * ldz;
            drot(1, zj + i, 1, zj + i + 1, 1, cc, ss);
        }
    };
    --k;
    --l;
    if (k < 0 || l >= p || k >= l)
        return;
    if (job == 1) {
        // Column l: its top rows wait in c, the part from the diagonal down in s.
        for (int i = 0; i < k; ++i)
            c[i] = R(i, l);
        for (int i = k; i <= l; ++i)
            s[i - k] = R(i, l);
        for (int j = l; j > k; --j) {
            for (int i = 0; i < j; ++i)
                R(i, j) = R(i, j - 1);
            R(j, j) = 0.0;
        }
        for (int i = 0; i < k; ++i)
            R(i, k) = c[i];
        // Spike element at row i is s[i - k]; its rotation's sine goes to the freed s[i - k].
        for (int i = l; i > k; --i) {
            double cc, ss;
            drotg(&s[i - 1 - k], &s[i - k], &cc, &ss);
            c[i - 1 - k] = cc;
            s[i - k] = ss;
            for (int j = i; j < p; ++j) {
                double t = cc * R(i - 1, j) + ss * R(i, j);
                R(i, j) = cc * R(i, j) - ss * R(i - 1, j);
                R(i - 1, j) = t;
            }
        }
        R(k, k) = s[0];
        for (int t = 0; t < l - k; ++t)
            s[t] = s[t + 1];
        for (int i = l; i > k; --i)
            rotateZ(i - 1, c[i - 1 - k], s[i - 1 - k]);
        return;
    }
    if (job != 2)
        return;
    // Column k waits in s; the subdiagonal left in each shifted column waits in c.
    for (int i = 0; i <= k; ++i)
        s[i] = R(i, k);
    for (int j = k; j < l; ++j) {
        for (int i = 0; i <= j; ++i)
            R(i, j) = R(i, j + 1);
        c[j - k] = R(j + 1, j + 1);
    }
    for (int i = 0; i <= l; ++i)
        R(i, l) = i <= k ? s[i] : 0.0;
    for (int j = k; j < l; ++j) {
        double cc, ss;
        drotg(&R(j, j), &c[j - k], &cc, &ss);
        c[j - k] = cc;
        s[j - k] = ss;
        for (int q = j + 1; q < p; ++q) {
            double t = cc * R(j, q) + ss * R(j + 1, q);
            R(j + 1, q) = cc * R(j + 1, q) - ss * R(j, q);
            R(j, q) = t;
        }
    }
    for (int j = k; j < l; ++j)
        rotateZ(j, c[j - k], s[j - k]);
}

} // namespace qvObrixBase::kernels
