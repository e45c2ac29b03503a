// The stages of one conversion, after a valid command line: job intake
// (unpack, read), output stage (move an older output aside, write), removal
// of the temporary tree. Exit code 1 only when the unpack sequence fails.
#pragma once

class RunOptions;

// The exit code; an interrupted run ends here, by its signal, once what it
// made is gone.
int runConversion(RunOptions& options);
