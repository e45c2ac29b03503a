#include "containers/item_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "unpack/compressed_files.h"

namespace {

using itemlist::Walk;
using itemlist::WalkStart;
using itemlist::walkTo;

// A list of `count` items whose item i is &values[i].
struct NumberedList {
    explicit NumberedList(int count) : values(static_cast<std::size_t>(count)) {
        for (int i = 0; i < count; ++i) list.addItem(&(values[static_cast<std::size_t>(i)] = i));
    }
    std::vector<int> values;
    Arena arena;
    ItemList<int> list{arena};
};

// The items in list order, then by index from the last to the first: the
// second half steps back along the prev links, so a broken link either way
// shows.
std::string linksOf(ItemList<int>& list) {
    std::string text;
    for (const int* item : list) text += std::to_string(*item);
    text += "|";
    for (int i = list.itemCount() - 1; i >= 0; --i) text += std::to_string(*list.itemAt(i));
    return text;
}

// The remembered position and the head win only when strictly nearer than
// both rivals; every tie goes to the tail. The position's own index and its
// neighbours are reached from the position.
TEST(ItemListTest, WalkStartsFromTheStrictlyNearestNode) {
    const struct { int count, positionIndex, index; WalkStart start; int steps; } rows[] = {
        {100, 10, 7, WalkStart::Position, 3}, {100, 90, 94, WalkStart::Position, 4}, {100, 90, 95, WalkStart::Tail, 4},
        {101, 90, 95, WalkStart::Tail, 5},    {100, 50, 20, WalkStart::Head, 20},     {100, 0, 50, WalkStart::Tail, 49},
        {100, 10, 5, WalkStart::Tail, 94},    {10, 9, 0, WalkStart::Head, 0},         {10, 3, 4, WalkStart::Position, 1},
        {10, 3, 2, WalkStart::Position, 1},   {10, 3, 3, WalkStart::Position, 0},     {3, 2, 0, WalkStart::Head, 0},
        {5, 0, 2, WalkStart::Tail, 2},        {5, 4, 2, WalkStart::Tail, 2},
    };
    for (const auto& row : rows) {
        const Walk walk = walkTo(row.count, row.positionIndex, row.index);
        EXPECT_EQ(walk.start, row.start) << row.positionIndex << " to " << row.index;
        EXPECT_EQ(walk.steps, row.steps) << row.positionIndex << " to " << row.index;
        EXPECT_TRUE(walk.start != WalkStart::Position || walk.forward == (row.index > row.positionIndex));
    }
}

TEST(ItemListDeathTest, OutOfRangeChangesNothingAndItemAtEndsTheRun) {
    NumberedList five(5);
    five.list.nodeAt(3);
    for (int index : {-1, 5, INT32_MIN, INT32_MAX}) {
        EXPECT_TRUE(five.list.nodeAt(index) == nullptr && !five.list.removeAt(index)) << index;
    }
    EXPECT_EQ(five.list.itemCount(), 5);
    EXPECT_EQ(linksOf(five.list), "01234|43210");
    EXPECT_DEATH(five.list.itemAt(5), "^$");
    EXPECT_DEATH(five.list.itemAt(-1), "^$");
}

TEST(ItemListTest, RemoveAtKeepsTheLinksAndThePosition) {
    const struct { int count, index; const char* links; } cases[] = {
        {1, 0, "|"}, {5, 4, "0123|3210"}, {5, 0, "1234|4321"}, {5, 2, "0134|4310"},
    };
    for (const auto& c : cases) {
        NumberedList numbered(c.count);
        ItemList<int>& list = numbered.list;
        SCOPED_TRACE(c.links);
        EXPECT_TRUE(list.removeAt(c.index));
        EXPECT_EQ(list.itemCount(), c.count - 1);
        EXPECT_EQ(linksOf(list), c.links);
    }
}

// Every index reached through the remembered position stays right through
// any mix of lookups, removals and adds at the head, which move indexes.
TEST(ItemListTest, IndexesStayRightThroughRemovalsAndAddsAtTheHead) {
    std::mt19937 random(7);
    Arena arena;
    RecordList<int> list(arena);
    std::deque<int> model;
    for (int step = 0; step < 5000; ++step) {
        const int count = static_cast<int>(model.size());
        const int index = count == 0 ? 0 : static_cast<int>(random() % static_cast<unsigned>(count));
        switch (random() % 4) {
            case 0:
                list.addHead(step);
                model.push_front(step);
                break;
            case 1:
                if (count > 30) {
                    ASSERT_TRUE(list.removeAt(index));
                    model.erase(model.begin() + index);
                }
                break;
            default:
                ASSERT_TRUE(count == 0 || list.nodeAt(index)->record == model[static_cast<std::size_t>(index)]) << step;
        }
    }
    ASSERT_EQ(list.itemCount(), static_cast<int>(model.size()));
    std::size_t i = 0;
    for (const int record : list) EXPECT_EQ(record, model[i++]);
}

struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
    inline static int alive = 0;
};

TEST(ItemListTest, ClearItemsDestroysItemsAndClearNodesDoesNot) {
    Arena arena;
    std::vector<Counted*> items;
    for (const bool deleteItems : {true, false}) {
        ItemList<Counted> list(arena);
        for (int i = 0; i < 3; ++i) items.push_back(list.addItem(arena.make<Counted>()));
        EXPECT_EQ(list.addItem(nullptr), nullptr);
        EXPECT_EQ(list.itemCount(), 3);
        list.nodeAt(1);
        deleteItems ? list.clearItems() : list.clearNodes();
        EXPECT_EQ(Counted::alive, deleteItems ? 0 : 3);
        EXPECT_TRUE(list.itemCount() == 0 && list.begin() == list.end() && list.nodeAt(0) == nullptr);
        if (!deleteItems) list.addItem(items.back());  // a plain list's destructor leaves it
    }
    for (std::size_t i = 3; i < items.size(); ++i) std::destroy_at(items[i]);
    EXPECT_EQ(Counted::alive, 0);
}

// Records go in at the head and leave from the tail, also when adds and
// takes alternate.
TEST(CompressedFileListTest, FirstInFirstOut) {
    CompressedFileList list;
    for (int i = 0; i < 10; ++i) list.addCompressedFile({TextString("/j"), TextString(std::to_string(i).c_str())});
    for (const char* name : {"0", "1", "2"}) EXPECT_STREQ(list.takeCompressedFile().fileName.text(), name);
    list.addCompressedFile({TextString("/j"), TextString("new")});
    for (const char* name : {"3", "4", "5", "6", "7", "8", "9", "new"}) {
        EXPECT_STREQ(list.takeCompressedFile().fileName.text(), name);
    }
    EXPECT_EQ(list.itemCount(), 0);
}

}  // namespace
