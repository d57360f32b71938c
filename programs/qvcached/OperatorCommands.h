// The commands an operator runs by hand on a cache directory: a summary of what it holds, and
// emptying it while no server uses it.
#ifndef QVCACHED_OPERATORCOMMANDS_H
#define QVCACHED_OPERATORCOMMANDS_H

#include <iosfwd>
#include <string>

namespace qvcached {

/// Prints entries, bytes, hits, misses and evictions of the cache in `directory`, one
/// "name: value" line each. Returns the exit status; on failure `error` gets the reason.
/// Counters a running server has not saved yet (at most a quarter second's) are not counted.
int printStats(const std::string& directory, std::ostream& out, std::string& error);

/// Deletes every cached file of `directory` and empties its index; the counters stay. Refuses
/// (status 1) while a server owns the directory. Cached files that the index no longer names
/// (left by a crash between the two steps of a deletion) go too; nothing else is touched.
int clearCache(const std::string& directory, std::ostream& out, std::string& error);

} // namespace qvcached

#endif
