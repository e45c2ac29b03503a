#include "design/product.h"

#include "odb2vrn_version.h"

const char kProgramTitle[] = ODB2VRN_PROGRAM_TITLE;
const char kProgramName[] = ODB2VRN_PROGRAM_NAME;
const char kVersionNumber[] = ODB2VRN_VERSION;
const char kRightsHolder[] = ODB2VRN_RIGHTS_HOLDER;
