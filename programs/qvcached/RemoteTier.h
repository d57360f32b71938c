// The cache's optional remote tier: a store shared by a team's workstations behind each one's
// local directory. A local miss asks it; an added file is copied to it in the background. The
// server sees only this interface; the store behind it (a Redis server, through hiredis) lives
// in RedisTier.cpp, built only where hiredis is found.
//
// The tier is configured by "remote.conf" in the cache directory; without that file there is
// no tier and the cache behaves exactly as a purely local one.
#ifndef QVCACHED_REMOTETIER_H
#define QVCACHED_REMOTETIER_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "Base/qvUtil/Error.h"

namespace qvcached {

/// Where the tier is and how patiently it is asked.
struct RemoteConfig {
    std::string url; ///< as written: "redis://host:port/db"
    std::string host;
    int port = 6379;
    int database = 0;
    /// Sent with AUTH after every connect when not empty; `user` names an ACL user of Redis 6
    /// and later (empty: the server's default user, as with requirepass).
    std::string user;
    std::string password;
    /// Begins every remote name, so that teams (or projects) can share one server apart.
    std::string prefix = "qvcache";
    int timeoutMs = 1000;   ///< bounds each connect and each command
    double retryAfter = 30; ///< seconds the tier is left alone after it failed repeatedly
    int queueLength = 64;   ///< write-throughs waiting at most; more are dropped and counted
};

/// Counts of remote work; what the tier reports is the change since its last report.
struct RemoteCounters {
    std::int64_t hits = 0;
    std::int64_t misses = 0;
    std::int64_t bytesIn = 0;  ///< fetched from the tier
    std::int64_t bytesOut = 0; ///< written to it
    std::int64_t errors = 0;   ///< failed connects and commands, corrupt objects
    std::int64_t dropped = 0;  ///< write-throughs not made: full queue, tier resting, too large
};

/// The configuration file's name in the cache directory.
inline constexpr const char* RemoteConfigName = "remote.conf";
/// The server's log in the cache directory: a line per remote-tier event worth an operator's
/// attention (a bad configuration, an outage, its end), never one per request.
inline constexpr const char* ServerLogName = "qvcached.log";

/// Reads "redis://host[:port][/db]". Error code 1 with a one-line reason when it is malformed.
qvUtil::Error parseRemoteUrl(const std::string& url, RemoteConfig& config);

/// Reads `directory`/remote.conf: "key = value" lines (url, user, password, prefix, timeout-ms,
/// retry-after, queue), '#' comments. A password is the rest of its line, '#' included, without
/// the blanks around it. Leaves `config` empty when the file is absent; error code 1 naming
/// the file and line when it is malformed or has no url.
qvUtil::Error loadRemoteConfig(const std::filesystem::path& directory,
                               std::optional<RemoteConfig>& config);

/// Appends one time-stamped line to `directory`/qvcached.log. Safe from any thread.
void appendServerLog(const std::filesystem::path& directory, const std::string& line);

/// How a remote object is described: its size, chunk count, the upload it belongs to and the
/// SHA-256 of its content. Stored as one short text value beside its chunks.
struct RemoteManifest {
    std::uint64_t size = 0;
    std::uint64_t chunks = 0;
    std::string upload; ///< 16 hexadecimal digits, unique per upload
    std::string sha256; ///< 64 lower-case hexadecimal digits
};

/// The largest single value the tier stores. Redis accepts values up to its proto-max-bulk-len
/// (512 MB by default), but every value is held whole in both processes' memory while it
/// moves, and one command must finish within the command timeout: 4 MiB keeps both small.
inline constexpr std::uint64_t RemoteChunkBytes = 4u << 20;
/// The largest file written through. A larger one would push most of a team's shared cache
/// out of a server sized as recommended, for one entry.
inline constexpr std::uint64_t RemoteMaxObjectBytes = 1ull << 30;

/// The manifest's text form.
std::string formatManifest(const RemoteManifest& manifest);
/// False for anything but a well-formed manifest whose chunk count fits its size within the
/// limits above.
bool parseManifest(const std::string& text, RemoteManifest& manifest);

/// Stops asking a failing tier: after `threshold` failures in a row it refuses every request
/// for `rest` seconds, then lets requests through again. Writes one warning to the server's log
/// when an outage begins and one line when it ends. Thread-safe.
class CircuitBreaker {
public:
    using Clock = std::chrono::steady_clock;
    CircuitBreaker(std::function<void(const std::string&)> log, double restSeconds,
                   int threshold = 3);

    /// False while resting.
    bool allow();
    void succeeded();
    /// `reason` goes into the warning when this failure begins an outage.
    void failed(const std::string& reason);

private:
    std::function<void(const std::string&)> log_;
    Clock::duration rest_;
    int threshold_;
    std::mutex mutex_;
    int failures_ = 0;
    bool outage_ = false;
    Clock::time_point restUntil_{};
};

/// The tier as the server uses it. Every call returns at once; the work happens on the
/// tier's own threads, each with its own connection.
class RemoteTier {
public:
    /// Runs on a tier thread: true when `target` now holds the object's whole, checked content.
    using FetchDone = std::function<void(bool found)>;

    virtual ~RemoteTier() = default;

    /// Looks `key` up. On a hit the content is written beside `target` and renamed onto it, so
    /// `target` never holds a part. A corrupt or incomplete object is a miss and is deleted
    /// from the tier. `done` runs exactly once, also when the tier is resting or stopped.
    virtual void fetch(const std::string& key, const std::filesystem::path& target,
                       FetchDone done) = 0;
    /// Queues a copy of the file at `file` under `key`; drops it (and counts) when the queue
    /// is full. The file is read later and may be gone by then: nothing is written.
    virtual void store(const std::string& key, const std::filesystem::path& file) = 0;
    /// Counts since the last call.
    virtual RemoteCounters takeCounters() = 0;
    /// True while a fetch or a write is queued or under way.
    virtual bool busy() = 0;
    /// Answers waiting fetches as misses, finishes the queued writes (at once when resting) and
    /// joins the threads. Later fetches are misses and later writes are dropped.
    virtual void stop() = 0;
};

/// The tier for `config`, logging through `log`. Null with error code 1 when this build has no
/// remote tier or its threads cannot start. Never connects here: an unreachable server only
/// shows in the first requests.
std::unique_ptr<RemoteTier> makeRemoteTier(const RemoteConfig& config,
                                           std::function<void(const std::string&)> log,
                                           qvUtil::Error& error);

} // namespace qvcached

#endif
