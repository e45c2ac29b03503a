#include "odb/keyword_table.h"

void KeywordTable::add(const char* keyword, std::int32_t code) {
    Keyword entry;
    entry.keyword.assign(keyword);
    entry.code = code;
    addTail(entry);
}

namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

}  // namespace

std::int32_t KeywordTable::lookup(const char* word, bool caseSensitive, std::int32_t notFound) {
    // Every line is classified here: a first-byte test spares most compares.
    const char first = word == nullptr ? '\0' : caseSensitive ? word[0] : lowered(word[0]);
    for (Node* node = head; node != nullptr; node = node->next) {
        const char* keyword = node->record.keyword.text();
        if ((caseSensitive ? keyword[0] : lowered(keyword[0])) != first && keyword[0] != '\0') continue;
        if (node->record.keyword.compare(word, caseSensitive) == 0) return node->record.code;
    }
    return notFound;
}
