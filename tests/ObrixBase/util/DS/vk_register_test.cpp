// Registration tables: identifier rules, first-registration-wins lookups and reuse after
// clearing.
#include <gtest/gtest.h>

#include "ObrixBase/util/DS/vk_register.h"
#include "ObrixBase/util/aa_debug.h"

namespace {

int a, b, c;

class RegistrationTable : public ::testing::Test {
protected:
    void TearDown() override {
        VK_clear_registrations(table, &status);
        DS_destructor(&table, nullptr, nullptr, &status);
    }
    DS_Structure* table = nullptr;
    int status = -1;
};

TEST_F(RegistrationTable, AcceptsZeroAndRejectsNegativeOrTakenIdentifiersAndNulls) {
    EXPECT_EQ(VK_register_item(0, &a, &table, &status), 1);
    EXPECT_EQ(status, 0);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->methods->get_type(), 2);

    EXPECT_EQ(VK_register_item(-1, &b, &table, &status), 0);
    EXPECT_EQ(status, VK_INVALID_FUNCTION);
    EXPECT_EQ(VK_register_item(0, &b, &table, &status), 0);
    EXPECT_EQ(status, VK_INVALID_FUNCTION);
    EXPECT_EQ(VK_get_id_registration(0, table, &status), &a);

    // Null tables and items are tolerated with an argument error.
    EXPECT_EQ(VK_register_item(1, &a, nullptr, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    EXPECT_EQ(VK_get_id_registration(0, nullptr, &status), nullptr);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    EXPECT_EQ(VK_get_items_registration_id(&a, nullptr, &status), -1);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    EXPECT_EQ(VK_deregister_item(nullptr, table, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    EXPECT_EQ(VK_deregister_item(&a, nullptr, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    EXPECT_EQ(VK_clear_registrations(nullptr, &status), 1);
}

TEST_F(RegistrationTable, RefusedRegistrationAnswersOneOnlyWithoutStatusPointer) {
    VK_register_item(0, &a, &table, &status);
    table->filter = [](void*) { return 0; };
    EXPECT_EQ(VK_register_item(1, &b, &table, &status), 0);
    EXPECT_EQ(status, VK_ITEM_FILTERED);
    EXPECT_EQ(VK_register_item(2, &c, &table, nullptr), 1);
    table->filter = nullptr;
    EXPECT_EQ(VK_get_id_registration(1, table, &status), nullptr);
    EXPECT_EQ(VK_get_id_registration(2, table, &status), nullptr);
    EXPECT_EQ(table->methods->enumerate(table, &status), 1);
}

TEST_F(RegistrationTable, LookupsFindTheFirstRegistrationAndAClearedTableIsReused) {
    VK_register_item(7, &a, &table, &status);
    VK_register_item(3, &b, &table, &status);
    VK_register_item(5, &a, &table, &status);
    EXPECT_EQ(VK_get_items_registration_id(&a, table, &status), 7);
    EXPECT_EQ(VK_get_items_registration_id(&c, table, &status), -1);
    EXPECT_EQ(VK_get_id_registration(4, table, &status), nullptr);
    EXPECT_EQ(status, 0);

    EXPECT_EQ(VK_deregister_item(&a, table, &status), 1);
    EXPECT_EQ(VK_get_id_registration(7, table, &status), nullptr);
    EXPECT_EQ(VK_get_id_registration(5, table, &status), &a);
    EXPECT_EQ(VK_get_items_registration_id(&a, table, &status), 5);
    EXPECT_EQ(table->methods->enumerate(table, &status), 2);
    EXPECT_EQ(VK_deregister_item(&c, table, &status), 0);

    // A cleared table is reused by the next registration.
    DS_Structure* before = table;
    EXPECT_EQ(VK_clear_registrations(table, &status), 1);
    EXPECT_EQ(VK_get_id_registration(5, table, &status), nullptr);
    EXPECT_EQ(VK_register_item(5, &c, &table, &status), 1);
    EXPECT_EQ(table, before);
    EXPECT_EQ(VK_get_id_registration(5, table, &status), &c);
}

} // namespace
