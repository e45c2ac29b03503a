#include "containers/item_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "unpack/compressed_files.h"

namespace {

// A list of `count` items whose item i is &values[i].
struct NumberedList {
    explicit NumberedList(int count) : values(static_cast<std::size_t>(count)) {
        for (int i = 0; i < count; ++i) {
            values[static_cast<std::size_t>(i)] = i;
            list.addItem(&values[static_cast<std::size_t>(i)]);
        }
    }
    std::vector<int> values;
    ItemList<int> list;
};

// The items from head to tail, and from tail to head, so a broken link in
// either direction shows.
std::vector<int> forwardItems(ItemList<int>& list) {
    std::vector<int> items;
    for (auto* node = list.head; node != nullptr; node = node->next) items.push_back(*node->item);
    return items;
}

std::vector<int> backwardItems(ItemList<int>& list) {
    std::vector<int> items;
    for (auto* node = list.tail; node != nullptr; node = node->prev) items.insert(items.begin(), *node->item);
    return items;
}

// The remembered position and the head win only when strictly nearer than
// both rivals; every tie goes to the tail.
TEST(ItemListTest, NodeAtWalksFromTheStrictlyNearestStart) {
    struct Row {
        int count;
        int positionIndex;
        int index;
        WalkStart start;
        int steps;
    };
    const Row rows[] = {
        {100, 10, 7, WalkStart::Position, 3},  {100, 90, 94, WalkStart::Position, 4},
        {100, 90, 95, WalkStart::Tail, 4},     {101, 90, 95, WalkStart::Tail, 5},
        {100, 50, 20, WalkStart::Head, 20},    {100, 0, 50, WalkStart::Tail, 49},
        {100, 10, 5, WalkStart::Tail, 94},
    };
    for (const Row& row : rows) {
        NumberedList numbered(row.count);
        ItemList<int>& list = numbered.list;
        // Reach the starting position one step at a time so that no walk
        // of the rule under test sets it up.
        for (int i = 0; i <= row.positionIndex; ++i) list.nodeAt(i);
        ASSERT_EQ(list.positionIndex, row.positionIndex);

        auto* node = list.nodeAt(row.index);
        const std::string label = std::to_string(row.count) + "/" + std::to_string(row.positionIndex) + "/" +
                                  std::to_string(row.index);
        ASSERT_NE(node, nullptr) << label;
        EXPECT_EQ(node->item, &numbered.values[static_cast<std::size_t>(row.index)]) << label;
        EXPECT_EQ(list.lastWalkStart, row.start) << label;
        EXPECT_EQ(list.lastWalkSteps, row.steps) << label;
        EXPECT_EQ(list.position, node) << label;
        EXPECT_EQ(list.positionIndex, row.index) << label;
    }
}

TEST(ItemListTest, NodeAtCheapCasesNeedNoWalk) {
    NumberedList numbered(10);
    ItemList<int>& list = numbered.list;

    // A loop over every index costs one step each, from no position at all.
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(list.nodeAt(i)->item, &numbered.values[static_cast<std::size_t>(i)]);
        EXPECT_EQ(list.lastWalkStart, WalkStart::None) << i;
    }
    EXPECT_EQ(list.nodeAt(9), list.tail);  // same index again
    EXPECT_EQ(list.lastWalkStart, WalkStart::None);
    EXPECT_EQ(list.nodeAt(8)->item, &numbered.values[8]);  // one back
    EXPECT_EQ(list.lastWalkStart, WalkStart::None);
    list.nodeAt(9);

    // Back to 0 from the last index: the head is nearest, zero steps.
    EXPECT_EQ(list.nodeAt(0), list.head);
    EXPECT_EQ(list.lastWalkStart, WalkStart::Head);
    EXPECT_EQ(list.lastWalkSteps, 0);
    EXPECT_EQ(list.positionIndex, 0);
}

TEST(ItemListTest, NodeAtOutOfRangeChangesNothing) {
    ItemList<int> empty;
    EXPECT_EQ(empty.nodeAt(0), nullptr);
    EXPECT_EQ(empty.position, nullptr);
    EXPECT_EQ(empty.positionIndex, 0);

    NumberedList one(1);
    EXPECT_EQ(one.list.nodeAt(0), one.list.head);
    EXPECT_EQ(one.list.position, one.list.head);

    NumberedList five(5);
    five.list.nodeAt(3);
    auto* const remembered = five.list.position;
    for (ItemList<int>* list : {&one.list, &five.list}) {
        const auto* position = list->position;
        const int positionIndex = list->positionIndex;
        for (int index : {-1, list->itemCount(), INT32_MIN, INT32_MAX}) {
            EXPECT_EQ(list->nodeAt(index), nullptr) << index;
            EXPECT_EQ(list->position, position) << index;
            EXPECT_EQ(list->positionIndex, positionIndex) << index;
            EXPECT_EQ(list->removeAt(index), false) << index;
        }
        EXPECT_EQ(list->itemCount(), list == &one.list ? 1 : 5);
    }
    EXPECT_EQ(five.list.position, remembered);
    EXPECT_EQ(five.list.positionIndex, 3);
}

