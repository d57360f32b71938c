// Tscale: per-axis scale factors that never collapse to zero. Every factor that is stored
// passes the zero guard (anything strictly between -0.0001 and 0.0001 becomes +0.0001), so a
// scale and the matrix it builds can always be inverted.
#ifndef OBRIX_GEOMETRY_TSCALE_H
#define OBRIX_GEOMETRY_TSCALE_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"

/// Three scale factors x, y, z, each kept out of the open interval (-0.0001, 0.0001).
/// Negative factors (mirroring) are kept. Nothing is reported.
class OBRIX_API Tscale {
public:
    /// The unit scale (1, 1, 1).
    static const Tscale identity;

    /// The zero guard: f when |f| >= 0.0001 (or f is NaN), else +0.0001. A small negative
    /// factor therefore becomes a small positive one.
    static constexpr double guard(double f) noexcept {
        return (f > -0.0001 && f < 0.0001) ? 0.0001 : f;
    }

    /// The unit scale (1, 1, 1).
    constexpr Tscale() noexcept = default;
    /// The three factors, each through the zero guard.
    constexpr Tscale(double x, double y, double z) noexcept
        : x_(guard(x)), y_(guard(y)), z_(guard(z)) {}
    /// Copies the factors (already guarded).
    constexpr Tscale(const Tscale&) noexcept = default;
    /// Copies the factors (already guarded).
    constexpr Tscale& operator=(const Tscale&) noexcept = default;
    virtual ~Tscale() = default;

    ///@{
    /// The stored factors, each already through the zero guard.
    constexpr double x() const noexcept { return x_; }
    constexpr double y() const noexcept { return y_; }
    constexpr double z() const noexcept { return z_; }
    ///@}

    /// All three factors become s, through the zero guard. Returns *this.
    constexpr Tscale& set(double s) noexcept { return set(s, s, s); }
    /// Each factor through the zero guard. Returns *this.
    constexpr Tscale& set(double x, double y, double z) noexcept {
        x_ = guard(x);
        y_ = guard(y);
        z_ = guard(z);
        return *this;
    }

    /// The scale matrix: the identity with the guarded factors on the diagonal.
    constexpr operator T4dDblMatrix() const noexcept {
        T4dDblMatrix m;
        m(0, 0) = guard(x_);
        m(1, 1) = guard(y_);
        m(2, 2) = guard(z_);
        return m;
    }

    /// The reciprocal scale (1/x, 1/y, 1/z), guarded before and after the division: a factor
    /// of 0.0001 inverts to 10000.
    constexpr Tscale inverse() const noexcept {
        return Tscale(1.0 / guard(x_), 1.0 / guard(y_), 1.0 / guard(z_));
    }
    /// Replaces the factors by their reciprocals, as inverse. Returns *this.
    constexpr Tscale& invertIt() noexcept { return *this = inverse(); }

    /// 1 when every factor differs from its partner by at most tol (inclusive). The tolerance
    /// passes the zero guard first, so any tol in (-0.0001, 0.0001) acts as 0.0001 and a tol
    /// of -0.0001 or less rejects even identical scales.
    int equivalent(const Tscale& s, double tol) const noexcept;

    /// 1 when the three factors agree pairwise within 1e-9 (inclusive): a uniform scale.
    int proportionalScale() const noexcept;

private:
    double x_ = 1.0;
    double y_ = 1.0;
    double z_ = 1.0;
};

#endif
