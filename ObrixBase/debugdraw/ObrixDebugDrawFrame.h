// ObrixDebugDrawFrame: one recorded picture of what modelling code is looking at: named layers
// of triangle meshes, point sets, polylines (curves sampled to polylines) and text labels, each
// with a colour, a name and the source line that drew it. Frames are sent to the process's
// ObrixDebugDrawProtocol (ObrixDebugDrawProtocol.h), which writes them to files and a viewer.
#ifndef OBRIX_DEBUGDRAW_OBRIXDEBUGDRAWFRAME_H
#define OBRIX_DEBUGDRAW_OBRIXDEBUGDRAWFRAME_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"

template <class T>
class NumGenMat;
/// The matrix class the mesh array form accepts (declared here to keep the header light).
using DoubleGenMat = NumGenMat<double>;

/// A colour with red, green, blue and opacity in [0, 1] (linear, as the writers store them).
struct ObrixDebugDrawColour {
    /// Red.
    float r = 1.0f;
    /// Green.
    float g = 1.0f;
    /// Blue.
    float b = 1.0f;
    /// Opacity (1: opaque).
    float a = 1.0f;
};

/// A few colours that read well on the viewer's dark background.
namespace ObrixDebugDrawColours {
///@{
/// The named colours, opaque.
inline constexpr ObrixDebugDrawColour red{0.9f, 0.15f, 0.1f, 1.0f};
inline constexpr ObrixDebugDrawColour green{0.1f, 0.8f, 0.2f, 1.0f};
inline constexpr ObrixDebugDrawColour blue{0.15f, 0.35f, 0.95f, 1.0f};
inline constexpr ObrixDebugDrawColour yellow{0.95f, 0.85f, 0.1f, 1.0f};
inline constexpr ObrixDebugDrawColour white{1.0f, 1.0f, 1.0f, 1.0f};
inline constexpr ObrixDebugDrawColour grey{0.6f, 0.6f, 0.6f, 1.0f};
///@}
} // namespace ObrixDebugDrawColours

/// The library's own small triangle mesh: positions, triangles as three 0-based indices into
/// positions (counter-clockwise seen from the front), and optionally one normal per position.
/// A caller with a mesh type of its own fills one of these (reserve, then push its vertices
/// and faces; split polygons into fans), or passes its arrays straight to
/// ObrixDebugDrawPen::mesh's array form.
struct ObrixDebugDrawMesh {
    /// Vertices, in the caller's coordinates.
    std::vector<T3dDblPoint> positions;
    /// Vertex indices per triangle, counter-clockwise seen from the front.
    std::vector<std::array<std::uint32_t, 3>> triangles;
    /// Empty, or exactly one per position; they need not be unit length but must not be zero.
    std::vector<T4dDblVector> normals;
};

/// Where a drawing call stands in the caller's source; OBRIX_DEBUG_DRAW fills it.
struct ObrixDebugDrawSource {
    /// The caller's __FILE__ ("" when unknown); not copied: a string literal.
    const char* file = "";
    /// The caller's __LINE__.
    int line = 0;
};

/// One recorded frame. Coordinates are kept as the caller's doubles (after any transform) and
/// rounded to 32-bit floats only when written, relative to the frame's origin, so that large
/// model coordinates keep their precision. Layers appear in the order first drawn into, items
/// in the order drawn. A frame is a plain value: copyable, movable, no process-wide state.
/// Recording allocates; an unnamed frame that is never drawn into allocates nothing.
class OBRIX_API ObrixDebugDrawFrame {
public:
    /// The kinds of item a frame holds.
    enum class Kind : std::uint8_t { Mesh, Points, Polyline, Label };

    /// One recorded item. xyz holds 3 doubles per vertex; triangles 3 indices per triangle
    /// (meshes only); normals 3 floats per vertex, unit length, or nothing.
    struct Item {
        /// What the item is; decides which vectors are used.
        Kind kind = Kind::Points;
        /// The layer's index in layers(), in order of first use.
        unsigned layer = 0;
        /// The item's name ("" when none), shown by the viewer.
        std::string name;
        std::string text; ///< the label's text (labels only)
        /// The drawing call's source file.
        std::string file;
        /// The drawing call's source line.
        int line = 0;
        /// The item's colour.
        ObrixDebugDrawColour colour;
        /// 3 doubles per vertex, after the pen's transform.
        std::vector<double> xyz;
        /// 3 vertex indices per triangle (meshes only).
        std::vector<std::uint32_t> triangles;
        /// 3 floats per vertex, unit length, or empty.
        std::vector<float> normals;
        /// xyz.size() / 3.
        std::size_t vertexCount() const noexcept { return xyz.size() / 3; }
    };

    /// An empty frame with the given name (null: no name).
    explicit ObrixDebugDrawFrame(const char* name = nullptr);

    /// The frame's name ("" when none).
    const std::string& name() const noexcept { return name_; }
    /// Names the frame; null clears the name.
    void setName(const char* name) { name_ = name ? name : ""; }

    /// The origin that written coordinates are relative to: the one set with setOrigin, else
    /// the centre of the bounding box of everything recorded (the world origin when empty).
    T3dDblPoint origin() const noexcept;
    /// Fixes the origin, e.g. to keep coordinates comparable across frames.
    void setOrigin(const T3dDblPoint& origin) noexcept;

