// The remote tier on a Redis server, through hiredis.
//
// Layout under the configured prefix P, for a cache key K:
//   P:m:K         the manifest (RemoteManifest's text): size, chunk count, upload, SHA-256
//   P:c:U:i       chunk i of upload U, RemoteChunkBytes long except the last
// A writer stores every chunk before the manifest, so a reader that finds a manifest finds a
// complete upload unless the server evicted part of it since. Chunks carry the upload's name,
// not the key's, so two workstations writing one key at once never mix their chunks: the last
// manifest written wins and names chunks that are all its own. A chunk that outlives its
// manifest is never read again and so is the first to go under allkeys-lru.
#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <fstream>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include <hiredis/hiredis.h>
#include <openssl/evp.h>

#include "programs/qvcached/RemoteTier.h"

namespace fs = std::filesystem;

namespace qvcached {
namespace {

struct ReplyDeleter {
    void operator()(redisReply* r) const { freeReplyObject(r); }
};
using Reply = std::unique_ptr<redisReply, ReplyDeleter>;

class Sha256 {
public:
    Sha256() : ctx_(EVP_MD_CTX_new()) { EVP_DigestInit_ex(ctx_, EVP_sha256(), nullptr); }
    ~Sha256() { EVP_MD_CTX_free(ctx_); }
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    void update(const char* data, std::size_t size) { EVP_DigestUpdate(ctx_, data, size); }
    std::string hex() {
        unsigned char digest[EVP_MAX_MD_SIZE];
        unsigned int length = 0;
        EVP_DigestFinal_ex(ctx_, digest, &length);
        static const char digits[] = "0123456789abcdef";
        std::string text;
        for (unsigned int i = 0; i < length; ++i) {
            text += digits[digest[i] >> 4];
            text += digits[digest[i] & 15];
        }
        return text;
    }

private:
    EVP_MD_CTX* ctx_;
};

// One thread's connection, made on first use and again after any transport error (hiredis
// leaves a context unusable after one).
class RedisConnection {
public:
    explicit RedisConnection(const RemoteConfig& config) : config_(config) {}
    ~RedisConnection() { drop(); }
    RedisConnection(const RedisConnection&) = delete;
    RedisConnection& operator=(const RedisConnection&) = delete;

