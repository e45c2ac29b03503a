#include "containers/item_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "unpack/compressed_files.h"

namespace {

// A list of `count` items whose item i is &values[i].
struct NumberedList {
    explicit NumberedList(int count) : values(static_cast<std::size_t>(count)) {
        for (int i = 0; i < count; ++i) list.addItem(&(values[static_cast<std::size_t>(i)] = i));
    }
    std::vector<int> values;
    ItemList<int> list;
};

// The items head to tail, then tail to head, so a broken link either way shows.
std::string linksOf(ItemList<int>& list) {
    std::string text;
    for (auto* node = list.head; node != nullptr; node = node->next) text += std::to_string(*node->item);
    text += "|";
    for (auto* node = list.tail; node != nullptr; node = node->prev) text += std::to_string(*node->item);
    return text;
}

// The remembered position and the head win only when strictly nearer than
// both rivals; every tie goes to the tail. The position's own index and its
// neighbours need no walk.
TEST(ItemListTest, NodeAtWalksFromTheStrictlyNearestStart) {
    const struct { int count, positionIndex, index; WalkStart start; std::int64_t steps; } rows[] = {
        {100, 10, 7, WalkStart::Position, 3}, {100, 90, 94, WalkStart::Position, 4}, {100, 90, 95, WalkStart::Tail, 4},
        {101, 90, 95, WalkStart::Tail, 5},    {100, 50, 20, WalkStart::Head, 20},     {100, 0, 50, WalkStart::Tail, 49},
        {100, 10, 5, WalkStart::Tail, 94},    {10, 9, 0, WalkStart::Head, 0},         {10, 3, 4, WalkStart::None, 0},
        {10, 3, 2, WalkStart::None, 0},       {10, 3, 3, WalkStart::None, 0},
    };
    for (const auto& row : rows) {
        NumberedList numbered(row.count);
        ItemList<int>& list = numbered.list;
        // Step by step to the position, so that no rule under test sets it up.
        for (int i = 0; i <= row.positionIndex; ++i) ASSERT_EQ(list.nodeAt(i)->item, &numbered.values[i]);
        auto* node = list.nodeAt(row.index);
        SCOPED_TRACE(std::to_string(row.positionIndex) + " to " + std::to_string(row.index));
        ASSERT_TRUE(node != nullptr && node == list.position);
        EXPECT_EQ(node->item, &numbered.values[static_cast<std::size_t>(row.index)]);
        EXPECT_EQ(std::make_pair(list.lastWalkStart, list.lastWalkSteps), std::make_pair(row.start, row.steps));
        EXPECT_EQ(list.positionIndex, row.index);
    }
}

TEST(ItemListDeathTest, OutOfRangeChangesNothingAndItemAtEndsTheRun) {
    NumberedList five(5);
    five.list.nodeAt(3);
    auto* const remembered = five.list.position;
    for (int index : {-1, 5, INT32_MIN, INT32_MAX}) {
        EXPECT_TRUE(five.list.nodeAt(index) == nullptr && !five.list.removeAt(index)) << index;
    }
    EXPECT_EQ(five.list.position, remembered);
    EXPECT_EQ(five.list.positionIndex, 3);
    EXPECT_EQ(five.list.itemCount(), 5);
    EXPECT_EQ(five.list.itemAt(4), &five.values[4]);
    EXPECT_DEATH(five.list.itemAt(5), "^$");
    EXPECT_DEATH(five.list.itemAt(-1), "^$");
}

TEST(ItemListTest, RemoveAtKeepsThePositionOnAValidNode) {
    const struct { int count, index, positionItem, positionIndex; const char* links; } cases[] = {
        {1, 0, -1, 0, "|"}, {5, 4, 3, 3, "0123|3210"}, {5, 0, 1, 0, "1234|4321"}, {5, 2, 3, 2, "0134|4310"},
    };
    for (const auto& c : cases) {
        NumberedList numbered(c.count);
        ItemList<int>& list = numbered.list;
        SCOPED_TRACE(c.links);
        EXPECT_TRUE(list.removeAt(c.index));
        EXPECT_EQ(list.itemCount(), c.count - 1);
        EXPECT_EQ(linksOf(list), c.links);
        EXPECT_EQ(list.position == nullptr ? -1 : *list.position->item, c.positionItem);
        EXPECT_EQ(list.positionIndex, c.positionIndex);
        for (int i = 0; i < list.itemCount(); ++i) EXPECT_EQ(*list.nodeAt(i)->item, c.links[i] - '0') << i;
    }
}

struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
    inline static int alive = 0;
};

TEST(ItemListTest, ClearItemsDeletesItemsAndClearNodesDoesNot) {
    std::vector<Counted*> items;
    for (const bool deleteItems : {true, false}) {
        ItemList<Counted> list;
        for (int i = 0; i < 3; ++i) items.push_back(list.addItem(new Counted));
        EXPECT_EQ(list.addItem(nullptr), nullptr);
        EXPECT_EQ(list.itemCount(), 3);
        list.nodeAt(1);
        deleteItems ? list.clearItems() : list.clearNodes();
        EXPECT_EQ(Counted::alive, deleteItems ? 0 : 3);
        EXPECT_TRUE(list.itemCount() == 0 && !list.head && !list.tail && !list.position && list.positionIndex == 0);
        if (!deleteItems) list.addItem(items.back());  // a plain list's destructor leaves it
    }
    for (std::size_t i = 3; i < items.size(); ++i) delete items[i];
    OwningItemList<Counted>().addItem(new Counted);
    EXPECT_EQ(Counted::alive, 0);
}

// Records go in at the head and leave from the tail; an add at the head
// moves every index up, the remembered one too.
TEST(CompressedFileListTest, FirstInFirstOutAndIndicesMoveUp) {
    CompressedFileList list;
    for (int i = 0; i < 10; ++i) list.addCompressedFile({TextString("/j"), TextString(std::to_string(i).c_str())});
    EXPECT_STREQ(list.nodeAt(1)->record.fileName.text(), "8");  // no position: from the head
    auto* remembered = list.nodeAt(4);
    list.addCompressedFile({TextString("/j"), TextString("new")});
    EXPECT_EQ(list.positionIndex, 5);
    EXPECT_EQ(list.nodeAt(5), remembered);
    for (const char* name : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "new"}) {
        EXPECT_STREQ(list.takeCompressedFile().fileName.text(), name);
    }
    EXPECT_TRUE(list.itemCount() == 0 && list.head == nullptr && list.tail == nullptr);
}

}  // namespace
