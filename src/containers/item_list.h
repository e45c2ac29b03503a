// ItemList: the converter's one collection, a doubly linked list addressed by
// a zero-based index. It remembers the node it delivered last and reaches an
// index from whichever of the remembered position, the head or the tail is
// strictly nearest, every tie going to the tail (walkTo). Stepping to the
// next index and going back to index 0 cost no walk.
//
// Two node kinds exist: ItemNode holds a pointer to an item that is never
// null (adds refuse null); RecordNode holds a record by value. The nodes
// live in the arena the list is given. Whether the items are owned is
// decided by the holder: an owning holder calls clearItems in its
// destructor, which destroys items made in an arena; a plain ItemList only
// lets go of its nodes. A range loop goes over the items in list order and
// leaves the remembered position alone; over a const list it hands out
// const items.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

#include "containers/abnormal_end.h"
#include "containers/arena.h"

namespace itemlist {

// Where nodeAt starts its walk to an index, and how many steps it takes.
enum class WalkStart { Position, Head, Tail };
struct Walk {
    WalkStart start;
    std::int32_t steps;
    bool forward;
};

// The walk from the remembered index to index i in a list of count nodes.
// The remembered position and the head win only when strictly nearer than
// their rivals; a tie goes to the tail, also the one between the head and
// the position when the tail is far away. The position itself and its
// neighbours are tested first, so that the common steps cost one subtraction.
// REQUIRES: 0 <= i < count and 0 <= positionIndex < count.
constexpr Walk walkTo(std::int32_t count, std::int32_t positionIndex, std::int32_t i) {
    const std::int32_t fromPosition = i > positionIndex ? i - positionIndex : positionIndex - i;
    const bool forward = i > positionIndex;
    if (fromPosition <= 1) return {WalkStart::Position, fromPosition, forward};
    const std::int32_t fromHead = i;
    const std::int32_t fromTail = count - i - 1;
    if (fromHead > fromPosition && fromPosition < fromTail) return {WalkStart::Position, fromPosition, forward};
    if (fromHead < fromPosition && fromHead < fromTail) return {WalkStart::Head, fromHead, true};
    return {WalkStart::Tail, fromTail, false};
}

}  // namespace itemlist

template <typename Node>
class LinkedIndex;

template <typename T>
class ItemNode {
    template <typename>
    friend class LinkedIndex;
    ItemNode* next = nullptr;
    ItemNode* prev = nullptr;

public:
    T* item = nullptr;
    T* value() { return item; }
    const T* value() const { return item; }
};

template <typename R>
class RecordNode {
    template <typename>
    friend class LinkedIndex;
    RecordNode* next = nullptr;
    RecordNode* prev = nullptr;

public:
    R record;
    R& value() { return record; }
    const R& value() const { return record; }
};

template <typename Node>
class LinkedIndex {
public:
    explicit LinkedIndex(Arena& arena) : arena_(arena) {}
    LinkedIndex(const LinkedIndex&) = delete;
    LinkedIndex& operator=(const LinkedIndex&) = delete;

    std::int32_t itemCount() const { return count_; }

    // The node at index i, or null when i is out of range (then nothing
    // changes). Moves the remembered position onto the node.
    Node* nodeAt(std::int32_t i) {
        if (i < 0 || i >= count_) return nullptr;
        if (position_ == nullptr) {
            position_ = head_;
            positionIndex_ = 0;
        }
        const itemlist::Walk walk = itemlist::walkTo(count_, positionIndex_, i);
        if (walk.start == itemlist::WalkStart::Head) position_ = head_;
        if (walk.start == itemlist::WalkStart::Tail) position_ = tail_;
        for (std::int32_t s = 0; s < walk.steps; ++s) position_ = walk.forward ? position_->next : position_->prev;
        positionIndex_ = i;
        return position_;
    }

    // Removes the node at index i; false when there is none.
    bool removeAt(std::int32_t i) {
        Node* node = nodeAt(i);
        if (node == nullptr) return false;
        // The position stands on the node: the next one takes its index.
        if (node->next != nullptr) {
            position_ = node->next;
        } else if (node->prev != nullptr) {
            position_ = node->prev;
            --positionIndex_;
        } else {
            position_ = nullptr;
            positionIndex_ = 0;
        }
        if (node->prev != nullptr) node->prev->next = node->next;
        else head_ = node->next;
        if (node->next != nullptr) node->next->prev = node->prev;
        else tail_ = node->prev;
        std::destroy_at(node);
        --count_;
        return true;
    }

