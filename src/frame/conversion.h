// The stages of one conversion, after a valid command line: job intake
// (unpack, read), output stage (move an older output aside, write), removal
// of the temporary tree. Exit code 1 only when the unpack sequence fails.
#pragma once

#include <cstdint>

#include "containers/text_string.h"

class Design;
class RunOptions;

int runConversion(RunOptions& options);

// Reads the unpacked job at jobRoot into design; the result of the read
// (0 or 1) is for tests: a conversion goes on whatever it is.
std::int32_t readJobInto(const TextString& jobRoot, const TextString& jobName, Design& design);

// Moves an older outputFile aside to its companion name, then writes the
// VRN file. Nothing here stops the run or prints anything.
void runOutputStage(RunOptions& options, Design& design);
