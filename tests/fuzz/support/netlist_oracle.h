// The oracle of every target that ends in a VRN file. It works out the file
// a Design must give with nothing but plain walks over the model's lists, as
// the file's rules are stated (the first component whose key matches, a
// component's pins and the packages by index, values carried from pin to pin
// within a net), and so checks the writer's side indexes against them.
//
// It also tells when writing is meant to end the run through abnormalEnd()
// instead: a negative pin index of a found component, a carried package
// number outside the packages, or a pin index outside the carried package's
// pins. writeAndCheck then leaves the write out, so that an abort() inside a
// target is always a finding and never the behaviour the converter wants.
#pragma once

#include <string>

class Design;

namespace fuzzing {

struct ExpectedNetlist {
    bool endsAbnormally = false;
    std::string designLine;  // "DESIGN\t<name made safe>"
    std::string body;        // from "PART_LIST" to the end of the file
};

ExpectedNetlist expectNetlist(const Design& design, const std::string& designName);

// Writes the design's VRN file into the workspace, unless writing is meant
// to end the run, and aborts with a report on the standard error when the
// file differs from the expected one.
void writeAndCheck(Design& design, const std::string& designName);

}  // namespace fuzzing