    /// The layer names, in the order first used; Item::layer indexes this.
    const std::vector<std::string>& layers() const noexcept { return layers_; }
    /// The items, in the order recorded.
    const std::vector<Item>& items() const noexcept { return items_; }
    /// True when nothing has been recorded.
    bool empty() const noexcept { return items_.empty(); }
    /// Forgets every item and layer and the origin; keeps the name.
    void clear() noexcept;
    /// The bounding box of every recorded vertex (lo > hi when the frame is empty).
    void bounds(T3dDblPoint& lo, T3dDblPoint& hi) const noexcept;

    /// Appends an item after checking it: InvalidArgument (qvOS::OSError code 6) with a message
    /// naming the item for a non-finite coordinate or normal, a triangle index past the
    /// vertices, a normal count that does not match, no vertices, or a polyline of fewer than
    /// two points; the frame is then unchanged. Normals are normalised here. The layer is
    /// looked up by name (null or "" is the layer "default") and created when new.
    qvUtil::Error add(const char* layer, Item item);

private:
    std::string name_;
    std::vector<std::string> layers_;
    std::vector<Item> items_;
    T3dDblPoint origin_;
    bool originSet_ = false;
};

/// A drawing call in flight: a frame, the caller's source line and an optional transform.
/// Made by OBRIX_DEBUG_DRAW and OBRIX_DEBUG_DRAW_TO, used for one statement. Every call returns
/// the frame's add() result: success, or InvalidArgument with nothing recorded. Points are
/// transformed by the row-vector product p·M before they are stored; normals by the inverse
/// transpose of M's 3x3 block.
class OBRIX_API ObrixDebugDrawPen {
public:
    /// A pen drawing into `frame` for the call at `file` (null: "") and `line`; keeps `frame`
    /// by reference, so the frame must outlive the statement.
    ObrixDebugDrawPen(ObrixDebugDrawFrame& frame, const char* file, int line) noexcept
        : frame_(&frame), source_{file ? file : "", line} {}

    /// Draws what follows transformed by m (kept by reference: m must outlive the statement).
    ObrixDebugDrawPen& transform(const T4dDblMatrix& m) noexcept {
        transform_ = &m;
        return *this;
    }

    /// A triangle mesh.
    qvUtil::Error mesh(const char* layer, const ObrixDebugDrawMesh& mesh,
                       ObrixDebugDrawColour colour, const char* name = nullptr);
    /// A triangle mesh from plain arrays: vertexCount points as x, y, z doubles, triangleCount
    /// triples of 0-based indices, and normals (x, y, z per vertex) or null.
    qvUtil::Error mesh(const char* layer, const double* xyz, std::size_t vertexCount,
                       const std::uint32_t* triangles, std::size_t triangleCount,
                       ObrixDebugDrawColour colour, const char* name = nullptr,
                       const double* normals = nullptr);
    /// A point set.
    qvUtil::Error points(const char* layer, std::span<const T3dDblPoint> points,
                         ObrixDebugDrawColour colour, const char* name = nullptr);
    /// A point set from an n x 3 matrix, one point per row; another column count is
    /// InvalidArgument.
    qvUtil::Error points(const char* layer, const DoubleGenMat& points, ObrixDebugDrawColour colour,
                         const char* name = nullptr);
    /// A point set from count points as x, y, z doubles.
    qvUtil::Error points(const char* layer, const double* xyz, std::size_t count,
                         ObrixDebugDrawColour colour, const char* name = nullptr);
    /// A polyline through the points in order (at least two).
    qvUtil::Error polyline(const char* layer, std::span<const T3dDblPoint> points,
                           ObrixDebugDrawColour colour, const char* name = nullptr);
    /// A polyline through the rows of an n x 3 matrix.
    qvUtil::Error polyline(const char* layer, const DoubleGenMat& points,
                           ObrixDebugDrawColour colour, const char* name = nullptr);
    /// A polyline through count points given as x, y, z doubles.
    qvUtil::Error polyline(const char* layer, const double* xyz, std::size_t count,
                           ObrixDebugDrawColour colour, const char* name = nullptr);
    /// A curve sampled at `samples` (at least 2) parameters evenly spaced from t0 to t1
    /// inclusive, drawn as a polyline.
    qvUtil::Error curve(const char* layer, const std::function<T3dDblPoint(double)>& curve,
                        double t0, double t1, unsigned samples, ObrixDebugDrawColour colour,
                        const char* name = nullptr);
    /// A text label anchored at a point (drawn as that point with the text beside it).
    qvUtil::Error label(const char* layer, const T3dDblPoint& at, const char* text,
                        ObrixDebugDrawColour colour = ObrixDebugDrawColours::white);

private:
    qvUtil::Error addPoints(ObrixDebugDrawFrame::Kind kind, const char* layer, const double* xyz,
                            std::size_t count, std::size_t stride, std::size_t componentStride,
                            ObrixDebugDrawColour colour, const char* name, const char* text);
    ObrixDebugDrawFrame::Item start(ObrixDebugDrawFrame::Kind kind, ObrixDebugDrawColour colour,
                                    const char* name) const;

    ObrixDebugDrawFrame* frame_;
    ObrixDebugDrawSource source_;
    const T4dDblMatrix* transform_ = nullptr;
};

#endif