    // Runs one command given as separate arguments (binary-safe). Null with `error` set when
    // the server cannot be reached, does not answer in time or answers with an error.
    // A connection that failed after serving earlier commands (the server restarted, or
    // closed it when idle) is made again once before the command counts as failed.
    Reply command(const std::vector<std::string>& args, std::string& error) {
        std::vector<const char*> argv;
        std::vector<std::size_t> lengths;
        for (const std::string& a : args) {
            argv.push_back(a.data());
            lengths.push_back(a.size());
        }
        Reply reply;
        for (int attempt = 0; !reply && attempt < 2; ++attempt) {
            const bool fresh = !context_;
            if (!connect(error))
                return nullptr;
            reply.reset(static_cast<redisReply*>(redisCommandArgv(
                context_, static_cast<int>(args.size()), argv.data(), lengths.data())));
            if (!reply) {
                // hiredis reports a read that ran out of time as the system's EAGAIN.
                const bool timedOut =
                    context_->err == REDIS_ERR_IO && (errno == EAGAIN || errno == EWOULDBLOCK);
                error = config_.host + ":" + std::to_string(config_.port) + ": " +
                        (timedOut ? "no answer within " + std::to_string(config_.timeoutMs) + " ms"
                                  : std::string(context_->errstr));
                drop();
                if (fresh)
                    return nullptr;
            }
        }
        if (!reply)
            return nullptr;
        if (reply->type == REDIS_REPLY_ERROR) {
            error = "the server answered " + std::string(reply->str, reply->len);
            return nullptr;
        }
        return reply;
    }

private:
    bool connect(std::string& error) {
        if (context_)
            return true;
        const timeval timeout{config_.timeoutMs / 1000, (config_.timeoutMs % 1000) * 1000};
        context_ = redisConnectWithTimeout(config_.host.c_str(), config_.port, timeout);
        if (!context_ || context_->err) {
            error = context_ ? context_->errstr : "out of memory";
            error = "cannot connect to " + config_.host + ":" + std::to_string(config_.port) +
                    ": " + error;
            drop();
            return false;
        }
        redisSetTimeout(context_, timeout);
        if (!config_.password.empty()) {
            std::vector<const char*> argv{"AUTH"};
            std::vector<std::size_t> lengths{4};
            for (const std::string* part : {&config_.user, &config_.password}) {
                if (part->empty())
                    continue;
                argv.push_back(part->data());
                lengths.push_back(part->size());
            }
            Reply accepted(static_cast<redisReply*>(redisCommandArgv(
                context_, static_cast<int>(argv.size()), argv.data(), lengths.data())));
            if (!accepted || accepted->type == REDIS_REPLY_ERROR) {
                // The server's answer names the cause ("WRONGPASS ...") without the password.
                error = "cannot authenticate as " +
                        (config_.user.empty() ? std::string("the default user") : config_.user) +
                        ": " +
                        (accepted ? std::string(accepted->str, accepted->len)
                                  : std::string(context_->errstr));
                drop();
                return false;
            }
        }
        if (config_.database != 0) {
            Reply selected(
                static_cast<redisReply*>(redisCommand(context_, "SELECT %d", config_.database)));
            if (!selected || selected->type == REDIS_REPLY_ERROR) {
                error = "cannot select database " + std::to_string(config_.database) + ": " +
                        (selected ? std::string(selected->str, selected->len)
                                  : std::string(context_->errstr));
                drop();
                return false;
            }
        }
        return true;
    }

    void drop() {
        if (context_)
            redisFree(context_);
        context_ = nullptr;
    }

    const RemoteConfig& config_;
    redisContext* context_ = nullptr;
};

class RedisTier final : public RemoteTier {
public:
    RedisTier(const RemoteConfig& config, std::function<void(const std::string&)> log)
        : config_(config), breaker_(std::move(log), config.retryAfter), reader_(config_),
          writer_(config_), random_(std::random_device{}()) {
        fetchThread_ = std::thread([this] { fetchLoop(); });
        storeThread_ = std::thread([this] { storeLoop(); });
    }
    ~RedisTier() override { stop(); }

    void fetch(const std::string& key, const fs::path& target, FetchDone done) override {
        std::unique_lock<std::mutex> lock(mutex_);
        if (stopping_) {
            lock.unlock();
            done(false);
            return;
        }
        fetches_.push_back({key, target, std::move(done)});
        wake_.notify_all();
    }

    void store(const std::string& key, const fs::path& file) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (stopping_ || stores_.size() >= static_cast<std::size_t>(config_.queueLength)) {
            ++counters_.dropped;
            return;
        }
        stores_.push_back({key, file});
        wake_.notify_all();
    }

    RemoteCounters takeCounters() override {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(counters_, RemoteCounters{});
    }

    bool busy() override {
        const std::lock_guard<std::mutex> lock(mutex_);
        return working_ > 0 || !fetches_.empty() || !stores_.empty();
    }

    void stop() override {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            stopping_ = true;
            wake_.notify_all();
        }
        if (fetchThread_.joinable())
            fetchThread_.join();
        if (storeThread_.joinable())
            storeThread_.join();
    }

private:
    struct FetchJob {
        std::string key;
        fs::path target;
        FetchDone done;
    };
    struct StoreJob {
        std::string key;
        fs::path file;
    };
    enum class Outcome { Hit, Miss, Failed };

    std::string manifestKey(const std::string& key) const { return config_.prefix + ":m:" + key; }
    std::string chunkKey(const std::string& upload, std::uint64_t i) const {
        return config_.prefix + ":c:" + upload + ":" + std::to_string(i);
    }

