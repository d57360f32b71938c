#include "ObrixBase/util/vk_path.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "Base/qvOS/DirectorySearch.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/rpt/rpt.h"
#include "ObrixBase/util/db_filename_internal.h"

namespace {

// Entry numbers of every directory of the process: a caller that keeps entries from several
// reads tells them apart by number even across directories and rewinds.
long entryCounter = 0;

char* heapCopy(const std::string& s) {
    char* p = static_cast<char*>(std::malloc(s.size() + 1));
    if (p)
        std::memcpy(p, s.c_str(), s.size() + 1);
    return p;
}

int modeBits(const std::string& path) {
    qvOS::FileInfo info;
    if (!qvOS::File::query(path, info).isOk() || !info.exists)
        return 0;
    return static_cast<int>(info.modeBits & 0xF000u);
}

bool isBareDrive(const std::string& path) {
    return path.size() == 2 && path[1] == ':';
}

} // namespace

OBRIX_EXTERN_C_BEGIN

int qvFileCopy(const char* from, const char* to, bool overwrite) {
    return from && to && qvOS::fileCopy(from, to, overwrite).isOk() ? 1 : 0;
}

int qvFileDelete(const char* path) {
    return path && qvOS::fileDelete(path).isOk() ? 1 : 0;
}

int qvFileMove(const char* from, const char* to, bool overwrite) {
    return from && to && qvOS::fileMove(from, to, overwrite).isOk() ? 1 : 0;
}

int OB_FileExists(const char* path) {
    if (!path)
        return 0;
    std::string p = path;
    const char sep = qvOS::Filename::separator();
    if (p.size() > 1 && p.back() == sep && p[p.size() - 2] != ':') {
        if (p.size() > VK_PATH_MAX) {
            rptError("OB_FileExists: a path of %lu characters is longer than %d",
                     static_cast<unsigned long>(p.size()), VK_PATH_MAX);
            return 0;
        }
        p.pop_back();
    }
    // A drive letter alone names the drive's current directory; its root is what is meant.
    if (isBareDrive(p))
        p += '\\';
    return modeBits(p);
}

char* convertFilename(const char* name, int toForward) {
    if (!name)
        return nullptr;
    std::string s = name;
    const char from = toForward ? '\\' : '/', to = toForward ? '/' : '\\';
    for (char& c : s)
        if (c == from)
            c = to;
    return heapCopy(s);
}

char* ExpandPathname(const char* path) {
    if (!path)
        return nullptr;
    if (path[0] != '~')
        return heapCopy(path);
    const char* rest = std::strchr(path, '/');
    if (!rest)
        rest = path + std::strlen(path);
    std::string user(path + 1, rest);
    if (user.size() > VK_USER_NAME_MAX) {
        rptError("ExpandPathname: a user name of %lu characters is longer than %d",
                 static_cast<unsigned long>(user.size()), VK_USER_NAME_MAX);
        return nullptr;
    }
    if (user.empty()) {
        qvString::CString named;
        if (qvOS::GetEnv("USERNAME", named) && !named.empty())
            user = named;
    }
    qvString::CString home;
    if (!qvOS::userHomeDirectory(user.c_str(), home))
        return heapCopy(path);
    return heapCopy(home + rest);
}

_dir_struc* win32_opendir(char* path) {
    if (!path || std::strlen(path) > VK_PATH_MAX)
        return nullptr;
    std::string dir = path;
    if (isBareDrive(dir))
        dir += '\\';
    qvOS::FileInfo info;
    if (!qvOS::File::query(obrix::detail::withoutTrailingSeparator(dir), info).isOk() ||
        info.type != qvOS::FileType::Directory)
        return nullptr;

    qvOS::DirectorySearch search;
    qvUtil::Error opened = search.open(dir);
    if (!opened.isOk() && opened.code() != qvOS::DirectorySearch::NoEntries)
        return nullptr;
    std::string block;
    long count = 0;
    for (qvString::CString name; opened.isOk() && search.next(name); ++count)
        block.append(name.c_str(), name.size() + 1);
    search.close();

    auto* d = static_cast<_dir_struc*>(std::calloc(1, sizeof(_dir_struc)));
    if (!d)
        return nullptr;
    if (!block.empty()) {
        d->start = static_cast<char*>(std::malloc(block.size()));
        if (!d->start) {
            std::free(d);
            return nullptr;
        }
        std::memcpy(d->start, block.data(), block.size());
    }
    d->size = static_cast<long>(block.size());
    d->nfiles = count;
    d->curr = d->start;
    return d;
}

win32_dirent* win32_readdir(_dir_struc* dir) {
    if (!dir || !dir->curr)
        return nullptr;
    std::size_t length = std::strlen(dir->curr);
    // Names from the system fit; a longer one is cut rather than written past the record.
    std::size_t kept = length < VK_DIRENT_NAME_SIZE ? length : VK_DIRENT_NAME_SIZE - 1;
    std::memcpy(dir->dirstr.d_name, dir->curr, kept);
    dir->dirstr.d_name[kept] = '\0';
    dir->dirstr.d_namlen = static_cast<unsigned short>(kept);
    dir->dirstr.d_ino = ++entryCounter;
    dir->curr += length + 1;
    if (dir->curr >= dir->start + dir->size)
        dir->curr = nullptr;
    return &dir->dirstr;
}

void win32_rewinddir(_dir_struc* dir) {
    if (dir)
        dir->curr = dir->start;
}

int win32_closedir(_dir_struc* dir) {
    if (dir) {
        std::free(dir->start);
        std::free(dir);
    }
    return 1;
}

OBRIX_EXTERN_C_END
