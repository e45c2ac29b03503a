// The writers of the job's files, one per file kind. Each writes a whole
// file into its sink; chance (feature numbers, record styles) comes from a
// RandomSource of its own, seeded from the board's seed, so that the files
// do not depend on the order they are written in.
#pragma once

#include "board.h"
#include "job_layout.h"
#include "text_sink.h"

// The step's name in the matrix; its folder is the same in lower case.
constexpr const char* kStepName = "PCB";

void writeMatrix(TextSink& out);
void writeEdaData(const Board& board, TextSink& out);
void writeComponents(const Board& board, char side, TextSink& out);
void writeFeatures(const Board& board, const Layer& layer, TextSink& out);
