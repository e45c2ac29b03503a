// writeJob: the whole job tree of a board under one folder, as an exporter
// leaves it before packing: matrix/matrix, misc/info, and the step with its
// eda/data, stephdr, profile and one folder per layer (features, attrlist,
// and components for the two component layers).
#pragma once

#include <cstdint>
#include <string>

#include "board.h"

struct JobSizes {
    std::uint64_t readFiles = 0;  // the four files the converter reads
    std::uint64_t total = 0;
    std::int32_t files = 0;
};

// root is the job folder (made if missing). False, with a message on the
// standard error, when a folder or file cannot be written.
bool writeJob(const Board& board, const std::string& root, const char* lineEnd, JobSizes& sizes);
