// The undo manager: a history of groups of commands. Modelling code opens a group for each
// user-level step and records commands into it; undo takes back the most recent done group
// (its commands in reverse order) and redo performs the next undone group again (forward).
//
//     qvUndo::Group* g = manager->openGroup("Move", false);
//     auto* c = new MoveCommand(g, "Move");
//     if (c->doIt().isError()) delete c; // on success the group owns c
//     manager->undo();
//
// The history is bounded by a group count and by the bytes its commands use; trimming deletes
// the oldest groups and announces each through groupDeleted, as does every other deletion of
// a group. One process-wide manager can be installed for the library's users.
#ifndef BASE_QVUNDO_UNDO_H
#define BASE_QVUNDO_UNDO_H

#include <cstdint>
#include <deque>
#include <vector>

#include "Base/BaseExport.h"
#include "Base/qvRTB/Signal.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvUndo {

class Group;
class Manager;

/// The codes of the errors that the undo manager returns.
enum ErrorCode : int {
    ErrorNoGroup = 1,     ///< the command was made without a group
    ErrorBusy = 2,        ///< the manager is undoing or redoing
    ErrorGroupUndone = 3, ///< the group has been undone; redo it before adding to it
    ErrorNothingToUndo = 4,
    ErrorNothingToRedo = 5,
};

/// Something the undo history keeps under a name.
class BASE_API State {
public:
    /// A null `name` gives the empty name.
    explicit State(const char* name);
    virtual ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// The name given at construction; shown to the user in undo and redo menus.
    const qvString::CString& getName() const noexcept { return name_; }

private:
    qvString::CString name_;
};

/// One undoable action. A subclass performs it in both directions; the group it was made for
/// owns it once doIt has succeeded, and deletes it with the group.
class BASE_API Command : public State {
public:
    /// The command will belong to `group` (null allowed, but such a command cannot be done).
    Command(Group* group, const char* name);
    ~Command() override;

    /// Performs the command forward: the first time from doIt, again on every redo.
    virtual qvUtil::Error doCommand() = 0;
    /// Takes the command back, on undo.
    virtual qvUtil::Error undoCommand() = 0;
    /// The memory the command holds, in bytes, which the history limit counts. The default is
    /// the size of a bare Command; subclasses that hold more say so.
    virtual std::uint32_t getNumBytesUsed() const;

    /// Performs the command forward and, when that succeeds, hands it to its group, which owns
    /// it from then on (a trim caused by the new bytes may delete it at once: do not use the
    /// command after a successful doIt). On failure nothing is recorded and the caller keeps
    /// ownership. Fails with ErrorNoGroup, ErrorBusy while the manager undoes or redoes, or
    /// ErrorGroupUndone, before anything is performed; otherwise returns doCommand's error.
    qvUtil::Error doIt();

    /// The group the command was made for.
    Group* getGroup() const noexcept { return group_; }

private:
    Group* group_;
};

/// A named group of commands that is undone and redone as a whole. Groups are made by
/// Manager::openGroup and deleted by their manager only.
class BASE_API Group : public State {
public:
    /// The number of commands recorded into the group so far.
    int getNumCommands() const noexcept { return static_cast<int>(commands_.size()); }
    /// The command at `index` (0 = first recorded); null when out of range.
    Command* getCommand(int index) const;

    /// Notes that the group changes `object`; null is ignored, a repeat is kept once. The
    /// pointer is only compared, never followed.
    void declare(const void* object);
    /// True when `object` has been declared to the group.
    bool isDeclared(const void* object) const;
    /// The objects declared so far, in order of first declaration.
    const std::vector<const void*>& getDeclared() const noexcept { return declared_; }

    /// The group's mark: given at opening, set by code that records a new object's first
    /// state. The manager keeps it for the application and does not act on it.
    void setMarked(bool marked) noexcept { marked_ = marked; }
    /// The mark set at opening or by setMarked.
    bool isMarked() const noexcept { return marked_; }

    /// The sum of the commands' getNumBytesUsed, as each was when it was recorded.
    std::uint64_t getNumBytesUsed() const noexcept { return bytes_; }
    /// The manager that made the group and owns it.
    Manager& getManager() const noexcept { return *manager_; }

private:
    friend class Manager;
    friend class Command;
    Group(Manager& manager, const char* name, bool marked);
    ~Group() override;

