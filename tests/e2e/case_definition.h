// One end-to-end case, as its folder states it. A case is data: the driver
// reads it and knows nothing of any single case (see README.md for the
// files a case folder holds).
#pragma once

#include <map>
#include <string>
#include <vector>

namespace e2e {

struct CaseDefinition {
    std::string name;       // "group/case"
    std::string directory;  // the case's folder
    std::string pending;    // why the program can't pass the case yet; it is skipped

    // How the run is set up; placeholders are expanded when it is.
    std::vector<std::string> recipe;       // scene and archive, line by line
    std::vector<std::string> arguments;    // one per line of "args"
    std::vector<std::string> environment;  // "NAME=value" or "unset NAME"
    std::string stdinFile;                 // empty: standard input is empty
    bool usesDouble = false;               // the test double replaces the unpacker
    std::string doubleBehaviour;

    // What the run must give.
    bool hasConsole = false;
    std::string console;
    int exitCode = 0;
    bool abnormalEnd = false;              // "abort" in expected.exit: the run must end by abort()
    bool hasVrn = false;
    std::string vrn;
    std::string outputPath;                // relative to the watched root; empty: <cwd>/board.vrn
    bool hasCalls = false;
    std::string calls;                     // the double's record of its calls
    std::map<std::string, std::string> afterFiles;  // more files the run must leave, by path
    std::vector<std::string> leftovers;    // path prefixes under which things may stay
    double seconds = 0;                    // 0: no limit beyond the driver's guard
};

// The cases below casesRoot, as "group/case", in order.
std::vector<std::string> listCases(const std::string& casesRoot);

// Reads one case. Returns the empty text, or what is wrong with the folder.
std::string loadCase(const std::string& casesRoot, const std::string& name, CaseDefinition& definition);

// The lines of a text; a last line end ends the last line, it adds none.
std::vector<std::string> textLines(const std::string& text);

}  // namespace e2e