    void count(std::int64_t RemoteCounters::*field, std::int64_t amount = 1) {
        const std::lock_guard<std::mutex> lock(mutex_);
        counters_.*field += amount;
    }

    void failed(const std::string& error) {
        count(&RemoteCounters::errors);
        breaker_.failed(error);
    }

    // Runs `work(job, stopping)` for each job of `queue` until the tier stops and the queue
    // is empty; `working_` covers each job from its removal to its end, for busy().
    template <class Job, class Work>
    void serve(std::deque<Job>& queue, Work work) {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            wake_.wait(lock, [&] { return stopping_ || !queue.empty(); });
            if (queue.empty())
                return;
            Job job = std::move(queue.front());
            queue.pop_front();
            const bool stopping = stopping_;
            ++working_;
            lock.unlock();
            work(job, stopping);
            lock.lock();
            --working_;
        }
    }

    void fetchLoop() {
        serve(fetches_, [this](FetchJob& job, bool stopping) {
            // A server on its way out answers its last waiting clients at once.
            bool found = false;
            if (!stopping && breaker_.allow()) {
                const Outcome outcome = fetchObject(job.key, job.target);
                found = outcome == Outcome::Hit;
                if (outcome != Outcome::Failed) {
                    breaker_.succeeded();
                    count(found ? &RemoteCounters::hits : &RemoteCounters::misses);
                }
            }
            job.done(found);
        });
    }

    // Queued writes are still made while stopping: the server waits for them before it exits.
    void storeLoop() {
        serve(stores_, [this](StoreJob& job, bool) {
            if (!breaker_.allow())
                count(&RemoteCounters::dropped);
            else if (storeObject(job.key, job.file))
                breaker_.succeeded();
        });
    }

    // Deletes the manifest only while it still reads `text`: a writer may have replaced it
    // with a sound one since it was read.
    void discardObject(const std::string& key, const std::string& text,
                       const RemoteManifest* manifest) {
        std::string error;
        reader_.command({"EVAL",
                         "if redis.call('GET', KEYS[1]) == ARGV[1] then "
                         "return redis.call('DEL', KEYS[1]) end return 0",
                         "1", manifestKey(key), text},
                        error);
        if (!manifest)
            return;
        std::vector<std::string> del{"DEL"};
        for (std::uint64_t i = 0; i < manifest->chunks; ++i)
            del.push_back(chunkKey(manifest->upload, i));
        reader_.command(del, error);
    }

    Outcome fetchObject(const std::string& key, const fs::path& target) {
        std::string error;
        Reply head = reader_.command({"GET", manifestKey(key)}, error);
        if (!head) {
            failed(error);
            return Outcome::Failed;
        }
        if (head->type != REDIS_REPLY_STRING)
            return Outcome::Miss;
        const std::string text(head->str, head->len);
        RemoteManifest manifest;
        if (!parseManifest(text, manifest)) {
            count(&RemoteCounters::errors);
            discardObject(key, text, nullptr);
            return Outcome::Miss;
        }
        const fs::path temporary = target.string() + ".remote.tmp";
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        Sha256 sha;
        std::uint64_t received = 0;
        bool corrupt = false, written = static_cast<bool>(out);
        for (std::uint64_t i = 0; i < manifest.chunks && written && !corrupt; ++i) {
            Reply chunk = reader_.command({"GET", chunkKey(manifest.upload, i)}, error);
            if (!chunk) {
                out.close();
                std::error_code ec;
                fs::remove(temporary, ec);
                failed(error);
                return Outcome::Failed;
            }
            const std::uint64_t expected =
                std::min<std::uint64_t>(RemoteChunkBytes, manifest.size - received);
            if (chunk->type != REDIS_REPLY_STRING) {
                // Evicted since the manifest was written: an incomplete object, not a fault.
                corrupt = true;
                break;
            }
            if (static_cast<std::uint64_t>(chunk->len) != expected) {
                count(&RemoteCounters::errors);
                corrupt = true;
                break;
            }
            sha.update(chunk->str, chunk->len);
            written = static_cast<bool>(out.write(chunk->str, chunk->len));
            received += expected;
        }
        if (!corrupt && written && sha.hex() != manifest.sha256) {
            count(&RemoteCounters::errors);
            corrupt = true;
        }
        out.close();
        written = written && static_cast<bool>(out);
        std::error_code ec;
        if (corrupt || !written) {
            fs::remove(temporary, ec);
            if (corrupt)
                discardObject(key, text, &manifest);
            return Outcome::Miss; // a local write failure (full disk) is a miss too
        }
        fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, ec);
        fs::rename(temporary, target, ec);
        if (ec) {
            fs::remove(temporary, ec);
            return Outcome::Miss;
        }
        count(&RemoteCounters::bytesIn, static_cast<std::int64_t>(manifest.size));
        return Outcome::Hit;
    }

    // True when the object is (now) on the server or the file was nothing to copy; false after
    // a failure, which is already counted.
    bool storeObject(const std::string& key, const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        std::error_code ec;
        const std::uintmax_t size = fs::file_size(file, ec);
        if (!in || ec || size == 0)
            return true; // evicted or removed before its turn came
        if (size > RemoteMaxObjectBytes) {
            count(&RemoteCounters::dropped);
            return true;
        }
        std::string error;
        Reply exists = writer_.command({"EXISTS", manifestKey(key)}, error);
        if (!exists) {
            failed(error);
            return false;
        }
        if (exists->type == REDIS_REPLY_INTEGER && exists->integer == 1)
            return true; // another workstation was first; content under one key is one content
        char upload[17];
        std::snprintf(upload, sizeof upload, "%016llx", static_cast<unsigned long long>(random_()));
        RemoteManifest manifest{size, (size + RemoteChunkBytes - 1) / RemoteChunkBytes, upload, {}};
        Sha256 sha;
        std::string buffer(static_cast<std::size_t>(RemoteChunkBytes), '\0');
        std::uint64_t sent = 0;
        for (std::uint64_t i = 0; i < manifest.chunks; ++i) {
            const std::uint64_t want = std::min<std::uint64_t>(RemoteChunkBytes, size - sent);
            in.read(buffer.data(), static_cast<std::streamsize>(want));
            if (static_cast<std::uint64_t>(in.gcount()) != want)
                return true; // cut short under us; its chunks go with the LRU
            buffer.resize(static_cast<std::size_t>(want));
            sha.update(buffer.data(), buffer.size());
            if (!writer_.command({"SET", chunkKey(upload, i), buffer}, error)) {
                failed(error);
                return false;
            }
            sent += want;
        }
        manifest.sha256 = sha.hex();
        if (!writer_.command({"SET", manifestKey(key), formatManifest(manifest)}, error)) {
            failed(error);
            return false;
        }
        count(&RemoteCounters::bytesOut, static_cast<std::int64_t>(size));
        return true;
    }

    RemoteConfig config_;
    CircuitBreaker breaker_;
    RedisConnection reader_, writer_;
    std::mt19937_64 random_; // the store thread's alone

    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    int working_ = 0; // jobs taken off a queue and not yet finished
    std::deque<FetchJob> fetches_;
    std::deque<StoreJob> stores_;
    RemoteCounters counters_;
    std::thread fetchThread_, storeThread_;
};

} // namespace

std::unique_ptr<RemoteTier> makeRemoteTier(const RemoteConfig& config,
                                           std::function<void(const std::string&)> log,
                                           qvUtil::Error& error) {
    error = {};
    try {
        return std::make_unique<RedisTier>(config, std::move(log));
    } catch (const std::exception& e) {
        error = qvUtil::Error(1, "cannot start the remote tier: %s", e.what());
        return nullptr;
    }
}

} // namespace qvcached
