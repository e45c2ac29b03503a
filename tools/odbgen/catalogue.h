// The generator's catalogue: the footprints a board is built from and the
// kinds of component placed on them, with the shares of each that a large
// server board shows (mostly two-pin passives, a tenth ICs from SOT-23 up to
// 1000-ball BGAs, some connectors, test points and fiducials).
#pragma once

#include <string>
#include <vector>

// How a footprint names its pins.
enum class PinNaming {
    Numbers,  // 1, 2, 3 ...
    Grid,     // BGA balls A1, A2 ... AA1 ..., rows without I O Q S X Z
    TwoRows,  // A1..An then B1..Bn, as card edges and USB-C
    Listed,   // exactly the names in `names`
};

struct Footprint {
    const char* name;
    int numberedPins;  // pins named by `naming`
    PinNaming naming;
    std::vector<const char*> names;  // Listed names, or names that follow the numbered ones
    int padWidth;                    // tenths of a micrometre
    int padHeight;
    int pitch;
    bool throughHole;
};

struct ComponentKind {
    const char* prefix;                           // reference designator letters
    int weight;                                   // share of all components, per ten thousand
    std::vector<std::pair<int, int>> footprints;  // footprint index, weight
    int topPerMille;                              // chance of the top side
    std::vector<const char*> values;              // values or device names
    const char* partPrefix;                       // part names start with it, or empty for device names
    bool mayBeUnconnected;                        // some pins left open (ICs, connectors)
};

const std::vector<Footprint>& footprints();
const std::vector<ComponentKind>& componentKinds();

// The pin names of a footprint in pad order; names may repeat (an exposed
// pad split into several pads, shield tabs), as real libraries do.
std::vector<std::string> pinNamesOf(const Footprint& footprint);
