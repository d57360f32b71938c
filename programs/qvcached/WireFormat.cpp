#include "programs/qvcached/WireFormat.h"

#include <cstring>

#include "Base/qvTCP/Socket.h"

namespace qvcached {
namespace {

// A cursor over the received bytes; every take fails without moving when the bytes are not
// all there yet.
struct Reader {
    const char* data;
    std::size_t size;
    std::size_t at = 0;
    bool tooLong = false;

    template <class T>
    bool take(T& value) {
        if (size - at < sizeof value)
            return false;
        std::memcpy(&value, data + at, sizeof value);
        at += sizeof value;
        return true;
    }
    bool takeString(std::string& text) {
        std::uint32_t length = 0;
        if (!take(length))
            return false;
        if (length > qvTCP::Socket::MaxFrameBytes) {
            tooLong = true;
            return false;
        }
        if (size - at < length)
            return false;
        text.assign(data + at, length);
        at += length;
        return true;
    }
};

} // namespace

DecodeStatus decodeRequest(const char* data, std::size_t size, Request& request,
                           std::size_t& used) {
    using qvObrixBase::FileCacheRequest;
    Reader in{data, size};
    std::int32_t code = 0;
    if (!in.take(code))
        return DecodeStatus::Incomplete;
    bool complete = false;
    switch (code) {
    case static_cast<std::int32_t>(FileCacheRequest::Initialize):
        complete =
            in.takeString(request.text) && in.take(request.number) && in.take(request.number64);
        break;
    case static_cast<std::int32_t>(FileCacheRequest::Acquire):
    case static_cast<std::int32_t>(FileCacheRequest::SetAccessed):
        complete = in.takeString(request.text);
        break;
    case static_cast<std::int32_t>(FileCacheRequest::Add):
        complete = in.takeString(request.text) && in.takeString(request.path);
        break;
    case static_cast<std::int32_t>(FileCacheRequest::Release): {
        std::int32_t flag = 0;
        complete = in.takeString(request.text) && in.take(flag);
        request.flag = flag != 0;
        break;
    }
    default:
        used = sizeof code;
        return DecodeStatus::UnknownCode;
    }
    if (in.tooLong)
        return DecodeStatus::FrameTooLong;
    if (!complete)
        return DecodeStatus::Incomplete;
    request.code = static_cast<FileCacheRequest>(code);
    used = in.at;
    return DecodeStatus::Complete;
}

void putInt(std::string& out, std::int32_t value) {
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void putInt64(std::string& out, std::int64_t value) {
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void putBool(std::string& out, bool value) {
    putInt(out, value ? 1 : 0);
}

void putString(std::string& out, const std::string& text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    out.append(reinterpret_cast<const char*>(&length), sizeof length);
    out += text;
}

void putError(std::string& out, int code, const std::string& message) {
    putInt(out, code);
    putString(out, code == 0 ? std::string() : message);
}

} // namespace qvcached
