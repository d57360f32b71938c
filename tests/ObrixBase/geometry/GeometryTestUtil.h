// Seeded random geometry for the geometry tests, so every run sees the same cases.
#ifndef OBRIX_TESTS_GEOMETRY_GEOMETRYTESTUTIL_H
#define OBRIX_TESTS_GEOMETRY_GEOMETRYTESTUTIL_H

#include <random>

#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"

namespace obrix::test {

class GeometryRandom {
public:
    double uniform(double lo, double hi) { return std::uniform_real_distribution<>(lo, hi)(gen_); }
    T4dDblVector vector(double r = 10.0) {
        return T4dDblVector(uniform(-r, r), uniform(-r, r), uniform(-r, r));
    }
    T4dDblVector unitVector() {
        T4dDblVector v;
        while (v.length() < 0.1)
            v = vector(1.0);
        return v.getNormal();
    }
    /// Elements uniform in [-10, 10]: regular, and conditioned well enough for 1e-9 residuals.
    T4dDblMatrix matrix() {
        T4dDblMatrix m;
        for (short i = 0; i < 16; ++i)
            m(i / 4, i % 4) = uniform(-10.0, 10.0);
        return m;
    }

private:
    std::mt19937 gen_{12345};
};

} // namespace obrix::test

#endif
