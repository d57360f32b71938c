#include "ObrixBase/math/DoubleVec.h"

#include <cmath>
#include <istream>
#include <ostream>

#include "ObrixBase/math/strided_loops_internal.h"

using obrix::detail::forEachElement;
using obrix::detail::forEachPair;
using obrix::detail::mapOne;
using obrix::detail::mapPair;

namespace {

template <class T>
constexpr const char* vecName = obrix::NumericNames<T>::vec;

// A fresh block of n elements of T with its one reference.
template <class T>
RWBlock* newBlock(unsigned n) {
    return new RWBlock(n, sizeof(T));
}

template <class T>
MathError vectorCheck(std::uint16_t code) {
    return MathError{code, MATH_DEFAULT, MATH_TAG_VECTOR_CHECK};
}

} // namespace

template <class T>
int NumVec<T>::perLine_ = 5;

template <class T>
NumVec<T>::NumVec() : NumVec(0u) {
}

template <class T>
NumVec<T>::NumVec(unsigned n)
    : block_(newBlock<T>(n)), data_(static_cast<T*>(block_->data())), length_(n), stride_(1) {
}

template <class T>
NumVec<T>::NumVec(unsigned n, T value) : NumVec(n) {
    for (unsigned i = 0; i < n; ++i)
        data_[i] = value;
}

template <class T>
NumVec<T>::NumVec(unsigned n, T start, T increment) : NumVec(n) {
    // The ramp is accumulated by repeated addition, not start + i * increment: long ramps
    // must round exactly as callers' stored data expects.
    T value = start;
    for (unsigned i = 0; i < n; ++i) {
        data_[i] = value;
        value = static_cast<T>(value + increment);
    }
}

template <class T>
NumVec<T>::NumVec(const T* values, unsigned n) : NumVec(n) {
    for (unsigned i = 0; i < n; ++i)
        data_[i] = values[i];
}

template <class T>
NumVec<T>::NumVec(const NumVec& other) noexcept
    : block_(other.block_), data_(other.data_), length_(other.length_), stride_(other.stride_) {
    block_->addReference();
}

template <class T>
NumVec<T>::NumVec(const NumVecPick<T>& pick) : NumVec(pick.length()) {
    pick.assertElements();
    for (unsigned k = 0; k < length_; ++k)
        data_[k] = pick(static_cast<int>(k));
}

template <class T>
NumVec<T>::NumVec(const NumVec& source, int start, unsigned n, int stride) noexcept
    : block_(source.block_),
      data_(source.data_ + static_cast<std::ptrdiff_t>(start) * source.stride_), length_(n),
      stride_(stride * source.stride_) {
    block_->addReference();
}

template <class T>
NumVec<T>::NumVec(RWBlock* block, T* data, unsigned n, int stride) noexcept
    : block_(block), data_(data), length_(n), stride_(stride) {
}

template <class T>
NumVec<T>& NumVec<T>::operator=(const NumVec& other) {
    lengthCheck(other.length_);
    if (other.block_ == block_) {
        // Views of one block may overlap: copy the source out first so that the result is
        // that of copying before writing.
        NumVec source = other.copy();
        forEachPair(data_, stride_, source.data_, 1, length_, [](T& d, T s) { d = s; });
    } else {
        forEachPair(data_, stride_, other.data_, other.stride_, length_, [](T& d, T s) { d = s; });
    }
    return *this;
}

template <class T>
NumVec<T>& NumVec<T>::operator=(const NumVecPick<T>& pick) {
    lengthCheck(pick.length());
    pick.assertElements();
    // The gathered elements may lie in this vector's own block.
    NumVec gathered(pick);
    forEachPair(data_, stride_, gathered.data_, 1, length_, [](T& d, T s) { d = s; });
    return *this;
}

template <class T>
NumVec<T>& NumVec<T>::operator=(T value) {
    forEachElement(data_, length_, stride_, [value](T& d) { d = value; });
    return *this;
}

template <class T>
NumVec<T>& NumVec<T>::reference(const NumVec& other) noexcept {
    other.block_->addReference(); // first, so that v.reference(v) keeps its block alive
    RWBlock::release(block_);
    block_ = other.block_;
    data_ = other.data_;
    length_ = other.length_;
    stride_ = other.stride_;
    return *this;
}

template <class T>
NumVec<T> NumVec<T>::copy() const {
    NumVec result(length_);
    mapOne(result.data_, data_, stride_, length_, [](T x) { return x; });
    return result;
}

