// A component's key: its side letter and its number in its side's
// components file ("T0", "B12"), counted from 0. The components reader gives
// every component its key so, and the net pins of eda/data name components
// by the same text.
#pragma once

#include <cstddef>
#include <cstdint>

#include "containers/text_string.h"

enum class BoardSide { kTop = 0, kBottom = 1 };

// "T" or "B".
const char* sideLetter(BoardSide side);
TextString componentKey(BoardSide side, std::int32_t number);

// The side and number of a key spelt as componentKey spells it (no sign, no
// leading zero) with a number below limit; false for any other text.
bool parseComponentKey(const char* key, std::size_t limit, BoardSide* side, std::size_t* number);
