// Debug drawing's switch and sink. Drawing is off by default; while it is off, OBRIX_DEBUG_DRAW
// costs one load and one branch and evaluates none of its arguments. The environment variable
// `OBRIX_DEBUG_DRAW=<dir>`, read once when the library loads, or a call to
// ObrixDebugDrawProtocol::enable switches it on: each frame sent then becomes one numbered file
// (glTF 2.0 or OBJ) beside one self-contained HTML viewer page per run.
//
//     OBRIX_DEBUG_DRAW.mesh("surfaces", faceMesh, ObrixDebugDrawColours::grey, "face 12");
//     OBRIX_DEBUG_DRAW.label("hits", hit, "first hit");
//     ObrixDebugDrawProtocol::endFrame("after trimming");   // writes frame-000001.gltf
#ifndef OBRIX_DEBUGDRAW_OBRIXDEBUGDRAWPROTOCOL_H
#define OBRIX_DEBUGDRAW_OBRIXDEBUGDRAWPROTOCOL_H

#include <atomic>
#include <memory>

#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/debugdraw/ObrixDebugDrawFrame.h"

namespace obrix::detail {
/// True while a protocol is installed (or waits to be made from the environment). Written only
/// by ObrixDebugDrawProtocol; a relaxed atomic so that a check costs one plain load.
extern OBRIX_API std::atomic<bool> debugDrawOn;
} // namespace obrix::detail

/// The sink that finished frames are sent to, and the process-wide switch. A subclass decides
/// what a frame becomes; ObrixDebugDrawFileWriter writes files. The static functions keep one
/// current protocol and one current frame for the modelling thread (not locked: one thread).
class OBRIX_API ObrixDebugDrawProtocol {
public:
    ObrixDebugDrawProtocol() = default;
    ObrixDebugDrawProtocol(const ObrixDebugDrawProtocol&) = delete;
    ObrixDebugDrawProtocol& operator=(const ObrixDebugDrawProtocol&) = delete;
    virtual ~ObrixDebugDrawProtocol();

    /// Takes one finished frame; number counts the frames this protocol has been sent, from 1.
    /// The frame is only borrowed for the call.
    virtual qvUtil::Error writeFrame(const ObrixDebugDrawFrame& frame, unsigned number) = 0;

    /// True when drawing is on. One relaxed load: cheap enough to guard any drawing code.
    static bool isOn() noexcept {
        return obrix::detail::debugDrawOn.load(std::memory_order_relaxed);
    }
    /// Makes protocol current (the library owns it from then on; the previous one is deleted)
    /// and switches drawing on; null switches drawing off. Frame numbers start again at 1.
    /// The current frame is cleared.
    static void install(std::unique_ptr<ObrixDebugDrawProtocol> protocol);
    /// Switches drawing on into a new run folder "run-<date>-<time>-<id>" below dir, made with
    /// its parents when the first frame is written (so a run that draws nothing leaves
    /// nothing). Errors: InvalidArgument for an empty dir.
    static qvUtil::Error enable(const qvString::CString& dir);
    /// Switches drawing off and deletes the current protocol.
    static void disable();
    /// The current protocol; null while drawing is off, or before the first frame when drawing
    /// was switched on by enable or the environment.
    static ObrixDebugDrawProtocol* current() noexcept;
    /// The folder that frames go to when a file writer is current or pending; "" otherwise.
    static qvString::CString directory();

    /// The process-wide frame that OBRIX_DEBUG_DRAW records into.
    static ObrixDebugDrawFrame& currentFrame();
    /// Sends frame to the current protocol as the next number. While drawing is off it does
    /// nothing and succeeds; an empty frame is sent too (an empty step is still a step).
    static qvUtil::Error send(const ObrixDebugDrawFrame& frame);
    /// Names the current frame (null keeps its name), sends it and starts an empty one.
    /// While drawing is off it does nothing and succeeds.
    static qvUtil::Error endFrame(const char* name = nullptr);
};

/// Writes each frame as one file in a folder: frame-000001.gltf (or .glb, or .obj with an .mtl
/// beside it), numbered in the order sent, with the viewer page viewer.html, its frame list
/// frames.js and one frame-000001.js per frame for the page to load from disk.
class OBRIX_API ObrixDebugDrawFileWriter : public ObrixDebugDrawProtocol {
public:
    /// How frames are written.
    enum class Format {
        Gltf,         ///< .gltf with the buffer embedded as base64
        GltfSeparate, ///< .gltf with its buffer in a .bin beside it
        Glb,          ///< binary glTF, one file
        Obj,          ///< Wavefront OBJ with a material file (no labels' text, no normals)
    };
    /// What to write.
    struct Options {
        /// GlTF with the buffer embedded, by default.
        Format format = Format::Gltf;
        /// Also write the viewer page and its per-frame scripts.
        bool viewer = true;
    };

    /// Writes into dir, made with its parents on the first frame.
    explicit ObrixDebugDrawFileWriter(const qvString::CString& dir);
    /// Writes into dir with the given options.
    ObrixDebugDrawFileWriter(const qvString::CString& dir, Options options);
    ~ObrixDebugDrawFileWriter() override;

    /// Writes the frame's file(s) and, with the viewer on, the page (first frame only), the
    /// frame's script and the frame list. Errors: the folder's or a file's system error with
    /// its path; a frame whose file failed is not listed in the viewer.
    qvUtil::Error writeFrame(const ObrixDebugDrawFrame& frame, unsigned number) override;

    /// The folder written to.
    const qvString::CString& directory() const noexcept { return dir_; }
    /// The path of frame number's file.
    qvString::CString framePath(unsigned number) const;
    /// The path of the viewer page.
    qvString::CString viewerPath() const;

private:
    struct ListedFrame;
    qvString::CString dir_;
    Options options_;
    bool ready_ = false;
    std::unique_ptr<std::vector<ListedFrame>> listed_;
};

/// Swallows the result of a drawing call, so that OBRIX_DEBUG_DRAW is one expression.
struct ObrixDebugDrawDiscard {
    /// Accepts and drops any drawing call's result (the statement has nothing to check).
    template <class T>
    constexpr void operator&(const T&) const noexcept {}
};

/// Records into the process-wide frame with the caller's file and line:
/// `OBRIX_DEBUG_DRAW.points("hits", hits, colour);`. With drawing off, nothing after the
/// macro is evaluated. It is one expression (a conditional), so it is safe anywhere a
/// statement is, also inside an unbraced if. Its result is discarded: to see a refusal,
/// call ObrixDebugDrawPen yourself.
#define OBRIX_DEBUG_DRAW OBRIX_DEBUG_DRAW_TO(ObrixDebugDrawProtocol::currentFrame())

/// Records into the caller's own frame: `OBRIX_DEBUG_DRAW_TO(frame).polyline(...)`.
#define OBRIX_DEBUG_DRAW_TO(frame)                                                                 \
    !ObrixDebugDrawProtocol::isOn()                                                                \
        ? (void)0                                                                                  \
        : ObrixDebugDrawDiscard() & ObrixDebugDrawPen((frame), __FILE__, __LINE__)

#endif
