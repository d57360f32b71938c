// Questions about the machine: memory and swap, free disk space under a path, the page size
// and the directory for temporary files.
#ifndef BASE_QVOS_SYSTEMINFO_H
#define BASE_QVOS_SYSTEMINFO_H

#include <cstdint>

#include "Base/BaseExport.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// Memory figures in bytes.
struct MemoryStatus {
    std::uint64_t physicalTotal = 0;     ///< installed RAM the system uses
    std::uint64_t physicalAvailable = 0; ///< RAM available to new work without swapping
    std::uint64_t virtualTotal = 0;      ///< this process's address space (Windows: user part;
                                         ///< POSIX: its address-space limit, or the
                                         ///< architecture's user space when unlimited)
    std::uint64_t virtualAvailable = 0;  ///< virtualTotal less what this process has reserved
    std::uint64_t swapTotal = 0;         ///< swap (POSIX) / page file beyond RAM (Windows)
    /// The part of swapTotal not in use.
    std::uint64_t swapFree = 0;
};

/// Fills status; on failure (the system would not say) status is left zero.
BASE_API qvUtil::Error querySystemMemory(MemoryStatus& status);
/// Free bytes available to this user and total bytes of the file system holding path (which
/// must exist). Errors: InvalidArgument for an empty path, else the system's.
BASE_API qvUtil::Error queryDiskSpace(const qvString::CString& path, std::uint64_t& freeBytes,
                                      std::uint64_t& totalBytes);
/// The size of a memory page (the granularity of MemoryMappedFile's mappings).
BASE_API std::uint64_t pageSize() noexcept;
/// The directory for temporary files (TMPDIR or /tmp on POSIX; GetTempPath on Windows),
/// without a trailing separator.
BASE_API qvString::CString tempDirectory();

} // namespace qvOS

#endif
