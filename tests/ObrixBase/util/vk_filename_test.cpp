#include "ObrixBase/util/vk_filename.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "Base/qvOS/Filename.h"
#include "ObrixBase/state/rtb_init.h"
#include "tests/support/ProjectDir.h"
#include "tests/support/ReportCapture.h"
#include "tests/support/TempDir.h"

using obrixtest::ProjectDir;
using obrixtest::TempDir;

namespace {

// The name Filename() finds for f, with its answer (1 when the file exists).
std::pair<std::string, long> found(const VK_Filename& f) {
    char out[VK_Filename::OUT_BUFFER_SIZE];
    const long answer = f.Filename(out);
    return {out, answer};
}

// The image-name hook of the tests: answers "<name>.img" (C heap), remembering the frame it
// was asked for.
int pixnameFrame = 0;
char* pixnameHook(const char* name, int frame) {
    pixnameFrame = frame;
    std::string s = std::string(name) + ".img";
    char* p = static_cast<char*>(std::malloc(s.size() + 1));
    std::memcpy(p, s.c_str(), s.size() + 1);
    return p;
}

} // namespace

TEST(VkFilename, ParsingFindsFramesOnlyInTheLastNumericExtension) {
    const std::string sep = ProjectDir::sep();
    // name, sequence flag, BaseFilename() (the whole name when no sequence), frame
    const std::tuple<std::string, long, std::string, int> cases[] = {
        {"shot.0012", 1, "shot", 12},
        {"shot.0012.Z", 1, "shot", 12},
        {"a.b.7", 1, "a.b", 7},
        {".123", 0, ".123", -1},
        {"model.wire", 0, "model.wire", -1},
        {"archive.Z", 0, "archive.Z", -1},
        {".5.Z", 0, ".5.Z", -1},
        {"....", 0, "....", -1},
        {"dir.1" + sep + "file", 0, "dir.1" + sep + "file", -1},
        {"dir.1" + sep + "f.Z", 0, "dir.1" + sep + "f.Z", -1},
        {"shot.99999999999", 1, "shot", INT_MAX}};
    for (const auto& [name, sequence, base, frame] : cases) {
        VK_Filename f(name.c_str(), PIX_DATA);
        EXPECT_EQ(f.Sequence(), sequence) << name;
        EXPECT_EQ(f.Frame(), frame) << name;
        EXPECT_STREQ(f.BaseFilename(), base.c_str()) << name;
        EXPECT_EQ(f.Filename() == nullptr, sequence == 1) << name;
    }
}

TEST(VkFilename, ResettingAndCopyingKeepTheParsedState) {
    VK_Filename f("model.wire", WIRE_DATA);
    char* held = f.Filename();
    f.setFilename("model.wire");
    EXPECT_EQ(f.Filename(), held); // not even copied again
    f.setFilename("take.0003");
    VK_Filename copy(f);
    f.setFilename(nullptr);
    EXPECT_EQ(f.CheckStatus(), 0);
    f = copy;
    EXPECT_STREQ(f.BaseFilename(), "take");
    EXPECT_NE(f.BaseFilename(), copy.BaseFilename());
    VK_Filename plain("still", PIX_DATA);
    EXPECT_EQ(plain.setFrame(5), -1);
    EXPECT_EQ(plain.Sequence(), 1);
}

TEST(VkFilename, SequenceIsFoundAtEveryPaddingWidthUpToOneBeyondThePad) {
    ProjectDir project;
    const std::string pix = project.dir("pix");
    qvOS::Filename::makeDir(pix);
    // The default pad width of 3 searches widths 1 to 4; a name with five leading zeros
    // widens it so that width 6 is searched as well.
    const std::pair<const char*, const char*> cases[] = {
        {"shot.7", "shot.7"},    {"shot.7", "shot.07"},          {"shot.007", "shot.007"},
        {"shot.7", "shot.0007"}, {"shot.000007", "shot.000007"},
    };
    for (const auto& [name, onDisk] : cases) {
        TempDir::write(pix + onDisk, "frame");
        EXPECT_EQ(found(VK_Filename(name, PIX_DATA)), std::pair(pix + onDisk, 1L)) << onDisk;
        std::remove((pix + onDisk).c_str());
    }
    TempDir::write(pix + "shot.00007", "too wide for the default pad");
    EXPECT_EQ(found(VK_Filename("shot.7", PIX_DATA)), std::pair(pix + "shot", 0L));
}

