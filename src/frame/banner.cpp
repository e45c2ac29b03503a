#include "frame/banner.h"

#include <cstdio>
#include <cstring>

#include "containers/text_string.h"
#include "odb2vrn_version.h"

namespace {

const char kBuildDate[] = "20230721";
const char kBuildTag[] = "/XQ";
const char kSupportedFormat[] = "Valor odb++ specification 6.5";
constexpr int kConsoleWidth = 80;

const char kLegalNotice[] =
    "This program converts ODB++ job data into a VRN netlist. It is provided\n"
    "as is, without warranty of any kind, express or implied. Check every\n"
    "netlist it writes against the design before you use it for test or\n"
    "manufacture. Use, copying and distribution are subject to the licence\n"
    "terms of " ODB2VRN_RIGHTS_HOLDER " that came with this program.\n"
    "\n";

// Centres text on an 80-column console: right-aligned in a field of
// (length + 80) / 2, so a text of odd length lies half a column left.
int centredWidth(const char* text) {
    return (static_cast<int>(std::strlen(text)) + kConsoleWidth) >> 1;
}

}  // namespace

void printBanner() {
    char supported[kTextArea] = {};
    char version[kTextArea] = {};
    std::snprintf(supported, sizeof supported, "Supported versions: %s", kSupportedFormat);
    std::snprintf(version, sizeof version, "Version %s - %s Win64 %s", ODB2VRN_VERSION, kBuildDate, kBuildTag);
    const char rights[] = ODB2VRN_COPYRIGHT;
    const char shortRights[] = "All rights reserved.";

    std::printf("\n%*s\n", centredWidth(ODB2VRN_PROGRAM_TITLE), ODB2VRN_PROGRAM_TITLE);
    std::printf("%*s\n", centredWidth(ODB2VRN_PROGRAM_NAME), ODB2VRN_PROGRAM_NAME);
    std::printf("%*s\n", centredWidth(version), version);
    std::printf("%*s\n", centredWidth(supported), supported);
    std::printf("%*s\n", centredWidth(rights), rights);
    std::printf("%*s\n\n", centredWidth(shortRights), shortRights);
    std::fputs(kLegalNotice, stdout);
}

void printUsage() {
    std::printf("\nUsage: %s <archive_file> [options] <vrn_outputfile>\n\n", ODB2VRN_PROGRAM_NAME);
    std::printf("Options:\n");
    std::printf("-o            Writes the vrn output to the given filename.\n\n");
}
