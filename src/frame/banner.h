// The banner and the usage text, shown only after a failed command line.
#pragma once

#include "design/product.h"

// Build-time texts of the banner; the product's own are in design/product.h.
extern const char kBuildDate[];
extern const char kBuildTag[];
extern const char kSupportedFormat[];

void printBanner();
void printUsage();