template <class T>
void NumVec<T>::deepenShallowCopy() {
    if (block_->references() < 2 && stride_ == 1 && data_ == block_->data())
        return;
    RWBlock* fresh = newBlock<T>(length_);
    T* freshData = static_cast<T*>(fresh->data());
    mapOne(freshData, data_, stride_, length_, [](T x) { return x; });
    RWBlock::release(block_);
    block_ = fresh;
    data_ = freshData;
    stride_ = 1;
}

template <class T>
void NumVec<T>::reshape(unsigned n) {
    if (n == length_)
        return;
    RWBlock* fresh = newBlock<T>(n);
    RWBlock::release(block_);
    block_ = fresh;
    data_ = static_cast<T*>(fresh->data());
    length_ = n;
    stride_ = 1;
}

template <class T>
void NumVec<T>::resize(unsigned n) {
    if (n == length_)
        return;
    RWBlock* fresh = newBlock<T>(n);
    T* freshData = static_cast<T*>(fresh->data());
    const unsigned kept = n < length_ ? n : length_;
    mapOne(freshData, data_, stride_, kept, [](T x) { return x; });
    for (unsigned i = kept; i < n; ++i)
        freshData[i] = T(0);
    RWBlock::release(block_);
    block_ = fresh;
    data_ = freshData;
    length_ = n;
    stride_ = 1;
}

template <class T>
NumVec<T> NumVec<T>::slice(int start, unsigned n, int stride) const {
    sliceCheck(start, n, stride);
    return NumVec(*this, start, n, stride);
}

template <class T>
NumVecPick<T> NumVec<T>::vecPick(const NumVec<int>& indices) const {
    return NumVecPick<T>(*this, indices);
}

template <class T>
void NumVec<T>::indexError(int i) const {
    mathErrorRaise(vectorCheck<T>(MATH_INDEX), vecName<T>, i, length_ - 1u);
}

template <class T>
void NumVec<T>::lengthError(unsigned n) const {
    mathErrorRaise(vectorCheck<T>(MATH_VNMATCH), vecName<T>, length_, n);
}

template <class T>
void NumVec<T>::sliceCheck(int start, unsigned n, int stride) const {
    if (n == 0)
        return;
    // In 64 bits: start + (n - 1) * stride can leave the int range for absurd requests.
    const long long last = static_cast<long long>(start) + static_cast<long long>(n - 1) * stride;
    const long long len = length_;
    if (start < 0 || start >= len || last < 0 || last >= len)
        mathErrorRaise(vectorCheck<T>(MATH_SLICE), vecName<T>, start, n, stride, length_);
}

template <class T>
void NumVec<T>::strideCheck() const {
    if (stride_ != 1)
        mathErrorRaise(vectorCheck<T>(MATH_STRIDE), vecName<T>);
}

template <class T>
void NumVec<T>::emptyErr(const char* fn) const {
    mathErrorRaise(vectorCheck<T>(MATH_ZEROVEC), vecName<T>, fn);
}

template <class T>
bool NumVec<T>::operator==(const NumVec& other) const {
    if (length_ != other.length_)
        return false;
    const std::ptrdiff_t sa = stride_, sb = other.stride_;
    for (unsigned i = 0; i < length_; ++i)
        if (!(data_[i * sa] == other.data_[i * sb]))
            return false;
    return true;
}

template <class T>
NumVec<T>& NumVec<T>::operator++() {
    forEachElement(data_, length_, stride_, [](T& d) { d = static_cast<T>(d + 1); });
    return *this;
}

template <class T>
NumVec<T>& NumVec<T>::operator--() {
    forEachElement(data_, length_, stride_, [](T& d) { d = static_cast<T>(d - 1); });
    return *this;
}

namespace {

// In-place element-wise update of `target` by `source`; a source in the same block is copied
// out first, as for assignment.
template <class T, class F>
void updateInPlace(NumVec<T>& target, const NumVec<T>& source, F f) {
    target.lengthCheck(source.length());
    if (source.block() == target.block()) {
        NumVec<T> copied = source.copy();
        forEachPair(target.data(), target.stride(), copied.data(), 1, target.length(), f);
    } else {
        forEachPair(target.data(), target.stride(), source.data(), source.stride(), target.length(),
                    f);
    }
}

} // namespace

