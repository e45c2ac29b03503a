// Builds a Board in three passes: place the components (kind, footprint,
// part, side, refdes), then pick which pins stay open, then cut the shuffled
// connected pins into GND, the power nets and the signal nets. Net names are
// sorted as exporters write them, and only then numbered.
#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>
#include <unordered_set>

#include "board.h"
#include "catalogue.h"
#include "random_source.h"

namespace {

constexpr std::int64_t kMm = 10000;
constexpr std::int64_t kCell = 5 * kMm;  // room per component on the board

// Chances in parts per million.
constexpr std::int64_t kRepeatedRefdes = 1000;
constexpr std::int64_t kRefdesPinTexts = 300000;
constexpr std::int64_t kOpenPin = 30000;         // IC and connector pins left open
constexpr std::int64_t kOpenPinOwnNet = 300000;  // an open pin that gets an "unconnected-" net
constexpr std::int64_t kEmptyNet = 1000;         // a net with traces only, no pin
constexpr int kPowerPercent = 6;

const char* const kPowerNets[] = {"+3V3",     "+1V8",     "+1V0_CORE", "+5V",       "+12V",        "VDD_DDR_1V2",
                                  "VTT_DDR",  "+2V5",     "AVDD_1V8",  "VCCIO_3V3", "+0V9_SERDES", "VBAT",
                                  "+3V3_AUX", "+1V2_PHY", "VPP_2V5",   "-12V"};

const char* const kSheets[] = {"CPU0",    "CPU1", "DDR4_CH0",  "DDR4_CH1", "PCIE_SWITCH",
                               "ETH_PHY", "BMC",  "POWER_SEQ", "FPGA",     "CLOCKS"};
const char* const kSignals[] = {"DQ",      "ADDR",     "PCIE_RX_P", "PCIE_RX_N", "PCIE_TX_P", "PCIE_TX_N", "GPIO",
                                "ETH_TXD", "SPI_MOSI", "I2C_SDA",   "I2C_SCL",   "RESET_N",   "CLK_P",     "CLK_N"};

template <typename T, std::size_t N>
const T& anyOf(RandomSource& random, const T (&items)[N]) {
    return items[static_cast<std::size_t>(random.below(static_cast<std::int64_t>(N)))];
}

class BoardBuilder {
public:
    explicit BoardBuilder(Board& board) : board_(board), random_(board.shape.seed) {}

    void placeComponents();
    void connectPins();

private:
    int packageFor(int footprint, int variant);
    int partFor(int kind, int footprint, int value);
    std::string signalName(std::int32_t firstPin, std::int64_t counter);
    void addNet(std::string name, const std::vector<std::int32_t>& pins, std::size_t from, std::size_t count,
                bool plane);
    std::string netTail();
    void numberNets();

