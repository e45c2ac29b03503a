// A components file: the side's components in file order, each as a CMP
// record, its PRP records and one TOP record per pin, with the comment and
// attribute lines exporters put around them.
#include "job_files.h"
#include "random_source.h"

namespace {

constexpr std::uint64_t kStream = 0xC0C0;

}  // namespace

void writeComponents(const Board& board, char side, TextSink& out) {
    RandomSource random(board.shape.seed ^ kStream ^ static_cast<std::uint64_t>(side));
    out.line("UNITS=MM").line("#").line("#Component attribute names").line("#");
    out.line("@0 .comp_mount_type").line("@1 .comp_height").line("#");
    out.line(" # components of one side, in the order of their keys");
    const char mirror = side == 'T' ? 'N' : 'M';
    const std::vector<std::int32_t>& file = side == 'T' ? board.topFile : board.bottomFile;
    for (std::int32_t index : file) {
        const Component& c = board.components[static_cast<std::size_t>(index)];
        const PartType& part = board.parts[static_cast<std::size_t>(c.part)];
        const Package& package = board.packages[static_cast<std::size_t>(c.package)];
        // Rotations come as "90" or "90.0", as different exporters write them.
        const bool decimalRotation = random.chance(500000);
        out.put("# CMP ").number(c.number).line();
        out.put("CMP ").number(c.package).blank().millimetres(c.x).blank().millimetres(c.y).blank().number(c.rotation);
        if (decimalRotation) out.put(".0");
        out.blank().put(mirror).blank().put(c.refdes).blank().put(part.word).line();
        for (const std::string& property : part.properties) out.put("PRP ").put(property).line();
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(package.pinNames.size()); ++i) {
            const std::size_t pin = static_cast<std::size_t>(c.firstPin + i);
            const Point at = padPosition(board, c, i);
            out.put("TOP ").number(i).blank().millimetres(at.x).blank().millimetres(at.y).blank().number(c.rotation);
            if (decimalRotation) out.put(".0");
            out.blank().put(mirror).blank().number(board.pinNet[pin]).blank().number(board.pinSubnet[pin]).blank();
            if (c.refdesPinTexts) out.put(c.refdes).put('-');
            out.put(package.pinNames[static_cast<std::size_t>(i)]).line();
        }
        out.line("#");
    }
}