    Manager* manager_;
    std::vector<Command*> commands_; // owned
    std::vector<const void*> declared_;
    std::uint64_t bytes_ = 0;
    bool marked_;
};

/// The undo history. Groups 0 .. numDone-1 are done (undo takes the last of them); the rest
/// were undone and wait for redo, until a new group is opened, which deletes them.
class BASE_API Manager {
public:
    Manager();
    /// Deletes every group, newest first, announcing each through groupDeleted.
    ~Manager();
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    /// Opens a new group at the end of the history and returns it; the manager owns it. Groups
    /// waiting for redo are deleted first. Returns null, and changes nothing, while creation is
    /// disabled (which includes undoing and redoing). May trim the oldest groups.
    Group* openGroup(const char* name, bool marked);
    /// The group at `index` in the history, oldest first; a negative index counts from the
    /// newest (-1 is the most recent group). Null when out of range.
    Group* getGroup(int index) const;
    /// The number of groups in the history, done and undone.
    int getNumGroups() const noexcept { return static_cast<int>(groups_.size()); }
    /// The number of done groups, those that undo can take back.
    int getNumDone() const noexcept { return done_; }
    /// Deletes the most recent group (announced through groupDeleted); nothing when empty.
    void dropLastGroup();
    /// Deletes every group, newest first.
    void clear();

    /// Undoes the most recent done group, its commands in reverse order. Every command is
    /// undone even when one fails, so the group moves back as a whole as far as it can; the
    /// first failure is returned. Creation is disabled meanwhile. ErrorNothingToUndo when no
    /// group is done, ErrorBusy when called from inside an undo or redo.
    qvUtil::Error undo();
    /// Redoes the oldest undone group, its commands in recording order; otherwise as undo.
    qvUtil::Error redo();
    /// True when undo has a done group to take back.
    bool canUndo() const noexcept { return done_ > 0; }
    /// True when redo has an undone group to perform again.
    bool canRedo() const noexcept { return done_ < getNumGroups(); }
    /// True while undo or redo runs commands.
    bool isBusy() const noexcept { return busy_; }

    /// Disables (true) or re-enables (false) the creation of groups, and sends
    /// creationDisabled with the same value. Calls nest: creation stays disabled until every
    /// disable has been matched.
    void disableCreation(bool disable);
    /// True while more disables than re-enables have been made.
    bool isCreationDisabled() const noexcept { return disabled_ > 0; }

    /// Limits the history to `groups` groups (0: no limit) and trims at once when needed.
    void setMaxGroups(int groups);
    /// The group limit; 0 means none.
    int getMaxGroups() const noexcept { return maxGroups_; }
    /// Limits the bytes of the history's commands (0: no limit) and trims at once.
    void setMaxBytes(std::uint64_t bytes);
    /// The byte limit; 0 means none.
    std::uint64_t getMaxBytes() const noexcept { return maxBytes_; }
    /// The bytes of every group's commands.
    std::uint64_t getNumBytesUsed() const noexcept { return bytes_; }

    /// Sent with true when creation becomes disabled by a call, with false when a call
    /// re-enables it; one send per call, so listeners can keep a matching stack.
    qvRTB::Signal<bool> creationDisabled;
    /// Sent just before a group is deleted, for whatever reason; the group is still whole
    /// during the call and must not be used afterwards.
    qvRTB::Signal<Group*> groupDeleted;

private:
    friend class Command;
    bool isDone(const Group* group) const;
    void record(Group& group, Command* command);
    void trim();
    void deleteGroupAt(std::size_t index);
    qvUtil::Error replay(bool forward);

    std::deque<Group*> groups_; // owned, oldest first
    int done_ = 0;
    int disabled_ = 0;
    bool busy_ = false;
    int maxGroups_ = 0;
    std::uint64_t maxBytes_ = 0;
    std::uint64_t bytes_ = 0;
};

/// A new manager with no limits; the caller owns it until it is installed.
BASE_API Manager* newManager();
/// Makes `manager` the process's installed manager and takes ownership of it; the one
/// installed before is deleted (its groups announced as deleted). Null uninstalls.
BASE_API void installManager(Manager* manager);
/// The installed manager, or null.
BASE_API Manager* getInstalledManager();

} // namespace qvUndo

/// printf-style report of undo misuse, for the developer: goes to the report sink as a debug
/// report at level 0, so it is always shown.
BASE_API void qvUndoReport(const char* format, ...) BASE_PRINTF(1, 2);

#endif