    Board& board_;
    RandomSource random_;
    std::map<std::pair<int, int>, int> packageIndex_;
    std::map<std::tuple<int, int, int>, int> partIndex_;
    std::vector<Net> unsorted_;
    std::vector<std::int32_t> grouped_;  // pins of unsorted_ nets, back to back
    std::unordered_set<std::string> netNames_;
};

int BoardBuilder::packageFor(int footprint, int variant) {
    auto [where, added] = packageIndex_.try_emplace({footprint, variant}, static_cast<int>(board_.packages.size()));
    if (added) {
        Package package;
        const Footprint& base = footprints()[static_cast<std::size_t>(footprint)];
        package.name = base.name;
        if (variant > 0) package.name += "_V" + std::to_string(variant);
        package.footprint = footprint;
        package.pinNames = pinNamesOf(base);
        board_.packages.push_back(std::move(package));
    }
    return where->second;
}

// Part names as exporters write them: mostly a bare word, some with the
// attributes behind a blank or glued on with ";", a few "???" whose text
// comes from the properties, and property sets in the styles of several
// design tools (only VALUE, MANUFACTURER_PART_NO. and PART_NAME count).
int BoardBuilder::partFor(int kind, int footprint, int value) {
    auto [where, added] = partIndex_.try_emplace({kind, footprint, value}, static_cast<int>(board_.parts.size()));
    if (!added) return where->second;

    const ComponentKind& k = componentKinds()[static_cast<std::size_t>(kind)];
    const std::string valueText = k.values[static_cast<std::size_t>(value)];
    std::string base = footprints()[static_cast<std::size_t>(footprint)].name;
    base = base.substr(0, base.find('_'));
    const std::string name =
        (k.partPrefix[0] != '\0' ? std::string(k.partPrefix) + "_" + valueText : valueText) + "-" + base;
    const std::string mpn = std::string(k.prefix) + "X" + std::to_string(100000 + board_.parts.size());

    PartType part;
    switch (random_.pick({70, 14, 10, 4, 2})) {
        case 0: part.word = name; break;
        case 1: part.word = name + " ;0=1,1=0.0" + std::to_string(random_.between(100, 999)); break;
        case 2: part.word = name + ";1=" + std::to_string(random_.between(1, 9)); break;
        case 3: part.word = "???"; break;
        default: part.word = ";0=1"; break;  // no part name: the attributes take its place
    }
    // A quoted value may hold blanks ("4.7 uF" is read as 4.7_uF) or a ";"
    // that ends it.
    std::string quotedValue = "'" + valueText + "'";
    const std::size_t unit = valueText.find_first_not_of("0123456789.");
    if (unit != 0 && unit != std::string::npos && random_.chance(200000)) {
        quotedValue = "'" + valueText.substr(0, unit) + " " + valueText.substr(unit) + "'";
    } else if (random_.chance(100000)) {
        quotedValue = "'" + valueText + ";X7R'";
    }
    // "???" parts carry the property that the part list falls back on.
    enum { kNone, kAllThree, kValueOnly, kPartNameOnly, kUnreadNames };
    const int style = part.word == "???" ? static_cast<int>(random_.between(kAllThree, kUnreadNames))
                                         : static_cast<int>(random_.pick({30, 25, 25, 5, 15}));
    switch (style) {
        case kNone: break;
        case kAllThree:
            part.properties = {"VALUE " + quotedValue, "MANUFACTURER_PART_NO. '" + mpn + "'",
                               "PART_NAME '" + name + " " + base + "'"};
            break;
        case kValueOnly:  // unquoted when it can be
            part.properties = {random_.chance(500000) ? "VALUE " + valueText : "VALUE " + quotedValue,
                               "Description 'Generated " + std::string(k.prefix) + " part'"};
            break;
        case kPartNameOnly: part.properties = {"Datasheet ''", "PART_NAME " + name}; break;
        default:  // names the converter passes over, as one design tool writes them
            part.properties = {"Datasheet ''", "Description '" + name + "'", "Value " + quotedValue,
                               "PartNumber '" + mpn + "'"};
            break;
    }
    board_.parts.push_back(std::move(part));
    return where->second;
}

void BoardBuilder::placeComponents() {
    const auto& kinds = componentKinds();
    std::vector<int> kindWeights;
    for (const ComponentKind& k : kinds) kindWeights.push_back(k.weight);
    std::vector<std::int64_t> counters(kinds.size(), 0);

    const std::int32_t count = board_.shape.components;
    std::int64_t columns = 1;
    while (columns * columns < count) ++columns;
    board_.width = columns * kCell;
    board_.height = (count + columns - 1) / columns * kCell;
    // Large boards use more footprint variants, as their libraries do.
    const int variants = 1 + count / 8000;

    std::int32_t pins = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        Component c;
        c.kind = static_cast<int>(random_.pick(kindWeights));
        const ComponentKind& kind = kinds[static_cast<std::size_t>(c.kind)];
        std::vector<int> footprintWeights;
        for (const auto& choice : kind.footprints) footprintWeights.push_back(choice.second);
        const int footprint = kind.footprints[random_.pick(footprintWeights)].first;
        c.package = packageFor(footprint, static_cast<int>(random_.below(variants)));
        c.part =
            partFor(c.kind, footprint, static_cast<int>(random_.below(static_cast<std::int64_t>(kind.values.size()))));
        c.side = random_.chance(kind.topPerMille * 1000) ? 'T' : 'B';
        // A repeated refdes is the last one of its kind again, on either side.
        std::int64_t& counter = counters[static_cast<std::size_t>(c.kind)];
        if (counter == 0 || !random_.chance(kRepeatedRefdes)) ++counter;
        c.refdes = kind.prefix + std::to_string(counter);
        std::vector<std::int32_t>& file = c.side == 'T' ? board_.topFile : board_.bottomFile;
        c.number = static_cast<std::int32_t>(file.size());
        file.push_back(i);
        c.x = (i % columns) * kCell + random_.between(kMm, kCell - kMm);
        c.y = (i / columns) * kCell + random_.between(kMm, kCell - kMm);
        c.rotation = static_cast<int>(random_.below(4)) * 90;
        c.refdesPinTexts = random_.chance(kRefdesPinTexts);
        c.firstPin = pins;
        const std::int32_t packagePins =
            static_cast<std::int32_t>(board_.packages[static_cast<std::size_t>(c.package)].pinNames.size());
        pins += packagePins;
        board_.pinOwner.insert(board_.pinOwner.end(), static_cast<std::size_t>(packagePins), i);
        board_.components.push_back(std::move(c));
    }
}

