// Odb2vrn_64: converts the ODB++ job in one archive into a VRN netlist file.
#include "frame/banner.h"
#include "frame/conversion.h"
#include "frame/run_options.h"

int main(int argc, char** argv) {
    RunOptions options;
    if (!parseArguments(options, argc, argv)) {
        printBanner();
        printUsage();
        return 1;
    }
    return runConversion(options);
}
