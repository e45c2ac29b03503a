// RunOptions: what one run derives from its command line and surroundings.
// The constructor fixes the current directory and the directory in which the
// temporary tree will be made; parseArguments reads the arguments, prints
// every command-line error and decides whether the run goes on.
#pragma once

#include <cstdint>

#include "containers/text_string.h"

class RunOptions {
public:
    RunOptions();

    TextString inputFile;         // the first argument, as given
    TextString outputFile;        // default path, or the last -o as given
    TextString logFile;           // computed, never written
    TextString baseName;          // input name less directory and last extension
    TextString currentDirectory;  // without a trailing separator
    TextString outputDirectory;   // only copied to tempDirectory
    TextString tempDirectory;     // parent of the temporary tree
    std::int32_t reservedLimit = 0x10000;  // kept; nothing reads it
    bool tempDirectoryChosen = false;
};

// The work areas of the path functions; a longer path is invalid.
constexpr int kPathArea = 270;

// True to go on; on false any message has been printed.
bool parseArguments(RunOptions& options, int argc, const char* const* argv);

// 0: file absent, directory present; 1: _fullpath failed; 2: the name exists;
// 3: the directory is missing; 4: the directory is not a directory.
// directoryOut (kPathArea bytes) holds the directory for codes 0, 3 and 4.
int checkOutputPath(const char* path, char* directoryOut);

// 0: nameOut (kPathArea bytes) holds the name; 1: _fullpath failed;
// 2: the path ends in a separator.
int extractFileName(const char* path, char* nameOut);

// The name without its last extension; separators stop the search.
TextString stripExtension(TextString name);
