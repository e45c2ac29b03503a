// A plain VRN writer to hold the real one against: written straight from the
// rules of the file, with a linear scan of the components for every net pin
// and the lists reached by index only. It shares nothing with the writer in
// src/design but the model, so a fast path there that changes a byte shows.
#pragma once

#include <string>

class Design;

namespace reference {

struct Vrn {
    // The real writer ends the run through abnormalEnd() (an index that the
    // model does not hold); file and console then stop where that happens.
    bool endsAbnormally = false;
    std::string file;     // "\n" for every line end
    std::string console;  // what the write prints
};

// The file that Design::writeNetlistFile writes for design under designName.
Vrn write(Design& design, const std::string& designName);

}  // namespace reference
