#include "programs/veskoTraceDump/TraceDump.h"

#include <cstdio>
#include <ostream>

#include "ObrixBase/util/VeskoTrace.h"

namespace veskoTraceDump {

namespace {

// Days from 1970-01-01 to the given civil date (proleptic Gregorian), after Howard Hinnant's
// days_from_civil.
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = unsigned(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + std::int64_t(doe) - 719468;
}

struct ParsedLine {
    std::int64_t second = 0;
    std::string category;
    std::string message;
};

bool parseLine(const std::string& line, ParsedLine& parsed) {
    int year, month, day, hour, minute, second, used = 0;
    if (std::sscanf(line.c_str(), "%d/%d/%d %d:%d:%d <%n", &year, &month, &day, &hour, &minute,
                    &second, &used) != 6 ||
        used == 0)
        return false;
    const std::size_t close = line.find("> ", std::size_t(used));
    if (close == std::string::npos || month < 1 || month > 12 || day < 1 || day > 31)
        return false;
    parsed.second = daysFromCivil(year, unsigned(month), unsigned(day)) * 86400 + hour * 3600 +
                    minute * 60 + second;
    parsed.category = line.substr(std::size_t(used), close - std::size_t(used));
    parsed.message = line.substr(close + 2);
    return true;
}

// Length of the valid UTF-8 sequence at s[i], or 0 when the byte there starts none.
std::size_t utf8Sequence(const std::string& s, std::size_t i) {
    const auto b = static_cast<unsigned char>(s[i]);
    std::size_t n;
    unsigned min;
    if (b < 0x80)
        return 1;
    if (b >= 0xC2 && b <= 0xDF) {
        n = 2;
        min = 0x80;
    } else if (b >= 0xE0 && b <= 0xEF) {
        n = 3;
        min = 0x800;
    } else if (b >= 0xF0 && b <= 0xF4) {
        n = 4;
        min = 0x10000;
    } else {
        return 0;
    }
    if (i + n > s.size())
        return 0;
    unsigned code = b & (0x7F >> n);
    for (std::size_t k = 1; k < n; ++k) {
        const auto c = static_cast<unsigned char>(s[i + k]);
        if ((c & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (c & 0x3F);
    }
    if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return 0;
    return n;
}

void writeJsonString(const std::string& s, std::ostream& out) {
    out << '"';
    for (std::size_t i = 0; i < s.size();) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c == '"' || c == '\\') {
            out << '\\' << char(c);
            ++i;
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out << escaped;
            ++i;
        } else if (const std::size_t n = utf8Sequence(s, i)) {
            out.write(s.data() + i, std::streamsize(n));
            i += n;
        } else {
            out << "\\ufffd";
            ++i;
        }
    }
    out << '"';
}

} // namespace

void writeTraceEvents(const std::vector<std::string>& lines, std::int64_t processId,
                      std::ostream& out) {
    out << "{\"traceEvents\":[";
    std::int64_t lastSecond = 0, lastTime = 0;
    bool first = true;
    for (const std::string& line : lines) {
        ParsedLine parsed;
        std::int64_t time;
        if (parseLine(line, parsed)) {
            time = parsed.second * 1000000;
            if (!first && parsed.second == lastSecond && lastTime >= time)
                time = lastTime + 1;
            lastSecond = parsed.second;
        } else {
            parsed.category = "unknown";
            parsed.message = line;
            time = first ? 0 : lastTime + 1;
        }
        lastTime = time;
        out << (first ? "\n" : ",\n") << "{\"name\":";
        writeJsonString(parsed.message, out);
        out << ",\"cat\":";
        writeJsonString(parsed.category, out);
        out << ",\"ph\":\"i\",\"s\":\"p\",\"ts\":" << time << ",\"pid\":" << processId
            << ",\"tid\":0}";
        first = false;
    }
    out << "\n]}\n";
}

qvUtil::Error printRing(const char* path, Format format, std::ostream& out, std::ostream& notes) {
    std::vector<std::string> lines;
    VeskoTrace::RecoverResult found;
    const qvUtil::Error error = VeskoTrace::recover(
        path,
        [](void* context, const char* text) {
            static_cast<std::vector<std::string>*>(context)->emplace_back(text);
        },
        &lines, &found);

    if (format == Format::Json) {
        writeTraceEvents(lines, found.writerProcess, out);
    } else {
        for (const std::string& line : lines)
            out << line << '\n';
    }
    if (found.sequence > found.records && error.isOk())
        notes << "note: " << found.sequence - found.records
              << " older records were overwritten before the ring was read\n";
    if (found.tornRecord)
        notes << "note: the last record was being written when the ring was read and is left "
                 "out\n";
    return error;
}

} // namespace veskoTraceDump
