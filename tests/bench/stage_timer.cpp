// bench_stages: times the stages of a conversion that the program owns, on
// a job that is already unpacked, so that the benchmark can tell them from
// the unpacker's share:
//
//   bench_stages JOB_ROOT OUTPUT.vrn
//
// reads the job's four files as a conversion of a one-step job does (the
// matrix, eda/data, the top and the bottom components), writes the VRN file
// (Design::writeNetlistFile), releases the Design, removes the unpacked
// tree below JOB_ROOT as the converter removes its temporary tree, and
// prints one line to the standard error: wall seconds of each stage and the
// processor seconds (user and system) of read and write together, which a
// busy machine disturbs less:
//   stages read <s> write <s> release <s> cpu <s> matrix <s> eda <s> top <s> bottom <s> remove <s>
// (read is the four files together). The converter's own console lines go to
// the standard output as usual.
#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>

#include "containers/text_string.h"
#include "design/design.h"
#include "odb/job_reader.h"
#include "unpack/archive_unpacker.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Runs step and returns its wall seconds.
template <typename Step>
double timed(Step step) {
    const auto start = Clock::now();
    step();
    return secondsSince(start);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_stages JOB_ROOT OUTPUT.vrn\n");
        return 2;
    }
    auto design = std::make_unique<Design>();
    double matrix = 0, eda = 0, top = 0, bottom = 0;
    bool read = true;

    const std::clock_t cpuStart = std::clock();
    {
        JobReader reader(TextString(argv[1]), TextString("job"), *design);
        matrix = timed([&] { read = reader.readMatrix() == 0; });
        if (read) eda = timed([&] { read = reader.readEdaData() == 0; });
        if (read) top = timed([&] { read = reader.readComponents(TextString("comp_+_top")) == 0; });
        if (read) bottom = timed([&] { read = reader.readComponents(TextString("comp_+_bot")) == 0; });
    }
    bool written = false;
    const double write = timed([&] {
        TextString designName("bench");
        written = design->writeNetlistFile(argv[2], designName);
    });
    const double cpuSeconds = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    const double release = timed([&] { design.reset(); });
    ArchiveUnpacker unpacker;
    const double remove = timed([&] { unpacker.removeTree(TextString(argv[1])); });

    std::fflush(stdout);
    std::fprintf(stderr,
                 "stages read %.6f write %.6f release %.6f cpu %.6f matrix %.6f eda %.6f top %.6f bottom %.6f "
                 "remove %.6f\n",
                 matrix + eda + top + bottom, write, release, cpuSeconds, matrix, eda, top, bottom, remove);
    return read && written ? 0 : 1;
}
