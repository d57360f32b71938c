// Tangle: an angle given in degrees, radians or as a cosine-sine pair. Each of the other
// forms is computed the first time it is read and then kept, so repeated reads cost a load.
// Integer multiples of 15 degrees take exact cosines and sines from a fixed table, which keeps
// right-angle rotations free of rounding noise.
#ifndef OBRIX_GEOMETRY_TANGLE_H
#define OBRIX_GEOMETRY_TANGLE_H

#include <concepts>

#include "ObrixBase/ObrixExport.h"

/// An angle with lazily computed degree, radian and cosine-sine forms. A plain value class:
/// copying copies every form and which of them are valid. The getters are const; they fill
/// the cache of the object they are called on, so a Tangle must not be read from two
/// threads at once.
class OBRIX_API Tangle {
public:
    /// Bits of the valid mask.
    enum : int { DegreesValid = 1, RadiansValid = 2, CosSinValid = 4 };

    /// The zero angle with every form valid: 0 degrees, 0 radians, cosine 1, sine 0.
    constexpr Tangle() noexcept : mask_(7), radians_(0.0), degrees_(0.0), cos_(1.0), sin_(0.0) {}

    /// `d` degrees, kept as given: no reduction to a turn.
    constexpr Tangle(double d) noexcept : mask_(DegreesValid), degrees_(d) {}

    /// A cosine-sine pair, kept as given: neither normalised nor checked.
    constexpr Tangle(double c, double s) noexcept : mask_(CosSinValid), cos_(c), sin_(s) {}

    /// Integer degrees: reduced to (-360, 360) by the C remainder, so the sign is kept; a
    /// multiple of 15 is taken from the table instead (a negative one lands in 0..345),
    /// with exact cosine and sine. See degrees(long).
    Tangle(long d) noexcept { degrees(d); }

    /// Any other integer type is integer degrees too, so that Tangle(90) takes the table path
    /// instead of being ambiguous between the long and double forms.
    template <std::integral I>
    Tangle(I d) noexcept : Tangle(static_cast<long>(d)) {}

    /// Sets `d` degrees as given; discards the other forms. Returns *this.
    constexpr Tangle& degrees(double d) noexcept {
        degrees_ = d;
        mask_ = DegreesValid;
        return *this;
    }

    /// Sets integer degrees as the integer constructor does. Returns *this.
    Tangle& degrees(long d) noexcept;

    /// Integer degrees of any other integer type; see degrees(long).
    template <std::integral I>
    Tangle& degrees(I d) noexcept {
        return degrees(static_cast<long>(d));
    }

    /// Sets `r` radians as given; discards the other forms. Returns *this.
    constexpr Tangle& radians(double r) noexcept {
        radians_ = r;
        mask_ = RadiansValid;
        return *this;
    }

    /// Sets a cosine-sine pair as given; discards the other forms. Returns *this.
    constexpr Tangle& setCosSin(double c, double s) noexcept {
        cos_ = c;
        sin_ = s;
        mask_ = CosSinValid;
        return *this;
    }

    /// The angle in degrees. From a cosine-sine pair it is atan2's, in (-180, 180].
    double degrees() const noexcept {
        if (!(mask_ & DegreesValid))
            evaluate(DegreesValid);
        return degrees_;
    }

    /// The angle in radians. From a cosine-sine pair it is atan2's, in (-pi, pi].
    double radians() const noexcept {
        if (!(mask_ & RadiansValid))
            evaluate(RadiansValid);
        return radians_;
    }

    /// The cosine: the stored one, the table's, or the library's cos of the radians.
    double cos() const noexcept {
        if (!(mask_ & CosSinValid))
            evaluate(CosSinValid);
        return cos_;
    }

    /// The sine: the stored one, the table's, or the library's sin of the radians.
    double sin() const noexcept {
        if (!(mask_ & CosSinValid))
            evaluate(CosSinValid);
        return sin_;
    }

    /// Both cos() and sin() at once.
    void getCosSin(double& c, double& s) const noexcept {
        c = cos();
        s = sin();
    }

    /// Snaps the cosine and sine to exact values: within 1e-5 (exclusive) of 0 becomes 0.0,
    /// else a non-negative value within 1e-5 of 1 becomes 1.0 and a negative one within 1e-5
    /// of -1 becomes -1.0. The degree and radian forms are left as they are, so they can
    /// disagree with the snapped pair afterwards. Returns *this.
    Tangle& clamp() noexcept;

    /// The valid mask (DegreesValid | RadiansValid | CosSinValid), for callers that want to
    /// know whether a read will cost a trigonometric call.
    constexpr int validForms() const noexcept { return mask_; }

private:
    // Computes the forms whose bits are set in `want` and are not valid yet.
    void evaluate(int want) const noexcept;

    mutable int mask_ = 0;
    mutable double radians_ = 0.0;
    mutable double degrees_ = 0.0;
    mutable double cos_ = 0.0;
    mutable double sin_ = 0.0;
};

#endif
