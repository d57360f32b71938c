#include "ObrixBase/debugdraw/ObrixDebugDrawFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "Base/qvOS/OSError.h"
#include "ObrixBase/math/DoubleGenMat.h"

namespace {

using Kind = ObrixDebugDrawFrame::Kind;

const char* kindName(Kind kind) {
    switch (kind) {
    case Kind::Mesh:
        return "mesh";
    case Kind::Points:
        return "point set";
    case Kind::Polyline:
        return "polyline";
    case Kind::Label:
        return "label";
    }
    return "item";
}

qvUtil::Error refuse(const ObrixDebugDrawFrame::Item& item, const char* why) {
    return qvUtil::Error(qvOS::OSError::InvalidArgument, "debug drawing: %s \"%s\" (%s:%d) %s",
                         kindName(item.kind), item.name.c_str(), item.file.c_str(), item.line, why);
}

// Normals follow the inverse transpose of the 3x3 block so that they stay perpendicular to
// surfaces under non-uniform scaling. The cofactor matrix is that inverse times the
// determinant; the sign of the determinant is put back so that mirroring keeps the side.
std::array<double, 9> normalMatrix(const T4dDblMatrix& m) {
    auto a = [&m](int r, int c) { return m(static_cast<short>(r), static_cast<short>(c)); };
    std::array<double, 9> n{};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            const int r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
            n[r * 3 + c] = a(r1, c1) * a(r2, c2) - a(r1, c2) * a(r2, c1);
        }
    const double det = a(0, 0) * n[0] + a(0, 1) * n[1] + a(0, 2) * n[2];
    if (det < 0)
        for (double& v : n)
            v = -v;
    return n;
}

std::vector<double> matrixRows(const DoubleGenMat& m) {
    std::vector<double> xyz;
    if (m.cols() != 3)
        return xyz;
    xyz.reserve(std::size_t(m.rows()) * 3);
    for (unsigned i = 0; i < m.rows(); ++i)
        for (int j = 0; j < 3; ++j)
            xyz.push_back(m(static_cast<int>(i), j));
    return xyz;
}

} // namespace

ObrixDebugDrawFrame::ObrixDebugDrawFrame(const char* name) : name_(name ? name : "") {
}

void ObrixDebugDrawFrame::setOrigin(const T3dDblPoint& origin) noexcept {
    origin_ = origin;
    originSet_ = true;
}

T3dDblPoint ObrixDebugDrawFrame::origin() const noexcept {
    if (originSet_)
        return origin_;
    T3dDblPoint lo, hi;
    bounds(lo, hi);
    if (lo.x > hi.x)
        return T3dDblPoint();
    return T3dDblPoint(0.5 * (lo.x + hi.x), 0.5 * (lo.y + hi.y), 0.5 * (lo.z + hi.z));
}

void ObrixDebugDrawFrame::bounds(T3dDblPoint& lo, T3dDblPoint& hi) const noexcept {
    constexpr double inf = std::numeric_limits<double>::infinity();
    double l[3] = {inf, inf, inf}, h[3] = {-inf, -inf, -inf};
    for (const Item& item : items_)
        for (std::size_t i = 0; i < item.xyz.size(); i += 3)
            for (int k = 0; k < 3; ++k) {
                l[k] = std::min(l[k], item.xyz[i + k]);
                h[k] = std::max(h[k], item.xyz[i + k]);
            }
    lo = T3dDblPoint(l[0], l[1], l[2]);
    hi = T3dDblPoint(h[0], h[1], h[2]);
}

void ObrixDebugDrawFrame::clear() noexcept {
    layers_.clear();
    items_.clear();
    originSet_ = false;
    origin_ = T3dDblPoint();
}

