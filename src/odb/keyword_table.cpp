#include "odb/keyword_table.h"

void KeywordTable::add(const char* keyword, std::int32_t code) {
    Keyword entry;
    entry.keyword.assign(keyword);
    entry.code = code;
    const Keyword* added = &entries_.addTail(entry);
    // The first entry of a word is the one found.
    const std::uint64_t hash = hashText(added->keyword.text());
    if (exact_.find(hash, SpeltAs{added->keyword.text()}) == nullptr) exact_.add(hash, added);
}

void KeywordTable::clearRecords() {
    exact_.clear();
    entries_.clearRecords();
}

std::int32_t KeywordTable::lookupIgnoringCase(const char* word, std::int32_t notFound) const {
    for (const Keyword& entry : entries_) {
        if (entry.keyword.compare(word, false) == 0) return entry.code;
    }
    return notFound;
}
