#include "programs/qvcached/CacheIndex.h"

#include <fstream>
#include <memory>

#include <sqlite3.h>

namespace qvcached {
namespace {

struct StatementDeleter {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

const char* const Schema = "CREATE TABLE IF NOT EXISTS entries("
                           " key TEXT PRIMARY KEY,"
                           " file TEXT NOT NULL UNIQUE,"
                           " size INTEGER NOT NULL,"
                           " atime INTEGER NOT NULL,"
                           " used INTEGER NOT NULL DEFAULT 0);"
                           "CREATE TABLE IF NOT EXISTS counters("
                           " name TEXT PRIMARY KEY,"
                           " value INTEGER NOT NULL);";

void bindText(sqlite3_stmt* s, int index, const std::string& text) {
    sqlite3_bind_text(s, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

// The counters' rows in the counters table.
struct CounterName {
    const char* name;
    std::int64_t IndexCounters::*field;
};
constexpr CounterName CounterNames[] = {{"hits", &IndexCounters::hits},
                                        {"misses", &IndexCounters::misses},
                                        {"evictions", &IndexCounters::evictions},
                                        {"remote_hits", &IndexCounters::remoteHits},
                                        {"remote_misses", &IndexCounters::remoteMisses},
                                        {"remote_bytes_in", &IndexCounters::remoteBytesIn},
                                        {"remote_bytes_out", &IndexCounters::remoteBytesOut},
                                        {"remote_errors", &IndexCounters::remoteErrors},
                                        {"remote_dropped", &IndexCounters::remoteDropped}};

std::string columnText(sqlite3_stmt* s, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(s, column));
    return std::string(text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(s, column)));
}

} // namespace

CacheIndex::~CacheIndex() {
    sqlite3_close(db_);
}

qvUtil::Error CacheIndex::fail(const char* what) const {
    return qvUtil::Error(1, "cache index %s: %s: %s", path_.c_str(), what,
                         db_ ? sqlite3_errmsg(db_) : "out of memory");
}

qvUtil::Error CacheIndex::exec(const char* sql) {
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        return fail(sql);
    return {};
}

qvUtil::Error CacheIndex::open(const std::filesystem::path& file, bool readOnly) {
    path_ = file.string();
    std::error_code ec;
    if (!readOnly && !std::filesystem::exists(file, ec)) {
        // SQLite gives its log and shared-memory files the database's permissions, so
        // creating the database for the user alone covers all three.
        std::ofstream(file, std::ios::binary | std::ios::app).close();
        std::filesystem::permissions(
            file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ec);
    }
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (sqlite3_open_v2(path_.c_str(), &db_, flags, nullptr) != SQLITE_OK)
        return fail("open");
    sqlite3_busy_timeout(db_, 2000);
    if (readOnly)
        return {};
    // Write-ahead logging with NORMAL sync: a commit survives the death of the process at
    // any instant; only an operating-system crash may lose the last commits, never tear one.
    if (auto err = exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"); err.isError())
        return err;
    return exec(Schema);
}

qvUtil::Error CacheIndex::load(std::vector<IndexEntry>& entries, IndexCounters& counters) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_,
                           "SELECT key, file, size, atime, used FROM entries ORDER BY used, rowid",
                           -1, &raw, nullptr) != SQLITE_OK)
        return fail("load");
    Statement select(raw);
    int rc;
    while ((rc = sqlite3_step(raw)) == SQLITE_ROW)
        entries.push_back({columnText(raw, 0), columnText(raw, 1),
                           static_cast<std::uint64_t>(sqlite3_column_int64(raw, 2)),
                           sqlite3_column_int64(raw, 3), sqlite3_column_int64(raw, 4)});
    if (rc != SQLITE_DONE)
        return fail("load");
    if (sqlite3_prepare_v2(db_, "SELECT name, value FROM counters", -1, &raw, nullptr) != SQLITE_OK)
        return fail("load counters");
    Statement names(raw);
    while ((rc = sqlite3_step(raw)) == SQLITE_ROW) {
        const std::string name = columnText(raw, 0);
        const std::int64_t value = sqlite3_column_int64(raw, 1);
        for (const auto& [known, field] : CounterNames)
            if (name == known)
                counters.*field = value;
    }
    return rc == SQLITE_DONE ? qvUtil::Error() : fail("load counters");
}

