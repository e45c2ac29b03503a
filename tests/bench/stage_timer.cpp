// bench_stages: times the stages of a conversion that the program owns, on
// a job that is already unpacked, so that the benchmark can tell them from
// the unpacker's share:
//
//   bench_stages JOB_ROOT OUTPUT.vrn
//
// reads the job as a conversion does (readJobInto), writes the VRN file
// (Design::writeNetlistFile), releases the Design, and prints one line to
// the standard error, wall seconds of each stage and the processor seconds
// (user and system) of read and write together, which a busy machine
// disturbs less:
//   stages read <s> write <s> release <s> cpu <s>
// The converter's own console lines go to the standard output as usual.
#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>

#include "containers/text_string.h"
#include "design/design.h"
#include "frame/conversion.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_stages JOB_ROOT OUTPUT.vrn\n");
        return 2;
    }
    auto design = std::make_unique<Design>();

    const std::clock_t cpuStart = std::clock();
    const auto readStart = Clock::now();
    readJobInto(TextString(argv[1]), TextString("job"), *design);
    const double readSeconds = secondsSince(readStart);

    const auto writeStart = Clock::now();
    TextString designName("bench");
    const bool written = design->writeNetlistFile(argv[2], designName);
    const double writeSeconds = secondsSince(writeStart);
    const double cpuSeconds = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;

    const auto releaseStart = Clock::now();
    design.reset();
    const double releaseSeconds = secondsSince(releaseStart);

    std::fflush(stdout);
    std::fprintf(stderr, "stages read %.6f write %.6f release %.6f cpu %.6f\n", readSeconds, writeSeconds,
                 releaseSeconds, cpuSeconds);
    return written ? 0 : 1;
}
