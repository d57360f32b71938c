// Element values for the typed container tests: makeValue<T>(i) gives distinct values of each
// element type, and Counted keeps a live count so that a test can see every object destroyed.
#ifndef OBRIX_TESTS_AUTO_CONTAINERS_CONTAINERTESTVALUES_H
#define OBRIX_TESTS_AUTO_CONTAINERS_CONTAINERTESTVALUES_H

#include <string>

#include "ObrixBase/geometry/T3dDblPoint.h"

namespace obrix::test {

/// A value that counts its live instances; not trivially copyable, so containers take their
/// element-by-element paths.
struct Counted {
    static inline int live = 0;
    int v = 0;
    Counted() { ++live; }
    Counted(int x) : v(x) { ++live; }
    Counted(const Counted& c) : v(c.v) { ++live; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --live; }
    bool operator==(const Counted& c) const { return v == c.v; }
};

template <class T>
T makeValue(int i) {
    if constexpr (std::is_same_v<T, std::string>)
        return "value " + std::to_string(i) + " long enough to live on the heap";
    else if constexpr (std::is_same_v<T, T3dDblPoint>)
        return T3dDblPoint(i, -i, 0.5 * i);
    else
        return T(i);
}

} // namespace obrix::test

#endif
