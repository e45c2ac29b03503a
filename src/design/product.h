// The product's own texts: the banner shows them, and every VRN file names
// the program, its version and the rights holder in its head.
#pragma once

extern const char kProgramTitle[];   // "ODB++ netlist to VRN converter"
extern const char kProgramName[];    // "Odb2vrn_64"
extern const char kVersionNumber[];  // "2.7.1", the project's version
extern const char kRightsHolder[];   // "Korvane Systems"