std::string BoardBuilder::netTail() {
    switch (random_.pick({50, 20, 20, 10})) {
        case 0: return "";
        case 1: return " ";  // a trailing blank
        case 2: return " ;0=" + std::to_string(random_.below(8));
        default: return " ;;ID=" + std::to_string(random_.between(1, 999999));
    }
}

std::string BoardBuilder::signalName(std::int32_t firstPin, std::int64_t counter) {
    const std::string number = std::to_string(counter);
    switch (random_.pick({30, 25, 20, 20, 5})) {
        case 0: {
            const Component& c =
                board_.components[static_cast<std::size_t>(board_.pinOwner[static_cast<std::size_t>(firstPin)])];
            const Package& p = board_.packages[static_cast<std::size_t>(c.package)];
            return "Net-(" + c.refdes + "-Pad" + p.pinNames[static_cast<std::size_t>(firstPin - c.firstPin)] + ")";
        }
        case 1: return "N$" + number;
        case 2: {
            // Drawn one after the other: the operands of + have no fixed order.
            const std::string signal = anyOf(random_, kSignals);
            return std::string("/") + anyOf(random_, kSheets) + "/" + signal + number;
        }
        case 3: return std::string(anyOf(random_, kSignals)) + "_" + number;
        default: return "/SOUTHBRIDGE/PCIE4_REFCLK_LANE" + number;
    }
}

void BoardBuilder::addNet(std::string name, const std::vector<std::int32_t>& pins, std::size_t from, std::size_t count,
                          bool plane) {
    // Names stay unique: a clash (two pins named alike) takes a number.
    while (!netNames_.insert(name).second) name += "_" + std::to_string(unsorted_.size());
    Net net;
    net.name = std::move(name);
    net.tail = netTail();
    net.firstPin = static_cast<std::int32_t>(grouped_.size());
    net.pinCount = static_cast<std::int32_t>(count);
    net.plane = plane;
    grouped_.insert(grouped_.end(), pins.begin() + static_cast<std::ptrdiff_t>(from),
                    pins.begin() + static_cast<std::ptrdiff_t>(from + count));
    // Exporters list a net's pins component by component; board pins are
    // numbered that way.
    std::sort(grouped_.begin() + net.firstPin, grouped_.end());
    unsorted_.push_back(std::move(net));
}

