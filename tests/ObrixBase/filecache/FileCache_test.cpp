#include "ObrixBase/filecache/FileCache.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "Base/qvOS/Env.h"
#include "Base/qvOS/Filename.h"
#include "tests/ObrixBase/filecache/CacheServerDouble.h"

using obrix::test::CacheServerDouble;
using obrix::test::ScratchDirectory;
using qvObrixBase::FileCache;
using Lines = std::vector<std::string>;

namespace {

struct Joined : ::testing::Test {
    ScratchDirectory dir;
    CacheServerDouble server{dir};
    FileCache cache;
    void SetUp() override { ASSERT_TRUE(cache.initialize(dir.str(), 7, 1ll << 40).isOk()); }
    std::string init() const { return "initialize " + dir.str() + " 7 1099511627776"; }
};

// A cache directory with the double as its server, for tests that set it up before joining.
struct Unjoined : ::testing::Test {
    ScratchDirectory dir;
    CacheServerDouble server{dir};
};

} // namespace

TEST_F(Joined, LimitsReachTheServerUnchangedAndLiveItemsAreNotAskedForAgain) {
    server.files["k"] = "/cache/k";
    auto first = cache.find("k");
    auto second = cache.find("k");
    ASSERT_TRUE(first);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(first->path(), "/cache/k");
    EXPECT_EQ(first->accessTime(), 1234);
    EXPECT_FALSE(cache.find("missing"));
    first.clear();
    EXPECT_EQ(server.log(), (Lines{init(), "acquire k", "acquire missing"}));
    second.clear(); // the last reference sends the one Release
    EXPECT_EQ(server.log().back(), "release k");
    EXPECT_TRUE(cache.find("k")); // no live item now: the server is asked again
    EXPECT_EQ(server.log().size(), 6u);
    EXPECT_EQ(server.log()[4], "acquire k");
}

TEST_F(Joined, RemoveSendsOneReleaseWithTheFlagWhenTheLastReferenceGoes) {
    server.files["k"] = "/cache/k";
    auto item = cache.find("k");
    auto copy = item;
    cache.setAccessed(item);
    cache.remove(item);
    cache.remove(copy);
    cache.remove(nullptr);
    EXPECT_EQ(cache.find("k").get(), item.get()); // still live: the server is not asked
    EXPECT_EQ(server.log().size(), 3u);
    item.clear();
    EXPECT_EQ(server.log().size(), 3u);
    copy.clear();
    EXPECT_EQ(server.log(), (Lines{init(), "acquire k", "setAccessed k", "release k remove"}));
}

TEST_F(Joined, AnEarlierItemOfAReaddedKeySettlesItsOwnHold) {
    auto first = cache.add("k", "/cache/a");
    auto second = cache.add("k", "/cache/b");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(cache.find("k").get(), second.get());
    // The earlier item's death takes the key out of the table although the newer item lives.
    first.clear();
    EXPECT_EQ(server.log().back(), "release k");
    auto third = cache.find("k");
    EXPECT_NE(third.get(), second.get());
    second.clear();
    third.clear();
    EXPECT_EQ(server.log(), (Lines{init(), "add k /cache/a", "add k /cache/b", "release k",
                                   "acquire k", "release k", "release k"}));
}

TEST_F(Unjoined, ItemsThatOutliveTheCacheSendNothingWhenTheyDie) {
    qv::Reference<qvObrixBase::FileCacheItem> survivor;
    {
        FileCache cache;
        ASSERT_TRUE(cache.initialize(dir.str(), 0, 0).isOk());
        survivor = cache.add("k", "/cache/a");
        FileCache alias(cache); // a copy does not own: its death changes nothing
    }
    EXPECT_EQ(survivor->key(), "k");
    survivor.clear();
    EXPECT_EQ(server.log().size(), 2u);
}

TEST_F(Unjoined, ServerErrorsArriveWithTheirCodeAndText) {
    server.initializeAnswer = qvUtil::Error(7, "%s", "quota at 100%% in %s");
    FileCache cache;
    const qvUtil::Error err = cache.initialize(dir.str(), 0, 0);
    EXPECT_EQ(err.code(), 7);
    EXPECT_EQ(err.message(), "quota at 100% in %s");
}