template <class T>
NumVec<T>& NumVec<T>::operator+=(const NumVec& other) {
    updateInPlace(*this, other, [](T& d, T s) { d = static_cast<T>(d + s); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator-=(const NumVec& other) {
    updateInPlace(*this, other, [](T& d, T s) { d = static_cast<T>(d - s); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator*=(const NumVec& other) {
    updateInPlace(*this, other, [](T& d, T s) { d = static_cast<T>(d * s); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator/=(const NumVec& other) {
    updateInPlace(*this, other, [](T& d, T s) { d = static_cast<T>(d / s); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator+=(T value) {
    forEachElement(data_, length_, stride_, [value](T& d) { d = static_cast<T>(d + value); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator-=(T value) {
    forEachElement(data_, length_, stride_, [value](T& d) { d = static_cast<T>(d - value); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator*=(T value) {
    forEachElement(data_, length_, stride_, [value](T& d) { d = static_cast<T>(d * value); });
    return *this;
}
template <class T>
NumVec<T>& NumVec<T>::operator/=(T value) {
    forEachElement(data_, length_, stride_, [value](T& d) { d = static_cast<T>(d / value); });
    return *this;
}

template <class T>
int NumVec<T>::setFormatting(int perLine) {
    const int previous = perLine_;
    perLine_ = perLine;
    return previous;
}

namespace {

// Signed chars are numbers here, not characters: they print and read as integers.
template <class T>
void writeElement(std::ostream& out, T x) {
    if constexpr (std::is_same_v<T, signed char>)
        out << static_cast<int>(x);
    else
        out << x;
}

template <class T>
bool readElement(std::istream& in, T& x) {
    if constexpr (std::is_same_v<T, signed char>) {
        int wide = 0;
        if (!(in >> wide))
            return false;
        x = static_cast<signed char>(wide);
    } else {
        if (!(in >> x))
            return false;
    }
    return true;
}

} // namespace

template <class T>
void NumVec<T>::printOn(std::ostream& out) const {
    if (perLine_ < 1)
        perLine_ = 5;
    const unsigned perLine = static_cast<unsigned>(perLine_);
    const bool lines = perLine < length_;
    out << (lines ? "[\n" : "[ ");
    for (unsigned i = 0; i < length_; ++i) {
        if (i != 0)
            out << (i % perLine == 0 ? "\n" : " ");
        writeElement(out, (*this)(static_cast<int>(i)));
    }
    out << (lines ? "\n]" : " ]");
}

template <class T>
void NumVec<T>::scanFrom(std::istream& in) {
    unsigned count = 0;
    auto store = [&](T x) {
        // The vector grows in steps that rise with its length, so that reading long input
        // stays linear; the final resize below sets the exact length.
        if (count == length_)
            resize(length_ + (length_ > 128 ? length_ : 128));
        (*this)(static_cast<int>(count++)) = x;
    };
    char c = 0;
    in >> std::ws;
    if (in.get(c)) {
        T x{};
        if (c == '[') {
            for (;;) {
                in >> std::ws;
                if (!in.get(c) || c == ']')
                    break;
                in.unget();
                if (!readElement(in, x))
                    break;
                store(x);
            }
        } else {
            in.unget();
            while (readElement(in, x))
                store(x);
        }
    }
    if (count != length_)
        resize(count);
}

template <class T>
NumVec<T> NumVec<T>::apply(ElementFunction f) const {
    NumVec result(length_);
    mapOne(result.data_, data_, stride_, length_, f);
    return result;
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U>
void NumVec<T>::clampZero(double tol) {
    forEachElement(data_, length_, stride_, [tol](double& d) {
        if (std::fabs(d) <= tol)
            d = 0.0;
    });
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U>
int NumVec<T>::isEqual(double v, double tol) const {
    for (unsigned i = 0; i < length_; ++i)
        if (!(std::fabs((*this)(static_cast<int>(i)) - v) <= tol))
            return 0;
    return 1;
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U>
int NumVec<T>::countValue(double v, double tol) const {
    int count = 0;
    forEachElement(data_, length_, stride_, [&](double d) { count += std::fabs(d - v) <= tol; });
    return count;
}

namespace {

// Ascending indices of the elements of `v` for which keep(x) holds.
template <class F>
IntVec indicesWhere(const DoubleVec& v, F keep) {
    unsigned count = 0;
    for (unsigned i = 0; i < v.length(); ++i)
        count += keep(v(static_cast<int>(i))) ? 1 : 0;
    IntVec result(count);
    int k = 0;
    for (unsigned i = 0; i < v.length(); ++i)
        if (keep(v(static_cast<int>(i))))
            result(k++) = static_cast<int>(i);
    return result;
}

} // namespace

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumVec<int> NumVec<T>::valueIndex(double v, double tol)
const {
    return indicesWhere(*this, [v, tol](double x) { return std::fabs(x - v) <= tol; });
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumVec<int> NumVec<T>::nonValueIndex(double v, double tol)
const {
    return indicesWhere(*this, [v, tol](double x) { return !(std::fabs(x - v) <= tol); });
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumVec<int> NumVec<T>::lessIndex(double v)
const {
    return indicesWhere(*this, [v](double x) { return x < v; });
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U>
double NumVec<T>::vecLen() const {
    double sumSquares = 0.0;
    forEachElement(data_, length_, stride_, [&](double d) { sumSquares += d * d; });
    return std::sqrt(sumSquares);
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U>
int NumVec<T>::normalise() {
    const double len = vecLen();
    if (!(len > 0.0))
        return 0;
    const double scale = 1.0 / len;
    forEachElement(data_, length_, stride_, [scale](double& d) { d *= scale; });
    return 1;
}

// ---- picks ----

template <class T>
NumVecPick<T>::NumVecPick(const NumVec<T>& vector, const NumVec<int>& indices)
    : vector_(vector), indices_(indices) {
}

template <class T>
void NumVecPick<T>::assertElements() const {
    const unsigned n = vector_.length();
    for (unsigned k = 0; k < indices_.length(); ++k) {
        const int index = indices_(static_cast<int>(k));
        if (index < 0 || static_cast<unsigned>(index) >= n) {
            mathErrorRaise(MathError{MATH_INDEX, MATH_DEFAULT, MATH_TAG_PICK_CHECK},
                           obrix::NumericNames<T>::pick, index, n - 1u);
            return;
        }
    }
}

template <class T>
void NumVecPick<T>::lengthCheck(unsigned n) const {
    if (length() != n)
        mathErrorRaise(MathError{MATH_VNMATCH, MATH_DEFAULT, MATH_TAG_PICK_CHECK},
                       obrix::NumericNames<T>::pick, length(), n);
}

template <class T>
NumVecPick<T>& NumVecPick<T>::operator=(const NumVec<T>& values) {
    lengthCheck(values.length());
    assertElements();
    // Values from the picked vector's own block are copied out before scattering.
    NumVec<T> source = values.block() == vector_.block() ? values.copy() : values;
    for (unsigned k = 0; k < length(); ++k)
        (*this)(static_cast<int>(k)) = source(static_cast<int>(k));
    return *this;
}

template <class T>
NumVecPick<T>& NumVecPick<T>::operator=(const NumVecPick& other) {
    lengthCheck(other.length());
    assertElements();
    NumVec<T> gathered(other);
    for (unsigned k = 0; k < length(); ++k)
        (*this)(static_cast<int>(k)) = gathered(static_cast<int>(k));
    return *this;
}

template <class T>
NumVecPick<T>& NumVecPick<T>::operator=(T value) {
    assertElements();
    for (unsigned k = 0; k < length(); ++k)
        (*this)(static_cast<int>(k)) = value;
    return *this;
}

// ---- free operators ----

namespace {

template <class T, class F>
NumVec<T> mapVectors(const NumVec<T>& a, const NumVec<T>& b, F f) {
    a.lengthCheck(b.length());
    NumVec<T> result(a.length());
    mapPair(result.data(), a.data(), a.stride(), b.data(), b.stride(), a.length(), f);
    return result;
}

template <class T, class F>
NumVec<T> mapVector(const NumVec<T>& a, F f) {
    NumVec<T> result(a.length());
    mapOne(result.data(), a.data(), a.stride(), a.length(), f);
    return result;
}

} // namespace

template <class T>
NumVec<T> operator-(const NumVec<T>& v) {
    return mapVector(v, [](T x) { return static_cast<T>(-x); });
}
template <class T>
NumVec<T> operator+(const NumVec<T>& a, const NumVec<T>& b) {
    return mapVectors(a, b, [](T x, T y) { return static_cast<T>(x + y); });
}
template <class T>
NumVec<T> operator-(const NumVec<T>& a, const NumVec<T>& b) {
    return mapVectors(a, b, [](T x, T y) { return static_cast<T>(x - y); });
}
template <class T>
NumVec<T> operator*(const NumVec<T>& a, const NumVec<T>& b) {
    return mapVectors(a, b, [](T x, T y) { return static_cast<T>(x * y); });
}
template <class T>
NumVec<T> operator/(const NumVec<T>& a, const NumVec<T>& b) {
    return mapVectors(a, b, [](T x, T y) { return static_cast<T>(x / y); });
}
template <class T>
NumVec<T> operator+(const NumVec<T>& a, std::type_identity_t<T> s) {
    return mapVector(a, [s](T x) { return static_cast<T>(x + s); });
}
template <class T>
NumVec<T> operator+(std::type_identity_t<T> s, const NumVec<T>& a) {
    return mapVector(a, [s](T x) { return static_cast<T>(s + x); });
}
template <class T>
NumVec<T> operator-(const NumVec<T>& a, std::type_identity_t<T> s) {
    return mapVector(a, [s](T x) { return static_cast<T>(x - s); });
}
template <class T>
NumVec<T> operator-(std::type_identity_t<T> s, const NumVec<T>& a) {
    return mapVector(a, [s](T x) { return static_cast<T>(s - x); });
}
template <class T>
NumVec<T> operator*(const NumVec<T>& a, std::type_identity_t<T> s) {
    return mapVector(a, [s](T x) { return static_cast<T>(x * s); });
}
template <class T>
NumVec<T> operator*(std::type_identity_t<T> s, const NumVec<T>& a) {
    return mapVector(a, [s](T x) { return static_cast<T>(s * x); });
}
template <class T>
NumVec<T> operator/(const NumVec<T>& a, std::type_identity_t<T> s) {
    return mapVector(a, [s](T x) { return static_cast<T>(x / s); });
}
template <class T>
NumVec<T> operator/(std::type_identity_t<T> s, const NumVec<T>& a) {
    return mapVector(a, [s](T x) { return static_cast<T>(s / x); });
}

template <class T>
std::ostream& operator<<(std::ostream& out, const NumVec<T>& v) {
    v.printOn(out);
    return out;
}

template <class T>
std::istream& operator>>(std::istream& in, NumVec<T>& v) {
    v.scanFrom(in);
    return in;
}

#define OBRIX_INSTANTIATE_VECTOR(T)                                                                \
    template class OBRIX_INSTANTIATION_API NumVec<T>;                                              \
    template class OBRIX_INSTANTIATION_API NumVecPick<T>;                                          \
    template NumVec<T> operator-(const NumVec<T>&);                                                \
    template NumVec<T> operator+(const NumVec<T>&, const NumVec<T>&);                              \
    template NumVec<T> operator-(const NumVec<T>&, const NumVec<T>&);                              \
    template NumVec<T> operator*(const NumVec<T>&, const NumVec<T>&);                              \
    template NumVec<T> operator/(const NumVec<T>&, const NumVec<T>&);                              \
    template NumVec<T> operator+(const NumVec<T>&, std::type_identity_t<T>);                       \
    template NumVec<T> operator+(std::type_identity_t<T>, const NumVec<T>&);                       \
    template NumVec<T> operator-(const NumVec<T>&, std::type_identity_t<T>);                       \
    template NumVec<T> operator-(std::type_identity_t<T>, const NumVec<T>&);                       \
    template NumVec<T> operator*(const NumVec<T>&, std::type_identity_t<T>);                       \
    template NumVec<T> operator*(std::type_identity_t<T>, const NumVec<T>&);                       \
    template NumVec<T> operator/(const NumVec<T>&, std::type_identity_t<T>);                       \
    template NumVec<T> operator/(std::type_identity_t<T>, const NumVec<T>&);                       \
    template std::ostream& operator<<(std::ostream&, const NumVec<T>&);                            \
    template std::istream& operator>>(std::istream&, NumVec<T>&);

OBRIX_INSTANTIATE_VECTOR(double)
OBRIX_INSTANTIATE_VECTOR(int)
OBRIX_INSTANTIATE_VECTOR(signed char)

template OBRIX_MEMBER_TEMPLATE_API void NumVec<double>::clampZero<double>(double);
template OBRIX_MEMBER_TEMPLATE_API int NumVec<double>::isEqual<double>(double, double) const;
template OBRIX_MEMBER_TEMPLATE_API int NumVec<double>::countValue<double>(double, double) const;
template OBRIX_MEMBER_TEMPLATE_API NumVec<int> NumVec<double>::valueIndex<double>(double,
                                                                                  double) const;
template OBRIX_MEMBER_TEMPLATE_API NumVec<int> NumVec<double>::nonValueIndex<double>(double,
                                                                                     double) const;
template OBRIX_MEMBER_TEMPLATE_API NumVec<int> NumVec<double>::lessIndex<double>(double) const;
template OBRIX_MEMBER_TEMPLATE_API double NumVec<double>::vecLen<double>() const;
template OBRIX_MEMBER_TEMPLATE_API int NumVec<double>::normalise<double>();
