// Layer features files: the bulk of a real job, which the converter never
// reads but the unpacker must expand. Pads on copper and mask, trace
// segments on signal layers, plane outlines, silk screen texts, drill hits.
// The amounts follow the board's pins and components, so that a job's
// unpacked size grows with it as real jobs do.
#include <cstdint>

#include "catalogue.h"
#include "job_files.h"
#include "random_source.h"

namespace {

constexpr std::uint64_t kStream = 0xFEA7;
constexpr std::int64_t kMm = 10000;

// One feature for so many pins of the layer's side (of the board inside).
constexpr std::int64_t kPinsPerOuterTrace = 8;
constexpr std::int64_t kPinsPerInnerTrace = 20;
constexpr std::int64_t kPinsPerPlanePoint = 10;

class FeaturesWriter {
public:
    FeaturesWriter(const Board& board, const Layer& layer, TextSink& out)
        : board_(board),
          layer_(layer),
          out_(out),
          random_(board.shape.seed ^ kStream ^ static_cast<std::uint64_t>(&layer - jobLayers().data())) {}

    void write();

private:
    void header();
    enum class Pads { OfSide, ThroughHole };
    void pads(Pads which);
    void traces(std::int64_t count);
    void plane();
    void refdesTexts();
    void drills();

    bool onSide(const Component& c) const { return layer_.side == 0 || c.side == layer_.side; }
    std::int64_t sidePins() const;
    std::int64_t anyX() { return random_.below(board_.width); }
    std::int64_t anyY() { return random_.below(board_.height); }

    const Board& board_;
    const Layer& layer_;
    TextSink& out_;
    RandomSource random_;
};

void FeaturesWriter::header() {
    out_.line("UNITS=MM").line("#").line("#Feature symbol names").line("#");
    // One pad symbol per footprint, then the trace widths.
    const auto& table = footprints();
    for (std::size_t i = 0; i < table.size(); ++i) {
        out_.put('$').number(static_cast<std::int64_t>(i)).put(" rect").number(table[i].padWidth / 10).put('x');
        out_.number(table[i].padHeight / 10).line();
    }
    out_.put('$').number(static_cast<std::int64_t>(table.size())).line(" r100");
    out_.put('$').number(static_cast<std::int64_t>(table.size() + 1)).line(" r250");
    out_.line("#").line("#Feature attribute names").line("#");
    out_.line("@0 .smd").line("@1 .pad_usage").line("@2 .net_point");
    out_.line("#").line("#Layer features").line("#");
}

std::int64_t FeaturesWriter::sidePins() const {
    std::int64_t pins = 0;
    for (const Component& c : board_.components) {
        if (!onSide(c)) continue;
        pins += static_cast<std::int64_t>(board_.packages[static_cast<std::size_t>(c.package)].pinNames.size());
    }
    return pins;
}

// A through-hole pad is on every copper and mask layer of both sides.
void FeaturesWriter::pads(Pads which) {
    for (const Component& c : board_.components) {
        const Package& package = board_.packages[static_cast<std::size_t>(c.package)];
        const bool throughHole = footprints()[static_cast<std::size_t>(package.footprint)].throughHole;
        const bool wanted = which == Pads::ThroughHole ? throughHole : throughHole || onSide(c);
        if (!wanted) continue;
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(package.pinNames.size()); ++i) {
            const Point at = padPosition(board_, c, i);
            out_.put("P ").millimetres(at.x).blank().millimetres(at.y).blank().number(package.footprint);
            out_.put(" P 0 ").number(c.rotation).put(throughHole ? " ;1=0" : " ;0,1=0").line();
        }
    }
}

void FeaturesWriter::traces(std::int64_t count) {
    const std::int64_t symbol = static_cast<std::int64_t>(footprints().size());
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t x = anyX(), y = anyY();
        const bool horizontal = random_.chance(500000);
        const std::int64_t length = random_.between(kMm / 2, 8 * kMm);
        out_.put("L ").millimetres(x).blank().millimetres(y).blank();
        out_.millimetres(horizontal ? x + length : x).blank().millimetres(horizontal ? y : y + length).blank();
        out_.number(symbol + random_.below(2)).put(" P 0 ;2").line();
    }
}

// A plane is one surface with a long outline.
void FeaturesWriter::plane() {
    out_.line("S P 0");
    out_.put("OB 0.0000 0.0000 I").line();
    const std::int64_t points = board_.pinCount() / kPinsPerPlanePoint;
    for (std::int64_t i = 0; i < points; ++i) out_.put("OS ").millimetres(anyX()).blank().millimetres(anyY()).line();
    out_.line("OE").line("SE");
}

// Silk screen: the refdes of each component on the side.
void FeaturesWriter::refdesTexts() {
    for (const Component& c : board_.components) {
        if (!onSide(c)) continue;
        out_.put("T ").millimetres(c.x).blank().millimetres(c.y + kMm).put(" standard P 0 N 1.0 1.0 0.1 '");
        out_.put(c.refdes).put("' 0").line();
    }
}

void FeaturesWriter::drills() {
    const std::int64_t via = static_cast<std::int64_t>(footprints().size());
    for (std::size_t n = 1; n < board_.nets.size(); ++n) {
        out_.put("P ").millimetres(anyX()).blank().millimetres(anyY()).blank().number(via).put(" P 0 0 ;1=2").line();
    }
    pads(Pads::ThroughHole);
}

void FeaturesWriter::write() {
    if (layer_.use == LayerUse::Components || layer_.use == LayerUse::Dielectric ||
        layer_.use == LayerUse::Document) {
        // No features, but the file is there, as exporters leave it.
        out_.line("UNITS=MM").line("#").line("#Num Features").line("#").line("F 0");
        return;
    }
    header();
    switch (layer_.use) {
        case LayerUse::Copper:
            if (layer_.side != 0) {
                pads(Pads::OfSide);
                traces(sidePins() / kPinsPerOuterTrace);
            } else {
                traces(board_.pinCount() / kPinsPerInnerTrace);
            }
            break;
        case LayerUse::Plane: plane(); break;
        case LayerUse::Mask: pads(Pads::OfSide); break;
        case LayerUse::Silk: refdesTexts(); break;
        case LayerUse::Drill: drills(); break;
        default: break;
    }
}

}  // namespace

void writeFeatures(const Board& board, const Layer& layer, TextSink& out) {
    FeaturesWriter writer(board, layer, out);
    writer.write();
}
