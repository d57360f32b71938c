#include "ObrixBase/debugdraw/ObrixDebugDrawProtocol.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "Base/qvOS/Env.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvOS/Uuid.h"
#include "ObrixBase/debugdraw/debugdraw_encode_internal.h"

namespace obrix::detail {
constinit std::atomic<bool> debugDrawOn{false};
} // namespace obrix::detail

namespace {

namespace dd = obrix::debugdraw;

// The process-wide drawing state of the modelling thread. A directory without a protocol
// means "switched on, writer not made yet": the writer (and its folder) is made by the first
// frame, so a run that switches drawing on and draws nothing leaves nothing on disk.
struct DrawState {
    std::unique_ptr<ObrixDebugDrawProtocol> protocol;
    qvString::CString pendingDir;
    unsigned sent = 0;
    ObrixDebugDrawFrame frame;
};

DrawState& drawState() {
    static DrawState state;
    return state;
}

qvString::CString runFolderName() {
    const std::time_t now = std::time(nullptr);
    char stamp[32] = "run";
    if (const std::tm* t = std::localtime(&now))
        std::strftime(stamp, sizeof stamp, "run-%Y%m%d-%H%M%S", t);
    return qvString::CString(stamp) + "-" + qvOS::Uuid().asString().substr(0, 8);
}

// OBRIX_DEBUG_DRAW=<dir> switches drawing on for the whole run, into a run folder below dir.
// Read once when the library loads, so that the switch stays a single load and no call has
// to ask the environment; the folder itself waits for the first frame.
[[maybe_unused]] const bool environmentRead = [] {
    qvString::CString dir;
    if (qvOS::GetEnv("OBRIX_DEBUG_DRAW", dir) && !dir.empty()) {
        (void)ObrixDebugDrawProtocol::enable(dir);
        return true;
    }
    return false;
}();

std::filesystem::path fsPath(const qvString::CString& s) {
#ifdef _WIN32
    return std::filesystem::path(static_cast<const std::wstring&>(s.toWide()));
#else
    return std::filesystem::path(static_cast<const std::string&>(s));
#endif
}

qvUtil::Error writeWhole(const qvString::CString& path, const std::string& bytes) {
    std::ofstream out(fsPath(path), std::ios::binary | std::ios::trunc);
    if (out)
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (out)
        out.close();
    if (!out)
        return qvUtil::Error(qvOS::OSError::Failed, "debug drawing: cannot write \"%s\": %s",
                             path.c_str(), std::strerror(errno));
    return {};
}

std::string frameStem(unsigned number) {
    char stem[32];
    std::snprintf(stem, sizeof stem, "frame-%06u", number);
    return stem;
}

std::string threeDirectory() {
    qvString::CString dir;
    if (qvOS::GetEnv("OBRIX_DEBUG_DRAW_THREE", dir) && !dir.empty())
        return dir;
    return "/usr/share/javascript/three";
}

} // namespace

ObrixDebugDrawProtocol::~ObrixDebugDrawProtocol() = default;

void ObrixDebugDrawProtocol::install(std::unique_ptr<ObrixDebugDrawProtocol> protocol) {
    DrawState& s = drawState();
    s.pendingDir.clear();
    s.sent = 0;
    s.frame = ObrixDebugDrawFrame();
    const bool on = protocol != nullptr;
    s.protocol = std::move(protocol);
    obrix::detail::debugDrawOn.store(on, std::memory_order_relaxed);
}

qvUtil::Error ObrixDebugDrawProtocol::enable(const qvString::CString& dir) {
    if (dir.empty())
        return qvUtil::Error(qvOS::OSError::InvalidArgument,
                             "debug drawing: no directory to draw into");
    install(nullptr);
    drawState().pendingDir = qvOS::Filename::join(dir, runFolderName());
    obrix::detail::debugDrawOn.store(true, std::memory_order_relaxed);
    return {};
}

void ObrixDebugDrawProtocol::disable() {
    install(nullptr);
}

ObrixDebugDrawProtocol* ObrixDebugDrawProtocol::current() noexcept {
    return drawState().protocol.get();
}

qvString::CString ObrixDebugDrawProtocol::directory() {
    DrawState& s = drawState();
    if (!s.pendingDir.empty())
        return s.pendingDir;
    if (auto* writer = dynamic_cast<ObrixDebugDrawFileWriter*>(s.protocol.get()))
        return writer->directory();
    return {};
}

ObrixDebugDrawFrame& ObrixDebugDrawProtocol::currentFrame() {
    return drawState().frame;
}

