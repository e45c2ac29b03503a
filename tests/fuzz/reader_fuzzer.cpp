// The reader targets, built with ODB2VRN_FUZZ_READER 0, 1 or 2: the input
// replaces one file of the board, then the job is read and written as a run
// does. 0 matrix_reader: the first byte picks standard input (the step a job
// of several steps waits for; -2147483648, which ends such a run through
// abnormalEnd() by design, is left out), the rest is the matrix file.
// 1 eda_data_reader: the eda/data file. 2 components_reader: the top side's
// file; a line "#--- comp_+_bot ---" splits off the bottom side's file.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "support/fuzz_support.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzzing::setUpJobTarget();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
#if ODB2VRN_FUZZ_READER == 0
    static const char* const kStandardInputs[] = {"", "1\n", "2\n", "3\n", "0\n", "-1\n", "2147483647\n", "two\n"};
    if (size == 0) return 0;
    fuzzing::setStandardInput(kStandardInputs[data[0] % std::size(kStandardInputs)]);
    fuzzing::writeFile(fuzzing::matrixPath(), input.substr(1));
#elif ODB2VRN_FUZZ_READER == 1
    fuzzing::writeFile(fuzzing::edaDataPath(), input);
#else
    static const std::string kBottomMarker = "\n#--- comp_+_bot ---\n";
    const std::size_t marker = input.find(kBottomMarker);
    const std::size_t topEnd = marker == std::string::npos ? marker : marker + 1;
    fuzzing::writeFile(fuzzing::componentsPath("comp_+_top"), input.substr(0, topEnd));
    if (marker == std::string::npos) std::remove(fuzzing::componentsPath("comp_+_bot").c_str());
    else fuzzing::writeFile(fuzzing::componentsPath("comp_+_bot"), input.substr(marker + kBottomMarker.size()));
#endif
    fuzzing::convertJob();
    return 0;
}
