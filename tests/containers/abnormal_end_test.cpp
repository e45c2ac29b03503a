#include "containers/abnormal_end.h"

#include <gtest/gtest.h>

#include "containers/item_list.h"

TEST(AbnormalEndDeathTest, ItemAtOutOfRangeAbortsSilently) {
    ItemList<int> list;
    int value = 7;
    list.addItem(&value);
    EXPECT_EQ(list.itemAt(0), &value);
    EXPECT_DEATH(list.itemAt(1), "^$");
    EXPECT_DEATH(list.itemAt(-1), "^$");
}