TEST(VkFilename, CompressedFormAndImageHookAreTriedAfterThePlainName) {
    ProjectDir project;
    const std::string pix = project.dir("pix"), mask = project.dir("mask");
    qvOS::Filename::makeDir(pix);
    qvOS::Filename::makeDir(mask);
    TempDir::write(pix + "shot.0012.Z", "z");
    EXPECT_EQ(found(VK_Filename("shot.0012", PIX_DATA)).first, pix + "shot.0012.Z");
    TempDir::write(pix + "still.Z", "z");
    EXPECT_EQ(found(VK_Filename("still", PIX_DATA)).first, pix + "still.Z");

    rtbInit_Ar_expand_pixname(pixnameHook);
    TempDir::write(mask + "matte.002.img", "m");
    TempDir::write(project.dir("wire") + "matte.002.img", "m");
    EXPECT_EQ(found(VK_Filename("matte.2", MASK_DATA)), std::pair(mask + "matte.002.img", 1L));
    EXPECT_EQ(pixnameFrame, 1);
    // Only images and masks ask the hook.
    EXPECT_EQ(found(VK_Filename("matte.2", WIRE_DATA)).second, 0);
    rtbInit_Ar_expand_pixname(nullptr);
    EXPECT_EQ(found(VK_Filename("matte.2", MASK_DATA)).second, 0);
}

TEST(VkFilename, DebugPrintsExpansionOnlyWhenNothingWasFound) {
    ProjectDir project;
    const std::string pix = project.dir("pix");
    auto debugText = [](const VK_Filename& f) {
        testing::internal::CaptureStdout();
        f.debug();
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(debugText(VK_Filename("shot.0012", PIX_DATA)),
              "TYPE: VK_Filename\n  Filename:  NULL\n  Basename:  shot\n  Expanded:  " + pix +
                  "shot\n  Sequence:  YES\n  Type:      PIX_DATA\n  Frame:     12\n");

    qvOS::Filename::makeDir(project.dir("sdl"));
    TempDir::write(project.dir("sdl") + "car.sdl", "sdl");
    EXPECT_EQ(debugText(VK_Filename("car.sdl", SDL_DATA)),
              "TYPE: VK_Filename\n  Filename:  car.sdl\n  Basename:  NULL\n  Expanded:  (none)\n"
              "  Sequence:  NO\n  Type:      SDL_DATA\n  Frame:     -1\n");
    // The names of a gap in the codes and of the last code.
    EXPECT_STREQ(VK_Filename::typeName(23), "UNKNOWN");
    EXPECT_STREQ(VK_Filename::typeName(37), "SOUND_DATA");
}

TEST(VkFilename, HostileNamesGiveDocumentedAnswersWithinTheBuffer) {
    ProjectDir project;
    obrix::test::ReportCapture reports;
    // An empty name, and one too long to join, expand to the directory alone, which is no
    // file; the padded search reaches that length once the frame is wide enough.
    const std::pair<std::string, long> names[] = {{std::string(10000, 'x'), 0},
                                                  {"shot." + std::string(9000, '0') + "1", 0},
                                                  {"\"", 0},
                                                  {"", 0}};
    for (const auto& [name, expected] : names) {
        EXPECT_EQ(found(VK_Filename(name.c_str(), PIX_DATA)).second, expected) << name.size();
    }
    EXPECT_EQ(found(VK_Filename("a.pix", 99)).second, 0);
    EXPECT_EQ(reports.texts().back(), "expand_filename: no project directory for data type 99");
    EXPECT_EQ(VK_Filename().Filename(nullptr), 0);
}
