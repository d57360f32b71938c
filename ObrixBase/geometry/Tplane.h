// Tplane: an infinite plane a·x + b·y + c·z + d = 0 with a unit normal (a, b, c), used to
// intersect rays with it and to tell whether the hit lies ahead of or behind the ray's start.
#ifndef OBRIX_GEOMETRY_TPLANE_H
#define OBRIX_GEOMETRY_TPLANE_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"

/// An implicit plane with a stored tolerance. Nothing is reported: a normal of length 1e-9
/// or less is kept as given, unnormalised.
class OBRIX_API Tplane {
public:
    /// What intersection() found.
    enum Hit : int {
        Parallel = 1, ///< the ray runs parallel to the plane; the hit is untouched
        Ahead = 2,    ///< the hit lies at or ahead of the ray's start
        Behind = 3,   ///< the hit lies behind the start (or the parameter is NaN)
    };

    /// The plane z = 0 (normal (0, 0, 1), d = 0) holding the tolerance tol.
    explicit Tplane(double tol = 1e-9) noexcept : tol_(tol) {}
    /// The plane through p with normal n, as setPlane. setPlane resets the tolerance, so the
    /// plane always holds 1e-9 whatever tol is passed.
    Tplane(const T4dDblPoint& p, const T4dDblVector& n, double tol = 1e-9) noexcept;
    /// Copies all five fields, the tolerance included.
    Tplane(const Tplane&) = default;
    /// Copies all five fields, the tolerance included.
    Tplane& operator=(const Tplane&) = default;
    virtual ~Tplane() = default;

    /// Makes this the plane through p with normal n: n is normalised (a normal of length 1e-9
    /// or less is kept as it is), d = −(a·p.x + b·p.y + c·p.z) with p's raw coordinates (its w
    /// is not divided out), and the tolerance becomes 1e-9.
    void setPlane(const T4dDblPoint& p, T4dDblVector n) noexcept;

    /// The normal (a, b, c).
    T4dDblVector normal() const noexcept { return T4dDblVector(a_, b_, c_); }
    /// The offset d of a·x + b·y + c·z + d = 0.
    double offset() const noexcept { return d_; }
    /// The stored tolerance.
    double tolerance() const noexcept { return tol_; }

    /// Intersects the ray p + t·v with the plane. Returns Parallel (1) when |normal·v| is
    /// strictly below 1e-9, a fixed threshold independent of the stored tolerance, and leaves
    /// hit untouched. Otherwise sets hit to the cartesian form of p moved by t·v (w = 1) and
    /// returns Ahead (2) for t >= 0 or Behind (3) for t < 0 or a NaN t.
    int intersection(T4dDblPoint p, T4dDblVector v, T4dDblPoint& hit) const noexcept;

private:
    double a_ = 0.0;
    double b_ = 0.0;
    double c_ = 1.0;
    double d_ = 0.0;
    double tol_ = 1e-9;
};

#endif