qvUtil::Error ObrixDebugDrawProtocol::send(const ObrixDebugDrawFrame& frame) {
    if (!isOn())
        return {};
    DrawState& s = drawState();
    if (!s.protocol && !s.pendingDir.empty()) {
        s.protocol = std::make_unique<ObrixDebugDrawFileWriter>(s.pendingDir);
        s.pendingDir.clear();
    }
    if (!s.protocol)
        return {};
    return s.protocol->writeFrame(frame, ++s.sent);
}

qvUtil::Error ObrixDebugDrawProtocol::endFrame(const char* name) {
    if (!isOn())
        return {};
    DrawState& s = drawState();
    if (name)
        s.frame.setName(name);
    qvUtil::Error result = send(s.frame);
    s.frame = ObrixDebugDrawFrame();
    return result;
}

struct ObrixDebugDrawFileWriter::ListedFrame : dd::ViewerFrame {};

ObrixDebugDrawFileWriter::ObrixDebugDrawFileWriter(const qvString::CString& dir)
    : ObrixDebugDrawFileWriter(dir, Options()) {
}

ObrixDebugDrawFileWriter::ObrixDebugDrawFileWriter(const qvString::CString& dir, Options options)
    : dir_(dir), options_(options), listed_(std::make_unique<std::vector<ListedFrame>>()) {
}

ObrixDebugDrawFileWriter::~ObrixDebugDrawFileWriter() = default;

qvString::CString ObrixDebugDrawFileWriter::framePath(unsigned number) const {
    const char* ext = ".gltf";
    if (options_.format == Format::Glb)
        ext = ".glb";
    if (options_.format == Format::Obj)
        ext = ".obj";
    return qvOS::Filename::join(dir_, frameStem(number) + ext);
}

qvString::CString ObrixDebugDrawFileWriter::viewerPath() const {
    return qvOS::Filename::join(dir_, "viewer.html");
}

qvUtil::Error ObrixDebugDrawFileWriter::writeFrame(const ObrixDebugDrawFrame& frame,
                                                   unsigned number) {
    if (!ready_) {
        if (qvUtil::Error e = qvOS::Filename::makeDir(dir_); e.isError())
            return e;
        if (options_.viewer)
            if (qvUtil::Error e = writeWhole(viewerPath(), dd::viewerPage(threeDirectory()));
                e.isError())
                return e;
        ready_ = true;
    }
    const std::string stem = frameStem(number);
    std::string embedded; // the frame as .gltf with its buffer inside, for the viewer's script
    qvUtil::Error result;
    switch (options_.format) {
    case Format::Gltf: {
        std::string bin;
        embedded = dd::encodeGltf(frame, number, "", bin);
        result = writeWhole(framePath(number), embedded);
        break;
    }
    case Format::GltfSeparate: {
        std::string bin;
        const std::string json = dd::encodeGltf(frame, number, stem + ".bin", bin);
        result = writeWhole(qvOS::Filename::join(dir_, stem + ".bin"), bin);
        if (result.isOk())
            result = writeWhole(framePath(number), json);
        break;
    }
    case Format::Glb:
        result = writeWhole(framePath(number), dd::encodeGlb(frame, number));
        break;
    case Format::Obj:
        result = writeWhole(qvOS::Filename::join(dir_, stem + ".mtl"), dd::encodeMtl(frame));
        if (result.isOk())
            result = writeWhole(framePath(number), dd::encodeObj(frame, number, stem + ".mtl"));
        break;
    }
    if (result.isError() || !options_.viewer)
        return result;

    if (embedded.empty()) {
        std::string bin;
        embedded = dd::encodeGltf(frame, number, "", bin);
    }
    // The glTF JSON is a JavaScript expression as it stands, so the frame's script is the
    // same text inside a call.
    std::string script = "obrixDebugDrawFrame(" + std::to_string(number) + ",";
    script.reserve(script.size() + embedded.size() + 4);
    script += embedded;
    script += ");\n";
    if (qvUtil::Error e = writeWhole(qvOS::Filename::join(dir_, stem + ".js"), script); e.isError())
        return e;
    ListedFrame row;
    row.number = number;
    row.name = frame.name();
    row.file = qvOS::Filename::base(framePath(number));
    row.script = stem + ".js";
    listed_->push_back(std::move(row));
    std::vector<dd::ViewerFrame> rows(listed_->begin(), listed_->end());
    return writeWhole(qvOS::Filename::join(dir_, "frames.js"), dd::viewerFrameList(rows));
}
