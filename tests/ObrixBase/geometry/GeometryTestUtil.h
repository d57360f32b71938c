// Random geometry for the geometry tests: a seeded generator so every run sees the same cases.
#ifndef OBRIX_TESTS_GEOMETRY_GEOMETRYTESTUTIL_H
#define OBRIX_TESTS_GEOMETRY_GEOMETRYTESTUTIL_H

#include <random>

#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"

namespace obrix::test {

class GeometryRandom {
public:
    explicit GeometryRandom(unsigned seed = 12345) : gen_(seed) {}

    double uniform(double lo, double hi) { return std::uniform_real_distribution<>(lo, hi)(gen_); }

    T4dDblVector vector(double r = 10.0) {
        return T4dDblVector(uniform(-r, r), uniform(-r, r), uniform(-r, r));
    }

    T4dDblVector unitVector() {
        T4dDblVector v;
        do
            v = vector(1.0);
        while (v.length() < 0.1);
        return v.getNormal();
    }

    /// Sixteen uniform elements in [-10, 10]: regular with probability one, and well enough
    /// conditioned for the residual bounds used here.
    T4dDblMatrix matrix() {
        T4dDblMatrix m;
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                m(i, j) = uniform(-10.0, 10.0);
        return m;
    }

private:
    std::mt19937 gen_;
};

} // namespace obrix::test

#endif
