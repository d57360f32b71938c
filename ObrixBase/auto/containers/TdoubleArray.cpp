#include "ObrixBase/auto/containers/TdoubleArray.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The extreme of the non-NaN elements by `better`, NaN when there is none.
template <class Better>
double extreme(const double* p, int n, Better better) {
    double r = std::numeric_limits<double>::quiet_NaN();
    for (int i = 0; i < n; ++i)
        if (!std::isnan(p[i]) && (std::isnan(r) || better(p[i], r)))
            r = p[i];
    return r;
}

} // namespace

double TdoubleArray::sum() const noexcept {
    double s = 0.0;
    for (double v : *this)
        s += v;
    return s;
}

double TdoubleArray::minValue() const noexcept {
    return extreme(data(), length(), [](double a, double b) { return a < b; });
}

double TdoubleArray::maxValue() const noexcept {
    return extreme(data(), length(), [](double a, double b) { return a > b; });
}

TdoubleArray& TdoubleArray::sortIt() noexcept {
    // A strict weak order that puts every NaN after every number; plain < is no order at all
    // once a NaN is present, and std::sort may then run off the array.
    std::sort(begin(), end(),
              [](double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; });
    return *this;
}