qvUtil::Error ObrixDebugDrawFrame::add(const char* layer, Item item) {
    const std::size_t n = item.vertexCount();
    if (item.xyz.size() % 3 != 0 || n == 0)
        return refuse(item, "has no vertices");
    // Everything written is checked here, once, so that the writers can trust the frame and
    // every file they make is valid: a reader that meets a NaN or a wild index gives up on
    // the whole file, not on the item.
    for (double v : item.xyz)
        if (!std::isfinite(v))
            return refuse(item, "has a coordinate that is not finite");
    if (n > std::numeric_limits<std::uint32_t>::max())
        return refuse(item, "has more vertices than 32-bit indices reach");
    if (item.kind == Kind::Polyline && n < 2)
        return refuse(item, "has fewer than two points");
    if (item.kind == Kind::Mesh) {
        if (item.triangles.empty() || item.triangles.size() % 3 != 0)
            return refuse(item, "has no triangles");
        for (std::uint32_t index : item.triangles)
            if (index >= n)
                return refuse(item, "has a triangle index past its vertices");
    } else if (!item.triangles.empty()) {
        return refuse(item, "has triangles but is not a mesh");
    }
    if (!item.normals.empty()) {
        if (item.normals.size() != item.xyz.size())
            return refuse(item, "does not have one normal per vertex");
        for (std::size_t i = 0; i < item.normals.size(); i += 3) {
            float* v = &item.normals[i];
            const double len =
                std::sqrt(double(v[0]) * v[0] + double(v[1]) * v[1] + double(v[2]) * v[2]);
            if (!std::isfinite(len) || len < 1e-30)
                return refuse(item, "has a zero or non-finite normal");
            for (int k = 0; k < 3; ++k)
                v[k] = static_cast<float>(v[k] / len);
        }
    }
    // Colours are clamped here so that equal colours compare equal when writers share
    // materials between items (a NaN would match nothing, not even itself).
    for (float* c : {&item.colour.r, &item.colour.g, &item.colour.b, &item.colour.a})
        *c = *c >= 0.0f ? (*c <= 1.0f ? *c : 1.0f) : 0.0f;
    const std::string layerName = layer && *layer ? layer : "default";
    auto found = std::find(layers_.begin(), layers_.end(), layerName);
    item.layer = static_cast<unsigned>(found - layers_.begin());
    if (found == layers_.end())
        layers_.push_back(layerName);
    items_.push_back(std::move(item));
    return {};
}

ObrixDebugDrawFrame::Item ObrixDebugDrawPen::start(Kind kind, ObrixDebugDrawColour colour,
                                                   const char* name) const {
    ObrixDebugDrawFrame::Item item;
    item.kind = kind;
    item.colour = colour;
    item.name = name ? name : "";
    item.file = source_.file;
    item.line = source_.line;
    return item;
}

qvUtil::Error ObrixDebugDrawPen::addPoints(Kind kind, const char* layer, const double* xyz,
                                           std::size_t count, std::size_t stride,
                                           std::size_t componentStride, ObrixDebugDrawColour colour,
                                           const char* name, const char* text) {
    ObrixDebugDrawFrame::Item item = start(kind, colour, name);
    if (text)
        item.text = text;
    if (!xyz)
        count = 0;
    item.xyz.resize(count * 3);
    for (std::size_t i = 0; i < count; ++i) {
        T3dDblPoint p(xyz[i * stride], xyz[i * stride + componentStride],
                      xyz[i * stride + 2 * componentStride]);
        if (transform_)
            p.postmultBy(*transform_);
        item.xyz[i * 3] = p.x;
        item.xyz[i * 3 + 1] = p.y;
        item.xyz[i * 3 + 2] = p.z;
    }
    return frame_->add(layer, std::move(item));
}

qvUtil::Error ObrixDebugDrawPen::mesh(const char* layer, const ObrixDebugDrawMesh& mesh,
                                      ObrixDebugDrawColour colour, const char* name) {
    static_assert(sizeof(T3dDblPoint) == 3 * sizeof(double), "points are three packed doubles");
    std::vector<double> normals;
    if (!mesh.normals.empty()) {
        normals.reserve(mesh.normals.size() * 3);
        for (const T4dDblVector& v : mesh.normals)
            normals.insert(normals.end(), {v.x, v.y, v.z});
    }
    if (!mesh.normals.empty() && mesh.normals.size() != mesh.positions.size()) {
        ObrixDebugDrawFrame::Item item = start(Kind::Mesh, colour, name);
        return refuse(item, "does not have one normal per vertex");
    }
    return this->mesh(
        layer, mesh.positions.empty() ? nullptr : &mesh.positions[0].x, mesh.positions.size(),
        mesh.triangles.empty() ? nullptr : mesh.triangles[0].data(), mesh.triangles.size(), colour,
        name, normals.empty() ? nullptr : normals.data());
}

