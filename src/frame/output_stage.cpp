#include "frame/output_stage.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "containers/abnormal_end.h"
#include "design/design.h"
#include "frame/run_options.h"
#include "platform/platform.h"

namespace {

// An existing output file becomes its companion: the first ".vrn" of the
// whole path, case-sensitive, takes "!" for its "v" (board.vrn -> board.!rn).
void moveOlderOutputAside(const char* outputFile) {
    std::FILE* probe = std::fopen(outputFile, "r");
    if (probe == nullptr) return;  // opening is the only existence test
    std::fclose(probe);
    const char* match = std::strstr(outputFile, ".vrn");
    // A -o path without ".vrn" that came into being during the run: there is
    // no companion name for it.
    if (match == nullptr) abnormalEnd();
    std::string companion(outputFile);
    companion[static_cast<std::size_t>(match - outputFile) + 1] = '!';
    if (std::rename(outputFile, companion.c_str()) == -1) {
        std::remove(companion.c_str());
        std::rename(outputFile, companion.c_str());
    }
}

}  // namespace

void runOutputStage(RunOptions& options, Design& design) {
    moveOlderOutputAside(options.outputFile.text());
    // The design name is the archive's name, written as the messages that
    // quote a path are.
    options.baseName.assign(platform::asWritten(options.baseName.text()).c_str());
    design.writeNetlistFile(options.outputFile.text(), options.baseName);
}
