// The text rules of the case files: placeholders such as <WORK> stand for
// the paths of one run, <0xHH> for any byte, and <RANDOM> in an expected
// text for the 8-character name of the run's temporary directory.
#pragma once

#include <map>
#include <string>

namespace e2e {

using Placeholders = std::map<std::string, std::string>;  // "WORK" -> "/tmp/.../work"

// Replaces every <NAME> listed in values and every <0xHH> in one pass;
// inserted text is not looked at again. Other tokens, <RANDOM> among them,
// stay as they are.
std::string expandPlaceholders(const std::string& text, const Placeholders& values);

// Compares a whole text with its expectation line by line, "<RANDOM>"
// matching 8 characters of the random-name alphabet. randomName binds the
// first match and must be matched again by every later one, across calls.
// Returns the empty text when they agree, else the first differing line.
std::string firstDifference(const std::string& expected, const std::string& actual, std::string& randomName);

// Bytes outside printable ASCII as <0xHH>, for failure reports.
std::string printable(const std::string& text);

}  // namespace e2e
