// Fuzzes the step's eda/data file: EdaScanner and readEdaData, with the
// shared board's matrix and components around it, then the VRN file.
// Input: the whole eda/data file.
#include <cstddef>
#include <cstdint>

#include "support/fuzz_job.h"
#include "support/workspace.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzzing::setUpJobTarget();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::writeFile(fuzzing::edaDataPath(), data, size);
    fuzzing::convertJob();
    return 0;
}
