#include "ObrixBase/math/VecFunctions.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "ObrixBase/math/kernels/detail/dot_internal.h"
#include "ObrixBase/math/strided_loops_internal.h"

using obrix::detail::forEachElement;
using obrix::detail::mapOne;
using obrix::detail::mapPair;

namespace {

// Sums and products of integers are kept in the unsigned type of the same width, where
// overflow wraps without undefined behaviour, and converted back at the end.
template <class T>
struct AccumulatorOf {
    using type = std::make_unsigned_t<decltype(T() + T())>;
};
template <>
struct AccumulatorOf<double> {
    using type = double;
};
template <class T>
using Accumulator = typename AccumulatorOf<T>::type;

} // namespace

template <class T>
NumVec<T> abs(const NumVec<T>& x) {
    NumVec<T> y(x.length());
    mapOne(y.data(), x.data(), x.stride(), x.length(),
           [](T v) { return obrix::detail::absoluteValue(v); });
    return y;
}

template <class T>
NumVec<T> cumsum(const NumVec<T>& x) {
    NumVec<T> y(x.length());
    Accumulator<T> running = 0;
    mapOne(y.data(), x.data(), x.stride(), x.length(), [&running](T v) {
        running += static_cast<Accumulator<T>>(v);
        return static_cast<T>(running);
    });
    return y;
}

template <class T>
NumVec<T> delta(const NumVec<T>& x) {
    NumVec<T> y(x.length());
    T previous = 0;
    mapOne(y.data(), x.data(), x.stride(), x.length(), [&previous](T v) {
        const T d = static_cast<T>(v - previous);
        previous = v;
        return d;
    });
    return y;
}

template <class T>
NumVec<T> reverse(const NumVec<T>& x) {
    const unsigned n = x.length();
    NumVec<T> y(n);
    for (unsigned i = 0; i < n; ++i)
        y(static_cast<int>(i)) = x(static_cast<int>(n - 1 - i));
    return y;
}

template <class T>
T dot(const NumVec<T>& a, const NumVec<T>& b) {
    a.lengthCheck(b.length());
    return qvObrixBase::kernels::detail::reproducibleDot(a.data(), a.stride(), b.data(), b.stride(),
                                                         a.length());
}

template <class T>
T sum(const NumVec<T>& x) {
    // Strictly in index order: callers compare sums of stored data bit for bit.
    Accumulator<T> total = 0;
    forEachElement(x.data(), x.length(), x.stride(),
                   [&total](T v) { total += static_cast<Accumulator<T>>(v); });
    return static_cast<T>(total);
}

template <class T>
T prod(const NumVec<T>& x) {
    Accumulator<T> total = 1;
    forEachElement(x.data(), x.length(), x.stride(),
                   [&total](T v) { total *= static_cast<Accumulator<T>>(v); });
    return static_cast<T>(total);
}

namespace {

// The first index whose element beats every earlier one under `better`; the first element
// is the initial best, so a NaN there stays the answer and a later NaN never wins.
template <class T, class Better>
int bestIndex(const NumVec<T>& x, const char* name, Better better) {
    if (x.length() == 0) {
        x.emptyErr(name);
        return -1;
    }
    int best = 0;
    T bestValue = x(0);
    for (int i = 1; i < static_cast<int>(x.length()); ++i) {
        const T v = x(i);
        if (better(v, bestValue)) {
            best = i;
            bestValue = v;
        }
    }
    return best;
}

template <class T>
T emptyValue() {
    if constexpr (std::is_floating_point_v<T>)
        return std::numeric_limits<T>::quiet_NaN();
    else
        return T(0);
}

} // namespace

template <class T>
int maxIndex(const NumVec<T>& x) {
    return bestIndex(x, "maxIndex", [](T v, T best) { return v > best; });
}

template <class T>
int minIndex(const NumVec<T>& x) {
    return bestIndex(x, "minIndex", [](T v, T best) { return v < best; });
}

