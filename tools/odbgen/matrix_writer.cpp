// The matrix: one STEP block and a LAYER block per layer, names in upper
// case while the folders are in lower case, as exporters write them.
#include <cctype>
#include <string>

#include "job_files.h"

namespace {

std::string upper(const char* text) {
    std::string result(text);
    for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return result;
}

}  // namespace

void writeMatrix(TextSink& out) {
    out.line("STEP {").line("    COL=1").put("    NAME=").put(kStepName).line().line("}").line();
    int row = 1;
    for (const Layer& layer : jobLayers()) {
        out.line("LAYER {").put("    ROW=").number(row++).line();
        out.put("    CONTEXT=").put(layer.use == LayerUse::Document ? "MISC" : "BOARD").line();
        out.put("    TYPE=").put(layer.type).line();
        out.put("    NAME=").put(upper(layer.name)).line();
        out.line("    POLARITY=POSITIVE");
        if (layer.use == LayerUse::Drill) {
            out.line("    START_NAME=TOP").line("    END_NAME=BOTTOM");
        } else {
            out.line("    START_NAME=").line("    END_NAME=");
        }
        out.line("    OLD_NAME=").line("}").line();
    }
}
