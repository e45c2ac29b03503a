#include "generated_job.h"

#include "board.h"
#include "job_writer.h"

std::string writeGeneratedJob(const std::string& root, bool crlf) {
    BoardShape shape;
    shape.components = 5000;
    shape.seed = 7;
    const Board board = buildBoard(shape);
    JobSizes sizes;
    if (!writeJob(board, root, crlf ? "\r\n" : "\n", sizes)) return std::string();
    std::string expected;
    for (const Net& net : board.nets) {
        if (net.name == "$NONE$") continue;  // the reader passes it over
        expected += "net " + net.name + ":";
        for (std::int32_t i = 0; i < net.pinCount; ++i) {
            const std::int32_t pin = board.netPins[static_cast<std::size_t>(net.firstPin + i)];
            const Component& c = board.components[static_cast<std::size_t>(board.pinOwner[static_cast<std::size_t>(pin)])];
            expected += " " + (c.side + std::to_string(c.number)) + "/" + std::to_string(board.pinIndex(pin));
        }
        expected += "\n";
    }
    for (const auto* file : {&board.topFile, &board.bottomFile}) {
        for (const std::int32_t index : *file) {
            const Component& c = board.components[static_cast<std::size_t>(index)];
            expected += "component " + (c.side + std::to_string(c.number)) + " " + c.refdes + ":";
            for (const std::string& name : board.packages[static_cast<std::size_t>(c.package)].pinNames) {
                expected += " " + (c.refdesPinTexts ? c.refdes + "-" : std::string()) + name;
            }
            expected += "\n";
        }
    }
    return expected;
}
