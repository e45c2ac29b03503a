// The VRN netlist writer's pieces below Design::writeNetlistFile. The layout
// of every line is shown at the top of netlist_writer.cpp.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

#include "design/net.h"
#include "design/part.h"
#include "design/text_output.h"

class Design;

// Side indexes of one write, built in one pass over the components, so
// that a net pin costs a few array reads instead of scans of the lists.
// They give exactly what the scans would: the first component with a key,
// its refdes, its pins by index, the packages by number. The texts a net
// pin needs are copied side by side, so the write reads a few megabytes
// instead of the whole model.
class NetlistLookup {
public:
    explicit NetlistLookup(Design& design);

    struct Component {
        const Part* part;
        const char* refdes;
        std::int32_t pinCount;
        std::int32_t packageIndex;
        std::size_t firstPin;  // into pinTexts_
    };

    // The first component whose key equals key, or null.
    const Component* componentByKey(const TextString& key) const;
    // REQUIRES: pinIndex < component.pinCount; a negative one ends the run
    // (abnormalEnd), as the unguarded fetch of the pin does.
    const char* pinText(const Component& component, std::int32_t pinIndex) const {
        if (pinIndex < 0) abnormalEnd();
        return pinTexts_[component.firstPin + static_cast<std::size_t>(pinIndex)];
    }
    // The package with this number; out of range ends the run: abnormalEnd().
    Part* packageAt(std::int32_t index) const;
    // The package pin at pinIndex must exist, or the run ends: abnormalEnd().
    static void checkPackagePin(Part* package, std::int32_t pinIndex);

private:
    // "T12" / "B7" as written by the components reader, with a number below
    // limit: the side (0 top, 1 bottom) and the number; else false.
    bool numberedKey(const char* key, int* side, std::size_t* number) const;

    std::vector<Component> components_;
    std::vector<const char*> pinTexts_;
    std::vector<char> texts_;  // refdes and pin texts, each with its terminator
    std::vector<Part*> packages_;
    std::size_t numberLimit_ = 0;
    std::vector<std::int32_t> byNumber_[2];  // first component per number, -1 none
    std::unordered_map<std::string, std::int32_t> otherKeys_;
};

// The pin text behind a "refdes-" prefix, judged by lengths alone: null
// unless pinText holds a '-' at position strlen(refdes); then the text
// behind pinText's first '-'.
const char* stripPinPrefix(const char* refdes, const char* pinText);

// The rest of a net's block after its "\t<name>".
void writeNetPins(NetPinList& pins, TextOutput& out, Design& design, std::int32_t nameLength,
                  NetlistLookup& lookup);

// "NETLIST", one block per net, "END_NETLIST".
void writeNetlistSection(NetList& nets, TextOutput& out, NetlistLookup& lookup);
