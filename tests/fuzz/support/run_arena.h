// The fuzz targets' stand-in for the run-lifetime storage of the converter
// (design/run_lifetime.h). A run keeps its Nets, NetPins and step names
// until the process ends; a fuzzing process makes millions of runs, so here
// each object comes from the heap on its own (AddressSanitizer then sees
// every overrun of one) and is released after each input.
#pragma once

namespace fuzzing {

// Destroys and frees every object made for the run since the last call.
// REQUIRES: nothing made for the run is used any more (the Design and the
// JobReader that held them are gone).
void releaseRunObjects();

}  // namespace fuzzing