template <class T>
T maxValue(const NumVec<T>& x) {
    const int i = maxIndex(x);
    return i < 0 ? emptyValue<T>() : x(i);
}

template <class T>
T minValue(const NumVec<T>& x) {
    const int i = minIndex(x);
    return i < 0 ? emptyValue<T>() : x(i);
}

#define OBRIX_INSTANTIATE_VECTOR_FUNCTIONS(T)                                                      \
    template NumVec<T> abs(const NumVec<T>&);                                                      \
    template NumVec<T> cumsum(const NumVec<T>&);                                                   \
    template NumVec<T> delta(const NumVec<T>&);                                                    \
    template NumVec<T> reverse(const NumVec<T>&);                                                  \
    template T dot(const NumVec<T>&, const NumVec<T>&);                                            \
    template T sum(const NumVec<T>&);                                                              \
    template T prod(const NumVec<T>&);                                                             \
    template int maxIndex(const NumVec<T>&);                                                       \
    template int minIndex(const NumVec<T>&);                                                       \
    template T maxValue(const NumVec<T>&);                                                         \
    template T minValue(const NumVec<T>&);

OBRIX_INSTANTIATE_VECTOR_FUNCTIONS(double)
OBRIX_INSTANTIATE_VECTOR_FUNCTIONS(int)
OBRIX_INSTANTIATE_VECTOR_FUNCTIONS(signed char)

// The element-wise library functions: one definition each, through apply().
#define OBRIX_ELEMENT_FUNCTION(name)                                                               \
    DoubleVec name(const DoubleVec& x) {                                                           \
        return x.apply([](double v) { return std::name(v); });                                     \
    }

OBRIX_ELEMENT_FUNCTION(acos)
OBRIX_ELEMENT_FUNCTION(asin)
OBRIX_ELEMENT_FUNCTION(atan)
OBRIX_ELEMENT_FUNCTION(ceil)
OBRIX_ELEMENT_FUNCTION(cos)
OBRIX_ELEMENT_FUNCTION(cosh)
OBRIX_ELEMENT_FUNCTION(exp)
OBRIX_ELEMENT_FUNCTION(floor)
OBRIX_ELEMENT_FUNCTION(log)
OBRIX_ELEMENT_FUNCTION(log10)
OBRIX_ELEMENT_FUNCTION(sin)
OBRIX_ELEMENT_FUNCTION(sinh)
OBRIX_ELEMENT_FUNCTION(sqrt)
OBRIX_ELEMENT_FUNCTION(tan)
OBRIX_ELEMENT_FUNCTION(tanh)

DoubleVec atan2(const DoubleVec& a, const DoubleVec& b) {
    a.lengthCheck(b.length());
    DoubleVec y(a.length());
    mapPair(y.data(), a.data(), a.stride(), b.data(), b.stride(), a.length(),
            [](double u, double v) { return std::atan2(u, v); });
    return y;
}

DoubleVec pow(const DoubleVec& a, const DoubleVec& b) {
    a.lengthCheck(b.length());
    DoubleVec y(a.length());
    mapPair(y.data(), a.data(), a.stride(), b.data(), b.stride(), a.length(),
            [](double u, double v) { return std::pow(u, v); });
    return y;
}

double mean(const DoubleVec& x) {
    return sum(x) / static_cast<double>(x.length());
}

double variance(const DoubleVec& x) {
    if (x.length() < 2)
        mathErrorRaise(MathError{MATH_NPOINTS, MATH_DEFAULT, MATH_TAG_VECTOR_CHECK}, "DoubleVec",
                       x.length(), "Variance needs minimum of", 2);
    const double m = mean(x);
    double squares = 0.0;
    forEachElement(x.data(), x.length(), x.stride(), [&squares, m](double v) {
        const double d = v - m;
        squares += d * d;
    });
    return squares / static_cast<double>(x.length());
}

IntVec toInt(const DoubleVec& x) {
    IntVec y(x.length());
    mapOne(y.data(), x.data(), x.stride(), x.length(),
           [](double v) { return obrix::detail::truncateToInt(v); });
    return y;
}