qvUtil::Error ObrixDebugDrawPen::mesh(const char* layer, const double* xyz, std::size_t vertexCount,
                                      const std::uint32_t* triangles, std::size_t triangleCount,
                                      ObrixDebugDrawColour colour, const char* name,
                                      const double* normals) {
    ObrixDebugDrawFrame::Item item = start(Kind::Mesh, colour, name);
    if (!xyz)
        vertexCount = 0;
    if (!triangles)
        triangleCount = 0;
    item.xyz.resize(vertexCount * 3);
    for (std::size_t i = 0; i < vertexCount; ++i) {
        T3dDblPoint p(xyz[i * 3], xyz[i * 3 + 1], xyz[i * 3 + 2]);
        if (transform_)
            p.postmultBy(*transform_);
        item.xyz[i * 3] = p.x;
        item.xyz[i * 3 + 1] = p.y;
        item.xyz[i * 3 + 2] = p.z;
    }
    item.triangles.assign(triangles, triangles + triangleCount * 3);
    if (normals) {
        std::array<double, 9> nm{1, 0, 0, 0, 1, 0, 0, 0, 1};
        if (transform_)
            nm = normalMatrix(*transform_);
        item.normals.resize(vertexCount * 3);
        for (std::size_t i = 0; i < vertexCount; ++i) {
            const double* v = normals + i * 3;
            for (int c = 0; c < 3; ++c)
                item.normals[i * 3 + c] = static_cast<float>(
                    v[0] * nm[0 * 3 + c] + v[1] * nm[1 * 3 + c] + v[2] * nm[2 * 3 + c]);
        }
    }
    return frame_->add(layer, std::move(item));
}

qvUtil::Error ObrixDebugDrawPen::points(const char* layer, std::span<const T3dDblPoint> points,
                                        ObrixDebugDrawColour colour, const char* name) {
    return addPoints(Kind::Points, layer, points.empty() ? nullptr : &points[0].x, points.size(), 3,
                     1, colour, name, nullptr);
}

qvUtil::Error ObrixDebugDrawPen::points(const char* layer, const DoubleGenMat& points,
                                        ObrixDebugDrawColour colour, const char* name) {
    if (points.cols() != 3)
        return refuse(start(Kind::Points, colour, name), "is not a matrix of three columns");
    const std::vector<double> xyz = matrixRows(points);
    return addPoints(Kind::Points, layer, xyz.data(), points.rows(), 3, 1, colour, name, nullptr);
}

qvUtil::Error ObrixDebugDrawPen::points(const char* layer, const double* xyz, std::size_t count,
                                        ObrixDebugDrawColour colour, const char* name) {
    return addPoints(Kind::Points, layer, xyz, count, 3, 1, colour, name, nullptr);
}

qvUtil::Error ObrixDebugDrawPen::polyline(const char* layer, std::span<const T3dDblPoint> points,
                                          ObrixDebugDrawColour colour, const char* name) {
    return addPoints(Kind::Polyline, layer, points.empty() ? nullptr : &points[0].x, points.size(),
                     3, 1, colour, name, nullptr);
}

qvUtil::Error ObrixDebugDrawPen::polyline(const char* layer, const DoubleGenMat& points,
                                          ObrixDebugDrawColour colour, const char* name) {
    if (points.cols() != 3)
        return refuse(start(Kind::Polyline, colour, name), "is not a matrix of three columns");
    const std::vector<double> xyz = matrixRows(points);
    return addPoints(Kind::Polyline, layer, xyz.data(), points.rows(), 3, 1, colour, name, nullptr);
}

qvUtil::Error ObrixDebugDrawPen::polyline(const char* layer, const double* xyz, std::size_t count,
                                          ObrixDebugDrawColour colour, const char* name) {
    return addPoints(Kind::Polyline, layer, xyz, count, 3, 1, colour, name, nullptr);
}

qvUtil::Error ObrixDebugDrawPen::curve(const char* layer,
                                       const std::function<T3dDblPoint(double)>& curve, double t0,
                                       double t1, unsigned samples, ObrixDebugDrawColour colour,
                                       const char* name) {
    if (!curve || samples < 2 || !std::isfinite(t0) || !std::isfinite(t1))
        return refuse(start(Kind::Polyline, colour, name),
                      "needs a curve, finite parameters and at least two samples");
    std::vector<T3dDblPoint> points(samples);
    // Each parameter is computed from its index, so the last sample is exactly t1.
    for (unsigned i = 0; i < samples; ++i)
        points[i] = curve(i + 1 == samples ? t1 : t0 + (t1 - t0) * i / (samples - 1));
    return polyline(layer, points, colour, name);
}

qvUtil::Error ObrixDebugDrawPen::label(const char* layer, const T3dDblPoint& at, const char* text,
                                       ObrixDebugDrawColour colour) {
    return addPoints(Kind::Label, layer, &at.x, 1, 3, 1, colour, text, text ? text : "");
}
