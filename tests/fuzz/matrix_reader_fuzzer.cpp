// Fuzzes the matrix file: MatrixScanner and readMatrix, then the rest of the
// job read and the VRN file over the shared board.
//
// Input: the first byte picks what standard input holds for a job with
// several steps (the step number the run waits for); the rest is the matrix
// file. The number -2147483648 is not among the choices: with several steps
// it ends the run through abnormalEnd() by design, inside the read, where no
// write can be left out.
#include <cstddef>
#include <cstdint>

#include "support/fuzz_job.h"
#include "support/workspace.h"

namespace {

const char* const kStandardInputs[] = {"", "1\n", "2\n", "3\n", "0\n", "-1\n", "2147483647\n", "two\n"};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzzing::setUpJobTarget();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    fuzzing::setStandardInput(kStandardInputs[data[0] % (sizeof kStandardInputs / sizeof kStandardInputs[0])]);
    fuzzing::writeFile(fuzzing::matrixPath(), data + 1, size - 1);
    fuzzing::convertJob();
    return 0;
}
