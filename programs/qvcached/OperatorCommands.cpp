#include "programs/qvcached/OperatorCommands.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <vector>

#include "Base/qvOS/FileLock.h"
#include "ObrixBase/filecache/FileCacheProtocol.h"
#include "programs/qvcached/CacheIndex.h"
#include "programs/qvcached/CacheStore.h"
#include "programs/qvcached/RemoteTier.h"

namespace fs = std::filesystem;

namespace qvcached {
namespace {

// The names the library's generatePath hands out: a UUID in its 36-character text form.
bool looksGenerated(const std::string& name) {
    if (name.size() != 36)
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash ? c != '-' : !((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')))
            return false;
    }
    return true;
}

} // namespace

int printStats(const std::string& directory, std::ostream& out, std::string& error) {
    const fs::path file = fs::path(directory) / CacheIndex::FileName;
    std::error_code ec;
    if (!fs::exists(file, ec)) {
        error = "no cache index in " + directory;
        return 1;
    }
    CacheIndex index;
    std::vector<IndexEntry> entries;
    IndexCounters counters;
    if (auto err = index.open(file, true);
        err.isError() || (err = index.load(entries, counters)).isError()) {
        error = err.message();
        return 1;
    }
    std::uint64_t bytes = 0;
    for (const IndexEntry& entry : entries)
        bytes += entry.size;
    out << "entries: " << entries.size() << "\nbytes: " << bytes << "\nhits: " << counters.hits
        << "\nmisses: " << counters.misses << "\nevictions: " << counters.evictions << "\n";
    // The remote lines appear once a tier is configured or has ever worked, so a purely
    // local cache reports as it always did.
    std::optional<RemoteConfig> remote;
    const qvUtil::Error err = loadRemoteConfig(directory, remote);
    const std::int64_t remoteCounts[] = {counters.remoteHits,    counters.remoteMisses,
                                         counters.remoteBytesIn, counters.remoteBytesOut,
                                         counters.remoteErrors,  counters.remoteDropped};
    if (err.isOk() && !remote &&
        std::all_of(std::begin(remoteCounts), std::end(remoteCounts),
                    [](std::int64_t n) { return n == 0; }))
        return 0;
    if (err.isError())
        out << "remote: off: " << err.message().c_str() << "\n";
    else if (remote)
        out << "remote: " << remote->url << " prefix " << remote->prefix << "\n";
    else
        out << "remote: off\n";
    out << "remote hits: " << counters.remoteHits << "\nremote misses: " << counters.remoteMisses
        << "\nremote bytes in: " << counters.remoteBytesIn
        << "\nremote bytes out: " << counters.remoteBytesOut
        << "\nremote errors: " << counters.remoteErrors
        << "\nremote dropped: " << counters.remoteDropped << "\n";
    return 0;
}

int clearCache(const std::string& directory, std::ostream& out, std::string& error) {
    const fs::path dir(directory);
    std::error_code ec;
    if (!fs::is_directory(dir, ec)) {
        error = directory + " is not a directory";
        return 1;
    }
    qvOS::FileLock lock;
    if (auto err = lock.tryLock((dir / "owner.lck").string()); err.isError()) {
        error = err.message();
        return 1;
    }
    if (!lock.isLocked()) {
        error = directory + " is in use by a running cache server";
        return 1;
    }
    std::vector<IndexEntry> entries;
    if (fs::exists(dir / CacheIndex::FileName, ec)) {
        CacheIndex index;
        IndexCounters counters;
        qvUtil::Error err = index.open(dir / CacheIndex::FileName);
        if (err.isOk())
            err = index.load(entries, counters);
        if (err.isOk())
            err = index.clear();
        if (err.isError()) {
            error = err.message();
            return 1;
        }
    }
    std::uint64_t bytes = 0;
    for (const IndexEntry& entry : entries) {
        bytes += entry.size;
        if (!entry.file.empty() && fs::path(entry.file).filename() == entry.file &&
            !CacheStore::isServerFile(entry.file))
            fs::remove(dir / entry.file, ec);
    }
    for (const auto& item : fs::directory_iterator(dir, ec)) {
        const std::string name = item.path().filename().string();
        if (looksGenerated(name) && item.is_regular_file(ec) && !item.is_symlink(ec))
            fs::remove(item.path(), ec);
    }
    fs::remove(dir / qvObrixBase::FileCacheProtocol::LockFileName, ec);
    fs::remove(dir / "owner.port", ec);
    out << "cleared " << entries.size() << " entries (" << bytes << " bytes) from " << directory
        << "\n";
    return 0;
}

} // namespace qvcached