TEST(ItemListTest, RemoveAtKeepsThePositionOnAValidNode) {
    struct Case {
        const char* label;
        int count;
        int index;
        int positionItem;  // -1: no position
        int positionIndex;
        std::vector<int> left;
    };
    const Case cases[] = {
        {"only node", 1, 0, -1, 0, {}},
        {"tail", 5, 4, 3, 3, {0, 1, 2, 3}},
        {"head", 5, 0, 1, 0, {1, 2, 3, 4}},
        {"middle", 5, 2, 3, 2, {0, 1, 3, 4}},
    };
    for (const Case& c : cases) {
        NumberedList numbered(c.count);
        ItemList<int>& list = numbered.list;
        EXPECT_TRUE(list.removeAt(c.index)) << c.label;
        EXPECT_EQ(list.itemCount(), c.count - 1) << c.label;
        EXPECT_EQ(forwardItems(list), c.left) << c.label;
        EXPECT_EQ(backwardItems(list), c.left) << c.label;
        if (c.positionItem < 0) {
            EXPECT_EQ(list.position, nullptr) << c.label;
            EXPECT_EQ(list.head, nullptr) << c.label;
            EXPECT_EQ(list.tail, nullptr) << c.label;
        } else {
            ASSERT_NE(list.position, nullptr) << c.label;
            EXPECT_EQ(*list.position->item, c.positionItem) << c.label;
        }
        EXPECT_EQ(list.positionIndex, c.positionIndex) << c.label;
        // The fixed position still agrees with the indices.
        for (int i = 0; i < list.itemCount(); ++i) {
            EXPECT_EQ(*list.nodeAt(i)->item, c.left[static_cast<std::size_t>(i)]) << c.label << " " << i;
        }
    }
}

struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
    static int alive;
};
int Counted::alive = 0;

TEST(ItemListTest, ClearItemsDeletesItemsAndClearNodesDoesNot) {
    auto expectReset = [](ItemList<Counted>& list) {
        EXPECT_EQ(list.itemCount(), 0);
        EXPECT_TRUE(list.head == nullptr && list.tail == nullptr && list.position == nullptr);
        EXPECT_EQ(list.positionIndex, 0);
    };
    {
        ItemList<Counted> list;
        for (int i = 0; i < 4; ++i) list.addItem(new Counted);
        EXPECT_EQ(list.addItem(nullptr), nullptr);
        EXPECT_EQ(list.itemCount(), 4);
        list.nodeAt(2);
        list.clearItems();
        EXPECT_EQ(Counted::alive, 0);
        expectReset(list);
    }
    std::vector<Counted*> items;
    {
        ItemList<Counted> list;
        for (int i = 0; i < 3; ++i) items.push_back(list.addItem(new Counted));
        list.nodeAt(1);
        list.clearNodes();
        expectReset(list);
        list.addItem(items[0]);  // a plain list's destructor leaves items too
    }
    EXPECT_EQ(Counted::alive, 3);
    for (Counted* item : items) delete item;
    {
        OwningItemList<Counted> owning;
        owning.addItem(new Counted);
        owning.addItem(new Counted);
    }
    EXPECT_EQ(Counted::alive, 0);
}

CompressedFile record(const char* directory, const char* fileName) {
    CompressedFile file;
    file.directory.assign(directory);
    file.fileName.assign(fileName);
    return file;
}

std::string describe(const CompressedFile& file) {
    return std::string(file.directory.text()) + "|" + file.fileName.text();
}

TEST(CompressedFileListTest, TakesFilesInTheOrderTheyCame) {
    CompressedFileList list;
    list.addCompressedFile(record("/j/a", "data.Z"));
    list.addCompressedFile(record("/j/b", "components.z"));
    EXPECT_EQ(describe(list.takeCompressedFile()), "/j/a|data.Z");
    list.addCompressedFile(record("/j/c", "features.Z"));
    EXPECT_EQ(describe(list.takeCompressedFile()), "/j/b|components.z");
    EXPECT_EQ(describe(list.takeCompressedFile()), "/j/c|features.Z");
    EXPECT_EQ(list.itemCount(), 0);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(list.tail, nullptr);
}

TEST(CompressedFileListTest, AddAtHeadMovesEveryIndexUp) {
    CompressedFileList list;
    for (int i = 0; i < 10; ++i) list.addCompressedFile(record("/j", std::to_string(i).c_str()));
    // Head to tail: 9 .. 0. Every add raised positionIndex, with no position.
    EXPECT_EQ(list.position, nullptr);
    EXPECT_EQ(list.positionIndex, 10);

    // With no position the next access starts over at the head, index 0.
    auto* node = list.nodeAt(1);
    ASSERT_NE(node, nullptr);
    EXPECT_STREQ(node->record.fileName.text(), "8");
    EXPECT_EQ(list.lastWalkStart, WalkStart::None);
    EXPECT_EQ(list.positionIndex, 1);

    // A remembered position keeps its node: its index moves up with it.
    auto* remembered = list.nodeAt(4);
    list.addCompressedFile(record("/j", "new"));
    EXPECT_EQ(list.positionIndex, 5);
    EXPECT_EQ(list.nodeAt(5), remembered);
    EXPECT_EQ(list.lastWalkStart, WalkStart::None);
    EXPECT_STREQ(list.nodeAt(0)->record.fileName.text(), "new");
}

}  // namespace
