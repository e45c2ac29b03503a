// Runs one program to its end, as a user's shell would: its own working
// directory, its own environment, standard input from a file, standard output
// and standard error captured. This is the end-to-end driver's only contact
// with the operating system's process calls; process_runner_posix.cpp holds
// them, so a port brings one twin of that file.
#pragma once

#include <string>
#include <vector>

namespace e2e {

struct ProcessRequest {
    std::vector<std::string> arguments;   // arguments[0] is the program's path
    std::string directory;                // working directory
    std::vector<std::string> environment; // "NAME=value", the whole set
    std::string inputFile;                // empty: standard input is empty
    double timeoutSeconds = 60;
};

struct ProcessResult {
    bool started = false;
    bool timedOut = false;        // killed, with every process of its group
    int exitCode = -1;            // valid when it ended on its own
    int signal = 0;               // not 0 when a signal ended it
    std::string output;
    std::string errorOutput;
    double seconds = 0;
};

ProcessResult runProcess(const ProcessRequest& request);

// What stands between the folders of PATH.
extern const char kPathListSeparator[];

// The driver's own environment, as "NAME=value" entries.
std::vector<std::string> currentEnvironment();

}  // namespace e2e
