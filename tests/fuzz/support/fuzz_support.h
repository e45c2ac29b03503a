// What the fuzz targets share: a scratch directory per process (under
// TMPDIR, removed at a normal exit), a copy there of the small board the
// reader targets convert (tests/fuzz/board: a consistent job in the shapes
// real exporters write, with R1 on both sides), and the guarded VRN write.
#pragma once

#include <string>

class Design;

namespace fuzzing {

const std::string& workspace();
void writeFile(const std::string& path, const std::string& text);

// The console away, the board's files written, standard input empty.
void setUpJobTarget();
void setStandardInput(const std::string& text);
std::string matrixPath();
std::string edaDataPath();
std::string componentsPath(const char* layer);  // "comp_+_top" or "comp_+_bot"

// The VRN file into the workspace, unless the reference writer says that
// writing ends the run through abnormalEnd() (an index the model does not
// hold); aborts when the file can't be written or differs in any byte from
// the reference writer's.
void writeNetlist(Design& design, const std::string& designName);

// readJob over the board, whatever its result, then writeNetlist.
void convertJob();

}  // namespace fuzzing
