// The rule by which a net line shows a component's pin text: a pin text
// that repeats its component's refdes ("U1-3" for pin 3 of U1) is shown
// without it. Design::writeNetlistFile (netlist_writer.cpp) writes the file.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

// The pin text behind a "refdes-" prefix, judged by lengths alone: null
// unless pinText holds a '-' at position refdesLength; then the text behind
// pinText's first '-'.
const char* stripPinPrefix(std::size_t refdesLength, std::string_view pinText);
inline const char* stripPinPrefix(const char* refdes, const char* pinText) {
    return stripPinPrefix(std::strlen(refdes), pinText);
}
