#include "odb/keyword_table.h"

namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

}  // namespace

bool KeywordTable::pack(const char* word, bool lower, std::uint64_t* low, std::uint64_t* high) {
    PackedWord packed;
    if (word != nullptr) {
        for (int i = 0; word[i] != '\0'; ++i) {
            if (i == 15) return false;
            packed.put(i, lower ? lowered(word[i]) : word[i]);
        }
    }
    *low = packed.low;
    *high = packed.high;
    return true;
}

void KeywordTable::insert(Slot* table, std::uint64_t low, std::uint64_t high, std::int32_t code) {
    for (int i = slotOf(low, high);; i = (i + 1) % kSlots) {
        Slot& slot = table[i];
        if (!slot.used) {
            slot = {low, high, code, true};
            return;
        }
        if (slot.low == low && slot.high == high) return;  // the first entry wins
    }
}

void KeywordTable::add(const char* keyword, std::int32_t code) {
    Keyword entry;
    entry.keyword.assign(keyword);
    entry.code = code;
    entries_.addTail(entry);
    // Half the slots at most stay free, so that a search ends soon.
    if (itemCount() > kSlots / 2) indexed_ = false;
    std::uint64_t low = 0, high = 0;
    if (indexed_ && pack(keyword, false, &low, &high)) {
        insert(exact_, low, high, code);
        pack(keyword, true, &low, &high);
        insert(lowered_, low, high, code);
    }
}

void KeywordTable::clearRecords() {
    entries_.clearRecords();
    for (int i = 0; i < kSlots; ++i) exact_[i] = lowered_[i] = Slot();
    indexed_ = true;
}

std::int32_t KeywordTable::lookup(const char* word, bool caseSensitive, std::int32_t notFound) {
    std::uint64_t low = 0, high = 0;
    if (!indexed_ || !pack(word, !caseSensitive, &low, &high)) return walk(word, caseSensitive, notFound);
    const Slot* slot = find(caseSensitive ? exact_ : lowered_, low, high);
    return slot == nullptr ? notFound : slot->code;
}

std::int32_t KeywordTable::walk(const char* word, bool caseSensitive, std::int32_t notFound) {
    const char first = word == nullptr ? '\0' : caseSensitive ? word[0] : lowered(word[0]);
    for (const Keyword& entry : entries_) {
        const char* keyword = entry.keyword.text();
        if ((caseSensitive ? keyword[0] : lowered(keyword[0])) != first && keyword[0] != '\0') continue;
        if (entry.keyword.compare(word, caseSensitive) == 0) return entry.code;
    }
    return notFound;
}

std::int32_t KeywordTable::walkPacked(const PackedWord& word, std::int32_t notFound) {
    char text[16] = {};
    for (int i = 0; i < 15; ++i) text[i] = static_cast<char>((i < 8 ? word.low : word.high) >> (i % 8 * 8));
    return walk(text, true, notFound);
}
