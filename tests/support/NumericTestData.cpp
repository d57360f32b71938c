#include "tests/support/NumericTestData.h"

#include <algorithm>
#include <cmath>

namespace obrix::test {

DoubleGenMat randomMatrix(std::mt19937& rng, unsigned rows, unsigned cols) {
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    DoubleGenMat m(rows, cols);
    for (unsigned j = 0; j < cols; ++j)
        for (unsigned i = 0; i < rows; ++i)
            m(static_cast<int>(i), static_cast<int>(j)) = value(rng);
    return m;
}

double maxAbs(const DoubleVec& v) {
    double m = 0.0;
    for (unsigned i = 0; i < v.length(); ++i)
        m = std::max(m, std::fabs(v(static_cast<int>(i))));
    return m;
}

} // namespace obrix::test
