// The by-pointer factorisation kernels under the numeric classes: LU, symmetric indefinite,
// pivoted Cholesky with updates, Householder QR and the singular value decomposition, plus
// the level-1 vector routines they stand on. They work in place on column-major arrays with a
// leading dimension, or on packed upper triangles, and keep the classic calling conventions:
// every size is counted in elements, pivot indices and status values are 1-based, and the job
// arguments are decimal digit codes. They report nothing and throw nothing; results and
// failures come back through the arguments. Callers own every array; apart from the per-thread
// scratch of the blocked update and of dchdc's trailing diagonal, and dspco's work vectors,
// nothing is allocated.
#ifndef OBRIX_MATH_KERNELS_KERNELS_H
#define OBRIX_MATH_KERNELS_KERNELS_H

#include "ObrixBase/ObrixExport.h"

namespace qvObrixBase::kernels {

// ---- Level-1 vector routines -------------------------------------------------------------
// Vectors are given by their first element and a stride (incx, which may be negative: the
// vector then runs from the far end, as the classic routines define it). n <= 0 does nothing.

/// y := a*x + y over n elements.
OBRIX_API void daxpy(int n, double a, const double* x, int incx, double* y, int incy);
/// Returns the inner product of x and y (0 for n <= 0).
OBRIX_API double ddot(int n, const double* x, int incx, const double* y, int incy);
/// x := a*x.
OBRIX_API void dscal(int n, double a, double* x, int incx);
/// Exchanges x and y.
OBRIX_API void dswap(int n, double* x, int incx, double* y, int incy);
/// y := x.
OBRIX_API void dcopy(int n, const double* x, int incx, double* y, int incy);
/// Returns the sum of absolute values of x.
OBRIX_API double dasum(int n, const double* x, int incx);
/// Returns the Euclidean norm of x, scaled so that it neither overflows nor underflows early.
OBRIX_API double dnrm2(int n, const double* x, int incx);
/// Returns the 1-based index of the first element of largest absolute value; 0 for n <= 0.
/// A NaN is never chosen over a number.
OBRIX_API int idamax(int n, const double* x, int incx);
/// Applies the plane rotation (c, s): x := c*x + s*y, y := c*y - s*x.
OBRIX_API void drot(int n, double* x, int incx, double* y, int incy, double c, double s);
/// Constructs the rotation with c*a + s*b = r, -s*a + c*b = 0 and r >= 0. On return a holds
/// r and b holds 0. a = b = 0 gives c = 1, s = 0.
OBRIX_API void drotg(double* a, double* b, double* c, double* s);

// ---- LU with partial pivoting of a general n x n matrix ----------------------------------

/// Factors a (n x n, leading dimension lda) as P*A = L*U in place: U in the upper triangle,
/// the negated multipliers of L below it. ipvt[k] receives the 1-based row exchanged with
/// row k+1 at step k+1. info is 0, or the 1-based index of the last zero pivot met (the
/// factors are complete but U is singular).
OBRIX_API void dgefa(double* a, int lda, int n, int* ipvt, int* info);
/// dgefa plus an estimate of the reciprocal condition number in the 1-norm, written to
/// rcond (0 for an exactly singular U). z is a work array of n doubles; on return it holds
/// a vector of large growth under A's inverse when A is close to singular.
OBRIX_API void dgeco(double* a, int lda, int n, int* ipvt, double* rcond, double* z);
/// Solves with dgefa's factors: job 0 solves A*x = b, any other job A'*x = b. b (n) is
/// overwritten by x. A zero pivot divides by zero; callers test info or rcond first.
OBRIX_API void dgesl(const double* a, int lda, int n, const int* ipvt, double* b, int job);
/// Determinant and inverse from dgefa's factors. job = 10*d + i: d != 0 writes the
/// determinant as det[0] * 10^det[1] with 1 <= |det[0]| < 10 (det[0] = 0 for a singular
/// matrix); i != 0 overwrites a with the inverse (work: n doubles).
OBRIX_API void dgedi(double* a, int lda, int n, const int* ipvt, double det[2], double* work,
                     int job);

// ---- Symmetric indefinite factorisation of a packed matrix ---------------------------------
// ap holds the upper triangle column by column: element (i, j), i <= j, 0-based, sits at
// ap[j*(j+1)/2 + i]. The factorisation is A = U*D*U' with U a product of permutations and
// unit upper triangular blocks and D block diagonal with 1x1 and 2x2 blocks (diagonal
// pivoting with the Bunch-Kaufman choice). With k 0-based: kpvt[k] > 0 is a 1x1 block at k
// whose row was exchanged with the 1-based row kpvt[k]; kpvt[k-1] = kpvt[k] < 0 is a 2x2 block
// at k-1, k whose row k-1 was exchanged with the 1-based row -kpvt[k].

/// Factors ap in place. info is 0, or the 1-based index of a zero 1x1 block (D singular).
OBRIX_API void dspfa(double* ap, int n, int* kpvt, int* info);
/// dspfa plus a reciprocal condition estimate in the 1-norm; z is n doubles of work.
OBRIX_API void dspco(double* ap, int n, int* kpvt, double* rcond, double* z);
/// Solves A*x = b with dspfa's factors; b (n) is overwritten by x.
OBRIX_API void dspsl(const double* ap, int n, const int* kpvt, double* b);
/// Determinant, inertia and inverse. job = 100*a + 10*b + c: a != 0 writes inert (positive,
/// negative, zero eigenvalue counts), b != 0 det as det[0] * 10^det[1], c != 0 overwrites ap
/// with the packed inverse (work: n doubles).
OBRIX_API void dspdi(double* ap, int n, const int* kpvt, double det[2], int inert[3], double* work,
                     int job);

// ---- Cholesky with diagonal pivoting, solves, updates and column shifts -------------------

/// Factors the symmetric matrix in the upper triangle of a (p x p) as P'*A*P = R'*R with R
/// upper triangular, overwriting the upper triangle (the strict lower triangle is not used).
/// job 0: no pivoting (jpvt untouched). job != 0: on entry jpvt[k] > 0 marks column k+1 as
/// initial (moved to the front), < 0 as final (moved to the end), 0 as free; only free
/// columns take part in the choice of the largest remaining diagonal. On return jpvt[k] is
/// the 1-based original index of the column now at k+1. info is the order of the leading
/// part factored with positive pivots: p for a positive definite matrix. work: p doubles.
OBRIX_API void dchdc(double* a, int lda, int p, double* work, int* jpvt, int job, int* info);
/// Solves R'*R*x = b with the upper triangular R in a (n x n); b is overwritten by x.
OBRIX_API void dposl(const double* a, int lda, int n, double* b);
/// Updates R (p x p, upper) so that R'*R gains the row x: new R'R = old R'R + x*x'. The
/// rotations are carried along nz columns of z (p x nz) with the scalars y (nz), and the
/// residual norms rho (nz) are increased accordingly. c and s (p) receive the rotations.
/// R keeps a non-negative diagonal. nz = 0 allows z, y and rho to be null.
OBRIX_API void dchud(double* r, int ldr, int p, const double* x, double* z, int ldz, int nz,
                     const double* y, double* rho, double* c, double* s);
/// Removes the row x from R: new R'R = old R'R - x*x'. Arguments as for dchud. info is 0 on
/// success; -1 when R'R - x*x' is not positive definite (R is then unchanged); 1 when some
/// rho could not be downdated, which is then set to -1.
OBRIX_API void dchdd(double* r, int ldr, int p, const double* x, double* z, int ldz, int nz,
                     const double* y, double* rho, double* c, double* s, int* info);
/// Permutes columns k..l (1-based, k < l) of R cyclically and restores triangular form with
/// plane rotations, carried along the rows of z (p x nz). job 1: right shift, column l moves
/// to position k; job 2: left shift, column k moves to position l. c and s receive the l-k
/// rotations in their first l-k elements (they must have room for p). The rotations alone
/// decide the signs, so a row of the new R may come out with a negative diagonal; R'R is the
/// permuted matrix all the same.
OBRIX_API void dchex(double* r, int ldr, int p, int k, int l, double* z, int ldz, int nz, double* c,
                     double* s, int job);

// ---- Householder QR with optional column pivoting, and its applications -------------------

/// Factors x (n x p) as X*P = Q*R: R in the upper triangle, the Householder vectors below it
/// with their leading elements in qraux (p). job 0: no pivoting; job != 0: jpvt marks
/// initial (> 0), final (< 0) and free (0) columns as for dchdc, and free columns are chosen
/// by largest remaining norm; on return jpvt[k] is the 1-based original column at k+1. work:
/// p doubles, used only when pivoting.
OBRIX_API void dqrdc(double* x, int ldx, int n, int p, double* qraux, int* jpvt, double* work,
                     int job);
/// Applies the first k Householder transformations of dqrdc's output to y (n). job = abcde
/// in decimal: a != 0 qy = Q*y; b, c, d or e != 0 qty = Q'*y; c != 0 the coefficients b (k)
/// of the least-squares fit by the first k columns; d != 0 the residual rsd = y - X*b; e != 0
/// the fitted values xb = X*b. Outputs not asked for are not referenced and outputs may
/// share storage as the classic routine allows (qy with y, qty with y, b with qty, rsd and xb
/// with qty). info is 0, or the 1-based index of a zero diagonal element of R met while
/// solving for b.
OBRIX_API void dqrsl(const double* x, int ldx, int n, int k, const double* qraux, const double* y,
                     double* qy, double* qty, double* b, double* rsd, double* xb, int job,
                     int* info);

// ---- Singular value decomposition ----------------------------------------------------------

/// Computes X = U*S*V' for x (n x p), destroying x. job = 10*a + b: a = 0 no left vectors,
/// 1 all n left vectors (u is n x n), 2 the first min(n, p) (u is n x min(n, p)); b = 0 no
/// right vectors, 1 right vectors (v is p x p). s (min(n+1, p)) receives the singular values
/// in decreasing order, e (p) the superdiagonal left over (zero on success), work n doubles.
/// info is 0 on success; otherwise s[info], s[info+1], ... (0-based) are correct and the
/// earlier ones are not (the iteration limit was reached, which NaN input also causes).
OBRIX_API void dsvdc(double* x, int ldx, int n, int p, double* s, double* e, double* u, int ldu,
                     double* v, int ldv, double* work, int job, int* info);

} // namespace qvObrixBase::kernels

#endif
