// readMatrix: the matrix file's STEP blocks give the step names; LAYER
// blocks are read through and classified, and nothing of them is kept.
#include <cstdint>
#include <cstdio>

#include "odb/job_reader.h"
#include "odb/matrix_scanner.h"
#include "platform/platform.h"

namespace {

// Scans of a matrix line, each bounded by its area:
//   top level "%s %c": the first word and the opener of a block;
//   block line "%[^=]%*c%s *s": left and right of the "=".
const char kTopLevelScan[] = "%2047s %c";
const char kBlockLineScan[] = "%2047[^=]%*c%2047s *s";

struct LayerTypeClass {
    const char* type;
    const char* layerClass;
};

// Where a layer's role is decided; nothing reads the class yet.
const LayerTypeClass kLayerClasses[] = {
    {"SIGNAL", "CONDUCTIVE"},
    {"POWER_GROUND", "POWER_PLANE"},
    {"MIXED", "MIXED PLANE"},
    {"SOLDER_MASK", "NON CONDUCTIVE"},
    {"SOLDER_PASTE", "NON CONDUCTIVE"},
    {"SILK_SCREEN", "NON CONDUCTIVE"},
    {"DRILL", "THROUGHHOLES"},
    {"ROUT", "ROUTE OUTLINE"},
    {"DOCUMENT", "DOCUMENT"},
    {"COMPONENT", "COMPONENT"},
    {"MASK", "NON CONDUCTIVE"},
};

struct MatrixLine {
    TextString text;
    char word[kTextArea];
    char value[kTextArea];
    char opener;

    void scanTopLevel() {
        word[0] = value[0] = '\0';
        opener = 0;
        std::sscanf(text.text(), kTopLevelScan, word, &opener);
    }
    void scanBlockLine() {
        word[0] = value[0] = '\0';
        opener = 0;
        std::sscanf(text.text(), kBlockLineScan, word, value);
    }
};

struct LayerState {
    TextString name{"0"};
    TextString type{"0"};
    TextString layerClass{"0"};
    bool classFound = false;
};

void handleLayerLine(MatrixScanner& scanner, MatrixLine& line, LayerState& layer) {
    switch (scanner.lookup(line.word)) {
        case MatrixScanner::kName:
            layer.name.assign(line.value);
            if (!layer.name.isEmpty()) layer.name.toLower();
            break;
        case MatrixScanner::kType:
            layer.type.assign(line.value);
            for (const LayerTypeClass& row : kLayerClasses) {
                if (layer.type.equalsIgnoreCase(row.type)) {
                    layer.layerClass.assign(row.layerClass);
                    layer.classFound = true;
                }
            }
            if (!layer.classFound) {
                layer.type.assign("DOCUMENT");
                layer.layerClass.assign("DOCUMENT");
            }
            break;
        default:
            break;
    }
}

// A block ends with the file or when its closing brace leaves the counter
// at anything but 1; an unbalanced brace earlier ends it after one line.
bool blockGoesOn(const MatrixScanner& scanner) { return !scanner.endOfFile && scanner.braceCounter == 1; }

}  // namespace

std::int32_t JobReader::readMatrix() {
    const char* sep = platform::kPathSeparatorText;
    MatrixScanner scanner;
    if (!scanner.open(jobRoot + sep + "matrix" + sep + "matrix")) return 1;

    MatrixLine line;
    while (scanner.readLine(line.text) != -1) {
        line.scanTopLevel();
        switch (scanner.lookup(line.word)) {
            case MatrixScanner::kStep:
                if (line.opener != '{') return 1;
                do {
                    scanner.readLine(line.text);
                    line.scanBlockLine();
                    if (scanner.lookup(line.word) == MatrixScanner::kName) {
                        steps.addItem(design.arena.make<TextString>(line.value));
                        ++stepCount;
                    }
                } while (blockGoesOn(scanner));
                break;
            case MatrixScanner::kLayer: {
                LayerState layer;
                if (line.opener != '{') break;
                do {
                    scanner.readLine(line.text);
                    line.scanBlockLine();
                    handleLayerLine(scanner, line, layer);
                } while (blockGoesOn(scanner));
                break;
            }
            default:
                break;
        }
    }

    if (stepCount == 0) return 1;
    std::int32_t chosen = 1;
    if (stepCount > 1) {
        // Several steps: wait, without a word, for a number counted from 1.
        long number = 0;
        if (std::scanf("%ld", &number) != 1) number = 0;
        chosen = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
        // The lower test is on the number minus 1 in 32 bits, wrapping: the
        // lowest number passes and ends the run at itemAt below.
        const auto below = static_cast<std::int32_t>(static_cast<std::uint32_t>(chosen) - 1u);
        if (below < 0 || chosen > stepCount) chosen = 1;
    }
    stepName.assign(*steps.itemAt(static_cast<std::int32_t>(static_cast<std::uint32_t>(chosen) - 1u)));
    return 0;
}
