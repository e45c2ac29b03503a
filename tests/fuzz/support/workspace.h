// The scratch directory of one fuzzing process. Every file a target writes
// (job trees, VRN files, the standard input of a step choice) lies below it,
// and it is removed when the process ends normally. A process that a finding
// ends keeps it for inspection; scripts/fuzz runs the targets under a
// TMPDIR of its own and removes that as well.
#pragma once

#include <cstddef>
#include <string>

namespace fuzzing {

// <TMPDIR or the system's temporary folder>/odb2vrn-fuzz-<random>, made on
// the first call.
const std::string& workspace();

// Writes size bytes to path, making the missing directories above it.
void writeFile(const std::string& path, const void* data, std::size_t size);
void writeFile(const std::string& path, const std::string& text);
std::string readFile(const std::string& path);
void removeFile(const std::string& path);

// The converter prints to the standard output; libFuzzer reports on the
// standard error, so the converter's text goes nowhere.
void silenceStandardOutput();

// What the next read of standard input gets, up to its end.
void setStandardInput(const std::string& text);

}  // namespace fuzzing
