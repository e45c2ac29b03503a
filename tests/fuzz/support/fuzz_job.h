// The job that the three reader targets share: a small, consistent board
// under the workspace (matrix, eda/data and both components files, in the
// shapes real exporters write). A target replaces one of its files with the
// fuzzed bytes and converts the job as a run does: the whole job read into a
// Design through JobReader, then the VRN file through the oracle.
#pragma once

#include <string>

namespace fuzzing {

std::string jobRoot();
std::string matrixPath();
std::string edaDataPath();
// layer: "comp_+_top" or "comp_+_bot".
std::string componentsPath(const char* layer);

// readJob over the job, whatever its result, then writeAndCheck; the run
// objects are released afterwards.
void convertJob();

// Sets up a reader target: the console away, the board's four files written.
void setUpJobTarget();

}  // namespace fuzzing