qvUtil::Error CacheIndex::insert(const IndexEntry& entry) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_,
                           "INSERT INTO entries(key, file, size, atime, used) VALUES(?,?,?,?,?)",
                           -1, &raw, nullptr) != SQLITE_OK)
        return fail("insert");
    Statement insert(raw);
    bindText(raw, 1, entry.key);
    bindText(raw, 2, entry.file);
    sqlite3_bind_int64(raw, 3, static_cast<sqlite3_int64>(entry.size));
    sqlite3_bind_int64(raw, 4, entry.accessTime);
    sqlite3_bind_int64(raw, 5, entry.useOrder);
    return sqlite3_step(raw) == SQLITE_DONE ? qvUtil::Error() : fail("insert");
}

qvUtil::Error CacheIndex::saveCounters(const IndexCounters& counters) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_, "INSERT OR REPLACE INTO counters(name, value) VALUES(?,?)", -1,
                           &raw, nullptr) != SQLITE_OK)
        return fail("counters");
    Statement save(raw);
    for (const auto& [name, field] : CounterNames) {
        sqlite3_reset(raw);
        sqlite3_bind_text(raw, 1, name, -1, SQLITE_STATIC);
        sqlite3_bind_int64(raw, 2, counters.*field);
        if (sqlite3_step(raw) != SQLITE_DONE)
            return fail("counters");
    }
    return {};
}

// The batch operations run in one transaction each; any failure rolls the whole batch back.
qvUtil::Error CacheIndex::batch(const char* sql, const char* what, std::size_t count,
                                const std::function<void(sqlite3_stmt*, std::size_t)>& bind,
                                const IndexCounters& counters) {
    if (auto err = exec("BEGIN IMMEDIATE"); err.isError())
        return err;
    sqlite3_stmt* raw = nullptr;
    qvUtil::Error err;
    if (sqlite3_prepare_v2(db_, sql, -1, &raw, nullptr) != SQLITE_OK) {
        err = fail(what);
    } else {
        Statement statement(raw);
        for (std::size_t i = 0; i < count; ++i) {
            sqlite3_reset(raw);
            bind(raw, i);
            if (sqlite3_step(raw) != SQLITE_DONE) {
                err = fail(what);
                break;
            }
        }
    }
    if (err.isOk())
        err = saveCounters(counters);
    if (err.isOk())
        err = exec("COMMIT");
    if (err.isError())
        exec("ROLLBACK");
    return err;
}

qvUtil::Error CacheIndex::erase(const std::vector<std::string>& keys,
                                const IndexCounters& counters) {
    return batch(
        "DELETE FROM entries WHERE key = ?", "erase", keys.size(),
        [&](sqlite3_stmt* raw, std::size_t i) { bindText(raw, 1, keys[i]); }, counters);
}

qvUtil::Error CacheIndex::saveAccess(const std::vector<IndexEntry>& used,
                                     const IndexCounters& counters) {
    return batch(
        "UPDATE entries SET atime = ?, used = ? WHERE key = ?", "access times", used.size(),
        [&](sqlite3_stmt* raw, std::size_t i) {
            sqlite3_bind_int64(raw, 1, used[i].accessTime);
            sqlite3_bind_int64(raw, 2, used[i].useOrder);
            bindText(raw, 3, used[i].key);
        },
        counters);
}

qvUtil::Error CacheIndex::clear() {
    return exec("DELETE FROM entries");
}

} // namespace qvcached