TEST_F(Unjoined, ABrokenConnectionTurnsEveryCallIntoAQuietRefusal) {
    server.requestsLeft = 2;
    FileCache cache;
    ASSERT_TRUE(cache.initialize(dir.str(), 0, 0).isOk());
    auto item = cache.add("k", "/cache/a"); // the last request served
    ASSERT_TRUE(item);
    EXPECT_FALSE(cache.find("other"));
    EXPECT_FALSE(cache.add("other", "/cache/b"));
    cache.setAccessed(item);
    item.clear();
    EXPECT_EQ(server.log().size(), 2u);
}

TEST_F(Joined, GeneratedPathsAreFreshNamesInsideTheDirectoryAndCreateNothing) {
    const qvString::CString a = cache.generatePath(), b = cache.generatePath();
    EXPECT_NE(a, b);
    EXPECT_EQ(qvOS::Filename::directory(a), dir.str());
    EXPECT_EQ(qvOS::Filename::base(a).size(), 36u);
    EXPECT_FALSE(std::filesystem::exists(a.c_str()));
}

// An unusable lock file is deleted and a new server is started; with the manual-start hint set
// the store prints the command and waits for it, so a double can play the started server.
TEST(FileCache, UnusableLockFilesAreDeletedAndANewServerIsWaitedFor) {
    const int deadPort = obrix::test::deadLoopbackPort();
    ASSERT_TRUE(qvOS::SetEnv("VESKO_FILE_CACHE_MANUAL_START", "1").isOk());
    for (const std::string& content :
         {std::string(), std::string("abc"), std::to_string(deadPort)}) {
        SCOPED_TRACE("lock file holding '" + content + "'");
        ScratchDirectory dir;
        dir.write("lockfile.lck", content);
        FileCache cache;
        qvUtil::Error err(1, "not run");
        ::testing::internal::CaptureStdout();
        std::thread starter([&] { err = cache.initialize(dir.str(), 0, 0); });
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        const std::string hint = ::testing::internal::GetCapturedStdout();
        int port = 0;
        if (std::sscanf(hint.c_str(), "Run: qvcached --port %d", &port) != 1) {
            starter.detach(); // it waits without limit; nothing can end it now
            FAIL() << "no start hint, got '" << hint << "'";
        }
        EXPECT_EQ(hint, "Run: qvcached --port " + std::to_string(port) + "\n");
        {
            CacheServerDouble server{port};
            starter.join();
            EXPECT_TRUE(err.isOk()) << err.message();
            EXPECT_FALSE(std::filesystem::exists(dir.path / "lockfile.lck"));
            cache = FileCache(); // let the double go
        }
    }
    qvOS::SetEnv("VESKO_FILE_CACHE_MANUAL_START", nullptr);
}

// A joined listener that answers garbage, then a server that cannot start: initialize fails,
// and the cache is left unconnected rather than holding on to the dropped connection.
TEST(FileCache, AFailedJoinAndStartLeaveTheCacheSafelyUnconnected) {
    ScratchDirectory dir, helpers;
    helpers.write("qvcached", "not a program");
    helpers.write("qvcached.exe", "not a program");
    qvTCP::Server garbage(-1, 1);
    garbage.setLoopbackOnly();
    ASSERT_TRUE(garbage.listen().isOk());
    dir.write("lockfile.lck", std::to_string(garbage.getPort()));
    std::thread sender([&] {
        std::unique_ptr<qvTCP::Socket> peer;
        garbage.accept(10, peer);
        const std::string junk(16, '\xff'); // an error code, then a 4 GB frame
        if (peer)
            peer->write(junk.data(), junk.size());
    });
    ASSERT_TRUE(qvOS::SetEnv("OBRIX_HELPER_DIR", helpers.str().c_str()).isOk());
    FileCache cache;
    EXPECT_TRUE(cache.initialize(dir.str(), 0, 0).isError());
    qvOS::SetEnv("OBRIX_HELPER_DIR", nullptr);
    sender.join();
    EXPECT_FALSE(std::filesystem::exists(dir.path / "lockfile.lck"));
    EXPECT_FALSE(cache.find("k"));
    EXPECT_FALSE(cache.add("k", cache.generatePath()));
}
