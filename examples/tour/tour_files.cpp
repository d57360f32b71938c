// File names: a project in a temporary directory, where each data type's files live in it,
// then an image sequence written into its picture directory and found again frame by frame,
// and the directory read back with the directory reader.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemInfo.h"
#include "Base/qvOS/Uuid.h"
#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace {

// The path with the project's location cut off, so that the tour prints the same lines
// wherever the temporary directory is.
std::string inProject(const std::string& path, const std::string& root) {
    return path.compare(0, root.size(), root) == 0 ? "<project>" + path.substr(root.size()) : path;
}

} // namespace

void tourFiles() {
    tourHeading("File names and project directories");
    const std::string sep(1, qvOS::Filename::separator());
    const std::string root =
        qvOS::Filename::join(qvOS::tempDirectory(), "obrix-tour-" + qvOS::Uuid().asString());
    qvOS::Filename::makeDir(root);

    Db_set_project_path((root + sep).c_str());
    Db_set_project_name("bike");
    Db_set_al_cwd(root.c_str());
    Db_init_paths();
    std::printf("  where each data type's files live:\n");
    for (int type : {PIX_DATA, WIRE_DATA, SDL_DATA, DIR_DATA, PROJ_DATA, DEBUG_DATA})
        std::printf("    %-12s %s\n", VK_Filename::typeName(type),
                    inProject(Db_default_path(type)->path, root).c_str());

    // Expanding a name creates its directory, so the frames can be written straight there.
    char path[DB_PATH_BUFFER_SIZE];
    for (int frame : {1, 2, 3, 5}) {
        char name[32];
        std::snprintf(name, sizeof name, "wheel.%04d", frame);
        expand_filename(path, name, PIX_DATA);
        std::ofstream(path) << "frame " << frame << "\n";
    }
    std::printf("  the sequence wheel.0001 ... found frame by frame:\n");
    VK_Filename wheel("wheel.1", PIX_DATA);
    for (int frame = 1; frame <= 5; ++frame) {
        wheel.setFrame(frame);
        long found = wheel.Filename(path);
        std::printf("    frame %d: %s %s\n", frame, found ? "found " : "missing",
                    inProject(path, root).c_str());
    }

    char dir[DB_PATH_BUFFER_SIZE];
    Db_make_dirname(dir, Db_default_path(PIX_DATA)->path);
    std::vector<std::string> names;
    if (_dir_struc* reader = win32_opendir(dir)) {
        while (win32_dirent* entry = win32_readdir(reader))
            names.emplace_back(entry->d_name);
        win32_closedir(reader);
    }
    std::sort(names.begin(), names.end());
    std::printf("  the picture directory holds:");
    for (const std::string& n : names)
        std::printf(" %s", n.c_str());
    std::printf("\n");

    Db_set_project_path("");
    Db_set_project_name("");
    Db_set_al_cwd("");
    Db_init_paths();
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}
