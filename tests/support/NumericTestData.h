// Inputs and readings shared by the numeric class tests: random matrices drawn in a fixed
// order (so a seed always gives the same matrix), vectors from literals, the elements of a vector
// as a std::vector for whole comparisons, the largest magnitude for residual checks, and streamed
// text.
#ifndef OBRIX_TESTS_SUPPORT_NUMERICTESTDATA_H
#define OBRIX_TESTS_SUPPORT_NUMERICTESTDATA_H

#include <initializer_list>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"

namespace obrix::test {

/// rows x cols elements uniform in [-1, 1), drawn column by column.
DoubleGenMat randomMatrix(std::mt19937& rng, unsigned rows, unsigned cols);

/// The largest |v[i]|; 0 for an empty vector.
double maxAbs(const DoubleVec& v);

/// A vector holding the given values.
template <class T>
NumVec<T> vecOf(std::initializer_list<T> values) {
    return NumVec<T>(values.begin(), static_cast<unsigned>(values.size()));
}
inline DoubleVec vec(std::initializer_list<double> values) {
    return vecOf(values);
}

/// The elements in index order.
template <class T>
std::vector<T> elements(const NumVec<T>& v) {
    std::vector<T> out;
    for (unsigned i = 0; i < v.length(); ++i)
        out.push_back(v(static_cast<int>(i)));
    return out;
}

/// What operator<< writes for `value`.
template <class V>
std::string printed(const V& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

} // namespace obrix::test

#endif
