// Fuzzes the components files: ComponentScanner and readComponents, with the
// shared board's matrix and eda/data, then the VRN file.
//
// Input: the top side's file; a line "#--- comp_+_bot ---" splits off the
// bottom side's file behind it. Without that line the job has no bottom
// file, as many boards have none.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "support/fuzz_job.h"
#include "support/workspace.h"

namespace {

const char kBottomMarker[] = "\n#--- comp_+_bot ---\n";

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzzing::setUpJobTarget();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t marker = input.find(kBottomMarker);
    if (marker == std::string::npos) {
        fuzzing::writeFile(fuzzing::componentsPath("comp_+_top"), input);
        fuzzing::removeFile(fuzzing::componentsPath("comp_+_bot"));
    } else {
        fuzzing::writeFile(fuzzing::componentsPath("comp_+_top"), input.substr(0, marker + 1));
        fuzzing::writeFile(fuzzing::componentsPath("comp_+_bot"), input.substr(marker + std::strlen(kBottomMarker)));
    }
    fuzzing::convertJob();
    return 0;
}
