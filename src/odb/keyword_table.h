// KeywordTable: turns the first word of a record into the code a file reader
// dispatches on. Entries are searched in the order they were added, and the
// first match wins. Each scanner fills its own table and decides how words
// are compared and what an unlisted word gives.
#pragma once

#include <cstdint>
#include <cstring>

#include "containers/flat_index.h"
#include "containers/item_list.h"
#include "containers/text_string.h"

struct Keyword {
    TextString keyword;
    std::int32_t code = 0;
};

// Whether an entry's keyword is spelt as word, exactly.
struct SpeltAs {
    const char* word;
    bool operator()(const Keyword* entry) const { return std::strcmp(entry->keyword.text(), word) == 0; }
};

// The entries are a list of records, searched from the first; a table is
// only added to at the tail and emptied whole, which keeps its index exact.
class KeywordTable {
public:
    std::int32_t itemCount() const { return entries_.itemCount(); }
    void add(const char* keyword, std::int32_t code);
    // The code of the first entry equal to word (ignoring ASCII case when
    // caseSensitive is false); notFound when none is, or the table is empty.
    // Every line of a job file is looked up exactly.
    std::int32_t lookup(const char* word, bool caseSensitive, std::int32_t notFound) const {
        if (!caseSensitive) return lookupIgnoringCase(word, notFound);
        const Keyword* entry = exact_.find(hashText(word), SpeltAs{word});
        return entry == nullptr ? notFound : entry->code;
    }
    // Releases every entry with its keyword text.
    void clearRecords();

private:
    std::int32_t lookupIgnoringCase(const char* word, std::int32_t notFound) const;

    Arena arena_;
    RecordList<Keyword> entries_{arena_};
    // The first entry of each word, by its hash: every line of a job file
    // is looked up exactly.
    FlatIndex<const Keyword> exact_;
};
