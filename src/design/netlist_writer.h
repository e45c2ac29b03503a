// The NETLIST section of the VRN file: a block for each net, a line for each
// of its pins ("->" a tab, "." a blank, W = longestNetName + 5):
//
//   ->NAME.....refdes..........  pin   first pin: name filled to W, refdes to 16
//   ->.........refdes..........  pin;  further pins: W blanks; ';' ends the net
//   ->NAME.....;                      a net without pins
//
// A net pin names its component by key and its pin by index. The section
// finds them as a scan of the lists from index 0 would: the first component
// with the key, its pins by index, the packages by number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "containers/flat_index.h"

class Design;
class Net;
class NetPin;
class Part;
class PartPin;
class TextOutput;

class NetlistSection {
public:
    // Finds every net pin's way to its component before the file's first
    // byte: when memory runs out here, nothing has been written.
    explicit NetlistSection(const Design& design);

    // "NETLIST", a block for each net, "END_NETLIST". False, with the
    // section unfinished, when the run was interrupted.
    bool write(TextOutput& out) const;

private:
    struct Component {
        const Part* part;
        std::size_t firstPin;  // its pins in pins_
    };
    // What a net's pins hand on to the pins after them: the package number
    // of the last component found, and the text of the last pin found in
    // it. A pin whose key matches nothing shows that text behind an empty
    // refdes.
    struct CarriedValues {
        bool hasPackage = false;
        std::int32_t packageIndex = 0;
        const char* pinText = "";
    };

    // The first component with key, or null.
    const Component* find(const char* key) const;
    void writeNet(TextOutput& out, const Net& net) const;
    bool resolvePin(TextOutput& out, const NetPin& pin, const Component* component, CarriedValues& carried) const;

    const Design& design_;
    std::vector<Component> components_;  // the first of each key, in list order
    std::vector<const PartPin*> pins_;
    FlatIndex<const Component> byKey_;
    std::vector<std::int32_t> packagePins_;  // by package number
};

// The pin text behind a "refdes-" prefix, judged by lengths alone: null
// unless pinText holds a '-' at position refdesLength; then the text behind
// pinText's first '-'.
const char* stripPinPrefix(std::size_t refdesLength, const char* pinText);
