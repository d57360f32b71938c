#include "ObrixBase/util/db_filename.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/URL.h"
#include "Base/rpt/rpt.h"
#include "ObrixBase/util/db_filename_internal.h"
#include "ObrixBase/util/vk_string.h"

namespace {

// The directory below the project for each data type, in the order the table is searched:
// the first row of a type wins (PIX_DATA and SOURCEPIX_DATA share "pix", five types share
// "wire"). UP_TWO marks the working-directory rows, whose text carries the system's separator.
constexpr const char* UP_TWO = nullptr;
struct DefaultRow {
    const char* dir;
    int type;
};
constexpr DefaultRow defaultRows[] = {
    {"anim", 0},
    {"pix", 1},
    {"pix", 21},
    {"mask", 4},
    {"sdl", 2},
    {"rib", 25},
    {".", 6},
    {".", 11},
    {".", 19},
    {"..", 7},
    {"misc_data", 9},
    {"option", 12},
    {"option", 24},
    {"plot", 15},
    {"wire", 3},
    {"wire", 20},
    {"wire", 10},
    {"wire", 8},
    {"sla", 16},
    {"shader", 17},
    {"texture", 18},
    {"light", 26},
    {"environment", 27},
    {"layeredshader", 45},
    {"switchshader", 47},
    {"canvas", 28},
    {"stencil", 31},
    {"colors", 38},
    {"shapes", 32},
    {"imageLayers", 39},
    {"textureLayers", 40},
    {"geometryLayers", 41},
    {"brushes", 42},
    {"spTextures", 43},
    {"spTextureScripts", 44},
    {UP_TWO, 22},
    {"depth", 29},
    {"sdl", 30},
    {"stageset", 34},
    {"cloud", 35},
    {"wire", 37},
    {UP_TWO, 36},
    {"reference", 46},
};
constexpr int defaultRowCount = sizeof defaultRows / sizeof defaultRows[0];
static_assert(defaultRowCount == 43);

// Process-wide settings of the one modelling thread.
char projectPath[DB_PATH_BUFFER_SIZE];
char projectName[DB_PATH_BUFFER_SIZE];
char currentProjectPath[DB_PATH_BUFFER_SIZE];
char currentProjectName[DB_PATH_BUFFER_SIZE];
char workingDirectory[DB_PATH_BUFFER_SIZE];
char* projectExtension = nullptr;
char userProjectPath[2 * DB_MAX_PATH + 1];

char upTwoText[6]; // "..<sep>.."
DB_Path defaultTable[defaultRowCount + 1];
DB_Path* pathTable = nullptr;

const char* upTwo() {
    if (!upTwoText[0]) {
        char sep = qvOS::Filename::separator();
        const char text[] = {'.', '.', sep, '.', '.', '\0'};
        std::memcpy(upTwoText, text, sizeof text);
    }
    return upTwoText;
}

void store(char* buffer, const char* text, const char* setter) {
    if (!text)
        text = "";
    std::size_t n = std::strlen(text);
    if (n > DB_MAX_PATH) {
        rptError("%s: a text of %lu characters is longer than %d; the setting is unchanged", setter,
                 static_cast<unsigned long>(n), DB_MAX_PATH);
        return;
    }
    std::memcpy(buffer, text, n + 1);
}

char* copyToHeap(const std::string& s) {
    char* p = static_cast<char*>(std::malloc(s.size() + 1));
    if (p)
        std::memcpy(p, s.c_str(), s.size() + 1);
    return p;
}

void freePathTable() {
    if (!pathTable)
        return;
    for (DB_Path* row = pathTable; row->path; ++row)
        std::free(row->path);
    std::free(pathTable);
    pathTable = nullptr;
}

} // namespace

namespace obrix::detail {

bool fitsPath(const std::string& text) {
    return text.size() <= DB_MAX_PATH;
}

void writePath(char* out, const std::string& text, const char* who) {
    if (!fitsPath(text)) {
        rptError("%s: a path of %lu characters is longer than %d", who,
                 static_cast<unsigned long>(text.size()), DB_MAX_PATH);
        out[0] = '\0';
        return;
    }
    std::memcpy(out, text.c_str(), text.size() + 1);
}

std::string withoutTrailingSeparator(const std::string& path) {
    if (path.size() > 1 && path.back() == qvOS::Filename::separator() &&
        path[path.size() - 2] != ':')
        return path.substr(0, path.size() - 1);
    return path;
}

std::string directoryPart(const std::string& path) {
    // Only the system's own separator counts: on Windows a '/' is searched for in URLs alone.
    std::size_t cut = path.rfind(qvOS::Filename::separator());
    if (cut != std::string::npos && cut >= 1)
        return path.substr(0, cut + 1);
    if (!qvOS::URL::isLocalFile(path.c_str())) {
        std::size_t slash = path.rfind('/');
        return slash == std::string::npos ? path : path.substr(0, slash + 1);
    }
    return path.substr(0, path.empty() ? 0 : 1);
}

bool expandPath(std::string& result, char* name, int type) {
    if (name) {
        if (!qvOS::URL::isLocalFile(name)) {
            result = name;
            return true;
        }
        if (name[0] == '"')
            VK_string_leading_trailing_remove(name, '"');
        bool drive = qvOS::Filename::hasDrives() && name[0] && name[1] == ':';
        if (drive || name[0] == qvOS::Filename::separator()) {
            result = name;
            return true;
        }
    }
    const DB_Path* row = Db_default_path(type);
    if (!row) {
        rptError("expand_filename: no project directory for data type %d", type);
        return false;
    }
    std::string dir = directoryPart(row->path);
    const std::string bare = withoutTrailingSeparator(dir);
    qvOS::FileInfo info;
    if (!bare.empty() && (!qvOS::File::query(bare, info).isOk() || !info.exists)) {
        // A directory that cannot be made shows up as a missing file to whoever opens it.
        (void)qvOS::Filename::makeDir(bare);
    }
    if (name && dir.size() + std::strlen(name) <= DB_MAX_PATH)
        result = dir + name;
    else
        result = row->path;
    return true;
}

} // namespace obrix::detail

