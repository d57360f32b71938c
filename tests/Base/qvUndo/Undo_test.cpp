#include "Base/qvUndo/Undo.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

int liveCommands = 0;

// Appends its letter to a log when done and its upper-case letter when undone.
class LogCommand : public qvUndo::Command {
public:
    LogCommand(qvUndo::Group* group, char letter, std::string& log, std::uint32_t bytes = 100)
        : Command(group, "log"), letter_(letter), log_(log), bytes_(bytes) {
        ++liveCommands;
    }
    ~LogCommand() override { --liveCommands; }
    qvUtil::Error doCommand() override {
        log_ += letter_;
        return {};
    }
    qvUtil::Error undoCommand() override {
        log_ += static_cast<char>(letter_ - 'a' + 'A');
        if (letter_ == 'f')
            return {7, "cannot undo %c", letter_};
        return {};
    }
    std::uint32_t getNumBytesUsed() const override { return bytes_; }

private:
    char letter_;
    std::string& log_;
    std::uint32_t bytes_;
};

// Records one command per letter into a new group.
qvUndo::Group* recordGroup(qvUndo::Manager& m, const char* name, const std::string& letters,
                           std::string& log, std::uint32_t bytes = 100) {
    qvUndo::Group* g = m.openGroup(name, false);
    for (char c : letters)
        EXPECT_TRUE((new LogCommand(g, c, log, bytes))->doIt().isOk());
    return g;
}

void deletedNames(qvUndo::Manager& m, std::vector<std::string>& names) {
    m.groupDeleted.connect([&names](qvUndo::Group* g) { names.push_back(g->getName()); });
}

} // namespace

TEST(UndoManager, UndoesGroupsInReverseAndRedoesThemForward) {
    std::string log;
    std::vector<std::string> deleted;
    {
        qvUndo::Manager m;
        recordGroup(m, "one", "ab", log);
        recordGroup(m, "two", "cd", log);
        EXPECT_EQ(log, "abcd");
        EXPECT_TRUE(m.undo().isOk());
        EXPECT_TRUE(m.undo().isOk());
        EXPECT_EQ(m.undo().code(), qvUndo::ErrorNothingToUndo);
        EXPECT_EQ(log, "abcdDCBA");
        EXPECT_TRUE(m.redo().isOk());
        EXPECT_EQ(log, "abcdDCBAab");
        EXPECT_EQ(m.getNumDone(), 1);
        EXPECT_TRUE(m.canRedo());

        // A new group forgets the undone one; the history stays a straight line.
        deletedNames(m, deleted);
        recordGroup(m, "three", "e", log);
        EXPECT_EQ(deleted, std::vector<std::string>{"two"});
        EXPECT_EQ(m.getNumGroups(), 2);
        EXPECT_EQ(m.getGroup(-1)->getName(), "three");
        EXPECT_EQ(m.getGroup(0)->getName(), "one");
        EXPECT_EQ(m.getGroup(2), nullptr);
        EXPECT_EQ(m.getGroup(-3), nullptr);
        EXPECT_EQ(m.redo().code(), qvUndo::ErrorNothingToRedo);
        EXPECT_EQ(liveCommands, 3);
    }
    EXPECT_EQ(liveCommands, 0);
}

TEST(UndoManager, AFailingCommandDoesNotStopTheRestOfItsGroup) {
    std::string log;
    qvUndo::Manager m;
    recordGroup(m, "g", "efg", log);
    qvUtil::Error e = m.undo();
    EXPECT_EQ(e.code(), 7);
    EXPECT_EQ(e.message(), "cannot undo f");
    EXPECT_EQ(log, "efgGFE");
    EXPECT_EQ(m.getNumDone(), 0);
}

