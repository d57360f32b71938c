// Matrix-block building blocks of the kernels: the rank-k update that carries nearly all the
// arithmetic of the blocked LU and Cholesky factorisations, and the triangular solve beside
// it. Column-major, 0-based, leading dimensions in elements. The numeric classes' own matrix
// product, which must match their inner product bit for bit, is product_internal.h.
#ifndef OBRIX_MATH_KERNELS_DETAIL_BLOCKED_INTERNAL_H
#define OBRIX_MATH_KERNELS_DETAIL_BLOCKED_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "blocked_internal.h is private to libObrixBase; include the public headers instead"
#endif

namespace qvObrixBase::kernels::detail {

/// C (m x n) -= op(A) * B, where op(A) is m x k: A itself (m x k, lda) when transA is false,
/// or the transpose of A (k x m, lda) when it is true; B is k x n. Packs blocks of A and B
/// into scratch memory kept per thread, so repeated calls do not allocate. Dispatched by
/// level: the last bits may differ between processors.
void gemmMinus(bool transA, int m, int n, int k, const double* a, int lda, const double* b, int ldb,
               double* c, int ldc);

/// B (m x n) := inv(L) * B for the unit lower triangular L (m x m) in the lower part of l.
void trsmLowerUnit(int m, int n, const double* l, int ldl, double* b, int ldb);

} // namespace qvObrixBase::kernels::detail

#endif
