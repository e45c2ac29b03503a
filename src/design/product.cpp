#include "design/product.h"

#include "odb2vrn_version.h"

const char kProgramTitle[] = "ODB++ netlist to VRN converter";
const char kProgramName[] = "Odb2vrn_64";
const char kVersionNumber[] = ODB2VRN_VERSION;
const char kRightsHolder[] = "Korvane Systems";