    // The items (or records) in list order.
    template <bool kConst>
    class Iterator {
    public:
        using NodePointer = std::conditional_t<kConst, const Node*, Node*>;
        explicit Iterator(NodePointer node) : node_(node) {}
        decltype(auto) operator*() const { return node_->value(); }
        Iterator& operator++() {
            node_ = node_->next;
            return *this;
        }
        bool operator==(const Iterator& other) const { return node_ == other.node_; }
        bool operator!=(const Iterator& other) const { return node_ != other.node_; }

    private:
        NodePointer node_;
    };
    using iterator = Iterator<false>;
    using const_iterator = Iterator<true>;
    Iterator<false> begin() { return Iterator<false>(head_); }
    Iterator<false> end() { return Iterator<false>(nullptr); }
    Iterator<true> begin() const { return Iterator<true>(head_); }
    Iterator<true> end() const { return Iterator<true>(nullptr); }

protected:
    ~LinkedIndex() { freeNodes([](Node*) {}); }

    // A node in the list's arena, linked at the tail or at the head.
    Node* linkTail() {
        Node* node = arena_.make<Node>();
        if (count_ == 0) {
            head_ = tail_ = node;
        } else {
            node->prev = tail_;
            tail_->next = node;
            tail_ = node;
        }
        ++count_;
        return node;
    }
    Node* linkHead() {
        Node* node = arena_.make<Node>();
        if (count_ == 0) {
            head_ = tail_ = node;
        } else {
            node->next = head_;
            head_->prev = node;
            head_ = node;
        }
        ++count_;
        ++positionIndex_;  // every index has moved up, remembered or not
        return node;
    }

    // Destroys the nodes head first, each after release(node), and resets
    // the list; their memory stays with the arena.
    template <typename Release>
    void freeNodes(Release release) {
        while (head_ != nullptr) {
            Node* node = head_;
            head_ = head_->next;
            release(node);
            std::destroy_at(node);
        }
        tail_ = position_ = nullptr;
        positionIndex_ = 0;
        count_ = 0;
    }

private:
    Arena& arena_;
    Node* head_ = nullptr;
    Node* tail_ = nullptr;
    Node* position_ = nullptr;
    std::int32_t positionIndex_ = 0;
    std::int32_t count_ = 0;
};

// A list of items by pointer.
template <typename T>
class ItemList : public LinkedIndex<ItemNode<T>> {
public:
    using Node = ItemNode<T>;
    using LinkedIndex<Node>::LinkedIndex;

    // The item at index i.
    // REQUIRES: 0 <= i < itemCount(); otherwise abnormalEnd().
    T* itemAt(std::int32_t i) {
        Node* node = this->nodeAt(i);
        if (node == nullptr) abnormalEnd();
        return node->item;
    }

    // Links item at the tail; a null is refused and gives null.
    T* addItem(T* item) {
        if (item == nullptr) return nullptr;
        this->linkTail()->item = item;
        return item;
    }

    // Lets go of every node; items are left alone.
    void clearNodes() {
        this->freeNodes([](Node*) {});
    }

    // Destroys every item, which was made in an arena, then lets go of the
    // nodes, in one walk in list order: what fetching the items one index
    // after the other and then clearing the nodes leaves.
    void clearItems() {
        this->freeNodes([](Node* node) { std::destroy_at(node->item); });
    }
};

// The reading operations of an ItemList, for the list kinds that add and
// clear only through operations of their own (which keep a side index
// exact, or give each item its owner).
template <typename T>
class SealedItemList {
public:
    using const_iterator = typename ItemList<T>::const_iterator;
    std::int32_t itemCount() const { return items_.itemCount(); }
    T* itemAt(std::int32_t index) { return items_.itemAt(index); }
    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

protected:
    explicit SealedItemList(Arena& arena) : items_(arena) {}
    ~SealedItemList() = default;
    ItemList<T> items_;
};

// A list of records held by value in the nodes.
template <typename R>
class RecordList : public LinkedIndex<RecordNode<R>> {
public:
    using Node = RecordNode<R>;
    using LinkedIndex<Node>::LinkedIndex;

    R& addTail(const R& record) { return this->linkTail()->record = record; }
    void addHead(const R& record) { this->linkHead()->record = record; }

    // Destroys every node with its record.
    void clearRecords() {
        this->freeNodes([](Node*) {});
    }
};
