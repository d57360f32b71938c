// The cache under faults, with the real qvcached from the build's bin folder and real
// application processes (filecache_probe). Every server here idles out after a second.
// With OBRIX_TEST_REMOTE_URL set, every cache here also names that remote tier: pointed at a
// port where nothing listens, the suite shows that a dead tier changes nothing local.
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/Process.h"
#include "ObrixBase/filecache/FileCache.h"
#include "tests/ObrixBase/filecache/CacheServerDouble.h"
#include "tests/programs/qvcached/QvcachedTestSupport.h"

namespace fs = std::filesystem;
using obrix::test::ScratchDirectory;
using qvObrixBase::FileCache;
using qvOS::ProcessManager;
using Clock = std::chrono::steady_clock;

namespace {

constexpr const char* IdleSeconds = "1";

// Names the remote tier of OBRIX_TEST_REMOTE_URL, if any, in the cache directory `dir`.
const char* configureRemote(const fs::path& dir) {
    const char* url = std::getenv("OBRIX_TEST_REMOTE_URL");
    if (url) {
        fs::create_directories(dir);
        std::ofstream(dir / "remote.conf") << "url = " << url << "\n";
    }
    return url;
}

struct Faults : ::testing::Test {
    ScratchDirectory dir;
    void SetUp() override {
        qvOS::SetEnv("QVCACHED_IDLE_TIMEOUT", IdleSeconds);
        configureRemote(dir.path);
    }
    void TearDown() override { waitForServerExit(); }

