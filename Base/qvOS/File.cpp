#include "Base/qvOS/File.h"

#include <chrono>
#include <filesystem>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemError_internal.h"
#include "Base/qvOS/Uuid.h"

namespace qvOS {

using qvString::CString;
namespace fs = std::filesystem;

// The form '"from" to "to"' inside the '<what> "<path>": <text>' messages of two-path calls.
static CString bothPaths(const CString& from, const CString& to) {
    return from + "\" to \"" + to;
}

static std::uint32_t modeBitsOf(fs::file_type type) {
    switch (type) {
    case fs::file_type::regular:
        return 0x8000;
    case fs::file_type::directory:
        return 0x4000;
    case fs::file_type::character:
        return 0x2000;
    case fs::file_type::block:
        return 0x6000;
    case fs::file_type::fifo:
        return 0x1000;
    case fs::file_type::socket:
        return 0xC000;
    default:
        return 0;
    }
}

qvUtil::Error File::query(const CString& path, FileInfo& info) {
    info = FileInfo{};
    const char* what = "Cannot query";
    if (auto e = detail::checkPath(what, path); e.isError())
        return e;
    std::error_code ec;
    fs::path p = detail::toPath(path);
    fs::file_status st = fs::status(p, ec);
    if (st.type() == fs::file_type::not_found)
        return {};
    if (ec)
        return detail::fromErrorCode(what, path, ec);
    info.exists = true;
    info.modeBits = modeBitsOf(st.type());
    info.type = st.type() == fs::file_type::regular     ? FileType::Regular
                : st.type() == fs::file_type::directory ? FileType::Directory
                                                        : FileType::Other;
    if (info.type == FileType::Regular) {
        std::uintmax_t size = fs::file_size(p, ec);
        if (ec)
            return detail::fromErrorCode(what, path, ec);
        info.size = size;
    }
    fs::file_time_type t = fs::last_write_time(p, ec);
    if (ec)
        return detail::fromErrorCode(what, path, ec);
    info.modified = std::chrono::duration_cast<std::chrono::seconds>(
                        std::chrono::file_clock::to_sys(t).time_since_epoch())
                        .count();
    return {};
}

// The source of a copy or move must exist; a missing one is reported with the system's text.
static qvUtil::Error checkSource(const char* what, const CString& from, fs::file_status& st) {
    std::error_code ec;
    st = fs::status(detail::toPath(from), ec);
    if (ec || st.type() == fs::file_type::not_found)
        return detail::fromErrorCode(
            what, from, ec ? ec : std::make_error_code(std::errc::no_such_file_or_directory));
    return {};
}

// Both paths of a copy or move must be usable and the source must exist; `st` gets its status.
static qvUtil::Error checkPair(const char* what, const CString& from, const CString& to,
                               fs::file_status& st) {
    for (const CString* p : {&from, &to})
        if (auto e = detail::checkPath(what, *p); e.isError())
            return e;
    return checkSource(what, from, st);
}

// overwrite false: an existing target is refused before any byte is written.
static qvUtil::Error checkTarget(const char* what, const CString& to, bool overwrite,
                                 bool mayBeDirectory) {
    std::error_code ec;
    fs::file_status st = fs::status(detail::toPath(to), ec);
    if (st.type() == fs::file_type::not_found)
        return {};
    if (ec)
        return detail::fromErrorCode(what, to, ec);
    if (!overwrite)
        return detail::fromErrorCode(what, to, std::make_error_code(std::errc::file_exists));
    if (st.type() == fs::file_type::directory && !mayBeDirectory)
        return detail::fromErrorCode(what, to, std::make_error_code(std::errc::is_a_directory));
    return {};
}

qvUtil::Error fileCopy(const CString& from, const CString& to, bool overwrite) {
    const char* what = "Cannot copy";
    fs::file_status st;
    if (auto e = checkPair(what, from, to, st); e.isError())
        return e;
    if (st.type() != fs::file_type::regular)
        return detail::fromErrorCode(what, from, std::make_error_code(std::errc::is_a_directory));
    if (auto e = checkTarget(what, to, overwrite, false); e.isError())
        return e;

    // The bytes go to a hidden temporary beside the target (same directory, so the same file
    // system) and are renamed into place only when complete: readers never see a partial
    // target, and a failure leaves the old target, if any, as it was.
    CString temporary = Filename::join(Filename::directory(to), "." + Filename::base(to) + ".tmp-" +
                                                                    Uuid().asString().substr(0, 8));
    std::error_code ec;
    fs::copy_file(detail::toPath(from), detail::toPath(temporary), ec);
    if (ec) {
        std::error_code ignored;
        fs::remove(detail::toPath(temporary), ignored);
        return detail::fromErrorCode(what, bothPaths(from, to), ec);
    }
    bool crossDevice = false;
    qvUtil::Error e = detail::syncFile(temporary);
    if (e.isOk())
        e = detail::renameFile(temporary, to, overwrite, crossDevice);
    if (e.isError()) {
        std::error_code ignored;
        fs::remove(detail::toPath(temporary), ignored);
    }
    return e;
}

qvUtil::Error fileDelete(const CString& path) {
    const char* what = "Cannot delete";
    if (auto e = detail::checkPath(what, path); e.isError())
        return e;
    fs::file_status st;
    if (auto e = checkSource(what, path, st); e.isError())
        return e;
    if (st.type() == fs::file_type::directory)
        return detail::fromErrorCode(what, path, std::make_error_code(std::errc::is_a_directory));
    std::error_code ec;
    fs::remove(detail::toPath(path), ec);
    if (ec)
        return detail::fromErrorCode(what, path, ec);
    return {};
}

qvUtil::Error fileMove(const CString& from, const CString& to, bool overwrite) {
    const char* what = "Cannot move";
    fs::file_status st;
    if (auto e = checkPair(what, from, to, st); e.isError())
        return e;
    if (auto e = checkTarget(what, to, overwrite, st.type() == fs::file_type::directory);
        e.isError())
        return e;
    bool crossDevice = false;
    qvUtil::Error e = detail::renameFile(from, to, overwrite, crossDevice);
    if (!crossDevice)
        return e;
    if (st.type() != fs::file_type::regular)
        return e;
    // Another file system: copy (through a temporary beside the target), then drop the source.
    if (auto copied = fileCopy(from, to, overwrite); copied.isError())
        return copied;
    return fileDelete(from);
}

} // namespace qvOS
