// Geometry: a door panel swung open about its hinge, three ways that agree.
#include <cstdio>
#include <numbers>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

void tourGeometry() {
    tourHeading("Geometry: turning a point about a pivot");

    // Integer multiples of 15 degrees come from an exact table, so a right angle has an exact
    // zero cosine; the same angle as a double carries the library's rounding until clamp().
    const Tangle exact(90), rounded(90.0);
    std::printf("cos 90 from the integer: %g, from the double: %g\n", exact.cos(), rounded.cos());

    // A panel corner at (2, 0, 0) swings 90 degrees about a vertical hinge through (1, 0, 0).
    const T3dDblPoint corner(2, 0, 0);
    const T4dDblPoint hinge(1, 0, 0, 1);
    const T4dDblVector up(0, 0, 1);

    // 1. By hand with matrices (row vectors: the left factor acts first): move the hinge to the
    //    origin, turn, move back.
    T4dDblMatrix turn;
    turn.setToAxisRotate(up, std::numbers::pi / 2);
    const T4dDblMatrix aboutHinge =
        T4dDblMatrix(-T4dDblVector(hinge)) * turn * T4dDblMatrix(T4dDblVector(hinge));
    const T3dDblPoint byMatrix = corner * aboutHinge;
    std::printf("by matrices:   (%g, %g, %g)\n", byMatrix.x, byMatrix.y, byMatrix.z);

    // 2. With a placement that keeps the hinge as its rotate pivot.
    TpostXformMatrix placement;
    placement.setRotatePivotPoint(hinge);
    placement += TunitQuaternion(std::numbers::pi / 2, up);
    const T3dDblPoint byPlacement = corner * placement.matrix();
    std::printf("by placement:  (%g, %g, %g), translation (%g, %g, %g)\n", byPlacement.x,
                byPlacement.y, byPlacement.z, placement.translation().x, placement.translation().y,
                placement.translation().z);

    // 3. Half way there, by interpolating the rotation.
    const TunitQuaternion halfWay = slerp(TunitQuaternion(), placement.rotation(), 0.5);
    const T4dDblVector arm = T4dDblVector(corner) - T4dDblVector(hinge);
    const T3dDblPoint half = T3dDblPoint(T4dDblVector(hinge) + arm * halfWay.matrix());
    std::printf("half way:      (%g, %g, %g)\n", half.x, half.y, half.z);

    // The inverse placement brings the corner back, and the hinge never moved.
    const T3dDblPoint back = byPlacement * placement.inverse();
    std::printf("back again:    (%g, %g, %g)\n", back.x, back.y, back.z);
    std::printf("hinge stays:   %s\n",
                (T3dDblPoint(1, 0, 0) * placement.matrix()).equivalent(T3dDblPoint(1, 0, 0), 1e-12)
                    ? "yes"
                    : "no");

    // A ray from above the floor meets the plane z = 0 ahead of its start.
    const Tplane floor(T4dDblPoint::origin, up);
    T4dDblPoint hit;
    const int where = floor.intersection(T4dDblPoint(3, 4, 5, 1), T4dDblVector(1, 0, -1), hit);
    std::printf("ray hits the floor at (%g, %g, %g): %s\n", hit.x, hit.y, hit.z,
                where == Tplane::Ahead ? "ahead" : "not ahead");

    // A camera aimed at the door's box, and the frames of a render from a typed-in list.
    T3dDblPointArray panel{corner, T3dDblPoint(1, 0, 0), T3dDblPoint(2, 0, 2)};
    const TboundingBox box = panel.boundingBox().transformed(placement.matrix());
    TpointTarget camera(T3dDblPoint(6, -8, 3), box.center());
    camera.setDistanceKeepingTarget(5);
    // The view frame's inverse takes the world into the camera: the target lies straight ahead.
    const T3dDblPoint seen = box.center() * camera.viewFrame().inverseMatrix();
    std::printf("camera %.3g from the box centre, which lies %.3g ahead of it\n", camera.distance(),
                -seen.z);
    TnumberSequence frames;
    const qvUtil::Error bad = frames.setFromText("1-10,15,20-30x2,x");
    std::printf("%s\n", bad.message().c_str());
    frames.setFromText("1-10,15,20-30x2");
    std::printf("frames %s: %lld of them, 22 %s\n", frames.text().c_str(),
                static_cast<long long>(frames.count()),
                frames.contains(22) ? "included" : "left out");
}
