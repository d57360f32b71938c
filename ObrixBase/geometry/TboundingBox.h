// TboundingBox: an axis-aligned box that grows to hold points and other boxes, for culling,
// picking and sizing views. It has an explicit empty state (the box of no points), which is
// what a new box is, so extending a fresh box by one point gives exactly that point.
#ifndef OBRIX_GEOMETRY_TBOUNDINGBOX_H
#define OBRIX_GEOMETRY_TBOUNDINGBOX_H

#include <cstddef>
#include <limits>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"

/// The box [min, max] on every axis, boundary included. Empty is stored as min = +infinity and
/// max = -infinity on every axis, so extending needs no test for emptiness; a box is empty
/// when min > max on any axis. A plain, trivially copyable value class. NaN coordinates are
/// ignored by every extension (a NaN never wins a comparison); nothing is reported.
class OBRIX_API TboundingBox {
public:
    /// The empty box.
    constexpr TboundingBox() noexcept = default;
    /// The box spanned by two opposite corners, in any order.
    constexpr TboundingBox(const T3dDblPoint& a, const T3dDblPoint& b) noexcept {
        extendIt(a);
        extendIt(b);
    }

    /// The corner of smallest coordinates; +infinity on every axis when empty.
    constexpr const T3dDblPoint& min() const noexcept { return min_; }
    /// The corner of largest coordinates; -infinity on every axis when empty.
    constexpr const T3dDblPoint& max() const noexcept { return max_; }

    /// 1 when the box holds no point. A box of one point is not empty.
    constexpr int isEmpty() const noexcept {
        return min_.x > max_.x || min_.y > max_.y || min_.z > max_.z;
    }
    /// Makes the box empty. Returns *this.
    constexpr TboundingBox& setToEmpty() noexcept { return *this = TboundingBox(); }

    /// Grows to hold p. Returns *this.
    constexpr TboundingBox& extendIt(const T3dDblPoint& p) noexcept {
        // Written as the comparisons themselves so that the compiler can keep the box in
        // registers and use min/max instructions over long runs of points.
        min_.x = p.x < min_.x ? p.x : min_.x;
        min_.y = p.y < min_.y ? p.y : min_.y;
        min_.z = p.z < min_.z ? p.z : min_.z;
        max_.x = p.x > max_.x ? p.x : max_.x;
        max_.y = p.y > max_.y ? p.y : max_.y;
        max_.z = p.z > max_.z ? p.z : max_.z;
        return *this;
    }
    /// Grows to hold the box b; an empty b changes nothing. Returns *this.
    constexpr TboundingBox& extendIt(const TboundingBox& b) noexcept {
        if (!b.isEmpty()) {
            extendIt(b.min_);
            extendIt(b.max_);
        }
        return *this;
    }
    /// Grows to hold n points of three doubles each (x, y, z, x, y, z, ...). Returns *this.
    TboundingBox& extendIt(const double* xyz, std::size_t n) noexcept;
    ///@{
    /// Copies grown by a point or a box.
    constexpr TboundingBox extend(const T3dDblPoint& p) const noexcept {
        return TboundingBox(*this).extendIt(p);
    }
    constexpr TboundingBox extend(const TboundingBox& b) const noexcept {
        return TboundingBox(*this).extendIt(b);
    }
    ///@}

    /// The smallest box holding both (the union of their points' boxes).
    constexpr TboundingBox unite(const TboundingBox& b) const noexcept { return extend(b); }
    /// Grows to hold b, as extendIt. Returns *this.
    constexpr TboundingBox& uniteIt(const TboundingBox& b) noexcept { return extendIt(b); }
    /// The points both boxes hold; empty when they do not meet. Boxes that only touch meet in
    /// a flat box. Returns *this.
    TboundingBox& intersectIt(const TboundingBox& b) noexcept;
    /// The intersection as a new box; see intersectIt.
    TboundingBox intersection(const TboundingBox& b) const noexcept {
        return TboundingBox(*this).intersectIt(b);
    }
    /// 1 when the boxes share at least one point (touching counts); 0 when either is empty.
    int intersects(const TboundingBox& b) const noexcept;

    /// 1 when p lies in the box grown by tol on every side (inclusive); 0 for an empty box.
    int contains(const T3dDblPoint& p, double tol = 0.0) const noexcept;
    /// 1 when every point of b lies in this box grown by tol; an empty b is contained in every
    /// box, an empty box contains only empty boxes.
    int contains(const TboundingBox& b, double tol = 0.0) const noexcept;

    /// The middle point; the origin for an empty box.
    T3dDblPoint center() const noexcept;
    /// The extent along each axis (max − min); the zero vector for an empty box.
    T4dDblVector size() const noexcept;
    /// Corner i of eight: bit 0 chooses max x, bit 1 max y, bit 2 max z. Meaningless for an
    /// empty box.
    constexpr T3dDblPoint corner(int i) const noexcept {
        return T3dDblPoint(i & 1 ? max_.x : min_.x, i & 2 ? max_.y : min_.y,
                           i & 4 ? max_.z : min_.z);
    }

    /// The box of the eight corners moved by the affine product p·M (column 3 is not read): it
    /// holds the image of every point of this box. Formed by Arvo's method, from the matrix
    /// entries' products with the extents, not by moving the corners one by one. An empty box
    /// stays empty.
    TboundingBox transformed(const T4dDblMatrix& m) const noexcept;
    /// Replaces this box by transformed(m). Returns *this.
    TboundingBox& transformIt(const T4dDblMatrix& m) noexcept { return *this = transformed(m); }

    /// 1 when both are empty, or neither is and every corner coordinate differs by at most tol
    /// (inclusive).
    int equivalent(const TboundingBox& b, double tol) const noexcept;
    /// 1 when both are empty, or both corners are exactly equal.
    int operator==(const TboundingBox& b) const noexcept { return equivalent(b, 0.0); }
    /// The negation of ==.
    int operator!=(const TboundingBox& b) const noexcept { return !(*this == b); }

private:
    static constexpr double inf = std::numeric_limits<double>::infinity();
    T3dDblPoint min_{inf, inf, inf};
    T3dDblPoint max_{-inf, -inf, -inf};
};

#endif
