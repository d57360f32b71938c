#include "ObrixBase/util/db_filename.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "tests/support/ProjectDir.h"
#include "tests/support/ReportCapture.h"

using obrixtest::ProjectDir;

namespace {

// The text with every '/' turned into the system's separator, so that one table of expected
// paths holds on both systems.
std::string native(std::string s) {
    for (char& c : s)
        if (c == '/')
            c = qvOS::Filename::separator();
    return s;
}

std::string expanded(const std::string& name, int type) {
    std::string editable = name;
    char out[DB_PATH_BUFFER_SIZE];
    expand_filename(out, editable.data(), type);
    return out;
}

// dir ends in a separator, which Windows does not accept in a query.
bool isDirectory(const std::string& dir) {
    qvOS::FileInfo info;
    return qvOS::File::query(dir.substr(0, dir.size() - 1), info).isOk() &&
           info.type == qvOS::FileType::Directory;
}

} // namespace

TEST(DbFilename, DefaultTableHoldsItsRowsInOrderAndLeavesSomeTypesWithout) {
    const DB_Path* rows = Db_get_default_paths();
    std::vector<std::pair<std::string, int>> seen;
    for (const DB_Path* r = rows; r->path; ++r)
        seen.emplace_back(r->path, r->type);
    ASSERT_EQ(seen.size(), 43u);
    EXPECT_EQ(rows[43].type, -1);
    const std::pair<int, std::pair<std::string, int>> spots[] = {
        {0, {"anim", 0}}, {6, {".", 6}}, {35, {native("../.."), 22}}, {42, {"reference", 46}}};
    for (const auto& [index, row] : spots)
        EXPECT_EQ(seen[index], row) << index;

    ProjectDir project;
    for (int type : {5, 13, 14, 23, 33, 48, -1})
        EXPECT_EQ(Db_default_path(type), nullptr) << type;
    // The first row of a shared type wins.
    EXPECT_EQ(Db_default_path(8)->path, project.dir("wire"));
}

TEST(DbFilename, PathTableResolvesRowsAgainstProjectAndWorkingDirectory) {
    ProjectDir project;
    const std::string root = project.root() + ProjectDir::sep();
    EXPECT_EQ(Db_default_path(1)->path, project.dir("pix"));
    EXPECT_EQ(Db_default_path(6)->path, root + "proj" + ProjectDir::sep());
    EXPECT_EQ(Db_default_path(7)->path, root);
    EXPECT_EQ(Db_default_path(22)->path, project.root() + native("/cwd/"));

    // A relative project path gets the current drive in front where there are drives.
    Db_set_project_path(native("work/").c_str());
    Db_init_paths();
    std::string drive;
    if (qvOS::Filename::hasDrives())
        drive = std::string(1, static_cast<char>('A' + qvOS::Filename::currentDrive() - 1)) + ":";
    EXPECT_EQ(Db_default_path(1)->path, drive + native("work/proj/pix/"));
    EXPECT_EQ(Db_default_path(6)->path, native("work/proj/")); // "." rows get no drive
    if (qvOS::Filename::hasDrives()) {
        Db_set_project_path("D:\\jobs\\");
        Db_init_paths();
        EXPECT_STREQ(Db_default_path(4)->path, "D:\\jobs\\proj\\mask\\");
    }
}

TEST(DbFilename, OverlongSettingsAreRefusedAndKeepTheOldValue) {
    ProjectDir project;
    obrix::test::ReportCapture reports;
    const std::string longest(DB_MAX_PATH, 'p');
    Db_set_project_name(longest.c_str());
    EXPECT_EQ(Db_get_project_name(), longest);
    Db_set_project_name((longest + "q").c_str());
    EXPECT_EQ(Db_get_project_name(), longest);
    ASSERT_EQ(reports.texts().size(), 1u);
    EXPECT_EQ(reports.texts()[0], "Db_set_project_name: a text of 261 characters is longer than "
                                  "260; the setting is unchanged");

    Db_set_project_name("proj");
    Db_set_current_project_path(nullptr);
    EXPECT_EQ(Db_user_current_project_path(), project.root() + ProjectDir::sep() + "proj");
    Db_set_current_project_path("cur/");
    Db_set_current_project_name("shot");
    EXPECT_STREQ(Db_user_current_project_path(), "cur/shot");
}

TEST(DbFilename, DirnameCutsAfterTheLastSeparatorOrKeepsTheFirstCharacter) {
    const std::pair<std::string, std::string> cases[] = {
        {native("a/b/c.txt"), native("a/b/")},
        {native("a/b/"), native("a/b/")},
        {native("/x"), native("/")},
        {"name", "n"},
        {"", ""},
        {"http://host/dir/f.pix", "http://host/dir/"},
    };
    char out[DB_PATH_BUFFER_SIZE];
    for (const auto& [path, dir] : cases) {
        EXPECT_EQ(Db_make_dirname(out, path.c_str()), 1) << path;
        EXPECT_EQ(out, dir) << path;
    }
    EXPECT_EQ(Db_make_dirname(out, nullptr), 0);
    EXPECT_EQ(Db_make_dirname(nullptr, "a"), 0);

    obrix::test::ReportCapture reports;
    EXPECT_EQ(Db_make_dirname(out, (std::string(300, 'd') + native("/f")).c_str()), 0);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(reports.texts().size(), 1u);
}

TEST(DbFilename, ExpansionJoinsRelativeNamesAndCreatesTheDirectory) {
    ProjectDir project;
    const std::string pix = project.dir("pix");
    ASSERT_FALSE(isDirectory(pix));
    EXPECT_EQ(expanded("a.pix", 1), pix + "a.pix");
    EXPECT_TRUE(isDirectory(pix));

    std::string quoted = "\"q.pix\"";
    char out[DB_PATH_BUFFER_SIZE];
    expand_filename(out, quoted.data(), 1);
    EXPECT_EQ(out, pix + "q.pix");
    EXPECT_STREQ(quoted.c_str(), "q.pix"); // unquoted in the caller's text

    const std::string absolute = project.root() + native("/elsewhere/b.pix");
    EXPECT_EQ(expanded(absolute, 1), absolute);
    EXPECT_EQ(expanded("http://host/a b.pix", 1), "http://host/a b.pix");
    if (qvOS::Filename::hasDrives()) {
        EXPECT_EQ(expanded("Q:rel.pix", 1), "Q:rel.pix");
    }
    expand_filename(out, nullptr, 3);
    EXPECT_EQ(out, project.dir("wire"));
    expand_filename(nullptr, quoted.data(), 1);
    EXPECT_EQ(expanded("....", 1), pix + "....");
    EXPECT_EQ(expanded("\"\"", 1), pix);
}

TEST(DbFilename, UnknownTypesAndOverlongResultsLeaveOutEmptyAndJoinsStopAtTheLimit) {
    ProjectDir project;
    obrix::test::ReportCapture reports;
    EXPECT_EQ(expanded("a.pix", 5), "");
    EXPECT_EQ(expanded(native("/") + std::string(10000, 'x'), 1), "");
    EXPECT_EQ(reports.texts(),
              (std::vector<std::string>{"expand_filename: no project directory for data type 5",
                                        "expand_filename: a path of 10001 characters is longer "
                                        "than 260"}));
    // A relative name joins only while the whole stays within 260 characters.
    const std::string pix = project.dir("pix");
    ASSERT_LT(pix.size(), 200u);
    const std::string fits(DB_MAX_PATH - pix.size(), 'n'), over = fits + "n";
    EXPECT_EQ(expanded(fits, 1), pix + fits);
    EXPECT_EQ(expanded(over, 1), pix); // directory alone
}
