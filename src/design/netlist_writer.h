// The VRN netlist writer's pieces below Design::writeNetlistFile. The layout
// of every line is shown at the top of netlist_writer.cpp.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "design/net.h"
#include "design/part.h"

class Design;

// Side indexes of one write, so that every net pin costs constant time: the
// first component with each key, the components' pins and the packages by
// number. They give exactly what a scan of the lists would.
class NetlistLookup {
public:
    explicit NetlistLookup(Design& design);

    // The list index of the first component whose key equals key; -1 if none.
    std::int32_t componentByKey(const TextString& key) const;
    Part* component(std::int32_t index) const { return components_[static_cast<std::size_t>(index)]; }
    // REQUIRES: component is an index that componentByKey gave.
    const std::vector<PartPin*>& pinsOf(std::int32_t component);
    // The package with this number; out of range ends the run: abnormalEnd().
    Part* packageAt(std::int32_t index) const;
    // The package pin at pinIndex must exist, or the run ends: abnormalEnd().
    static void checkPackagePin(Part* package, std::int32_t pinIndex);

private:
    std::vector<Part*> components_;
    std::vector<Part*> packages_;
    std::vector<std::vector<PartPin*>> componentPins_;
    std::unordered_map<std::string_view, std::int32_t> byKey_;
};

// The pin text behind a "refdes-" prefix, judged by lengths alone: null
// unless pinText holds a '-' at position strlen(refdes); then the text
// behind pinText's first '-'.
const char* stripPinPrefix(const char* refdes, const char* pinText);

// The rest of a net's block after its "\t<name>".
void writeNetPins(NetPinList& pins, std::FILE* stream, Design& design, std::int32_t nameLength,
                  NetlistLookup& lookup);

// "NETLIST", one block per net, "END_NETLIST".
void writeNetlistSection(NetList& nets, std::FILE* stream, NetlistLookup& lookup);
