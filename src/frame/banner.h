// The banner and the usage text, shown only after a failed command line.
#pragma once

// Build-time texts of the program.
extern const char kProgramTitle[];    // "ODB++ netlist to VRN converter"
extern const char kProgramName[];     // "Odb2vrn_64"
extern const char kVersionNumber[];   // "2.7.1"
extern const char kBuildDate[];
extern const char kBuildTag[];
extern const char kSupportedFormat[];
extern const char kRightsHolder[];    // "Korvane Systems"

void printBanner();
void printUsage();
