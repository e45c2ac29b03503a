// KeywordTable: turns the first word of a record into the code a file reader
// dispatches on. Entries are searched in the order they were added, and the
// first match wins. Each scanner fills its own table and decides how words
// are compared and what an unlisted word gives.
#pragma once

#include <cstdint>

#include "containers/flat_index.h"
#include "containers/item_list.h"
#include "containers/text_string.h"

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
    std::int32_t lookup(const char* word, bool caseSensitive, std::int32_t notFound) const;
    // The same, exact, for a word whose hashText is at hand: every line of a
    // job file is looked up so.
    std::int32_t lookupExact(const char* word, std::uint64_t hash, std::int32_t notFound) const {
        const Keyword* entry = exact_.find(hash, [word](const Keyword* candidate) {
            const char* keyword = candidate->keyword.text();
            std::size_t i = 0;
            while (keyword[i] == word[i] && word[i] != '\0') ++i;
            return keyword[i] == word[i];
        });
        return entry == nullptr ? notFound : entry->code;
    }
    // Releases every entry with its keyword text.
    void clearRecords();

private:
    Arena arena_;
    RecordList<Keyword> entries_{arena_};
    // Every line of a job file is looked up exactly: the first entry of
    // each word, by its hash.
    FlatIndex<const Keyword> exact_;
};
