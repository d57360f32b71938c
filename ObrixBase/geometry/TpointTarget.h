// TpointTarget: a position aimed at a target point, with a twist about the line between them,
// as a camera or a spot light is placed. Either end can be moved while the other stays, and
// the pair gives the frame a view or light is set up in.
#ifndef OBRIX_GEOMETRY_TPOINTTARGET_H
#define OBRIX_GEOMETRY_TPOINTTARGET_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/TxformMatrix.h"

/// A position, a target and a twist angle in radians. A plain, trivially copyable value class.
/// When the two points coincide the direction is undefined: direction() is the zero vector
/// and the distance-keeping moves leave the points where they are. Nothing is reported.
class OBRIX_API TpointTarget {
public:
    /// Position at the origin, target at (0, 0, -1) (looking down -z), no twist.
    constexpr TpointTarget() noexcept = default;
    /// The given ends and twist.
    constexpr TpointTarget(const T3dDblPoint& position, const T3dDblPoint& target,
                           double twist = 0.0) noexcept
        : position_(position), target_(target), twist_(twist) {}

    ///@{
    /// The ends and the twist, as stored.
    constexpr const T3dDblPoint& position() const noexcept { return position_; }
    constexpr const T3dDblPoint& target() const noexcept { return target_; }
    constexpr double twist() const noexcept { return twist_; }
    ///@}

    /// Moves the position; the target stays. Returns *this.
    constexpr TpointTarget& setPosition(const T3dDblPoint& p) noexcept {
        position_ = p;
        return *this;
    }
    /// Moves the target; the position stays. Returns *this.
    constexpr TpointTarget& setTarget(const T3dDblPoint& t) noexcept {
        target_ = t;
        return *this;
    }
    /// Sets the twist, the turn in radians about the line of sight (counter-clockwise as
    /// seen from the position). Returns *this.
    constexpr TpointTarget& setTwist(double twist) noexcept {
        twist_ = twist;
        return *this;
    }

    /// The distance from position to target.
    double distance() const noexcept { return (target_ - position_).length(); }
    /// The unit direction from position to target; the zero vector when they coincide.
    T4dDblVector direction() const noexcept;

    /// Moves the position along the line of sight so that it lies `d` from the target, which
    /// stays (a dolly); a negative d puts it beyond the target. Returns *this.
    TpointTarget& setDistanceKeepingTarget(double d) noexcept;
    /// Moves the target along the line of sight so that it lies `d` from the position, which
    /// stays. Returns *this.
    TpointTarget& setDistanceKeepingPosition(double d) noexcept;
    /// Turns the position to look along `dir` (any length), keeping its distance from the
    /// target: the target moves. A zero dir changes nothing. Returns *this.
    TpointTarget& setDirectionKeepingPosition(const T4dDblVector& dir) noexcept;
    /// Moves both ends by v. Returns *this.
    constexpr TpointTarget& translateIt(const T4dDblVector& v) noexcept {
        position_ = position_ + v;
        target_ = target_ + v;
        return *this;
    }

    /// The frame of the view: local -z runs towards the target, local y is `up` made
    /// perpendicular to it and then turned by the twist, and the origin is the position. It
    /// takes view coordinates to world coordinates, so (0, 0, -distance()) goes to the target;
    /// its inverse takes the world into the view. When `up` is parallel to the line of sight,
    /// the world axis least aligned with the line of sight serves instead.
    TxformMatrix viewFrame(const T4dDblVector& up = T4dDblVector(0, 0, 1)) const noexcept;

    /// 1 when both ends are equivalent within tol (inclusive) and the twists differ by at most
    /// tol.
    int equivalent(const TpointTarget& p, double tol) const noexcept;

private:
    T3dDblPoint position_;
    T3dDblPoint target_{0.0, 0.0, -1.0};
    double twist_ = 0.0;
};

#endif
