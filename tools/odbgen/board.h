// Board: one synthetic board as the generator builds it before writing it
// out as an ODB++ job. Every index here is what the job files use: a
// component's `number` is its place in its side's components file, a net's
// place in `nets` is its number in eda/data (0 is $NONE$), and a package's
// place in `packages` is its PKG number.
//
// "Board pins" are all pins of all components, numbered component by
// component; pinOwner, pinNet and pinSubnet are indexed by them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct BoardShape {
    std::int32_t components = 1000;
    std::uint64_t seed = 1;
    std::int32_t groundPercent = 5;  // share of all board pins on GND
};

struct Package {
    std::string name;
    int footprint = 0;
    std::vector<std::string> pinNames;  // in pad order; may repeat
};

// A catalogue part: every component with the same part shares it.
struct PartType {
    std::string word;                     // the CMP record's tail: part name and attributes
    std::vector<std::string> properties;  // PRP record tails: "VALUE '10K'"
};

struct Component {
    std::string refdes;
    int kind = 0;
    int package = 0;
    int part = 0;
    char side = 'T';
    std::int32_t number = 0;
    std::int64_t x = 0;  // tenths of a micrometre
    std::int64_t y = 0;
    int rotation = 0;
    bool refdesPinTexts = false;  // pins written as REFDES-PIN, as some exporters do
    std::int32_t firstPin = 0;
};

struct Net {
    std::string name;
    std::string tail;           // what follows the name on the NET line
    std::int32_t firstPin = 0;  // range in Board::netPins
    std::int32_t pinCount = 0;
    bool plane = false;  // a ground or power net: planes and many vias
};

struct Board {
    BoardShape shape;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::vector<Package> packages;
    std::vector<PartType> parts;
    std::vector<Component> components;  // in generation order
    std::vector<std::int32_t> topFile;  // component indices in file order
    std::vector<std::int32_t> bottomFile;
    std::vector<std::int32_t> pinOwner;
    std::vector<std::int32_t> pinNet;
    std::vector<std::int32_t> pinSubnet;
    std::vector<Net> nets;
    std::vector<std::int32_t> netPins;  // board pins grouped by net, in SNT order

    std::int32_t pinCount() const { return static_cast<std::int32_t>(pinOwner.size()); }
    std::int32_t pinIndex(std::int32_t boardPin) const {
        return boardPin - components[static_cast<std::size_t>(pinOwner[static_cast<std::size_t>(boardPin)])].firstPin;
    }
};

// Deterministic for a given shape: the same shape gives the same board.
Board buildBoard(const BoardShape& shape);
