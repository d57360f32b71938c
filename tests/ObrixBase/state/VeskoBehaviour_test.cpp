#include "ObrixBase/state/VeskoBehaviour.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "ObrixBase/state/vesko_behaviour.h"

namespace {

int liveBehaviours = 0;

struct PaintBuild : VeskoBehaviour {
    PaintBuild() { ++liveBehaviours; }
    ~PaintBuild() override { --liveBehaviours; }
    bool paintEnabled() const override { return true; }
    const char* getUserPrefsFileName() const override { return "PaintPrefs"; }
    qvString::IString getProductIconName() override { return icon; }
    qvString::IString icon = L"Pinsel\u00e4";
};

std::string iconName() {
    char* text = VeskoBehaviour_getProductIconName();
    std::string out = text ? text : "(null)";
    std::free(text);
    return out;
}

} // namespace

TEST(VeskoBehaviour, TheBaseInstanceNamesTheDefaultFilesUntilSetReplacesIt) {
    // Spot checks of the names users meet on disk, through both the C and the C++ doors.
    VeskoBehaviour::set(nullptr);
    VeskoBehaviour& b = *VeskoBehaviour::get();
    EXPECT_EQ(iconName(), "Vesko");
    EXPECT_STREQ(VeskoBehaviour_getUserPrefsFileName(), "UserPrefs");
    EXPECT_EQ(b.getVeskoPrefsFilename(), "VeskoPrefs.scm");
    EXPECT_EQ(VeskoBehaviour_modelingWindowScale(), 1.0);

    auto* build = new PaintBuild;
    VeskoBehaviour::set(build);
    EXPECT_TRUE(VeskoBehaviour_paintEnabled());
    EXPECT_STREQ(VeskoBehaviour_getUserPrefsFileName(), "PaintPrefs");
    EXPECT_EQ(iconName(), "Pinsel\xc3\xa4"); // UTF-8
    build->icon.clear();
    EXPECT_EQ(iconName(), "(null)");
    VeskoBehaviour::set(build); // setting the current one again keeps it
    EXPECT_EQ(liveBehaviours, 1);

    VeskoBehaviour::set(nullptr);
    EXPECT_EQ(liveBehaviours, 0);
    EXPECT_FALSE(VeskoBehaviour_paintEnabled()); // a fresh base instance
}
