#include "Base/qvUndo/Undo.h"

#include <algorithm>
#include <cstdarg>
#include <memory>

#include "Base/rpt/rpt.h"

namespace qvUndo {

State::State(const char* name) : name_(name) {
}

State::~State() = default;

// ---- Command ----

Command::Command(Group* group, const char* name) : State(name), group_(group) {
}

Command::~Command() = default;

std::uint32_t Command::getNumBytesUsed() const {
    return static_cast<std::uint32_t>(sizeof(Command));
}

qvUtil::Error Command::doIt() {
    if (!group_)
        return {ErrorNoGroup, "The command \"%s\" has no undo group", getName().c_str()};
    Manager& manager = group_->getManager();
    if (manager.isBusy())
        return {ErrorBusy, "The command \"%s\" cannot be recorded while undoing or redoing",
                getName().c_str()};
    // Adding to an undone group would make its next redo perform this command twice.
    if (!manager.isDone(group_))
        return {ErrorGroupUndone, "The undo group \"%s\" has been undone",
                group_->getName().c_str()};
    qvUtil::Error error = doCommand();
    if (error.isError())
        return error;
    manager.record(*group_, this);
    return {};
}

// ---- Group ----

Group::Group(Manager& manager, const char* name, bool marked)
    : State(name), manager_(&manager), marked_(marked) {
}

Group::~Group() {
    // Newest first, the order in which the commands' effects were layered.
    for (auto it = commands_.rbegin(); it != commands_.rend(); ++it)
        delete *it;
}

Command* Group::getCommand(int index) const {
    if (index < 0 || index >= getNumCommands())
        return nullptr;
    return commands_[static_cast<std::size_t>(index)];
}

void Group::declare(const void* object) {
    if (object && !isDeclared(object))
        declared_.push_back(object);
}

bool Group::isDeclared(const void* object) const {
    return std::find(declared_.begin(), declared_.end(), object) != declared_.end();
}

// ---- Manager ----

Manager::Manager() = default;

Manager::~Manager() {
    while (!groups_.empty())
        deleteGroupAt(groups_.size() - 1);
}

Group* Manager::openGroup(const char* name, bool marked) {
    if (isCreationDisabled())
        return nullptr;
    // A new step forgets the undone ones: the history stays one straight line.
    while (getNumGroups() > done_)
        deleteGroupAt(groups_.size() - 1);
    auto* group = new Group(*this, name, marked);
    groups_.push_back(group);
    done_ = getNumGroups();
    trim();
    return group;
}

Group* Manager::getGroup(int index) const {
    const int count = getNumGroups();
    if (index < 0)
        index += count;
    if (index < 0 || index >= count)
        return nullptr;
    return groups_[static_cast<std::size_t>(index)];
}

void Manager::dropLastGroup() {
    if (!busy_ && !groups_.empty())
        deleteGroupAt(groups_.size() - 1);
}

void Manager::clear() {
    if (busy_)
        return;
    while (!groups_.empty())
        deleteGroupAt(groups_.size() - 1);
}

qvUtil::Error Manager::undo() {
    return replay(false);
}

qvUtil::Error Manager::redo() {
    return replay(true);
}

qvUtil::Error Manager::replay(bool forward) {
    if (busy_)
        return {ErrorBusy, "Undo and redo cannot be called from inside an undo or redo"};
    if (forward ? !canRedo() : !canUndo())
        return forward ? qvUtil::Error(ErrorNothingToRedo, "Nothing to redo")
                       : qvUtil::Error(ErrorNothingToUndo, "Nothing to undo");
    Group& group = *groups_[static_cast<std::size_t>(forward ? done_ : done_ - 1)];

    // Whatever the commands call while they replay must not record into the history.
    busy_ = true;
    disableCreation(true);
    qvUtil::Error first;
    const int count = group.getNumCommands();
    for (int i = 0; i < count; ++i) {
        Command& command = *group.commands_[static_cast<std::size_t>(forward ? i : count - 1 - i)];
        qvUtil::Error error = forward ? command.doCommand() : command.undoCommand();
        if (error.isError() && first.isOk())
            first = error;
    }
    disableCreation(false);
    busy_ = false;
    done_ += forward ? 1 : -1;
    return first;
}

void Manager::disableCreation(bool disable) {
    // An unmatched enable is not counted below zero, so that it cannot swallow a later
    // disable; it is still announced, for listeners that keep their own stack.
    disabled_ = std::max(0, disabled_ + (disable ? 1 : -1));
    creationDisabled.send(disable);
}

void Manager::setMaxGroups(int groups) {
    maxGroups_ = std::max(groups, 0);
    trim();
}

void Manager::setMaxBytes(std::uint64_t bytes) {
    maxBytes_ = bytes;
    trim();
}

bool Manager::isDone(const Group* group) const {
    // The group being recorded is nearly always the newest, so search from the back.
    for (int i = getNumGroups() - 1; i >= 0; --i)
        if (groups_[static_cast<std::size_t>(i)] == group)
            return i < done_;
    return false;
}

void Manager::record(Group& group, Command* command) {
    group.commands_.push_back(command);
    const std::uint32_t bytes = command->getNumBytesUsed();
    group.bytes_ += bytes;
    bytes_ += bytes;
    trim();
}

void Manager::trim() {
    // Only done groups go, oldest first, and never the newest group: it is the one being
    // recorded, and losing it would lose the step the user is making now. Undone groups stay
    // too, since redo must find them in order; the next openGroup deletes them anyway.
    auto over = [this] {
        return (maxGroups_ > 0 && getNumGroups() > maxGroups_) ||
               (maxBytes_ > 0 && bytes_ > maxBytes_);
    };
    while (!busy_ && over() && done_ > 0 && getNumGroups() > 1)
        deleteGroupAt(0);
}

void Manager::deleteGroupAt(std::size_t index) {
    Group* group = groups_[index];
    groupDeleted.send(group);
    // A listener may have changed the history while it was told; find the group again.
    auto it = std::find(groups_.begin(), groups_.end(), group);
    if (it == groups_.end())
        return;
    if (it - groups_.begin() < done_)
        --done_;
    groups_.erase(it);
    bytes_ -= group->bytes_;
    delete group;
}

// ---- the installed manager ----

namespace {
std::unique_ptr<Manager> installed;
} // namespace

Manager* newManager() {
    return new Manager;
}

void installManager(Manager* manager) {
    if (manager == installed.get())
        return;
    // The new manager is in place before the old one announces its groups' deletion, so
    // listeners that ask for the installed manager meanwhile see the new one.
    std::unique_ptr<Manager> previous = std::move(installed);
    installed.reset(manager);
    previous.reset();
}

Manager* getInstalledManager() {
    return installed.get();
}

} // namespace qvUndo

void qvUndoReport(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const qvString::CString text = qvString::CString::vformat(format, args);
    va_end(args);
    rptDebug(0, "%s", text.c_str());
}
