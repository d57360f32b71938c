#include "programs/qvcached/RemoteTier.h"

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>

namespace qvcached {
namespace {

// Whole decimal number in [low, high]; false for anything else, signs and spaces included.
bool parseInt(const std::string& text, long long low, long long high, long long& value) {
    if (text.empty() || text.size() > 18)
        return false;
    for (char c : text)
        if (c < '0' || c > '9')
            return false;
    value = std::atoll(text.c_str());
    return value >= low && value <= high;
}

bool isHex(const std::string& text, std::size_t length) {
    if (text.size() != length)
        return false;
    for (char c : text)
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')))
            return false;
    return true;
}

std::string trim(const std::string& text) {
    std::size_t b = 0, e = text.size();
    while (b < e && std::isspace(static_cast<unsigned char>(text[b])))
        ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(text[e - 1])))
        --e;
    return text.substr(b, e - b);
}

constexpr const char* ManifestTag = "qvcache-object 1";

} // namespace

qvUtil::Error parseRemoteUrl(const std::string& url, RemoteConfig& config) {
    auto bad = [&](const char* why) {
        return qvUtil::Error(1, "bad remote tier URL \"%s\": %s (expected redis://host:port/db)",
                             url.c_str(), why);
    };
    const std::string scheme = "redis://";
    if (url.compare(0, scheme.size(), scheme) != 0)
        return bad("it does not start with redis://");
    std::string rest = url.substr(scheme.size());
    // The URL is printed by --stats and in the log; credentials have settings of their own.
    if (rest.find('@') != std::string::npos)
        return bad("a user or password goes in the user and password settings, not in the URL");
    std::string db;
    if (const auto slash = rest.find('/'); slash != std::string::npos) {
        db = rest.substr(slash + 1);
        rest.resize(slash);
    }
    std::string host = rest, port;
    if (const auto colon = rest.rfind(':'); colon != std::string::npos) {
        host = rest.substr(0, colon);
        port = rest.substr(colon + 1);
        if (port.empty())
            return bad("the port is empty");
    }
    if (host.empty())
        return bad("there is no host");
    for (char c : host)
        if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-'))
            return bad("the host is not a name or an IPv4 address");
    long long number = 0;
    if (!port.empty() && !parseInt(port, 1, 65535, number))
        return bad("the port is not a number from 1 to 65535");
    const int portNumber = port.empty() ? 6379 : static_cast<int>(number);
    if (!db.empty() && !parseInt(db, 0, 1 << 20, number))
        return bad("the database is not a number");
    config.url = url;
    config.host = host;
    config.port = portNumber;
    config.database = db.empty() ? 0 : static_cast<int>(number);
    return {};
}

qvUtil::Error loadRemoteConfig(const std::filesystem::path& directory,
                               std::optional<RemoteConfig>& config) {
    config.reset();
    const std::filesystem::path file = directory / RemoteConfigName;
    std::error_code ec;
    if (!std::filesystem::exists(file, ec))
        return {};
    std::ifstream in(file);
    if (!in)
        return qvUtil::Error(1, "%s: cannot be read", file.string().c_str());
    RemoteConfig read;
    bool haveUrl = false;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string text = trim(line.substr(0, line.find('#')));
        if (text.empty())
            continue;
        const auto equals = text.find('=');
        const std::string key = trim(text.substr(0, equals));
        std::string value = equals == std::string::npos ? "" : trim(text.substr(equals + 1));
        if (key == "password" && equals != std::string::npos) // it may hold '#': the whole rest
            value = trim(line.substr(line.find('=') + 1));
        auto bad = [&](const std::string& why) {
            return qvUtil::Error(1, "%s line %d: %s", file.string().c_str(), number, why.c_str());
        };
        long long n = 0;
        if (equals == std::string::npos || value.empty()) {
            return bad("expected \"name = value\"");
        } else if (key == "url") {
            if (auto err = parseRemoteUrl(value, read); err.isError())
                return bad(err.message().c_str());
            haveUrl = true;
        } else if (key == "user" || key == "password") {
            for (char c : value)
                if (std::iscntrl(static_cast<unsigned char>(c)))
                    return bad("the " + key + " has a control character");
            (key == "user" ? read.user : read.password) = value;
        } else if (key == "prefix") {
            for (char c : value)
                if (std::isspace(static_cast<unsigned char>(c)))
                    return bad("the prefix has a space");
            read.prefix = value;
        } else if (key == "timeout-ms") {
            if (!parseInt(value, 1, 600000, n))
                return bad("timeout-ms is not a number of milliseconds from 1 to 600000");
            read.timeoutMs = static_cast<int>(n);
        } else if (key == "retry-after") {
            if (!parseInt(value, 0, 86400, n))
                return bad("retry-after is not a number of seconds from 0 to 86400");
            read.retryAfter = static_cast<double>(n);
        } else if (key == "queue") {
            if (!parseInt(value, 1, 100000, n))
                return bad("queue is not a number from 1 to 100000");
            read.queueLength = static_cast<int>(n);
        } else {
            return bad("unknown setting \"" + key + "\"");
        }
    }
    if (!haveUrl)
        return qvUtil::Error(1, "%s: no url", file.string().c_str());
    config = read;
    return {};
}

