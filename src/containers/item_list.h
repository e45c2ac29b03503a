// ItemList: the converter's one collection, a doubly linked list addressed by
// a zero-based index. It remembers the node it delivered last and reaches an
// index from whichever of the remembered position, the head or the tail is
// strictly nearest, every tie going to the tail (walkTo). Stepping to the
// next index and going back to index 0 cost no walk.
//
// Two node kinds exist: ItemNode holds a pointer to an item that is never
// null (adds refuse null); RecordNode holds a record by value. Whether the
// items are owned is decided by the holder: an owning holder calls
// clearItems in its destructor; a plain ItemList only frees its nodes.
// A range loop goes over the items in list order and leaves the remembered
// position alone.
#pragma once

#include <cstdint>

#include "containers/abnormal_end.h"
#include "containers/block_pool.h"

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
    T* value() const { return item; }

    ODB2VRN_POOLED(ItemNode)
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

    ODB2VRN_POOLED(RecordNode)
};

template <typename Node>
class LinkedIndex {
public:
    LinkedIndex() = default;
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
        const Walk walk = walkTo(count_, positionIndex_, i);
        if (walk.start == WalkStart::Head) position_ = head_;
        if (walk.start == WalkStart::Tail) position_ = tail_;
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
        delete node;
        --count_;
        return true;
    }

    // Frees every node and resets the list; items are left alone.
    void clearNodes() {
        freeNodes([](Node*) {});
    }

    // The items (or records) in list order.
    class Iterator {
    public:
        explicit Iterator(Node* node) : node_(node) {}
        decltype(auto) operator*() const { return node_->value(); }
        Iterator& operator++() {
            node_ = node_->next;
            return *this;
        }
        bool operator==(const Iterator& other) const { return node_ == other.node_; }
        bool operator!=(const Iterator& other) const { return node_ != other.node_; }

    private:
        Node* node_;
    };
    Iterator begin() const { return Iterator(head_); }
    Iterator end() const { return Iterator(nullptr); }

protected:
    ~LinkedIndex() { clearNodes(); }

    void linkTail(Node* node) {
        if (count_ == 0) {
            head_ = tail_ = node;
        } else {
            node->prev = tail_;
            tail_->next = node;
            tail_ = node;
        }
        ++count_;
    }

    void linkHead(Node* node) {
        if (count_ == 0) {
            head_ = tail_ = node;
        } else {
            node->next = head_;
            head_->prev = node;
            head_ = node;
        }
        ++count_;
        ++positionIndex_;  // every index has moved up, remembered or not
    }

    // Frees the nodes head first, each after release(node), and resets the
    // list.
    template <typename Release>
    void freeNodes(Release release) {
        while (head_ != nullptr) {
            Node* node = head_;
            head_ = head_->next;
            release(node);
            delete node;
        }
        tail_ = position_ = nullptr;
        positionIndex_ = 0;
        count_ = 0;
    }

private:
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
        Node* node = new Node;
        node->item = item;
        this->linkTail(node);
        return item;
    }

    // Deletes every item with its own destructor, then frees the nodes, in
    // one walk in list order: what fetching the items one index after the
    // other and then freeing the nodes leaves, and a large board's model is
    // released at the end of every run.
    void clearItems() {
        this->freeNodes([](Node* node) { delete node->item; });
    }
};

// The reading operations of an ItemList, for the list kinds that keep a
// side index of their items: they add and clear only through operations of
// their own, which keep the index exact.
template <typename T>
class IndexedItemList {
public:
    std::int32_t itemCount() const { return items_.itemCount(); }
    T* itemAt(std::int32_t index) { return items_.itemAt(index); }
    typename ItemList<T>::Iterator begin() const { return items_.begin(); }
    typename ItemList<T>::Iterator end() const { return items_.end(); }

protected:
    IndexedItemList() = default;
    ~IndexedItemList() = default;
    ItemList<T> items_;
};

// A list of records held by value in the nodes.
template <typename R>
class RecordList : public LinkedIndex<RecordNode<R>> {
public:
    using Node = RecordNode<R>;

    void addTail(const R& record) {
        Node* node = new Node;
        node->record = record;
        this->linkTail(node);
    }

    void addHead(const R& record) {
        Node* node = new Node;
        node->record = record;
        this->linkHead(node);
    }

    // Frees every node with its record.
    void clearRecords() { this->clearNodes(); }
};
