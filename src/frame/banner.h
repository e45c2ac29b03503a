// The banner and the usage text, shown only after a failed command line.
#pragma once

void printBanner();
void printUsage();
