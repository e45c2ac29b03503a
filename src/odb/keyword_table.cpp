#include "odb/keyword_table.h"

void KeywordTable::add(const char* keyword, std::int32_t code) {
    Keyword entry;
    entry.keyword.assign(keyword);
    entry.code = code;
    const Keyword* added = &entries_.addTail(entry);
    const std::uint64_t hash = hashText(added->keyword.text());
    // The first entry of a word is the one found.
    if (lookupExact(added->keyword.text(), hash, 0) == 0) exact_.add(hash, added);
}

void KeywordTable::clearRecords() {
    exact_.clear();
    entries_.clearRecords();
}

std::int32_t KeywordTable::lookup(const char* word, bool caseSensitive, std::int32_t notFound) const {
    if (caseSensitive) return lookupExact(word, hashText(word), notFound);
    for (const Keyword& entry : entries_) {
        if (entry.keyword.compare(word, false) == 0) return entry.code;
    }
    return notFound;
}
