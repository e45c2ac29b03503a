// The output stage: moves an older output file aside to its companion name
// (board.vrn -> board.!rn), then writes the VRN file. Nothing here stops the
// run or prints anything.
#pragma once

class Design;
class RunOptions;

void runOutputStage(RunOptions& options, Design& design);
