#include "design/component_key.h"

const char* sideLetter(BoardSide side) { return side == BoardSide::kTop ? "T" : "B"; }

TextString componentKey(BoardSide side, std::int32_t number) {
    TextString key(sideLetter(side));
    key.append(number);
    return key;
}

bool parseComponentKey(const char* key, std::size_t limit, BoardSide* side, std::size_t* number) {
    if (key[0] != 'T' && key[0] != 'B') return false;
    const char* digits = key + 1;
    if (digits[0] < '0' || digits[0] > '9' || (digits[0] == '0' && digits[1] != '\0')) return false;
    std::size_t value = 0;
    for (const char* p = digits; *p != '\0'; ++p) {
        if (*p < '0' || *p > '9') return false;
        value = value * 10 + static_cast<std::size_t>(*p - '0');
        if (value >= limit) return false;
    }
    *side = key[0] == 'T' ? BoardSide::kTop : BoardSide::kBottom;
    *number = value;
    return true;
}
