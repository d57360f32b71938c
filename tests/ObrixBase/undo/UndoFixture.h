// A fresh undo manager and an empty group stack for each test, and the stack emptied again
// afterwards, since both are process-wide.
#ifndef OBRIX_TESTS_UNDO_UNDOFIXTURE_H
#define OBRIX_TESTS_UNDO_UNDOFIXTURE_H

#include <gtest/gtest.h>

#include "Base/qvUndo/Undo.h"
#include "ObrixBase/state/redraw.h"
#include "ObrixBase/undo/vk_undo.h"

namespace obrix::test {

class UndoFixture : public ::testing::Test {
protected:
    void SetUp() override {
        qvObrixBase::undoInit();
        redraw_reset_pending();
    }
    void TearDown() override {
        while (VK_undo_get_num_groups() > 0)
            VK_undo_pop_group(false);
        qvUndo::installManager(nullptr);
        VK_undo_set_in_undo(false);
        redraw_reset_pending();
    }
    qvUndo::Manager& manager() { return *qvUndo::getInstalledManager(); }
};

} // namespace obrix::test

#endif