    qvOS::ProcessId probe(const std::string& command, const std::string& key, long number) const {
        qvOS::ProcessId pid = 0;
        const qvUtil::Error err =
            ProcessManager::startAsync(qvOS::AppMain::getBinaryPath("filecache_probe"),
                                       {dir.str(), command, key, std::to_string(number)}, "", &pid);
        EXPECT_TRUE(err.isOk()) << err.message();
        return pid;
    }
    static int finish(qvOS::ProcessId pid, double seconds = 30) {
        qvOS::ProcessResult result;
        const qvUtil::Error err = ProcessManager::wait(pid, seconds, result);
        if (err.isError()) {
            ProcessManager::kill(pid);
            ProcessManager::wait(pid, 5, result);
            return -1;
        }
        return result.crashed ? -2 : result.exitCode;
    }
    std::string addFile(FileCache& cache, const std::string& key, std::size_t bytes = 100) {
        const std::string path = cache.generatePath();
        std::ofstream(path, std::ios::binary) << std::string(bytes, 'x');
        return cache.add(key, path) ? path : std::string();
    }
    void waitForServerExit() const { qvcachedtest::waitForServerExit(dir.path); }
    // The probe's sign that it holds its item.
    void waitReady() const {
        const std::string ready = dir.str() + ".ready";
        const auto end = Clock::now() + std::chrono::seconds(10);
        while (!fs::exists(ready) && Clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_TRUE(fs::remove(ready));
    }
};

} // namespace

// Many processes initialize an empty directory at once: each starts a server, one of them
// owns the directory and the others relay to it, so every add lands in the one index.
TEST_F(Faults, ColdStartRaceLosesNoEntryAcrossRounds) {
    constexpr int Processes = 16, Rounds = 3;
    for (int round = 0; round < Rounds; ++round) {
        std::vector<qvOS::ProcessId> pids;
        for (int i = 0; i < Processes; ++i)
            pids.push_back(probe("add", "r" + std::to_string(round) + "-" + std::to_string(i), 64));
        for (qvOS::ProcessId pid : pids)
            EXPECT_EQ(finish(pid), 0) << "round " << round;
        waitForServerExit(); // the next round starts cold again
    }
    FileCache cache;
    ASSERT_TRUE(cache.initialize(dir.str(), 0, 0).isOk());
    for (int round = 0; round < Rounds; ++round)
        for (int i = 0; i < Processes; ++i)
            EXPECT_TRUE(cache.find("r" + std::to_string(round) + "-" + std::to_string(i)));
}

TEST_F(Faults, EveryBadLockFileFallsBackToAWorkingServerInBoundedTime) {
    const int deadPort = obrix::test::deadLoopbackPort();
    qvTCP::Server silent(-1, 4); // listens, never accepts: connections wait in its backlog
    silent.setLoopbackOnly();
    ASSERT_TRUE(silent.listen().isOk());
    qvTCP::Server garbage(-1, 4);
    garbage.setLoopbackOnly();
    ASSERT_TRUE(garbage.listen().isOk());
    std::thread sender([&] {
        std::unique_ptr<qvTCP::Socket> peer;
        garbage.accept(20, peer);
        if (peer) {
            const std::string junk(64, '\xff');
            peer->write(junk.data(), junk.size());
            std::this_thread::sleep_for(std::chrono::seconds(1));
        }
    });
    struct Case {
        const char* name;
        std::function<void(const fs::path&)> make;
    };
    auto text = [](std::string content) {
        return [content](const fs::path& p) { std::ofstream(p) << content; };
    };
    const Case cases[] = {
        {"missing", [](const fs::path&) {}},
        {"empty", text("")},
        {"not a number", text("abc")},
        {"dead port", text(std::to_string(deadPort))},
        {"silent listener", text(std::to_string(silent.getPort()))},
        {"garbage sender", text(std::to_string(garbage.getPort()))},
        {"unreadable", [](const fs::path& p) { fs::create_directory(p); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScratchDirectory cacheDir;
        configureRemote(cacheDir.path);
        c.make(cacheDir.path / "lockfile.lck");
        const auto start = Clock::now();
        {
            FileCache cache;
            const qvUtil::Error err = cache.initialize(cacheDir.str(), 0, 0);
            ASSERT_TRUE(err.isOk()) << err.message();
            EXPECT_LT(Clock::now() - start, std::chrono::seconds(8));
            EXPECT_FALSE(addFile(cache, "k").empty());
            EXPECT_TRUE(cache.find("k"));
        }
        qvcachedtest::waitForServerExit(cacheDir.path);
    }
    sender.join();
}

// kill -9 between Acquire and Release and during a stream of requests: the clients see
// refusals, never a hang, and the next initialize starts a server that knows every entry.
TEST_F(Faults, AKilledServerIsReplacedAndForgetsNothing) {
    FileCache first;
    ASSERT_TRUE(first.initialize(dir.str(), 0, 0).isOk());
    ASSERT_FALSE(addFile(first, "kept").empty());
    auto held = first.find("kept");
    const qvOS::ProcessId looper = probe("loop", "kept", 1000000);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const qvOS::ProcessId owner = qvcachedtest::ownerPid(dir.path);
    ASSERT_GT(owner, 0);
    ASSERT_TRUE(ProcessManager::kill(owner).isOk());
    EXPECT_EQ(finish(looper), 5); // the server went away in the middle of its loop
    held.clear();                 // the Release goes nowhere, quietly
    EXPECT_FALSE(first.find("other"));
    EXPECT_FALSE(first.add("other", first.generatePath()));

    FileCache second;
    ASSERT_TRUE(second.initialize(dir.str(), 0, 0).isOk());
    auto again = second.find("kept");
    ASSERT_TRUE(again);
    EXPECT_TRUE(fs::exists(again->path().c_str()));
}

TEST_F(Faults, HeldFilesSurviveEvictionAndARemovedOneGoesWithTheLastHolder) {
    FileCache cache;
    ASSERT_TRUE(cache.initialize(dir.str(), 2, 0).isOk());
    const std::string heldPath = addFile(cache, "held");
    const std::string sharedPath = addFile(cache, "shared");
    ASSERT_FALSE(heldPath.empty() || sharedPath.empty());
    const qvOS::ProcessId holder = probe("hold", "held", 3);
    waitReady();
    const qvOS::ProcessId sharer = probe("hold", "shared", 2);
    waitReady();

    auto shared = cache.find("shared");
    cache.remove(shared);
    shared.clear(); // this process lets go; the sharer still holds the file
    for (int i = 0; i < 6; ++i)
        EXPECT_FALSE(addFile(cache, "filler" + std::to_string(i)).empty());
    EXPECT_TRUE(fs::exists(heldPath));
    EXPECT_TRUE(fs::exists(sharedPath));
    EXPECT_EQ(finish(sharer), 0);
    EXPECT_EQ(finish(holder), 0);
    const auto end = Clock::now() + std::chrono::seconds(5);
    while (fs::exists(sharedPath) && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(fs::exists(sharedPath));
    EXPECT_FALSE(cache.find("shared"));
}

// On a small tmpfs: a file cut short by the full disk is refused, and a file that changes
// size after it was added is not served.
TEST_F(Faults, AFullDiskNeverLeadsToAServedTruncatedFile) {
    const fs::path mountPoint = dir.path / "small";
    fs::create_directories(mountPoint);
    qvOS::ProcessResult result;
    ProcessManager::runSync(
        "/bin/mount", {"-t", "tmpfs", "-o", "size=2m", "tmpfs", mountPoint.string()}, {}, result);
    if (result.exitCode != 0)
        GTEST_SKIP() << "cannot mount a tmpfs here (needs root or a user namespace)";
    {
        FileCache cache;
        const std::string cacheDir = (mountPoint / "cache").string();
        configureRemote(cacheDir);
        ASSERT_TRUE(cache.initialize(cacheDir, 0, 0).isOk());
        const std::string small = addFile(cache, "small", 1000);
        ASSERT_FALSE(small.empty());
        EXPECT_TRUE(addFile(cache, "too big", 3 << 20).empty()); // written only in part
        EXPECT_TRUE(addFile(cache, "empty", 0).empty());
        fs::resize_file(small, 10);
        EXPECT_FALSE(cache.find("small"));
    }
    qvcachedtest::waitForServerExit(mountPoint / "cache");
    ProcessManager::runSync("/bin/umount", {mountPoint.string()}, {}, result);
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(Faults, OperatorCommandsReportAndClearOnlyAnIdleCache) {
    using qvcachedtest::runQvcached;
    std::string out;
    {
        FileCache cache;
        ASSERT_TRUE(cache.initialize(dir.str(), 0, 0).isOk());
        ASSERT_FALSE(addFile(cache, "a", 100).empty());
        EXPECT_TRUE(cache.find("a"));
        EXPECT_FALSE(cache.find("b"));
        EXPECT_EQ(runQvcached({"--clear", dir.str()}, out), 1); // in use
        EXPECT_TRUE(cache.find("a"));
    }
    waitForServerExit();
    // A configured tier adds its own lines after these (counted by the remote tier's tests).
    const bool remote = std::getenv("OBRIX_TEST_REMOTE_URL") != nullptr;
    auto expectStats = [&](const std::string& local) {
        EXPECT_EQ(runQvcached({"--stats", dir.str()}, out), 0);
        EXPECT_EQ(out.substr(0, remote ? local.size() : std::string::npos), local);
    };
    expectStats("entries: 1\nbytes: 100\nhits: 2\nmisses: 1\nevictions: 0\n");
    EXPECT_EQ(runQvcached({"--clear", dir.str()}, out), 0);
    expectStats("entries: 0\nbytes: 0\nhits: 2\nmisses: 1\nevictions: 0\n");
    EXPECT_EQ(runQvcached({"--port", "nope"}, out), 2);
    EXPECT_EQ(runQvcached({"--help"}, out), 0);
    EXPECT_NE(out.find("--stats DIR"), std::string::npos);
}