OBRIX_EXTERN_C_BEGIN

void Db_init_paths(void) {
    DB_Path* table = static_cast<DB_Path*>(std::calloc(defaultRowCount + 1, sizeof(DB_Path)));
    if (!table) {
        rptError("Db_init_paths: out of memory");
        return;
    }
    const std::string sep(1, qvOS::Filename::separator());
    const std::string path = projectPath, name = projectName;
    std::string drive;
    const int current = qvOS::Filename::currentDrive();
    if (qvOS::Filename::hasDrives() && current >= 1 && !qvOS::Filename::isAbsolute(projectPath))
        drive = std::string(1, static_cast<char>('A' + current - 1)) + ":";
    const DB_Path* defaults = Db_get_default_paths();
    for (int i = 0; i < defaultRowCount; ++i) {
        const std::string dir = defaults[i].path;
        std::string full;
        if (dir == ".")
            full = path + name + sep;
        else if (dir == "..")
            full = path;
        else if (dir == upTwo())
            full = std::string(workingDirectory) + sep;
        else
            full = drive + path + name + sep + dir + sep;
        table[i].path = copyToHeap(full);
        table[i].type = defaults[i].type;
        if (!table[i].path) {
            rptError("Db_init_paths: out of memory");
            for (int j = 0; j < i; ++j)
                std::free(table[j].path);
            std::free(table);
            return;
        }
    }
    table[defaultRowCount] = {nullptr, -1};
    freePathTable();
    pathTable = table;
}

DB_Path* Db_default_path(int type) {
    if (!pathTable)
        Db_init_paths();
    if (!pathTable)
        return nullptr;
    for (DB_Path* row = pathTable; row->path; ++row)
        if (row->type == type)
            return row;
    return nullptr;
}

DB_Path* Db_get_paths(void) {
    return pathTable;
}

DB_Path* Db_get_default_paths(void) {
    if (!defaultTable[0].path) {
        for (int i = 0; i < defaultRowCount; ++i) {
            const char* dir = defaultRows[i].dir ? defaultRows[i].dir : upTwo();
            defaultTable[i] = {const_cast<char*>(dir), defaultRows[i].type};
        }
        defaultTable[defaultRowCount] = {nullptr, -1};
    }
    return defaultTable;
}

void Db_set_project_path(const char* text) {
    store(projectPath, text, "Db_set_project_path");
}
void Db_set_project_name(const char* text) {
    store(projectName, text, "Db_set_project_name");
}
void Db_set_current_project_path(const char* text) {
    store(currentProjectPath, text, "Db_set_current_project_path");
}
void Db_set_current_project_name(const char* text) {
    store(currentProjectName, text, "Db_set_current_project_name");
}
void Db_set_al_cwd(const char* text) {
    store(workingDirectory, text, "Db_set_al_cwd");
}

char* Db_get_project_path(void) {
    return projectPath;
}
char* Db_get_project_name(void) {
    return projectName;
}
char* Db_get_al_cwd(void) {
    return workingDirectory;
}
char* Db_get_project_extension(void) {
    return projectExtension;
}

void Db_set_project_extension(const char* extension) {
    std::free(projectExtension);
    projectExtension = extension ? copyToHeap(extension) : nullptr;
}

char* Db_user_current_project_path(void) {
    // Both halves hold at most DB_MAX_PATH characters, so the buffer holds any pair.
    std::snprintf(userProjectPath, sizeof userProjectPath, "%s%s", currentProjectPath,
                  currentProjectName);
    if (!userProjectPath[0])
        std::snprintf(userProjectPath, sizeof userProjectPath, "%s%s", projectPath, projectName);
    return userProjectPath;
}

int Db_make_dirname(char* out, const char* path) {
    if (!out || !path)
        return 0;
    std::string dir = obrix::detail::directoryPart(path);
    obrix::detail::writePath(out, dir, "Db_make_dirname");
    return obrix::detail::fitsPath(dir) ? 1 : 0;
}

void expand_filename(char* out, char* name, int type) {
    if (!out)
        return;
    std::string result;
    if (!obrix::detail::expandPath(result, name, type)) {
        out[0] = '\0';
        return;
    }
    obrix::detail::writePath(out, result, "expand_filename");
}

OBRIX_EXTERN_C_END
