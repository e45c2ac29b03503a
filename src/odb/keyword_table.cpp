#include "odb/keyword_table.h"

namespace {

// An inline comparison: the words are a few letters long, and every line
// of a job file is looked up.
auto equalTo(const char* word) {
    return [word](const Keyword* entry) {
        const char* keyword = entry->keyword.text();
        std::size_t i = 0;
        while (keyword[i] == word[i] && word[i] != '\0') ++i;
        return keyword[i] == word[i];
    };
}

}  // namespace

void KeywordTable::add(const char* keyword, std::int32_t code) {
    Keyword entry;
    entry.keyword.assign(keyword);
    entry.code = code;
    const Keyword* added = &entries_.addTail(entry);
    const std::uint64_t hash = hashText(added->keyword.text());
    if (exact_.find(hash, equalTo(added->keyword.text())) == nullptr) exact_.add(hash, added);
}

void KeywordTable::clearRecords() {
    exact_.clear();
    entries_.clearRecords();
}

std::int32_t KeywordTable::lookup(const char* word, bool caseSensitive, std::int32_t notFound) const {
    if (caseSensitive) {
        const Keyword* entry = exact_.find(hashText(word), equalTo(word));
        return entry == nullptr ? notFound : entry->code;
    }
    for (const Keyword& entry : entries_) {
        if (entry.keyword.compare(word, false) == 0) return entry.code;
    }
    return notFound;
}
