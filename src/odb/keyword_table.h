// KeywordTable: turns the first word of a record into the code a file reader
// dispatches on. Entries are searched in the order they were added, and the
// first match wins. Each scanner fills its own table and decides how words
// are compared and what an unlisted word gives.
#pragma once

#include <cstdint>

#include "containers/item_list.h"
#include "containers/text_string.h"

// A word of up to 15 bytes as two numbers, byte i in bits 8 * (i % 8) up
// of the (i / 8)th: the key of a table's index. A line scanner packs the
// first word of a line while it copies it.
struct PackedWord {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    // REQUIRES: 0 <= i < 15.
    void put(int i, char c) {
        (i < 8 ? low : high) |= std::uint64_t{static_cast<unsigned char>(c)} << (i % 8 * 8);
    }
};

struct Keyword {
    TextString keyword;
    std::int32_t code = 0;
};

// The entries are a list of records, searched from the first; a table is
// only added to at the tail and emptied whole, which keeps its index exact.
class KeywordTable {
public:
    std::int32_t itemCount() const { return entries_.itemCount(); }
    void add(const char* keyword, std::int32_t code);
    // The code of the first entry equal to word (ignoring ASCII case when
    // caseSensitive is false); notFound when none is, or the table is empty.
    std::int32_t lookup(const char* word, bool caseSensitive, std::int32_t notFound);
    // The same for a packed word, compared exactly.
    std::int32_t lookupExact(const PackedWord& word, std::int32_t notFound) {
        if (!indexed_) return walkPacked(word, notFound);
        const Slot* slot = find(exact_, word.low, word.high);
        return slot == nullptr ? notFound : slot->code;
    }
    // Releases every entry with its keyword text.
    void clearRecords();

private:
    // Every line of a job file is looked up, so short words (up to 15 bytes,
    // as long as a record's first word) go through a hash of their bytes:
    // one table as written, one in lower case. A slot holds the code of the
    // first entry with its word; a longer word walks the list.
    struct Slot {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        std::int32_t code = 0;
        bool used = false;
    };
    static constexpr int kSlots = 64;
    static bool pack(const char* word, bool lower, std::uint64_t* low, std::uint64_t* high);
    static int slotOf(std::uint64_t low, std::uint64_t high) {
        return static_cast<int>(((low + high * 0x9E3779B97F4A7C15ULL) * 0xBF58476D1CE4E5B9ULL) >> 58);  // 64 slots
    }
    static void insert(Slot* table, std::uint64_t low, std::uint64_t high, std::int32_t code);
    static const Slot* find(const Slot* table, std::uint64_t low, std::uint64_t high) {
        for (int i = slotOf(low, high);; i = (i + 1) % kSlots) {
            const Slot& slot = table[i];
            if (!slot.used) return nullptr;
            if (slot.low == low && slot.high == high) return &slot;
        }
    }
    std::int32_t walk(const char* word, bool caseSensitive, std::int32_t notFound);
    std::int32_t walkPacked(const PackedWord& word, std::int32_t notFound);

    RecordList<Keyword> entries_;
    Slot exact_[kSlots];
    Slot lowered_[kSlots];
    bool indexed_ = true;  // false once the table outgrows the slots
};