TEST(UndoManager, RecordingIsRefusedWithoutGroupIntoUndoneGroupsAndDuringReplay) {
    std::string log;
    qvUndo::Manager m;
    qvUndo::Group* g = recordGroup(m, "g", "a", log);
    ASSERT_TRUE(m.undo().isOk());
    auto late = std::make_unique<LogCommand>(g, 'b', log);
    EXPECT_EQ(late->doIt().code(), qvUndo::ErrorGroupUndone);
    LogCommand orphan(nullptr, 'c', log);
    EXPECT_EQ(orphan.doIt().code(), qvUndo::ErrorNoGroup);
    EXPECT_EQ(log, "aA"); // refused commands were not performed

    // Commands that try to record or replay while the manager replays are turned away.
    class Reentrant : public qvUndo::Command {
    public:
        using Command::Command;
        qvUtil::Error doCommand() override { return {}; }
        qvUtil::Error undoCommand() override {
            qvUndo::Manager& m = getGroup()->getManager();
            seen = {m.undo().code(), m.openGroup("inner", false) == nullptr,
                    LogCommand(getGroup(), 'x', dummy).doIt().code()};
            return {};
        }
        std::vector<int> seen;
        std::string dummy;
    };
    ASSERT_TRUE(m.redo().isOk());
    auto* r = new Reentrant(m.getGroup(-1), "r");
    ASSERT_TRUE(r->doIt().isOk());
    ASSERT_TRUE(m.undo().isOk());
    EXPECT_EQ(r->seen, (std::vector<int>{qvUndo::ErrorBusy, 1, qvUndo::ErrorBusy}));
}

TEST(UndoManager, CreationDisablingNestsUntilEveryDisableIsMatched) {
    qvUndo::Manager m;
    m.disableCreation(true);
    m.disableCreation(true);
    m.disableCreation(false);
    EXPECT_EQ(m.openGroup("g", false), nullptr);
    m.disableCreation(false);
    EXPECT_NE(m.openGroup("g", false), nullptr);
}

TEST(UndoManager, TrimmingTakesTheOldestDoneGroupsButNeverTheNewestOrAnUndoneOne) {
    std::string log;
    std::vector<std::string> deleted;
    qvUndo::Manager m;
    deletedNames(m, deleted);
    for (const char* name : {"1", "2", "3"})
        recordGroup(m, name, "a", log); // 100 bytes each
    m.setMaxBytes(250);
    EXPECT_EQ(deleted, std::vector<std::string>{"1"});
    EXPECT_EQ(m.getNumBytesUsed(), 200u);
    qvUndo::Group* big = recordGroup(m, "big", "hi", log, 1000);
    EXPECT_EQ(m.getNumGroups(), 1);
    EXPECT_EQ(m.getGroup(0), big);
    EXPECT_EQ(liveCommands, 2);

    m.setMaxBytes(0);
    recordGroup(m, "small", "g", log, 10);
    ASSERT_TRUE(m.undo().isOk());
    ASSERT_TRUE(m.undo().isOk());
    m.setMaxGroups(1);
    EXPECT_EQ(m.getNumGroups(), 2); // redo must still find both
}

TEST(UndoManager, InstallingAManagerDeletesThePreviousOneWithItsGroups) {
    std::string log;
    qvUndo::Manager* first = qvUndo::newManager();
    qvUndo::installManager(first);
    recordGroup(*first, "old", "a", log);
    std::vector<std::string> deleted;
    deletedNames(*first, deleted);
    qvUndo::Manager* second = qvUndo::newManager();
    first->groupDeleted.connect(
        [&](qvUndo::Group*) { EXPECT_EQ(qvUndo::getInstalledManager(), second); });
    qvUndo::installManager(second);
    EXPECT_EQ(deleted, std::vector<std::string>{"old"});
    qvUndo::installManager(second); // reinstalling keeps it
    EXPECT_EQ(qvUndo::getInstalledManager(), second);
    qvUndo::installManager(nullptr);
    EXPECT_EQ(qvUndo::getInstalledManager(), nullptr);
    EXPECT_EQ(liveCommands, 0);
}
