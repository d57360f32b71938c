// A project for one test: the project-directory settings point into a fresh temporary
// directory ("<tmp>/" as project path, "proj" as project name, "<tmp>/cwd" as working
// directory) with the path table rebuilt, and every setting is emptied again afterwards.
#ifndef OBRIX_TESTS_SUPPORT_PROJECTDIR_H
#define OBRIX_TESTS_SUPPORT_PROJECTDIR_H

#include <string>

#include "Base/qvOS/Filename.h"
#include "ObrixBase/util/db_filename.h"
#include "tests/support/TempDir.h"

namespace obrixtest {

class ProjectDir {
public:
    ProjectDir() {
        Db_set_project_path((root_.path() + sep()).c_str());
        Db_set_project_name("proj");
        Db_set_al_cwd((root_ / "cwd").c_str());
        Db_init_paths();
    }
    ~ProjectDir() {
        for (auto set : {Db_set_project_path, Db_set_project_name, Db_set_current_project_path,
                         Db_set_current_project_name, Db_set_al_cwd})
            set("");
        Db_set_project_extension(nullptr);
        Db_init_paths();
    }
    ProjectDir(const ProjectDir&) = delete;
    ProjectDir& operator=(const ProjectDir&) = delete;

    static std::string sep() { return std::string(1, qvOS::Filename::separator()); }
    /// The temporary directory, without a trailing separator.
    const qvString::CString& root() const { return root_.path(); }
    /// The directory of a subdirectory of the project, as the path table holds it.
    std::string dir(const std::string& sub) const {
        return root_.path() + sep() + "proj" + sep() + sub + sep();
    }

private:
    TempDir root_;
};

} // namespace obrixtest

#endif
