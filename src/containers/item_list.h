// ItemList: the converter's one collection, a doubly linked list addressed by
// a zero-based index. It remembers the node it delivered last (`position`
// and `positionIndex`) and reaches an index from whichever of the remembered
// position, the head or the tail is strictly nearest, every tie going to the
// tail. Stepping to the next index and going back to index 0 cost no walk.
//
// Two node kinds exist: ItemNode holds a pointer to an item that is never
// null (adds refuse null); RecordNode holds a record by value. Whether the
// items are owned is decided by the holder: an owning holder calls
// clearItems in its destructor; a plain ItemList only frees its nodes.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "containers/abnormal_end.h"
#include "containers/block_pool.h"

// Where nodeAt started its last walk, and how many steps it took: observable
// so that the walk rule can be checked, never read by the converter.
enum class WalkStart { None, Position, Head, Tail };

template <typename T>
struct ItemNode {
    ItemNode* next = nullptr;
    ItemNode* prev = nullptr;
    T* item = nullptr;

    ODB2VRN_POOLED(ItemNode)
};

template <typename R>
struct RecordNode {
    RecordNode* next = nullptr;
    RecordNode* prev = nullptr;
    R record;

    ODB2VRN_POOLED(RecordNode)
};

template <typename Node>
class LinkedIndex {
public:
    LinkedIndex() = default;
    LinkedIndex(const LinkedIndex&) = delete;
    LinkedIndex& operator=(const LinkedIndex&) = delete;

    std::int32_t itemCount() const { return count; }

    // The node at index i, or null when i is out of range (then nothing
    // changes). Moves the remembered position onto the node.
    Node* nodeAt(std::int32_t i) {
        lastWalkStart = WalkStart::None;
        lastWalkSteps = 0;
        if (i < 0 || i >= count) return nullptr;
        if (position == nullptr) {
            position = head;
            positionIndex = 0;
        }
        if (i == positionIndex) return position;
        const std::int64_t distance = static_cast<std::int64_t>(positionIndex) - i;
        if (distance == 1) {
            position = position->prev;
            positionIndex = i;
            return position;
        }
        if (distance == -1) {
            position = position->next;
            positionIndex = i;
            return position;
        }
        const std::int64_t fromHead = i;
        const std::int64_t fromPosition = distance < 0 ? -distance : distance;
        const std::int64_t fromTail = static_cast<std::int64_t>(count) - i - 1;
        if (fromHead > fromPosition && fromPosition < fromTail) {
            walk(WalkStart::Position, fromPosition, positionIndex < i);
        } else if (fromHead < fromPosition && fromHead < fromTail) {
            position = head;
            walk(WalkStart::Head, fromHead, true);
        } else {
            position = tail;
            walk(WalkStart::Tail, fromTail, false);
        }
        positionIndex = i;
        return position;
    }

    // Removes the node at index i; false when there is none.
    bool removeAt(std::int32_t i) {
        Node* node = nodeAt(i);
        if (node == nullptr) return false;
        if (i == positionIndex) {
            if (node->next != nullptr) {
                position = node->next;
            } else if (node->prev != nullptr) {
                position = node->prev;
                --positionIndex;
            } else {
                position = nullptr;
                positionIndex = 0;
            }
        } else if (i < positionIndex) {
            --positionIndex;
        }
        if (node->prev != nullptr) node->prev->next = node->next;
        else head = node->next;
        if (node->next != nullptr) node->next->prev = node->prev;
        else tail = node->prev;
        delete node;
        --count;
        return true;
    }

    // Frees every node and resets the list; items are left alone.
    void clearNodes() {
        while (head != nullptr) {
            tail = head;
            head = head->next;
            delete tail;
        }
        head = tail = position = nullptr;
        positionIndex = 0;
        count = 0;
    }

    Node* head = nullptr;
    Node* tail = nullptr;
    Node* position = nullptr;
    std::int32_t positionIndex = 0;
    std::int32_t count = 0;

    // Shared by all lists of a kind, so that a board's many lists don't
    // carry them: the last nodeAt of any of them.
    static inline WalkStart lastWalkStart = WalkStart::None;
    static inline std::int64_t lastWalkSteps = 0;

protected:
    ~LinkedIndex() { clearNodes(); }

    void linkTail(Node* node) {
        if (count == 0) {
            head = tail = node;
        } else {
            node->prev = tail;
            tail->next = node;
            tail = node;
        }
        ++count;
    }

    void linkHead(Node* node) {
        if (count == 0) {
            head = tail = node;
        } else {
            node->next = head;
            head->prev = node;
            head = node;
        }
        ++count;
        ++positionIndex;  // every index has moved up, remembered or not
    }

private:
    void walk(WalkStart start, std::int64_t steps, bool forward) {
        lastWalkStart = start;
        lastWalkSteps = steps;
        for (std::int64_t s = 0; s < steps; ++s) position = forward ? position->next : position->prev;
    }
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

    // Deletes every item with its own destructor, then frees the nodes. One
    // walk does both, in list order: fetching the items one index after the
    // other would step along the same nodes, and a large board's model is
    // released in one piece at the end of a run.
    void clearItems() {
        if (this->count > 0) {
            // What the last of those fetches would leave.
            this->lastWalkStart = WalkStart::None;
            this->lastWalkSteps = 0;
        }
        for (Node* node = this->head; node != nullptr;) {
            Node* next = node->next;
            delete node->item;
            delete node;
            node = next;
        }
        this->head = this->tail = this->position = nullptr;
        this->positionIndex = 0;
        this->count = 0;
    }
};

// An ItemList that owns its items.
template <typename T>
class OwningItemList : public ItemList<T> {
public:
    ~OwningItemList() { this->clearItems(); }
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

    ~RecordList() { clearRecords(); }
};