void appendServerLog(const std::filesystem::path& directory, const std::string& line) {
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    const std::time_t now = std::time(nullptr);
    char stamp[32] = {};
    std::tm utc{};
#ifdef _WIN32
    gmtime_s(&utc, &now);
#else
    gmtime_r(&now, &utc);
#endif
    std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%SZ", &utc);
    std::ofstream(directory / ServerLogName, std::ios::app) << stamp << " " << line << "\n";
}

std::string formatManifest(const RemoteManifest& manifest) {
    std::ostringstream out;
    out << ManifestTag << " " << manifest.size << " " << manifest.chunks << " " << manifest.upload
        << " " << manifest.sha256;
    return out.str();
}

bool parseManifest(const std::string& text, RemoteManifest& manifest) {
    const std::string tag = std::string(ManifestTag) + " ";
    if (text.compare(0, tag.size(), tag) != 0 || text.size() > 200)
        return false;
    std::istringstream in(text.substr(tag.size()));
    std::string size, chunks, upload, sha, extra;
    in >> size >> chunks >> upload >> sha;
    if (!in || (in >> extra))
        return false;
    long long s = 0, c = 0;
    if (!parseInt(size, 1, static_cast<long long>(RemoteMaxObjectBytes), s) ||
        !parseInt(chunks, 1, static_cast<long long>(RemoteMaxObjectBytes / RemoteChunkBytes), c))
        return false;
    const auto wanted = (static_cast<std::uint64_t>(s) + RemoteChunkBytes - 1) / RemoteChunkBytes;
    if (static_cast<std::uint64_t>(c) != wanted || !isHex(upload, 16) || !isHex(sha, 64))
        return false;
    manifest = {static_cast<std::uint64_t>(s), static_cast<std::uint64_t>(c), upload, sha};
    return formatManifest(manifest) == text; // one spelling only: no leading zeros or spaces
}

CircuitBreaker::CircuitBreaker(std::function<void(const std::string&)> log, double restSeconds,
                               int threshold)
    : log_(std::move(log)), rest_(std::chrono::duration_cast<Clock::duration>(
                                std::chrono::duration<double>(restSeconds))),
      threshold_(threshold) {
}

bool CircuitBreaker::allow() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return failures_ < threshold_ || Clock::now() >= restUntil_;
}

void CircuitBreaker::succeeded() {
    std::unique_lock<std::mutex> lock(mutex_);
    failures_ = 0;
    if (!outage_)
        return;
    outage_ = false;
    lock.unlock();
    log_("remote tier reachable again");
}

void CircuitBreaker::failed(const std::string& reason) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (++failures_ < threshold_)
        return;
    // Each failure past the threshold (the trial request after a rest included) starts
    // another rest; only the first of an outage is worth a line in the log.
    restUntil_ = Clock::now() + rest_;
    if (outage_)
        return;
    outage_ = true;
    const double seconds = std::chrono::duration<double>(rest_).count();
    lock.unlock();
    std::ostringstream text;
    text << "warning: remote tier unavailable (" << reason
         << "); serving from the local cache alone, asking again every " << seconds
         << " s until it answers";
    log_(text.str());
}

} // namespace qvcached
