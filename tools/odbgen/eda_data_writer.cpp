// eda/data as exporters write it: a header, the nets (each pin's SNT TOP
// followed by the features it touches, then trace, via and plane subnets),
// the packages with their outlines and pins, and feature groups.
#include <algorithm>

#include "catalogue.h"
#include "job_files.h"
#include "random_source.h"

namespace {

constexpr std::uint64_t kStream = 0xEDADA7A;
constexpr std::int64_t kDoubledPin = 2000;  // per million: a pad listed twice in its net
constexpr std::int64_t kPinWithId = 300000;
constexpr std::int64_t kSecondFid = 100000;  // a pad that touches two features

class EdaWriter {
public:
    EdaWriter(const Board& board, TextSink& out)
        : board_(board),
          out_(out),
          random_(board.shape.seed ^ kStream),
          layerCount_(static_cast<std::int64_t>(edaLayers().size())),
          featureRange_(std::max<std::int64_t>(1, board.pinCount())) {}

    void header();
    void net(std::size_t index);
    void package(std::size_t index);
    void featureGroups();

private:
    void fids(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i) {
            out_.put("FID C ").number(random_.below(layerCount_)).blank().number(random_.below(featureRange_)).line();
        }
    }

    const Board& board_;
    TextSink& out_;
    RandomSource random_;
    std::int64_t layerCount_;
    std::int64_t featureRange_;  // FID numbers are drawn below it
};

void EdaWriter::header() {
    out_.line("# 2025-01-01T00:00:00");
    out_.line("HDR Korvane odbgen synthetic job");
    out_.line("UNITS=MM");
    out_.put("LYR");
    for (const char* name : edaLayers()) out_.blank().put(name);
    out_.line();
    out_.line("#").line("#Net attribute names").line("#");
    out_.line("@0 .diff_pair").line("@1 .net_type");
    out_.line("#").line("#Net attribute text strings").line("#");
    out_.line("&0 default").line("&1 POWER").line("&2 DIFF_100R");
}

void EdaWriter::net(std::size_t index) {
    const Net& n = board_.nets[index];
    out_.put("#NET ").number(static_cast<std::int64_t>(index)).line();
    out_.put("NET ").put(n.name).put(n.tail).line();
    for (std::int32_t i = 0; i < n.pinCount; ++i) {
        const std::int32_t pin = board_.netPins[static_cast<std::size_t>(n.firstPin + i)];
        const Component& c =
            board_.components[static_cast<std::size_t>(board_.pinOwner[static_cast<std::size_t>(pin)])];
        const int copies = random_.chance(kDoubledPin) ? 2 : 1;
        for (int copy = 0; copy < copies; ++copy) {
            out_.put("SNT TOP ").put(c.side).blank().number(c.number).blank().number(board_.pinIndex(pin)).line();
            fids(random_.chance(kSecondFid) ? 2 : 1);
        }
    }
    if (n.plane) {
        for (int plane = 0; plane < 2; ++plane) {
            out_.line("SNT PLN S E 0.0");
            fids(1);
        }
        for (std::int64_t via = n.pinCount / 25; via > 0; --via) {
            out_.line("SNT VIA");
            fids(1);
        }
        return;
    }
    if (n.pinCount > 1) {
        out_.line("SNT TRC");
        fids(random_.between(1, 2));
    }
    if (n.pinCount > 3) {
        out_.line("SNT VIA");
        fids(1);
    }
}

void EdaWriter::package(std::size_t index) {
    const Package& p = board_.packages[index];
    const Footprint& f = footprints()[static_cast<std::size_t>(p.footprint)];
    const std::int64_t pins = static_cast<std::int64_t>(p.pinNames.size());
    const std::int64_t half = (pins / 2 + 2) * f.pitch + f.padHeight;
    out_.line("#").put("#PKG ").number(static_cast<std::int64_t>(index)).line().line("#");
    out_.put("PKG ").put(p.name).blank().millimetres(f.pitch).blank().millimetres(-half).blank().millimetres(-half);
    out_.blank().millimetres(half).blank().millimetres(half);
    // Some exporters glue a ";" to the last number.
    if (index % 2 == 1) out_.put(';');
    out_.line();
    out_.put("RC ").millimetres(-half).blank().millimetres(-half).blank().millimetres(2 * half).blank();
    out_.millimetres(2 * half).line();
    Component origin;  // pads relative to the package's origin
    origin.package = static_cast<int>(index);
    for (std::int32_t i = 0; i < pins; ++i) {
        const Point at = padPosition(board_, origin, i);
        out_.put("PIN ").put(p.pinNames[static_cast<std::size_t>(i)]).put(f.throughHole ? " T " : " S ");
        out_.millimetres(at.x).blank().millimetres(at.y).put(" 0 E S");
        if (random_.chance(kPinWithId)) out_.put(" ID=").number(random_.between(1, 99999));
        out_.line();
        if (f.naming == PinNaming::Grid || f.throughHole) {
            out_.put("CR ").millimetres(at.x).blank().millimetres(at.y).blank().millimetres(f.padWidth / 2).line();
        } else {
            // The pad's outline as a contour, corner by corner.
            const std::int64_t w = f.padWidth / 2, h = f.padHeight / 2;
            out_.line("CT");
            out_.put("OB ").millimetres(at.x - w).blank().millimetres(at.y - h).put(" I").line();
            out_.put("OS ").millimetres(at.x + w).blank().millimetres(at.y - h).line();
            out_.put("OS ").millimetres(at.x + w).blank().millimetres(at.y + h).line();
            out_.put("OS ").millimetres(at.x - w).blank().millimetres(at.y + h).line();
            out_.line("OE").line("CE");
        }
    }
}

// Text groups: the silk screen refdes of some components, as Altium writes.
void EdaWriter::featureGroups() {
    std::int64_t group = 0;
    for (std::size_t i = 0; i < board_.components.size(); i += 20) {
        out_.line("#").line("FGR TEXT").put("# FGR ").number(group++).line();
        out_.put("PRP string '").put(board_.components[i].refdes).put('\'').line();
        fids(random_.between(2, 8));
    }
    out_.line("#");
}

}  // namespace

void writeEdaData(const Board& board, TextSink& out) {
    EdaWriter writer(board, out);
    writer.header();
    for (std::size_t n = 0; n < board.nets.size(); ++n) writer.net(n);
    // Some exporters indent their comments.
    out.line(" # packages");
    for (std::size_t p = 0; p < board.packages.size(); ++p) writer.package(p);
    writer.featureGroups();
}
