#include "frame/conversion.h"

#include "design/design.h"
#include "design/vrn_file.h"
#include "frame/run_options.h"
#include "odb/job_reader.h"
#include "platform/platform.h"
#include "unpack/archive_unpacker.h"

namespace {

// What an interrupted run leaves: no unfinished VRN file (a complete one
// stays, and so does an older output moved aside), no temporary tree.
void cleanUpInterruptedRun(void* unpacker) {
    VrnFile::abandonUnfinished();
    static_cast<ArchiveUnpacker*>(unpacker)->removeTemporaryTree();
}

}  // namespace

std::int32_t readJobInto(const TextString& jobRoot, const TextString& jobName, Design& design) {
    JobReader reader(jobRoot, jobName, design);
    return reader.readJob();
}

int runConversion(RunOptions& options) {
    ArchiveUnpacker unpacker;
    platform::handleInterruptions(cleanUpInterruptedRun, &unpacker);
    Design design;
    TextString jobRoot;
    TextString jobName;
    int exitCode = 0;
    if (unpacker.unpack(options.inputFile, options.tempDirectory, jobRoot, jobName) != 0) {
        exitCode = 1;
    } else {
        readJobInto(jobRoot, jobName, design);  // a job read only in part is still written
        platform::stopIfInterrupted();
        runOutputStage(options, design);
    }
    unpacker.removeTemporaryTree();
    platform::stopIfInterrupted();
    platform::handleInterruptions(nullptr, nullptr);
    return exitCode;
}
