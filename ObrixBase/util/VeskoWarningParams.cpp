#include "ObrixBase/util/VeskoWarningParams.h"

#include <cstddef>

namespace qvObrixBase {

namespace {

constexpr const char* kHeader = "veskoWarning 1\n";

void putRecord(qvString::CString& out, const char* tag, const qvString::CString& text) {
    out += tag;
    out += ' ';
    out += std::to_string(text.size());
    out += '\n';
    out += text;
    out += '\n';
}

// Reads "<tag> <count>\n<bytes>\n" at pos; the tag and count stay within one short line, so a
// damaged count can never make the reader allocate or skip more than the input holds.
bool getRecord(const qvString::CString& text, std::size_t& pos, std::string& tag,
               qvString::CString& body, qvString::CString& error) {
    std::size_t eol = text.find('\n', pos);
    if (eol == std::string::npos || eol - pos > 64) {
        error = "a record does not start with \"<tag> <byte count>\"";
        return false;
    }
    std::string head = text.substr(pos, eol - pos);
    std::size_t space = head.find(' ');
    tag = head.substr(0, space);
    if (space == std::string::npos) {
        body.clear();
        pos = eol + 1;
        return true; // a record without a body ("end")
    }
    std::string digits = head.substr(space + 1);
    if (tag.empty() || digits.empty() || digits.size() > 12 ||
        digits.find_first_not_of("0123456789") != std::string::npos) {
        error = "bad record header \"" + head + "\"";
        return false;
    }
    std::size_t count = std::stoull(digits);
    std::size_t start = eol + 1;
    if (count > text.size() - start || text.size() - start - count < 1 ||
        text[start + count] != '\n') {
        error = "the \"" + tag + "\" record does not match its byte count";
        return false;
    }
    body.assign(text, start, count);
    pos = start + count + 1;
    return true;
}

} // namespace

qvString::CString encodeWarning(const VeskoWarningParams& params) {
    qvString::CString out = kHeader;
    putRecord(out, "title", params.title);
    putRecord(out, "kind", params.kind);
    for (const qvString::CString& line : params.lines)
        putRecord(out, "line", line);
    for (const qvString::CString& label : params.buttons)
        putRecord(out, "button", label);
    for (const qvString::CString& detail : params.details)
        putRecord(out, "detail", detail);
    out += "end\n";
    return out;
}

bool decodeWarning(const qvString::CString& text, VeskoWarningParams& params,
                   qvString::CString& error) {
    params = VeskoWarningParams{};
    const std::string header = kHeader;
    if (text.compare(0, header.size(), header) != 0) {
        error = "the description does not start with \"veskoWarning 1\"";
        return false;
    }
    std::size_t pos = header.size();
    std::string tag;
    qvString::CString body;
    while (pos < text.size()) {
        if (!getRecord(text, pos, tag, body, error))
            return false;
        if (tag == "end")
            return true;
        if (tag == "title")
            params.title = body;
        else if (tag == "kind")
            params.kind = body;
        else if (tag == "line")
            params.lines.push_back(body);
        else if (tag == "button")
            params.buttons.push_back(body);
        else if (tag == "detail")
            params.details.push_back(body);
    }
    error = "the description ends without \"end\"";
    return false;
}

} // namespace qvObrixBase
