// Free functions over numeric vectors: element-wise mathematics, running sums and differences,
// reductions and index searches, and the truncating conversion to IntVec. All take their
// operands by const reference, honour strides and return new contiguous vectors or scalars.
// Length mismatches raise VNMATCH through the numeric error handler (MathError.h).
#ifndef OBRIX_MATH_VECFUNCTIONS_H
#define OBRIX_MATH_VECFUNCTIONS_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleVec.h"

// ---- for DoubleVec, IntVec and SCharVec ----

/// |x| of every element.
template <class T>
OBRIX_API NumVec<T> abs(const NumVec<T>& x);
/// Running sum: y[i] = x[0] + ... + x[i].
template <class T>
OBRIX_API NumVec<T> cumsum(const NumVec<T>& x);
/// y[0] = x[0], y[i] = x[i] - x[i-1].
template <class T>
OBRIX_API NumVec<T> delta(const NumVec<T>& x);
/// The elements in reverse order.
template <class T>
OBRIX_API NumVec<T> reverse(const NumVec<T>& x);
/// Inner product (VNMATCH unless the lengths match); 0 for empty vectors. The order of the
/// double additions is fixed by the library (eight interleaved partial sums), so equal inputs
/// always give equal results, whatever their strides and processor; the kernels' ddot gives the
/// same bits.
template <class T>
OBRIX_API T dot(const NumVec<T>& a, const NumVec<T>& b);
/// Sum in index order from 0, one addition after another: unlike dot, the order is the
/// contract, so a long sum runs at the adder's latency and cannot be split into partial sums.
/// Integer sums wrap in the element type.
template <class T>
OBRIX_API T sum(const NumVec<T>& x);
/// Product in index order from 1.
template <class T>
OBRIX_API T prod(const NumVec<T>& x);
/// Index of the first largest element; a NaN never replaces the best so far. An empty vector
/// raises ZEROVEC ("maxIndex", continue by default) and gives -1.
template <class T>
OBRIX_API int maxIndex(const NumVec<T>& x);
/// Index of the first smallest element; as maxIndex.
template <class T>
OBRIX_API int minIndex(const NumVec<T>& x);
/// x[maxIndex(x)]. An empty vector raises ZEROVEC and gives NaN (0 for integer vectors).
template <class T>
OBRIX_API T maxValue(const NumVec<T>& x);
/// x[minIndex(x)]; as maxValue.
template <class T>
OBRIX_API T minValue(const NumVec<T>& x);

// ---- for DoubleVec only: the C library functions element by element, no domain checks ----

///@{
/// Each returns a new vector of f(x[i]) with the C library function of the same name.
OBRIX_API DoubleVec acos(const DoubleVec& x);
OBRIX_API DoubleVec asin(const DoubleVec& x);
OBRIX_API DoubleVec atan(const DoubleVec& x);
OBRIX_API DoubleVec ceil(const DoubleVec& x);
OBRIX_API DoubleVec cos(const DoubleVec& x);
OBRIX_API DoubleVec cosh(const DoubleVec& x);
OBRIX_API DoubleVec exp(const DoubleVec& x);
OBRIX_API DoubleVec floor(const DoubleVec& x);
OBRIX_API DoubleVec log(const DoubleVec& x);
OBRIX_API DoubleVec log10(const DoubleVec& x);
OBRIX_API DoubleVec sin(const DoubleVec& x);
OBRIX_API DoubleVec sinh(const DoubleVec& x);
OBRIX_API DoubleVec sqrt(const DoubleVec& x);
OBRIX_API DoubleVec tan(const DoubleVec& x);
OBRIX_API DoubleVec tanh(const DoubleVec& x);
///@}
/// atan2(a[i], b[i]) (VNMATCH unless the lengths match).
OBRIX_API DoubleVec atan2(const DoubleVec& a, const DoubleVec& b);
/// pow(a[i], b[i]) (VNMATCH unless the lengths match).
OBRIX_API DoubleVec pow(const DoubleVec& a, const DoubleVec& b);
/// sum(x) / length, unchecked: an empty vector gives NaN.
OBRIX_API double mean(const DoubleVec& x);
/// Population variance: the mean squared deviation, divided by n (not n - 1). Fewer than 2
/// elements raise NPOINTS ("Variance needs minimum of" 2), terminating by default.
OBRIX_API double variance(const DoubleVec& x);
/// Truncation toward zero of every element (2.9 gives 2, -2.9 gives -2); NaN gives 0 and
/// values beyond the int range saturate.
OBRIX_API IntVec toInt(const DoubleVec& x);

#endif
