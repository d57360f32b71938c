// Feeds arbitrary names to the file-name routines: VK_Filename's parsing and search,
// expand_filename, Db_make_dirname, convertFilename and ExpandPathname. The first byte picks
// the data type (known and unknown codes alike), the rest is the name. Every out buffer is a
// heap block of exactly the documented size, so that a write past it is caught, and each
// answer is checked against what its contract promises. The project lives in a temporary
// directory that is removed at exit.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemInfo.h"
#include "Base/qvOS/Uuid.h"
#include "Base/rpt/rpt.h"
#include "ObrixBase/util/db_filename.h"
#include "ObrixBase/util/vk_filename.h"
#include "ObrixBase/util/vk_path.h"

namespace {

std::string projectRoot;

void removeProject() {
    std::error_code ignored;
    std::filesystem::remove_all(projectRoot, ignored);
}

void check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "broken contract: %s\n", what);
        std::abort();
    }
}

struct Freer {
    void operator()(void* p) const { std::free(p); }
};
using HeapText = std::unique_ptr<char, Freer>;

HeapText outBuffer() {
    return HeapText(static_cast<char*>(std::malloc(DB_PATH_BUFFER_SIZE)));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    rptSetSink([](int, const char*) {}); // refusals are expected by the thousand
    projectRoot = qvOS::Filename::join(qvOS::tempDirectory(),
                                       "obrix-fuzz-filenames-" + qvOS::Uuid().asString());
    qvOS::Filename::makeDir(projectRoot);
    std::atexit(removeProject);
    Db_set_project_path((projectRoot + qvOS::Filename::separator()).c_str());
    Db_set_project_name("proj");
    Db_set_al_cwd(projectRoot.c_str());
    Db_init_paths();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const int type = data[0] % 50 - 1; // -1 to 48
    const std::string name(reinterpret_cast<const char*>(data + 1), size - 1);
    const char* text = name.c_str(); // cut at the first NUL, as a C caller would pass it
    const std::size_t length = std::strlen(text);

    {
        VK_Filename f(text, type);
        if (f.Sequence()) {
            check(f.Filename() == nullptr && f.BaseFilename() != nullptr, "sequence names");
            std::size_t base = std::strlen(f.BaseFilename());
            check(base < length && std::strncmp(text, f.BaseFilename(), base) == 0 &&
                      text[base] == '.',
                  "base name is the text before a dot");
        } else {
            check(std::strcmp(f.Filename(), text) == 0, "plain name kept whole");
        }
        check(f.setFilename(text) == 1, "setFilename answers 1");
        HeapText out = outBuffer();
        long found = f.Filename(out.get());
        check(found == 0 || found == 1, "Filename answers 0 or 1");
        check(std::strlen(out.get()) <= DB_MAX_PATH, "Filename fits its buffer");
    }
    {
        HeapText out = outBuffer();
        std::string editable = name;
        expand_filename(out.get(), editable.data(), type);
        check(std::strlen(out.get()) <= DB_MAX_PATH, "expand_filename fits its buffer");
    }
    {
        HeapText out = outBuffer();
        if (Db_make_dirname(out.get(), text) == 1) {
            std::size_t dir = std::strlen(out.get());
            check(dir <= length && std::strncmp(out.get(), text, dir) == 0,
                  "dirname is a prefix of the path");
        }
    }
    for (int forward : {0, 1}) {
        HeapText converted(convertFilename(text, forward));
        check(converted && std::strlen(converted.get()) == length, "conversion keeps length");
        check(!std::strchr(converted.get(), forward ? '\\' : '/'), "conversion is complete");
    }
    HeapText expanded(ExpandPathname(text));
    check(expanded || (text[0] == '~' && length > VK_USER_NAME_MAX), "ExpandPathname answers");
    return 0;
}
