#include "ObrixBase/util/vk_filename.h"

#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "ObrixBase/memory/ma_memory_manager.h"
#include "ObrixBase/state/rtb_init.h"
#include "ObrixBase/util/db_filename_internal.h"

namespace {

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// A path ending in a separator is a directory's, which no file name expands to on purpose:
// it is what a name too long to join, or an empty one, leaves behind.
bool fileExists(const char* path) {
    std::size_t n = std::strlen(path);
    qvOS::FileInfo info;
    return n > 0 && path[n - 1] != qvOS::Filename::separator() &&
           qvOS::File::query(path, info).isOk() && info.exists;
}

// The frame after a sequence's dot, as C's atoi reads it but saturated to int: frame numbers
// come from names on disk, and a long run of digits must not overflow.
int parseFrame(const char* digits) {
    long long v = std::strtoll(digits, nullptr, 10);
    if (v > INT_MAX)
        return INT_MAX;
    if (v < INT_MIN)
        return INT_MIN;
    return static_cast<int>(v);
}

char* heapCopy(const char* s) {
    std::size_t n = std::strlen(s) + 1;
    char* p = static_cast<char*>(std::malloc(n));
    if (p)
        std::memcpy(p, s, n);
    return p;
}

} // namespace

VK_Filename::VK_Filename() : VK_Filename("", PIX_DATA) {
}

VK_Filename::VK_Filename(const char* name, int type) : type_(type) {
    setFilename(name);
}

VK_Filename::VK_Filename(const VK_Filename& other)
    : sequence_(other.sequence_), frame_(other.frame_), type_(other.type_),
      padWidth_(other.padWidth_) {
    if (other.fullName_)
        fullName_ = heapCopy(other.fullName_);
    if (other.baseName_) {
        std::size_t n = std::strlen(other.baseName_) + 1;
        baseName_ = static_cast<char*>(MA_malloc(n, __LINE__, __FILE__));
        if (baseName_)
            std::memcpy(baseName_, other.baseName_, n);
    }
}

VK_Filename& VK_Filename::operator=(const VK_Filename& other) {
    if (this != &other) {
        VK_Filename copy(other);
        std::swap(fullName_, copy.fullName_);
        std::swap(baseName_, copy.baseName_);
        sequence_ = copy.sequence_;
        frame_ = copy.frame_;
        type_ = copy.type_;
        padWidth_ = copy.padWidth_;
    }
    return *this;
}

VK_Filename::~VK_Filename() {
    freeNames();
}

void VK_Filename::freeNames() {
    std::free(fullName_);
    fullName_ = nullptr;
    MA_free(baseName_);
    baseName_ = nullptr;
}

long VK_Filename::setFilename(const char* name) {
    if (fullName_ && name && std::strcmp(fullName_, name) == 0)
        return 1;
    freeNames();
    sequence_ = 0;
    if (!name)
        return 1;
    fullName_ = heapCopy(name);
    if (!fullName_)
        return 1;

    const char* text = fullName_;
    const char* dot = std::strrchr(text, '.');
    // A dot in a directory name is no extension of the file's name.
    auto beforeLastSeparator = [](const char* d) {
        for (const char* p = d + 1; *p; ++p)
            if (qvOS::Filename::isSeparator(*p))
                return true;
        return false;
    };
    if (dot && beforeLastSeparator(dot))
        dot = nullptr;
    if (dot && dot[1] == 'Z') {
        // shot.0012.Z: the compressed form of a frame names the frame before its ".Z".
        const char* previous = nullptr;
        for (const char* p = dot - 1; p >= text; --p)
            if (*p == '.') {
                previous = p;
                break;
            }
        dot = previous && previous != text && isDigit(previous[1]) && !beforeLastSeparator(previous)
                  ? previous
                  : nullptr;
    } else if (dot && (!isDigit(dot[1]) || dot == text)) {
        dot = nullptr;
    }
    if (!dot)
        return 1;

    // The widest zero run seen decides how far the padded search goes.
    int zeros = 0;
    while (dot[1 + zeros] == '0')
        ++zeros;
    if (zeros > padWidth_)
        padWidth_ = zeros;

    std::size_t baseLength = static_cast<std::size_t>(dot - text);
    baseName_ = static_cast<char*>(MA_malloc(baseLength + 1, __LINE__, __FILE__));
    if (!baseName_)
        return 1;
    std::memcpy(baseName_, text, baseLength);
    baseName_[baseLength] = '\0';
    frame_ = parseFrame(dot + 1);
    sequence_ = 1;
    std::free(fullName_);
    fullName_ = nullptr;
    return 1;
}

