// A generated job for the converter's tests, kept apart from the model: the
// generator's board has types of the same names.
#pragma once

#include <string>

// Writes the job of the board of 5000 components (seed 7) under root, with
// CR LF line ends or LF, and gives what the converter must read of it: a
// line for each net ("net <name>: <key>/<pinIndex> ..."), then one for each
// component in reading order ("component <key> <refdes>: <pin text> ...").
// Empty when the job can't be written.
std::string writeGeneratedJob(const std::string& root, bool crlf);
