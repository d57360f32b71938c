#include "programs/qvcached/CacheStore.h"

#include <memory>

#include <gtest/gtest.h>

#include "tests/ObrixBase/filecache/CacheServerDouble.h"

namespace fs = std::filesystem;
using obrix::test::ScratchDirectory;
using qvcached::CacheStore;

namespace {

struct Store : ::testing::Test {
    ScratchDirectory dir;
    std::unique_ptr<CacheStore> store;
    void SetUp() override { reopen(); }
    void reopen() {
        store.reset();
        store = std::make_unique<CacheStore>(fs::canonical(dir.path));
        ASSERT_TRUE(store->open().isOk());
    }
    std::string file(const std::string& name, std::size_t size = 10) {
        dir.write(name, std::string(size, 'x'));
        return (dir.path / name).string();
    }
    bool acquire(qvcached::ConnectionId c, const std::string& key) {
        std::string path;
        std::int64_t time = 0;
        return store->acquire(c, key, path, time);
    }
    bool exists(const std::string& name) const { return fs::exists(dir.path / name); }
};

} // namespace

TEST_F(Store, EvictsTheLeastRecentlyUsedFirstButNeverAHeldFile) {
    store->setLimits(2, 0);
    for (const char* key : {"a", "b", "c"})
        ASSERT_TRUE(store->add(1, key, file(key)));
    EXPECT_EQ(store->entryCount(), 3u); // all held: over the limit, nothing evicted
    ASSERT_TRUE(acquire(2, "a"));       // a is now the most recently used
    store->release(1, "a", false);
    store->release(1, "b", false); // b is free and the oldest free one
    EXPECT_FALSE(exists("b"));
    EXPECT_TRUE(exists("a") && exists("c"));
    EXPECT_EQ(store->counters().evictions, 1);
    store->dropConnection(1);
    store->setLimits(0, 15); // bytes: one 10-byte file fits; a is still held by 2
    EXPECT_TRUE(exists("a"));
    EXPECT_FALSE(exists("c"));
    EXPECT_EQ(store->totalBytes(), 10u);
}

TEST_F(Store, RefusesWhatIsNotAPlainNonEmptyFileOfItsOwnDirectory) {
    ScratchDirectory elsewhere;
    elsewhere.write("outside", "data");
    fs::create_symlink(elsewhere.path / "outside", dir.path / "link");
    fs::create_directories(dir.path / "sub");
    dir.write("sub/deeper", "data");
    const std::string refused[] = {
        (elsewhere.path / "outside").string(),
        (dir.path / "link").string(),
        (dir.path / "sub" / "deeper").string(),
        (dir.path / "sub" / ".." / ".." / elsewhere.path.filename() / "outside").string(),
        (dir.path / "missing").string(),
        file("empty", 0),
        file("index.sqlite"),
        file("lockfile.lck"),
    };
    for (const std::string& path : refused)
        EXPECT_FALSE(store->add(1, "k", path)) << path;
    EXPECT_TRUE(fs::exists(elsewhere.path / "outside"));

    const std::string first = file("first"), second = file("second");
    ASSERT_TRUE(store->add(1, "k", first));
    EXPECT_TRUE(store->add(1, "k", first));   // the same file again: one more hold
    EXPECT_FALSE(store->add(1, "k", second)); // the key names another file
    EXPECT_FALSE(store->add(1, "j", first));  // the file belongs to another key
    EXPECT_EQ(store->holdCount("k"), 2);
}

TEST_F(Store, ARemovedFileGoesWithItsLastHoldAndOnlyOnce) {
    ASSERT_TRUE(store->add(1, "k", file("f")));
    ASSERT_TRUE(acquire(2, "k"));
    EXPECT_TRUE(store->release(1, "k", true));
    EXPECT_TRUE(exists("f")); // connection 2 still holds it
    EXPECT_TRUE(acquire(3, "k"));
    store->dropConnection(2);
    EXPECT_TRUE(exists("f"));
    EXPECT_TRUE(store->release(3, "k", false));
    EXPECT_FALSE(exists("f"));
    EXPECT_FALSE(store->release(3, "k", true));
    EXPECT_FALSE(acquire(3, "k"));
    // A new file under the old name is a new entry, untouched by the old removal.
    ASSERT_TRUE(store->add(4, "k", file("f")));
    store->dropConnection(4);
    EXPECT_TRUE(exists("f"));
}

TEST_F(Store, AFileThatChangedOrWentIsDroppedNotServed) {
    ASSERT_TRUE(store->add(1, "cut", file("cut", 10)));
    ASSERT_TRUE(store->add(1, "gone", file("gone", 10)));
    fs::resize_file(dir.path / "cut", 5);
    fs::remove(dir.path / "gone");
    EXPECT_FALSE(acquire(2, "cut"));
    EXPECT_FALSE(acquire(2, "gone"));
    EXPECT_EQ(store->entryCount(), 0u);
    EXPECT_EQ(store->counters().misses, 2);
}

TEST_F(Store, EntriesTimesAndCountersSurviveReopening) {
    ASSERT_TRUE(store->add(1, "old", file("old")));
    ASSERT_TRUE(store->add(1, "new", file("new")));
    ASSERT_TRUE(acquire(1, "old"));
    EXPECT_FALSE(acquire(1, "missing"));
    store->flush();
    reopen();
    EXPECT_EQ(store->entryCount(), 2u);
    EXPECT_EQ(store->counters().hits, 1);
    EXPECT_EQ(store->counters().misses, 1);
    store->setLimits(1, 0); // "new" was used least recently: it goes
    EXPECT_TRUE(exists("old"));
    EXPECT_FALSE(exists("new"));
}