bool VK_Filename::tryName(char* out, const char* name) const {
    std::string expanded;
    std::string editable = name; // expansion unquotes in place; the held name stays as set
    if (!obrix::detail::expandPath(expanded, editable.data(), type_) ||
        !obrix::detail::fitsPath(expanded)) {
        out[0] = '\0';
        return false;
    }
    std::memcpy(out, expanded.c_str(), expanded.size() + 1);
    if (fileExists(out))
        return true;
    std::string compressed = expanded + ".Z";
    if (obrix::detail::fitsPath(compressed) && fileExists(compressed.c_str())) {
        std::memcpy(out, compressed.c_str(), compressed.size() + 1);
        return true;
    }
    if (type_ == PIX_DATA || type_ == MASK_DATA) {
        if (char* pix = Ar_expand_pixname(out, 1)) {
            bool found = obrix::detail::fitsPath(pix) && fileExists(pix);
            if (found)
                std::memcpy(out, pix, std::strlen(pix) + 1);
            std::free(pix);
            if (found)
                return true;
        }
    }
    return false;
}

long VK_Filename::Filename(char* out) const {
    if (!out || (!fullName_ && !baseName_))
        return 0;
    if (!sequence_)
        return tryName(out, fullName_) ? 1 : 0;

    const char* base = BaseFilename();
    // No frame wider than a whole path can be found, so the search stops there too.
    int widest = padWidth_ + 1 < DB_MAX_PATH ? padWidth_ + 1 : DB_MAX_PATH;
    for (int width = 1; width <= widest; ++width) {
        char frameText[DB_MAX_PATH + 16];
        std::snprintf(frameText, sizeof frameText, "%0*d", width, frame_);
        std::string name = std::string(base) + "." + frameText;
        if (tryName(out, name.c_str()))
            return 1;
    }
    std::string expanded;
    std::string editable = base;
    if (obrix::detail::expandPath(expanded, editable.data(), type_))
        obrix::detail::writePath(out, expanded, "VK_Filename::Filename");
    else
        out[0] = '\0';
    return 0;
}

int VK_Filename::setFrame(int f) {
    int old = frame_;
    if (f != frame_) {
        frame_ = f;
        sequence_ = 1;
    }
    return old;
}

long VK_Filename::CheckStatus() {
    if (!fullName_ && !baseName_)
        return 0;
    char scratch[OUT_BUFFER_SIZE];
    return Filename(scratch);
}

long VK_Filename::getFrameRange(int* first, int* last, int* /*count*/) {
    int status = 0;
    DS_Structure* frames = DS_create_type(2, &status, __LINE__, __FILE__);
    getFrameRange(&frames);
    if (first)
        *first = -1;
    if (last)
        *last = INT_MAX;
    // No frames are ever collected, so the walk that would narrow the range finds nothing.
    if (frames)
        DS_destructor(&frames, nullptr, nullptr, &status);
    return 1;
}

long VK_Filename::getFrameRange(DS_Structure** /*frames*/) {
    return 1;
}

const char* VK_Filename::typeName(int type) {
    static const char* const names[] = {
        "ANIM_DATA",    "PIX_DATA",       "SDL_DATA",         "WIRE_DATA",    "MASK_DATA",
        "PIXAR_DATA",   "DIR_DATA",       "PROJ_DATA",        "ANY_DATA",     "MISC_DATA",
        "DEFAULT_DATA", "ANYDIR_DATA",    "OPTION_DATA",      "FBI_DATA",     "BROWSE_DATA",
        "PLOT_DATA",    "SLA_DATA",       "SHADER_DATA",      "TEXTURE_DATA", "TEXT_DATA",
        "STAGE_DATA",   "SOURCEPIX_DATA", "DEBUG_DATA",       nullptr,        "WINDOW_DATA",
        "RIB_DATA",     "LIGHT_DATA",     "ENVIRONMENT_DATA",
    };
    if (type == SOUND_DATA)
        return "SOUND_DATA";
    if (type >= 0 && type < static_cast<int>(sizeof names / sizeof names[0]) && names[type])
        return names[type];
    return "UNKNOWN";
}

void VK_Filename::debug() const {
    char expanded[OUT_BUFFER_SIZE] = "";
    std::printf("TYPE: VK_Filename\n");
    std::printf("  Filename:  %s\n", fullName_ ? fullName_ : "NULL");
    std::printf("  Basename:  %s\n", baseName_ ? baseName_ : "NULL");
    if (Filename(expanded))
        std::printf("  Expanded:  (none)\n");
    else
        std::printf("  Expanded:  %s\n", expanded);
    std::printf("  Sequence:  %s\n", sequence_ ? "YES" : "NO");
    std::printf("  Type:      %s\n", typeName(type_));
    std::printf("  Frame:     %d\n", frame_);
}
