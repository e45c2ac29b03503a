// The NETLIST section of the VRN file: a block for each net, a line for each
// of its pins ("->" a tab, "." a blank, W = longestNetName + 5):
//
//   ->NAME.....refdes..........  pin   first pin: name filled to W, refdes to 16
//   ->.........refdes..........  pin;  further pins: W blanks; ';' ends the net
//   ->NAME.....;                      a net without pins
//
// A net pin names its component by key and its pin by index; it finds them
// through ComponentBlocks, as a scan of the lists from index 0 would.
#pragma once

#include <cstddef>
#include <string_view>

#include "design/component_blocks.h"

class Design;
class TextOutput;

class NetlistSection {
public:
    // Finds the components' blocks before the file's first byte.
    explicit NetlistSection(const Design& design) : design_(design), blocks_(design) {}

    // "NETLIST", a block for each net, "END_NETLIST". False, with the
    // section unfinished, when the run was interrupted.
    bool write(TextOutput& out) const;

private:
    const Design& design_;
    const ComponentBlocks blocks_;
};

// The pin text behind a "refdes-" prefix, judged by lengths alone: null
// unless pinText holds a '-' at position refdesLength; then the text behind
// pinText's first '-'.
const char* stripPinPrefix(std::size_t refdesLength, std::string_view pinText);