void BoardBuilder::connectPins() {
    const std::int32_t total = board_.pinCount();
    const auto& kinds = componentKinds();
    std::vector<std::int32_t> none;    // open pins listed under $NONE$
    std::vector<std::int32_t> ground;  // pins that must be on GND
    std::vector<std::int32_t> connected;
    for (std::int32_t pin = 0; pin < total; ++pin) {
        const Component& c =
            board_.components[static_cast<std::size_t>(board_.pinOwner[static_cast<std::size_t>(pin)])];
        const std::string prefix = kinds[static_cast<std::size_t>(c.kind)].prefix;
        if (prefix == "FID") {
            none.push_back(pin);
        } else if (prefix == "MH") {
            ground.push_back(pin);
        } else if (kinds[static_cast<std::size_t>(c.kind)].mayBeUnconnected && random_.chance(kOpenPin)) {
            if (random_.chance(kOpenPinOwnNet)) {
                const Package& p = board_.packages[static_cast<std::size_t>(c.package)];
                addNet(
                    "unconnected-(" + c.refdes + "-Pad" + p.pinNames[static_cast<std::size_t>(pin - c.firstPin)] + ")",
                    std::vector<std::int32_t>{pin}, 0, 1, false);
            } else {
                none.push_back(pin);
            }
        } else {
            connected.push_back(pin);
        }
    }
    random_.shuffle(connected);
    std::size_t taken = 0;
    auto take = [&](std::int64_t wanted) {
        const std::size_t left = connected.size() - taken;
        const std::size_t count = wanted <= 0 ? 0 : std::min(left, static_cast<std::size_t>(wanted));
        taken += count;
        return count;
    };

    // GND: the fixed ground pins, topped up to its share of all pins.
    const std::int64_t groundWanted = static_cast<std::int64_t>(total) * board_.shape.groundPercent / 100;
    const std::size_t groundExtra = take(groundWanted - static_cast<std::int64_t>(ground.size()));
    ground.insert(ground.end(), connected.begin(), connected.begin() + static_cast<std::ptrdiff_t>(groundExtra));
    addNet("GND", ground, 0, ground.size(), true);

    // Power nets, the larger first: shares of 1/2, 1/3, 1/4 ... of their
    // pins, in whole numbers so that every platform cuts them alike.
    constexpr std::int64_t kShareScale = 720720;
    std::int64_t shareSum = 0;
    for (std::size_t i = 0; i < std::size(kPowerNets); ++i) shareSum += kShareScale / static_cast<std::int64_t>(i + 2);
    const std::int64_t powerPins = static_cast<std::int64_t>(total) * kPowerPercent / 100;
    for (std::size_t i = 0; i < std::size(kPowerNets); ++i) {
        const std::size_t from = taken;
        const std::size_t count = take(powerPins * (kShareScale / static_cast<std::int64_t>(i + 2)) / shareSum);
        addNet(kPowerNets[i], connected, from, count, true);
    }

    // Signal nets: mostly two or three pins, some buses and a few long
    // distribution nets (clocks, resets, enables).
    std::int64_t counter = 0;
    while (taken < connected.size()) {
        std::int64_t size = 0;
        switch (random_.pick({480, 160, 100, 140, 108, 12})) {
            case 0: size = 2; break;
            case 1: size = 3; break;
            case 2: size = 4; break;
            case 3: size = random_.between(5, 8); break;
            case 4: size = random_.between(9, 32); break;
            default: size = random_.between(33, 120); break;
        }
        const std::size_t from = taken;
        const std::size_t count = take(size);
        addNet(signalName(connected[from], ++counter), connected, from, count, false);
        if (random_.chance(kEmptyNet)) addNet("NetTie_" + std::to_string(counter), connected, from, 0, false);
    }

    // $NONE$ comes first, as exporters write it; the rest by name.
    Net noneNet;
    noneNet.name = "$NONE$";
    noneNet.tail = " ";
    noneNet.pinCount = static_cast<std::int32_t>(none.size());
    board_.nets.push_back(noneNet);
    board_.netPins = none;  // already in board pin order
    std::vector<std::size_t> order(unsorted_.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return unsorted_[a].name < unsorted_[b].name; });
    for (std::size_t i : order) {
        Net net = unsorted_[i];
        net.firstPin = static_cast<std::int32_t>(board_.netPins.size());
        board_.netPins.insert(board_.netPins.end(), grouped_.begin() + unsorted_[i].firstPin,
                              grouped_.begin() + unsorted_[i].firstPin + unsorted_[i].pinCount);
        board_.nets.push_back(std::move(net));
    }
    numberNets();
}

void BoardBuilder::numberNets() {
    board_.pinNet.assign(board_.pinOwner.size(), 0);
    board_.pinSubnet.assign(board_.pinOwner.size(), 0);
    for (std::size_t n = 0; n < board_.nets.size(); ++n) {
        const Net& net = board_.nets[n];
        for (std::int32_t i = 0; i < net.pinCount; ++i) {
            const std::size_t pin =
                static_cast<std::size_t>(board_.netPins[static_cast<std::size_t>(net.firstPin + i)]);
            board_.pinNet[pin] = static_cast<std::int32_t>(n);
            board_.pinSubnet[pin] = i;
        }
    }
}

}  // namespace

Board buildBoard(const BoardShape& shape) {
    Board board;
    board.shape = shape;
    BoardBuilder builder(board);
    builder.placeComponents();
    builder.connectPins();
    return board;
}
