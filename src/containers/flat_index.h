// FlatIndex: pointers to items in one open-addressing table, for the
// lookups a board makes by the hundred thousand (a component by its
// reference, a connection by its key and pin). One array of slots, grown
// by doubling, instead of a heap node per entry: fresh memory is what a large
// board pays for most. Each slot keeps the hash its item was added under,
// so that a search looks at an item only when the hashes agree and growing
// never looks at one: the items lie all over the model, and each look is a
// likely cache miss. The items stay where they are; the caller gives the
// hash of each and says which stored item matches, and it keeps one item a
// key: it finds before it adds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

template <typename Item>
class FlatIndex {
public:
    // The item added under hash for which matches(item) holds, or null.
    template <typename Matches>
    Item* find(std::uint64_t hash, Matches matches) const {
        if (!table_) return nullptr;
        const std::size_t mask = table_->slots.size() - 1;
        for (std::size_t at = spread(hash) & mask;; at = (at + 1) & mask) {
            const Slot& slot = table_->slots[at];
            if (slot.item == nullptr) return nullptr;
            if (slot.hash == hash && matches(slot.item)) return slot.item;
        }
    }

    // Adds item under hash; no item that matches it may be there.
    void add(std::uint64_t hash, Item* item) {
        if (!table_) table_.reset(new Table);
        if ((table_->used + 1) * 2 > table_->slots.size()) grow();
        place(Slot{hash, item});
        ++table_->used;
    }

    void clear() { table_.reset(); }

private:
    struct Slot {
        std::uint64_t hash;
        Item* item;
    };
    // Apart from the index, so that the many lists that never grow long
    // carry one pointer for it.
    struct Table {
        std::vector<Slot> slots;
        std::size_t used = 0;
    };

    // The hashes come from byte sums; their low bits pick the slot, so they
    // are mixed first (the finishing steps of MurmurHash3).
    static std::size_t spread(std::uint64_t hash) {
        std::uint64_t mixed = hash;
        mixed ^= mixed >> 33;
        mixed *= 0xff51afd7ed558ccdULL;
        mixed ^= mixed >> 33;
        return static_cast<std::size_t>(mixed);
    }

    void place(const Slot& slot) {
        std::vector<Slot>& slots = table_->slots;
        const std::size_t mask = slots.size() - 1;
        std::size_t at = spread(slot.hash) & mask;
        while (slots[at].item != nullptr) at = (at + 1) & mask;
        slots[at] = slot;
    }

    void grow() {
        std::vector<Slot> old;
        old.swap(table_->slots);
        table_->slots.assign(old.empty() ? 16 : old.size() * 2, Slot{0, nullptr});
        for (const Slot& slot : old) {
            if (slot.item != nullptr) place(slot);
        }
    }

    std::unique_ptr<Table> table_;
};

// The one hash of every lookup, FNV-1a: over a zero-terminated text, and on
// over more bytes (a pin index behind a key).
constexpr std::uint64_t kHashStart = 14695981039346656037ULL;
inline std::uint64_t hashByte(std::uint64_t hash, unsigned char byte) { return (hash ^ byte) * 1099511628211ULL; }
inline std::uint64_t hashText(const char* text, std::uint64_t hash = kHashStart) {
    for (const char* p = text; *p != '\0'; ++p) hash = hashByte(hash, static_cast<unsigned char>(*p));
    return hash;
}
inline std::uint64_t hashBytes(const void* bytes, std::size_t size, std::uint64_t hash) {
    for (std::size_t i = 0; i < size; ++i) hash = hashByte(hash, static_cast<const unsigned char*>(bytes)[i]);
    return hash;
}
