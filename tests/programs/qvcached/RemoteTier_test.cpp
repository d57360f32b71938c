// The remote tier's configuration, manifests and circuit breaker, and the tier itself between
// two real qvcached servers (two workstations) and a redis-server of the test's own.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>
#include <random>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>
#ifdef OBRIX_TEST_REMOTE_TIER
#include <hiredis/hiredis.h>
#endif

#include "Base/qvOS/Env.h"
#include "ObrixBase/filecache/FileCache.h"
#include "programs/qvcached/RemoteTier.h"
#include "tests/programs/qvcached/QvcachedTestSupport.h"

namespace fs = std::filesystem;
using obrix::test::ScratchDirectory;
using qvcached::RemoteConfig;
using qvcachedtest::Clock;
using qvObrixBase::FileCache;

namespace {

TEST(RemoteConfig, UrlsAreReadWhole) {
    RemoteConfig config;
    ASSERT_TRUE(qvcached::parseRemoteUrl("redis://cache.example-team.net:6390/3", config).isOk());
    EXPECT_EQ(config.host, "cache.example-team.net");
    EXPECT_EQ(config.port, 6390);
    EXPECT_EQ(config.database, 3);
    ASSERT_TRUE(qvcached::parseRemoteUrl("redis://10.0.0.7", config).isOk());
    EXPECT_EQ(config.port, 6379);
    EXPECT_EQ(config.database, 0);
    for (const char* bad :
         {"", "http://host:1/0", "redis://", "redis://:6379/0", "redis://host:/0",
          "redis://host:0/0", "redis://host:65536/0", "redis://host:+1/0", "redis://host:12x/0",
          "redis://host:1/x", "redis://ho st:1/0", "redis://user@host:1/0"}) {
        const qvUtil::Error err = qvcached::parseRemoteUrl(bad, config);
        EXPECT_TRUE(err.isError()) << bad;
        EXPECT_NE(std::strstr(err.message().c_str(), "bad remote tier URL"), nullptr) << bad;
    }
}

TEST(RemoteConfig, TheFileNamesTheLineAtFault) {
    ScratchDirectory dir;
    std::optional<RemoteConfig> config;
    EXPECT_TRUE(qvcached::loadRemoteConfig(dir.path, config).isOk());
    EXPECT_FALSE(config); // no file: no tier

    dir.write("remote.conf", "# team cache\nurl = redis://h:7000/2  # shared\nprefix = cad\n"
                             "timeout-ms = 250\nretry-after = 5\nqueue = 8\nuser = cad # ACL\n"
                             "password =  a#b c \n");
    ASSERT_TRUE(qvcached::loadRemoteConfig(dir.path, config).isOk());
    ASSERT_TRUE(config);
    EXPECT_EQ(config->url, "redis://h:7000/2");
    EXPECT_EQ(config->user, "cad");
    EXPECT_EQ(config->password, "a#b c");
    EXPECT_EQ(config->prefix, "cad");
    EXPECT_EQ(config->timeoutMs, 250);
    EXPECT_EQ(config->retryAfter, 5);
    EXPECT_EQ(config->queueLength, 8);

    const std::pair<const char*, const char*> bad[] = {
        {"url = redis://h:1/0\nprefix\n", "line 2: expected \"name = value\""},
        {"url = redis://h:99999/0\n", "line 1: bad remote tier URL"},
        {"url = redis://h/0\ntimeout-ms = 0\n", "line 2: timeout-ms"},
        {"url = redis://h/0\ncolour = red\n", "line 2: unknown setting \"colour\""},
        {"prefix = cad\n", ": no url"},
    };
    for (const auto& [text, expected] : bad) {
        dir.write("remote.conf", text);
        const qvUtil::Error err = qvcached::loadRemoteConfig(dir.path, config);
        EXPECT_TRUE(err.isError()) << text;
        EXPECT_NE(std::strstr(err.message().c_str(), expected), nullptr) << err.message().c_str();
        EXPECT_FALSE(config);
    }
}

TEST(RemoteManifest, OnlyConsistentManifestsAreAccepted) {
    const std::string sha(64, 'a');
    qvcached::RemoteManifest m{(4u << 20) + 1, 2, "0123456789abcdef", sha};
    const std::string text = qvcached::formatManifest(m);
    qvcached::RemoteManifest back;
    ASSERT_TRUE(qvcached::parseManifest(text, back));
    EXPECT_EQ(qvcached::formatManifest(back), text);
    const std::string prefix = "qvcache-object 1 ";
    for (const std::string& bad : {
             prefix + "4194305 1 0123456789abcdef " + sha,       // too few chunks for the size
             prefix + "4194304 2 0123456789abcdef " + sha,       // too many
             prefix + "0 0 0123456789abcdef " + sha,             // empty
             prefix + "04194305 2 0123456789abcdef " + sha,      // a second spelling
             prefix + "4194305 2 0123456789ABCDEF " + sha,       // upper-case upload
             prefix + "4194305 2 0123456789abcdef " + sha + "0", // long hash
             prefix + "4194305 2 0123456789abcdef " + sha + " x",
             prefix + "1099511627776 262144 0123456789abcdef " + sha, // over the object limit
             std::string("qvcache-object 2 1 1 0123456789abcdef ") + sha,
         })
        EXPECT_FALSE(qvcached::parseManifest(bad, back)) << bad;
}

TEST(CircuitBreaker, RestsAfterRepeatedFailuresAndLogsEachOutageOnce) {
    std::vector<std::string> log;
    qvcached::CircuitBreaker breaker([&](const std::string& line) { log.push_back(line); }, 0.05,
                                     3);
    breaker.failed("one");
    breaker.failed("two");
    EXPECT_TRUE(breaker.allow());
    breaker.succeeded(); // a success in between starts the count again
    breaker.failed("a");
    breaker.failed("b");
    EXPECT_TRUE(breaker.allow());
    breaker.failed("refused");
    EXPECT_FALSE(breaker.allow());
    ASSERT_EQ(log.size(), 1u);
    EXPECT_NE(log[0].find("remote tier unavailable (refused)"), std::string::npos);
    std::this_thread::sleep_for(std::chrono::milliseconds(80));
    EXPECT_TRUE(breaker.allow()); // the trial after the rest
    breaker.failed("still refused");
    EXPECT_FALSE(breaker.allow());
    EXPECT_EQ(log.size(), 1u); // the same outage
    std::this_thread::sleep_for(std::chrono::milliseconds(80));
    breaker.succeeded();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[1], "remote tier reachable again");
}

