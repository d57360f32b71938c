#include "ObrixBase/state/VeskoBehaviour.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "ObrixBase/state/vesko_behaviour.h"

VeskoBehaviour::~VeskoBehaviour() = default;

bool VeskoBehaviour::wantSinglePerspWindow() {
    return false;
}
bool VeskoBehaviour::isMultipleObrixSessionsAllowed() {
    return false;
}
qvString::IString VeskoBehaviour::getProductPrefix() {
    return L"Vesko";
}
qvString::IString VeskoBehaviour::getProductIconName() {
    return L"Vesko";
}
bool VeskoBehaviour::userInformationEnabled() {
    return true;
}
bool VeskoBehaviour::supportSingleStage() {
    return true;
}
bool VeskoBehaviour::documentSettingsOverrideSessionSettings() {
    return false;
}
bool VeskoBehaviour::largeModelingWindowSize() {
    return false;
}
bool VeskoBehaviour::paintEnabled() const {
    return false;
}
bool VeskoBehaviour::enablePaintUI() const {
    return false;
}
bool VeskoBehaviour::paintOnOverlaysOnly() const {
    return false;
}
bool VeskoBehaviour::paintAddBookmarkToOverlays() const {
    return false;
}
bool VeskoBehaviour::autoObrixWindows() {
    return false;
}
const char* VeskoBehaviour::getUserPrefsFileName() const {
    return "UserPrefs";
}
const char* VeskoBehaviour::getUserOptionsFileName() {
    return "user_options";
}
const char* VeskoBehaviour::getBrowserPrefsFileName() {
    return ".VeskoBrowserPrefs";
}
const char* VeskoBehaviour::getHelpFileName() {
    return "Help.hta";
}
qvString::CString VeskoBehaviour::getVeskoPrefsFilename() const {
    return "VeskoPrefs.scm";
}
double VeskoBehaviour::modelingWindowScale() {
    return 1.0;
}
bool VeskoBehaviour::splashAtStartup() const {
    return true;
}
bool VeskoBehaviour::enableNukeAllOnRetrieve() const {
    return false;
}
bool VeskoBehaviour::saveOnExit() const {
    return true;
}
bool VeskoBehaviour::hardwareReflectionsEnabled() const {
    return true;
}

namespace {
// Owned; released at exit so that the sanitizers see no leak.
std::unique_ptr<VeskoBehaviour> current;
} // namespace

VeskoBehaviour* VeskoBehaviour::get() {
    if (!current)
        current = std::make_unique<VeskoBehaviour>();
    return current.get();
}

void VeskoBehaviour::set(VeskoBehaviour* behaviour) {
    // Installing the current instance again keeps it: deleting it first would leave the
    // library holding the very object it had just freed.
    if (behaviour != current.get())
        current.reset(behaviour);
}

bool VeskoBehaviour_wantSinglePerspWindow(void) {
    return VeskoBehaviour::get()->wantSinglePerspWindow();
}
bool VeskoBehaviour_documentSettingsOverrideSessionSettings(void) {
    return VeskoBehaviour::get()->documentSettingsOverrideSessionSettings();
}
bool VeskoBehaviour_largeModelingWindowSize(void) {
    return VeskoBehaviour::get()->largeModelingWindowSize();
}
bool VeskoBehaviour_paintEnabled(void) {
    return VeskoBehaviour::get()->paintEnabled();
}
bool VeskoBehaviour_enablePaintUI(void) {
    return VeskoBehaviour::get()->enablePaintUI();
}
bool VeskoBehaviour_autoObrixWindows(void) {
    return VeskoBehaviour::get()->autoObrixWindows();
}
const char* VeskoBehaviour_getUserPrefsFileName(void) {
    return VeskoBehaviour::get()->getUserPrefsFileName();
}
const char* VeskoBehaviour_getBrowserPrefsFileName(void) {
    return VeskoBehaviour::get()->getBrowserPrefsFileName();
}
double VeskoBehaviour_modelingWindowScale(void) {
    return VeskoBehaviour::get()->modelingWindowScale();
}
bool VeskoBehaviour_enableNukeAllOnRetrieve(void) {
    return VeskoBehaviour::get()->enableNukeAllOnRetrieve();
}
bool VeskoBehaviour_saveOnExit(void) {
    return VeskoBehaviour::get()->saveOnExit();
}

char* VeskoBehaviour_getProductIconName(void) {
    const qvString::CString name = VeskoBehaviour::get()->getProductIconName().toUtf8();
    if (name.empty())
        return nullptr;
    auto* copy = static_cast<char*>(std::malloc(name.size() + 1));
    if (copy)
        std::memcpy(copy, name.c_str(), name.size() + 1);
    return copy;
}
