#include "odb/keyword_table.h"

void KeywordTable::add(const char* keyword, std::int32_t code) {
    Keyword entry;
    entry.keyword.assign(keyword);
    entry.code = code;
    addTail(entry);
}

std::int32_t KeywordTable::lookup(const char* word, bool caseSensitive, std::int32_t notFound) {
    for (Node* node = head; node != nullptr; node = node->next) {
        if (node->record.keyword.compare(word, caseSensitive) == 0) return node->record.code;
    }
    return notFound;
}