#ifdef OBRIX_TEST_REMOTE_TIER

struct ContextDeleter {
    void operator()(redisContext* c) const { redisFree(c); }
};
struct ReplyDeleter {
    void operator()(redisReply* r) const { freeReplyObject(r); }
};
using Reply = std::unique_ptr<redisReply, ReplyDeleter>;

// Two workstations (cache directories, each with its own qvcached) sharing one redis-server
// that asks for a password, as a team's server on a shared network would.
struct RemoteTier : ::testing::Test {
    static constexpr const char* Password = "team secret #1";
    qvcachedtest::RedisServer redis{Password};
    ScratchDirectory one, two;
    std::unique_ptr<redisContext, ContextDeleter> client;

    void SetUp() override {
        if (!redis.running())
            GTEST_SKIP() << redis.reason();
        qvOS::SetEnv("QVCACHED_IDLE_TIMEOUT", "1");
        for (const ScratchDirectory* dir : {&one, &two})
            dir->write("remote.conf", "url = " + url() +
                                          "\nprefix = t\ntimeout-ms = 500\nretry-after = 1\n" +
                                          "password = " + Password + "\n");
        connect();
    }
    void TearDown() override {
        qvcachedtest::waitForServerExit(one.path);
        qvcachedtest::waitForServerExit(two.path);
    }
    // Database 1, so that the servers' choice of database is tested too.
    std::string url() const { return "redis://127.0.0.1:" + std::to_string(redis.port()) + "/1"; }
    void connect() {
        const timeval second{1, 0};
        client.reset(redisConnectWithTimeout("127.0.0.1", redis.port(), second));
        ASSERT_TRUE(client && !client->err);
        ASSERT_TRUE(command({"AUTH", Password}));
        ASSERT_TRUE(command({"SELECT", "1"}));
    }
    Reply command(const std::vector<std::string>& args) {
        std::vector<const char*> argv;
        std::vector<std::size_t> lengths;
        for (const std::string& a : args) {
            argv.push_back(a.data());
            lengths.push_back(a.size());
        }
        return Reply(static_cast<redisReply*>(redisCommandArgv(
            client.get(), static_cast<int>(args.size()), argv.data(), lengths.data())));
    }
    // The manifest of `key` once its write-through has landed (at most 20 s); empty if never.
    std::string waitForManifest(const std::string& key) {
        const auto end = Clock::now() + std::chrono::seconds(20);
        while (Clock::now() < end) {
            Reply r = command({"GET", "t:m:" + key});
            if (r && r->type == REDIS_REPLY_STRING)
                return std::string(r->str, r->len);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return {};
    }
    static std::string content(std::size_t bytes, unsigned seed) {
        std::mt19937_64 random(seed);
        std::string text(bytes, '\0');
        for (std::size_t i = 0; i < bytes; i += 8) {
            const std::uint64_t v = random();
            std::memcpy(&text[i], &v, std::min<std::size_t>(8, bytes - i));
        }
        return text;
    }
    static bool add(FileCache& cache, const std::string& key, const std::string& bytes) {
        const qvString::CString path = cache.generatePath();
        std::ofstream(path.c_str(), std::ios::binary) << bytes;
        return static_cast<bool>(cache.add(key, path));
    }
    static std::string read(const qvString::CString& path) {
        std::ifstream in(path.c_str(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    static int leftovers(const fs::path& dir) {
        int n = 0;
        for (const auto& item : fs::directory_iterator(dir))
            n += item.path().extension() == ".tmp";
        return n;
    }
    static std::string stats(const fs::path& dir) {
        std::string out;
        qvcachedtest::runQvcached({"--stats", dir.string().c_str()}, out);
        return out;
    }
};

TEST_F(RemoteTier, AFileMadeOnOneWorkstationIsServedOnTheOtherAndCounted) {
    const std::string mesh = content(300000, 1);
    {
        FileCache a;
        ASSERT_TRUE(a.initialize(one.str(), 0, 0).isOk());
        ASSERT_TRUE(add(a, "mesh", mesh));
        ASSERT_FALSE(waitForManifest("mesh").empty());
        FileCache b;
        ASSERT_TRUE(b.initialize(two.str(), 0, 0).isOk());
        auto item = b.find("mesh");
        ASSERT_TRUE(item);
        EXPECT_EQ(fs::path(item->path().c_str()).parent_path(), fs::canonical(two.path));
        EXPECT_EQ(read(item->path()), mesh);
        item.clear();
        EXPECT_TRUE(b.find("mesh")); // now a local hit
        EXPECT_FALSE(b.find("never made"));
    }
    qvcachedtest::waitForServerExit(two.path);
    const std::string local = "entries: 1\nbytes: 300000\nhits: 2\nmisses: 1\nevictions: 0\n";
    EXPECT_EQ(stats(two.path), local + "remote: " + url() +
                                   " prefix t\nremote hits: 1\nremote misses: 1\n"
                                   "remote bytes in: 300000\nremote bytes out: 0\n"
                                   "remote errors: 0\nremote dropped: 0\n");
    qvcachedtest::waitForServerExit(one.path);
    EXPECT_NE(stats(one.path).find("remote bytes out: 300000\n"), std::string::npos);
}

// A wrong password is an unreachable tier: local work goes on, the outage is logged once and
// the log does not hold the password.
TEST_F(RemoteTier, AWrongPasswordLeavesTheCacheLocalWithOneWarning) {
    two.write("remote.conf", "url = " + url() + "\nprefix = t\ntimeout-ms = 500\n" +
                                 "password = not the team's\n");
    {
        FileCache b;
        ASSERT_TRUE(b.initialize(two.str(), 0, 0).isOk());
        for (int i = 0; i < 4; ++i)
            EXPECT_FALSE(b.find("absent" + std::to_string(i)));
        ASSERT_TRUE(add(b, "kept", "made while the tier refused us"));
        EXPECT_TRUE(b.find("kept"));
    }
    qvcachedtest::waitForServerExit(two.path);
    std::ifstream log(two.path / "qvcached.log");
    const std::string text(std::istreambuf_iterator<char>(log), {});
    EXPECT_EQ(text.find("not the team's"), std::string::npos);
    EXPECT_NE(text.find("warning: remote tier unavailable (cannot authenticate as the default "
                        "user: WRONGPASS"),
              std::string::npos)
        << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

// The size a converted texture or a tessellation reaches: 25 chunks through the tier.
TEST_F(RemoteTier, A100MBFileRoundTripsByteForByte) {
    const std::string big = content(100u << 20, 2);
    FileCache a, b;
    ASSERT_TRUE(a.initialize(one.str(), 0, 0).isOk());
    ASSERT_TRUE(add(a, "big", big));
    ASSERT_FALSE(waitForManifest("big").empty());
    ASSERT_TRUE(b.initialize(two.str(), 0, 0).isOk());
    auto item = b.find("big");
    ASSERT_TRUE(item);
    EXPECT_TRUE(read(item->path()) == big);
}

// Damage of every kind is a miss, leaves no temporary behind and takes the object off the
// server, so that the next workstation to make the file stores it afresh.
TEST_F(RemoteTier, CorruptOrIncompleteObjectsAreMissesAndAreDeleted) {
    constexpr std::size_t Size = (5u << 20) + 17; // two chunks, the second short
    enum Damage { FlipAByte, EvictAChunk, ShortenAChunk, GarbleTheManifest, None };
    const std::pair<const char*, Damage> cases[] = {{"flipped", FlipAByte},
                                                    {"evicted", EvictAChunk},
                                                    {"shortened", ShortenAChunk},
                                                    {"garbled", GarbleTheManifest},
                                                    {"intact", None}};
    FileCache a, b;
    ASSERT_TRUE(a.initialize(one.str(), 0, 0).isOk());
    ASSERT_TRUE(b.initialize(two.str(), 0, 0).isOk());
    unsigned seed = 10;
    for (const auto& [key, damage] : cases) {
        SCOPED_TRACE(key);
        const std::string bytes = content(Size, ++seed);
        ASSERT_TRUE(add(a, key, bytes));
        const std::string text = waitForManifest(key);
        qvcached::RemoteManifest manifest;
        ASSERT_TRUE(qvcached::parseManifest(text, manifest));
        const std::string chunk1 = "t:c:" + manifest.upload + ":1";
        if (damage == FlipAByte)
            command({"SETRANGE", chunk1, "3", "\x01"});
        else if (damage == EvictAChunk)
            command({"DEL", "t:c:" + manifest.upload + ":0"});
        else if (damage == ShortenAChunk)
            command({"SET", chunk1, "short"});
        else if (damage == GarbleTheManifest)
            command({"SET", "t:m:" + std::string(key), text.substr(0, 40)});
        auto item = b.find(key);
        EXPECT_EQ(static_cast<bool>(item), damage == None);
        if (item) { // the chunks come back whole and in order
            EXPECT_TRUE(read(item->path()) == bytes);
        }
        Reply left = command({"EXISTS", "t:m:" + std::string(key)});
        ASSERT_TRUE(left);
        EXPECT_EQ(left->integer, damage == None ? 1 : 0);
        EXPECT_EQ(leftovers(two.path), 0);
    }
}

// A server killed in the middle of a transfer costs that request a miss (or, if it was fast
// enough, a whole hit), never a part of a file; the cache warns once, rests, and uses the
// restarted server again by itself.
TEST_F(RemoteTier, ARedisKilledMidTransferThenRestartedCostsMissesAndOneWarning) {
    // The applications let go of their caches while redis-server restarts, so that it does
    // not inherit their connections; the servers stay up meanwhile.
    qvOS::SetEnv("QVCACHED_IDLE_TIMEOUT", "2");
    const std::string big = content(48u << 20, 3);
    {
        FileCache a, b;
        ASSERT_TRUE(a.initialize(one.str(), 0, 0).isOk());
        ASSERT_TRUE(b.initialize(two.str(), 0, 0).isOk());
        ASSERT_TRUE(add(a, "big", big));
        ASSERT_FALSE(waitForManifest("big").empty());
        auto fetch = std::async(std::launch::async, [&] {
            auto item = b.find("big");
            return item ? read(item->path()) : std::string();
        });
        const auto end = Clock::now() + std::chrono::seconds(10);
        while (leftovers(two.path) == 0 && Clock::now() < end &&
               fetch.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
        }
        redis.kill();
        const std::string got = fetch.get();
        EXPECT_TRUE(got.empty() || got == big);
        EXPECT_EQ(leftovers(two.path), 0);
        for (int i = 0; i < 4; ++i) { // enough failures to rest
            const auto start = Clock::now();
            EXPECT_FALSE(b.find("absent" + std::to_string(i)));
            EXPECT_LT(Clock::now() - start, std::chrono::seconds(3));
        }
    }
    ASSERT_TRUE(redis.start());
    connect();
    FileCache a, b;
    ASSERT_TRUE(a.initialize(one.str(), 0, 0).isOk());
    ASSERT_TRUE(b.initialize(two.str(), 0, 0).isOk());
    ASSERT_TRUE(add(a, "after", "made after the restart"));
    ASSERT_FALSE(waitForManifest("after").empty());
    bool found = false;
    for (const auto stop = Clock::now() + std::chrono::seconds(10); !found && Clock::now() < stop;
         std::this_thread::sleep_for(std::chrono::milliseconds(100)))
        found = static_cast<bool>(b.find("after"));
    EXPECT_TRUE(found);

    std::ifstream log(two.path / "qvcached.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(log, line);)
        lines.push_back(line.substr(line.find(' ') + 1)); // without the time stamp
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].rfind("warning: remote tier unavailable (", 0), 0u) << lines[0];
    EXPECT_EQ(lines[1], "remote tier reachable again");
}

#endif

} // namespace
